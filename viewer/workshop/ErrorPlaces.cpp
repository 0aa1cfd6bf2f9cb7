#include "ErrorPlaces.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

QList<ErrorPlace> errorPlacesIn(const QString& line)
{
    static const QRegularExpression place(QStringLiteral("File \"([^\"\\n]+)\", line (\\d+)"));
    QList<ErrorPlace> places;
    for (auto found = place.globalMatch(line); found.hasNext();) {
        const auto match = found.next();
        // Files of the interpreter itself have names such as <string>: there is nothing to open.
        if (match.capturedView(1).startsWith(QLatin1Char('<')))
            continue;
        places += {match.captured(1), match.captured(2).toInt(), match.capturedStart(), match.capturedEnd()};
    }
    return places;
}

FileError errorInFile(const QString& errors, const std::function<bool(const QString& name)>& isFile)
{
    FileError error;
    const QStringList lines = errors.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        // The last traceback is that of the error which ended the run. It lists the calls in their order.
        if (line.startsWith(QStringLiteral("Traceback (")))
            error = {};
        // A call is indented by two spaces, and the source below it by more.
        const bool isCall = line.startsWith(QStringLiteral("  File \""));
        for (const ErrorPlace& place : errorPlacesIn(line)) {
            if (isCall && isFile(place.file))
                error.line = place.line;
        }
        // The message stands below the calls, at the beginning of a line. Only its first line is kept.
        if (error.line > 0 && error.message.isEmpty() && !line.startsWith(QLatin1Char(' ')))
            error.message = line;
    }
    return error;
}
