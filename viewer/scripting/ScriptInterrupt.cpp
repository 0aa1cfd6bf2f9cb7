#include "ScriptInterrupt.h"

#include <QtCore/QSocketNotifier>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

// The handler may run at any moment on any thread, so these are atomic or written before it is installed.
ScriptInterrupt* theInterrupt = nullptr;
int eventFd = -1;
std::atomic<bool> scriptRuns = false;
std::atomic<pthread_t> scriptThread = {};
struct sigaction interpreterAction = {};

void passToInterpreter(int number, siginfo_t* info, void* context)
{
    if (interpreterAction.sa_flags & SA_SIGINFO)
        interpreterAction.sa_sigaction(number, info, context);
    else
        interpreterAction.sa_handler(number);
}

void handleInterrupt(int number, siginfo_t* info, void* context)
{
    const int savedError = errno;
    if (scriptRuns) {
        // A script's sleep or read returns early only if the script's thread receives the signal.
        if (!pthread_equal(pthread_self(), scriptThread)) {
            pthread_kill(scriptThread, number);
            errno = savedError;
            return;
        }
        passToInterpreter(number, info, context);
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(eventFd, &one, sizeof one);
    errno = savedError;
}

bool isOurs(const struct sigaction& action)
{
    return (action.sa_flags & SA_SIGINFO) && action.sa_sigaction == handleInterrupt;
}

bool isHandler(const struct sigaction& action)
{
    return (action.sa_flags & SA_SIGINFO) || (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN);
}

} // namespace

ScriptInterrupt::ScriptInterrupt()
{
    eventFd = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    theInterrupt = this;
    m_notifier = new QSocketNotifier(eventFd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &ScriptInterrupt::report);
}

ScriptInterrupt::~ScriptInterrupt()
{
    struct sigaction current = {};
    if (sigaction(SIGINT, nullptr, &current) == 0 && isOurs(current))
        signal(SIGINT, SIG_DFL);
    delete m_notifier;
    theInterrupt = nullptr;
    close(eventFd);
    eventFd = -1;
}

ScriptInterrupt* ScriptInterrupt::instance()
{
    return theInterrupt;
}

void ScriptInterrupt::scriptStarted()
{
    scriptThread = pthread_self();
    scriptRuns = true;
    struct sigaction current = {};
    if (sigaction(SIGINT, nullptr, &current) != 0 || isOurs(current) || !isHandler(current))
        return;
    interpreterAction = current;
    struct sigaction action = {};
    action.sa_sigaction = handleInterrupt;
    action.sa_flags = SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

void ScriptInterrupt::scriptEnded()
{
    scriptRuns = false;
}

void ScriptInterrupt::interruptScript()
{
    struct sigaction current = {};
    if (scriptRuns && sigaction(SIGINT, nullptr, &current) == 0 && isHandler(current))
        raise(SIGINT);
}

void ScriptInterrupt::forgetPending()
{
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = read(eventFd, &count, sizeof count);
}

void ScriptInterrupt::report()
{
    forgetPending();
    if (scriptRuns)
        Q_EMIT interrupted();
    else
        Q_EMIT interruptedWhileIdle();
}
