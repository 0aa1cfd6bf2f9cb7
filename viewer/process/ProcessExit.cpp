#include "ProcessExit.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

/// How long another thread waits for the GUI thread to end the process.
constexpr unsigned long patienceSeconds = 5;

std::function<void()> completeApplication;
std::atomic<bool> armed = false;

[[noreturn]] void leave(int status)
{
    std::fflush(stdout);
    std::fflush(stderr);
    _exit(status);
}

void leaveFromGuiThread(int status)
{
    if (completeApplication)
        completeApplication();
    leave(status);
}

void handleExit(int status, void* /*unused*/)
{
    if (!armed.exchange(false))
        return;
    QCoreApplication* application = QCoreApplication::instance();
    if (!application || application->thread() == QThread::currentThread())
        leaveFromGuiThread(status);
    QMetaObject::invokeMethod(
        application, [status] { leaveFromGuiThread(status); }, Qt::QueuedConnection);
    QThread::sleep(patienceSeconds);
    leave(status);
}

} // namespace

void ProcessExit::prepare(std::function<void()> complete)
{
    completeApplication = std::move(complete);
}

void ProcessExit::arm()
{
    on_exit(handleExit, nullptr);
    armed = true;
}

void ProcessExit::disarm()
{
    armed = false;
}
