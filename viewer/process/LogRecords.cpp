#include "LogRecords.h"

#include "StandardStreams.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QMutex>
#include <QtCore/QScopedValueRollback>
#include <QtCore/qlogging.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace {

// A plain descriptor: records come from every thread, and until the process ends.
int logFd = STDERR_FILENO;

struct ListenerState {
    QMutex lock;
    LogRecords::Listener listener;
    std::atomic<bool> isForkedChild = false;
};

/// Never destroyed, since records come until the process ends.
ListenerState& listenerState()
{
    static auto* const state = new ListenerState;
    return *state;
}

void tellListener(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type != QtWarningMsg && type != QtCriticalMsg)
        return;
    thread_local bool isTelling = false;
    ListenerState& state = listenerState();
    // In a forked child another thread of the parent may hold the lock for ever.
    if (isTelling || state.isForkedChild)
        return;
    const QByteArrayView category(context.category);
    const bool isDefault = category.isEmpty() || category == QByteArrayView("default");
    const QMutexLocker lock(&state.lock);
    if (!state.listener)
        return;
    const QScopedValueRollback telling(isTelling, true);
    state.listener(type, isDefault ? message : QString::fromUtf8(category) + QLatin1String(": ") + message);
}

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
    tellListener(type, context, message);
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

void LogRecords::setListener(Listener listener)
{
    ListenerState& state = listenerState();
    [[maybe_unused]] static const int handler =
        pthread_atfork(nullptr, nullptr, [] { listenerState().isForkedChild = true; });
    const QMutexLocker lock(&state.lock);
    state.listener.swap(listener);
}
