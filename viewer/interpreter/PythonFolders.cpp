#include "PythonFolders.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

namespace {

/// The first two parts of a version, for example "3.11". Empty if the text does not begin with them.
QString shortVersion(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("^(\\d+\\.\\d+)"));
    return form.match(text).captured(1);
}

QString versionOf(const QString& language)
{
    return shortVersion(language.mid(language.indexOf(QLatin1Char(' ')) + 1));
}

QString settingsOf(const QString& environment)
{
    return QDir(environment).filePath(QStringLiteral("pyvenv.cfg"));
}

/// The version that an environment was made for; empty if it does not say.
QString environmentVersion(const QString& environment)
{
    static const QRegularExpression line(QStringLiteral("^\\s*version(?:_info)?\\s*=\\s*(\\S+)"));
    QFile file(settingsOf(environment));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    while (!file.atEnd())
        if (const auto match = line.match(QString::fromUtf8(file.readLine())); match.hasMatch())
            return shortVersion(match.captured(1));
    return {};
}

} // namespace

QString PythonFolders::problemWithHome(const QString& folder, const QString& language)
{
    if (folder.isEmpty())
        return {};
    if (!QFileInfo(folder).isDir())
        return QStringLiteral("%1 is not a folder.").arg(folder);
    if (QFileInfo::exists(settingsOf(folder)))
        return QStringLiteral("%1 is a virtual environment and not a Python home; use --venv %1.").arg(folder);
    const QString version = versionOf(language);
    const QString archive = QStringLiteral("lib/python%1.zip").arg(QString(version).remove(QLatin1Char('.')));
    for (const QString& library : {QStringLiteral("lib/python%1/os.py").arg(version),
                                   QStringLiteral("lib64/python%1/os.py").arg(version), archive})
        if (QFileInfo::exists(QDir(folder).filePath(library)))
            return {};
    return QStringLiteral("%1 is not the home of a Python %2: there is no lib/python%2/os.py in it.")
        .arg(folder, version);
}

QString PythonFolders::problemWithEnvironment(const QString& folder, const QString& language)
{
    if (folder.isEmpty())
        return {};
    if (!QFileInfo(folder).isDir())
        return QStringLiteral("%1 is not a folder.").arg(folder);
    if (!QFileInfo::exists(settingsOf(folder)))
        return QStringLiteral("%1 is not a virtual environment: there is no pyvenv.cfg in it.").arg(folder);
    const QString version = versionOf(language);
    const QString theirs = environmentVersion(folder);
    if (!theirs.isEmpty() && theirs != version)
        return QStringLiteral("%1 is a virtual environment of Python %2, but scripts run with Python %3 here.")
            .arg(folder, theirs, version);
    return {};
}
