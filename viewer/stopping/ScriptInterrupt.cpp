#include "ScriptInterrupt.h"

#include "ScriptPulse.h"
#include "interpreter/InterpreterCalls.h"

#include <QtCore/QSocketNotifier>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

using Run = ScriptInterrupt::Run;

// The handler may run at any moment on any thread, so these are atomic or written before it is installed.
ScriptInterrupt* theInterrupt = nullptr;
int eventFd = -1;
std::atomic<pthread_t> scriptThread = {};
struct sigaction interpreterAction = {};

std::atomic<Run> latestRun = 0;
std::atomic<Run> runInProgress = 0;
std::atomic<bool> scriptBegun = false;
std::atomic<Run> runToStop = 0; ///< a stop was asked for, and the script has not seen it
std::atomic<Run> runToStopForGood = 0;
std::atomic<bool> nextRunStops = false;
std::atomic<Run> interruptedRun = 0;     ///< the latest run that has seen an interrupt
std::atomic<Run> runStoppedBySignal = 0; ///< the next SIGINT is a stop of this run, not Ctrl-C

// Read by report().
std::atomic<Run> signalledRun = 0;
std::atomic<bool> signalledWhileIdle = false;

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
    const Run run = runInProgress;
    const Run stopped = runStoppedBySignal;
    if (run && !pthread_equal(pthread_self(), scriptThread)) {
        // A script's sleep or read returns early only if the script's thread receives the signal.
        pthread_kill(scriptThread, number);
        errno = savedError;
        return;
    }
    if (stopped)
        runStoppedBySignal = 0;
    const bool isLate = stopped && stopped != run;
    if (run && !isLate) {
        passToInterpreter(number, info, context);
        interruptedRun = run;
        signalledRun = run;
    } else if (!run && !stopped) {
        signalledWhileIdle = true;
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

/// The script then sees what it would see after Ctrl-C.
void stopBySignal(Run run)
{
    struct sigaction current = {};
    if (sigaction(SIGINT, nullptr, &current) != 0 || !isHandler(current))
        return;
    runStoppedBySignal = run;
    pthread_kill(scriptThread, SIGINT);
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

void ScriptInterrupt::runBegins()
{
    scriptThread = pthread_self();
    const Run run = ++latestRun;
    if (nextRunStops.exchange(false))
        runToStop = run;
    runInProgress = run;
}

void ScriptInterrupt::scriptStarted()
{
    struct sigaction current = {};
    if (sigaction(SIGINT, nullptr, &current) == 0 && !isOurs(current) && isHandler(current)) {
        interpreterAction = current;
        struct sigaction action = {};
        action.sa_sigaction = handleInterrupt;
        action.sa_flags = SA_SIGINFO;
        sigemptyset(&action.sa_mask);
        sigaction(SIGINT, &action, nullptr);
    }
    scriptBegun = true;
    if (ScriptPulse* pulse = ScriptPulse::instance())
        pulse->scriptStarted();
    // A stop between the beginning of the run and this moment.
    if (isStopPending())
        stop(currentRun());
}

void ScriptInterrupt::scriptEnded()
{
    if (ScriptPulse* pulse = ScriptPulse::instance())
        pulse->scriptEnded();
    scriptBegun = false;
    runInProgress = 0;
    InterpreterCalls::dropPendingSignals();
}

Run ScriptInterrupt::currentRun()
{
    return runInProgress;
}

void ScriptInterrupt::stopNextRun(bool stop)
{
    nextRunStops = stop;
}

void ScriptInterrupt::stop(Run run)
{
    if (run == 0 || run != runInProgress)
        return;
    runToStop = run;
    if (!scriptBegun)
        return; // scriptStarted() calls this function again
    if (!ScriptPulse::send()) {
        stopBySignal(run);
        return;
    }
    Q_EMIT interrupted();
}

void ScriptInterrupt::stopForGood(Run run)
{
    runToStopForGood = run;
    stop(run);
}

bool ScriptInterrupt::isStopPending()
{
    const Run run = runInProgress;
    return run != 0 && runToStop == run;
}

bool ScriptInterrupt::isForGood()
{
    const Run run = runInProgress;
    return run != 0 && runToStopForGood == run;
}

bool ScriptInterrupt::wasInterrupted()
{
    return latestRun != 0 && interruptedRun == latestRun;
}

ScriptInterrupt::Order ScriptInterrupt::takeOrder()
{
    Run run = runInProgress;
    if (run == 0 || !scriptBegun || !runToStop.compare_exchange_strong(run, 0))
        return Order::Continue;
    interruptedRun = run;
    return runToStopForGood == run ? Order::InterruptEveryLine : Order::Interrupt;
}

void ScriptInterrupt::forgetPending()
{
    signalledRun = 0;
}

void ScriptInterrupt::report()
{
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = read(eventFd, &count, sizeof count);
    const Run run = signalledRun.exchange(0);
    if (run != 0 && run == runInProgress)
        Q_EMIT interrupted();
    if (signalledWhileIdle.exchange(false))
        Q_EMIT interruptedWhileIdle();
}
