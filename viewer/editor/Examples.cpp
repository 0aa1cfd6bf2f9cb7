#include "Examples.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>

QList<Example> Examples::all()
{
    const QDir programs(QCoreApplication::applicationDirPath());
    const QDir built(programs.filePath(QStringLiteral("../examples")));
    const QDir folder = built.exists() ? built : QDir(programs.filePath(QStringLiteral(VANTREL_INSTALLED_EXAMPLES)));
    QList<Example> found;
    for (const QString& name : folder.entryList({QStringLiteral("*.py")}, QDir::Files, QDir::Name)) {
        const QString path = QDir::cleanPath(folder.absoluteFilePath(name));
        const QString first = textOf(path).section(QLatin1Char('\n'), 0, 0);
        // A module that an example uses does not say how to run it.
        if (!first.startsWith(QStringLiteral("\"\"\"")) || !textOf(path).contains(QStringLiteral("vantrel run")))
            continue;
        QString title = name.chopped(3).replace(QLatin1Char('_'), QLatin1Char(' '));
        title[0] = title.at(0).toUpper();
        found += {title, first.mid(3), path};
    }
    return found;
}

QString Examples::textOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
