#include "LogRecords.h"

#include "StandardStreams.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/qlogging.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A plain descriptor: records come from every thread, and until the process ends.
int logFd = STDERR_FILENO;

/// True for the toolkit's complaints that mean nothing without a session or a display.
bool isNoise(const QString& message)
{
    return message.startsWith(QStringLiteral("QStandardPaths: XDG_RUNTIME_DIR not set")) ||
           message == QStringLiteral("This plugin does not support propagateSizeHints()");
}

void writeRecord(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (isNoise(message))
        return;
    writeAll(logFd, (qFormatLogMessage(type, context, message) + QLatin1Char('\n')).toUtf8());
}

} // namespace

void LogRecords::writeToStandardError()
{
    logFd = STDERR_FILENO;
    qInstallMessageHandler(writeRecord);
}

QString LogRecords::writeToFile(const QString& path)
{
    const int fd = open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (fd < 0)
        return QStringLiteral("Cannot write the log file %1: %2.").arg(path, QString::fromLocal8Bit(strerror(errno)));
    logFd = fd;
    qInstallMessageHandler(writeRecord);
    return {};
}
