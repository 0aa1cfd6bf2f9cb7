#include "TestSettings.h"

#include <QtCore/QVersionNumber>

QString TestSettings::pluginFile;
QString TestSettings::pythonHome;
QString TestSettings::pythonVersion;

bool TestSettings::isPythonAtLeast3(int minor)
{
    return QVersionNumber::fromString(pythonVersion) >= QVersionNumber(3, minor);
}

void TestSettings::read(const QStringList& arguments)
{
    const auto take = [](const QString& argument, const QString& name, QString& value) {
        if (argument.startsWith(name))
            value = argument.mid(name.size());
    };
    for (const QString& argument : arguments) {
        take(argument, QStringLiteral("--plugin="), pluginFile);
        take(argument, QStringLiteral("--python-home="), pythonHome);
        take(argument, QStringLiteral("--python-version="), pythonVersion);
    }
}
