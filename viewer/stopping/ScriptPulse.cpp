#include "ScriptPulse.h"

#include "EventLoops.h"
#include "ScriptInterrupt.h"
#include "interpreter/InterpreterCalls.h"
#include "process/ProcessExit.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtCore/QElapsedTimer>
#include <QtCore/QScopedValueRollback>
#include <QtCore/QThread>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr int pulseSignal = SIGURG;

// Milliseconds. The first is the time between two pulses.
constexpr int interval = 30;
constexpr int longestRepetition = 1000;

ScriptPulse* thePulse = nullptr;
int wakeFd = -1; ///< of the thread that sends the signal

// The signal handler and the thread that sends the signal use these.
struct sigaction interpreterAction = {};
std::atomic<pthread_t> scriptThread = {};
std::atomic<bool> beats = false;       ///< a script runs on the GUI thread
std::atomic<bool> asksAgain = false;   ///< the script has to handle the signal once more
std::atomic<bool> outstanding = false; ///< the interpreter has not handled the latest pulse
std::atomic<int> latestServiceMs = 0;  ///< how long the viewer's work at the latest pulse took

// The script's thread sets these, and the GUI thread reads them.
std::atomic<bool> isOnGuiThread = false;
std::atomic<int> scriptLoopLevel = 0;

// Only the script's thread uses this.
bool isServing = false;

void handlePulse(int number, siginfo_t* info, void* context)
{
    const int savedError = errno;
    if (interpreterAction.sa_flags & SA_SIGINFO)
        interpreterAction.sa_sigaction(number, info, context);
    else
        interpreterAction.sa_handler(number);
    errno = savedError;
}

void wakeThread()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(wakeFd, &one, sizeof one);
}

void askAgain()
{
    asksAgain = true;
    wakeThread();
}

bool isOurs(const struct sigaction& action)
{
    return (action.sa_flags & SA_SIGINFO) && action.sa_sigaction == handlePulse;
}

bool isHandlerInPlace()
{
    struct sigaction current = {};
    return sigaction(pulseSignal, nullptr, &current) == 0 && isOurs(current);
}

/// True if events may be processed: not from within the processing of events, and not while an event loop that the
/// script has started processes them.
bool mayProcessEvents()
{
    return beats && !isServing && QThread::currentThread() == QCoreApplication::instance()->thread() &&
           QThread::currentThread()->loopLevel() == scriptLoopLevel;
}

void processEvents()
{
    const QScopedValueRollback serving(isServing, true);
    QElapsedTimer clock;
    clock.start();
    try {
        QCoreApplication::processEvents();
    } catch (const std::exception& error) {
        qCritical() << "An exception in the viewer while a script ran:" << error.what();
    }
    latestServiceMs = int(std::min<qint64>(clock.elapsed(), longestRepetition));
}

/// The interpreter calls this as the handler of the signal, with the signal's number and the current frame.
void serve(int /*number*/, void* frame) noexcept
{
    if (ProcessExit::isForkedChild() || !QCoreApplication::instance())
        return;
    ProcessExit::leaveIfAsked();
    // Otherwise an error would disturb the viewer's own functions, for example those that write a script's traceback.
    if (!InterpreterCalls::isInScript(frame)) {
        if (ScriptInterrupt::isStopPending())
            askAgain();
        return;
    }
    if (mayProcessEvents())
        processEvents();
    outstanding = false;
    if (ScriptInterrupt::isStopPending() && !ScriptInterrupt::isForGood() && InterpreterCalls::isDelicate(frame))
        return askAgain();
    switch (ScriptInterrupt::takeOrder()) {
    case ScriptInterrupt::Order::Continue:
        if (ScriptInterrupt::isForGood())
            InterpreterCalls::endDelicate(frame);
        break;
    case ScriptInterrupt::Order::Interrupt:
        InterpreterCalls::raiseKeyboardInterrupt();
        break;
    case ScriptInterrupt::Order::InterruptEveryLine:
        InterpreterCalls::raiseAtEveryLine(frame);
        break;
    }
    if (ScriptInterrupt::isForGood())
        askAgain(); // until the script has ended: a finaliser may wait
}

/// The interpreter calls this when an interrupt has left a function of the script that was called by the event loop.
/// Returns true if it is raised again, in the code that has started the event loop.
bool raiseAgain() noexcept
{
    if (ProcessExit::isForkedChild() || !ScriptInterrupt::wasInterrupted() ||
        !(isServing || ScriptPulse::isInEventLoop()))
        return false;
    // Queued: the interrupt must not be raised in the function that has reported it.
    QMetaObject::invokeMethod(
        ScriptInterrupt::instance(),
        [run = ScriptInterrupt::currentRun()] {
            if (run != ScriptInterrupt::currentRun())
                return;
            if (ScriptPulse::isInEventLoop())
                EventLoops::endInner();
            ScriptInterrupt::instance()->stop(run);
        },
        Qt::QueuedConnection);
    return true;
}

} // namespace

ScriptPulse::ScriptPulse(bool processesEvents)
    : m_processesEvents(processesEvents)
{
    wakeFd = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    thePulse = this;
    // The thread handles no signal: signals of the process are for the others.
    sigset_t all = {};
    sigset_t before = {};
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    m_thread = std::thread([this] { beat(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

ScriptPulse::~ScriptPulse()
{
    thePulse = nullptr;
    beats = false;
    m_ends = true;
    wakeThread();
    m_thread.join();
    close(wakeFd);
    wakeFd = -1;
    if (isHandlerInPlace())
        signal(pulseSignal, SIG_DFL);
}

ScriptPulse* ScriptPulse::instance()
{
    return thePulse;
}

QString ScriptPulse::preparation() const
{
    if (isHandlerInPlace())
        return {};
    return QStringLiteral("__import__('vantrel_viewer.signals').signals.handle_pulses(%1, %2, %3)\n")
        .arg(pulseSignal)
        .arg(reinterpret_cast<quintptr>(&serve))
        .arg(reinterpret_cast<quintptr>(&raiseAgain));
}

void ScriptPulse::prepared()
{
    struct sigaction current = {};
    if (sigaction(pulseSignal, nullptr, &current) != 0 || isOurs(current))
        return;
    if (!(current.sa_flags & SA_SIGINFO) && (current.sa_handler == SIG_DFL || current.sa_handler == SIG_IGN))
        return;
    interpreterAction = current;
    struct sigaction action = {};
    action.sa_sigaction = handlePulse;
    action.sa_flags = SA_SIGINFO; // without SA_RESTART: a read or a lock that waits must notice the signal
    sigemptyset(&action.sa_mask);
    sigaction(pulseSignal, &action, nullptr);
}

void ScriptPulse::scriptStarted()
{
    scriptThread = pthread_self();
    outstanding = false;
    latestServiceMs = 0;
    const QThread* thread = QThread::currentThread();
    isOnGuiThread = thread == QCoreApplication::instance()->thread();
    scriptLoopLevel = thread->loopLevel();
    if (!m_processesEvents || !isOnGuiThread || !isHandlerInPlace())
        return;
    beats = true;
    wakeThread();
}

void ScriptPulse::scriptEnded()
{
    beats = false;
    asksAgain = false;
    isOnGuiThread = false;
}

bool ScriptPulse::send()
{
    return isHandlerInPlace() && pthread_kill(scriptThread, pulseSignal) == 0;
}

bool ScriptPulse::isInEventLoop()
{
    const QThread* thread = QThread::currentThread();
    return isOnGuiThread && thread == QCoreApplication::instance()->thread() && thread->loopLevel() > scriptLoopLevel;
}

// A pulse is not repeated while the interpreter has not handled it: a call of a C library is interrupted once, and a
// fork of a large process, which starts again when a signal comes, gets time to end. It is repeated ever more rarely,
// since a pulse that comes just before a system call does not interrupt the call.
void ScriptPulse::beat()
{
    int untilRepetition = 0;
    int repetition = 0;
    while (!m_ends) {
        const int pause = std::max(interval, int(latestServiceMs));
        pollfd wake = {wakeFd, POLLIN, 0};
        const bool woken = poll(&wake, 1, beats || asksAgain ? pause : -1) > 0;
        if (woken) {
            std::uint64_t count = 0;
            [[maybe_unused]] const ssize_t got = read(wakeFd, &count, sizeof count);
            continue; // a script that has started gets the first pause without a pulse
        }
        if (asksAgain.exchange(false)) {
            send();
            continue;
        }
        if (!beats)
            continue;
        if (!outstanding.exchange(true)) {
            repetition = 2 * interval;
            untilRepetition = repetition;
            send();
        } else if ((untilRepetition -= pause) <= 0) {
            repetition = std::min(2 * repetition, longestRepetition);
            untilRepetition = repetition;
            send();
        }
    }
}
