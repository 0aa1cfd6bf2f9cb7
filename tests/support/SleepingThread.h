#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>

#include <sys/syscall.h>
#include <unistd.h>

// Whether threads sleep: they wait for a lock, a file or a time, as the system sees it. A test waits for that instead
// of for a time in which the thread has probably begun to wait.

/// The system's number of the calling thread.
inline int threadNumber()
{
    return int(syscall(SYS_gettid));
}

/// Whether a thread sleeps. False for a thread that is not there.
inline bool threadSleeps(qint64 process, int thread)
{
    QFile file(QStringLiteral("/proc/%1/task/%2/stat").arg(process).arg(thread));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // The state follows the program's name, which stands in brackets and may contain some.
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) == "S";
}

/// Whether all threads of a process sleep.
inline bool processSleeps(qint64 process)
{
    const QStringList threads =
        QDir(QStringLiteral("/proc/%1/task").arg(process)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& thread : threads)
        if (!threadSleeps(process, thread.toInt()))
            return false;
    return !threads.isEmpty();
}
