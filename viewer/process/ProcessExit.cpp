#include "ProcessExit.h"

#include "UnwrittenErrors.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtCore/QThread>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <exception>
#include <memory>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

/// How long the process waits for the GUI thread: after exit() on another thread, and after a signal.
constexpr auto exitPatience = 5s;
constexpr auto signalPatience = 3s;
constexpr auto interval = 50ms;

constexpr std::array<int, 2> terminations = {SIGTERM, SIGHUP};
constexpr std::array<int, 5> crashes = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL};

const pid_t viewerProcess = getpid();

// Signal handlers use these.
std::atomic<int> terminationSignal = 0; ///< has asked the process to end
int terminationFd = -1;
std::array<struct sigaction, crashes.size()> actionsBefore = {};
std::array<bool, terminations.size()> isIgnored = {}; ///< from the start, for example by nohup

std::atomic<bool> isAlive = false;     ///< the object
std::atomic<bool> isLeaving = false;   ///< a thread ends the process
std::atomic<bool> isCompleted = false; ///< the application's files
ProcessExit::Hooks theHooks;

bool isGuiThread()
{
    return QThread::currentThread() == QCoreApplication::instance()->thread();
}

void completeFiles()
{
    if (isCompleted.exchange(true) || !theHooks.complete)
        return;
    try {
        theHooks.complete();
    } catch (const std::exception& error) {
        qCritical() << "Cannot complete the files:" << error.what();
    }
}

[[noreturn]] void leave(int status)
{
    UnwrittenErrors::write();
    std::fflush(stdout);
    std::fflush(stderr);
    _exit(status);
}

/// Only calls that a signal handler may make.
[[noreturn]] void leaveBySignal(int number)
{
    UnwrittenErrors::write();
    signal(number, SIG_DFL);
    sigset_t mask = {};
    sigemptyset(&mask);
    sigaddset(&mask, number);
    raise(number);
    pthread_sigmask(SIG_UNBLOCK, &mask, nullptr);
    _exit(128 + number); // as a shell tells it; nothing else is left
}

void completeAndLeaveBySignal()
{
    isLeaving = true;
    completeFiles();
    std::fflush(stdout);
    std::fflush(stderr);
    leaveBySignal(terminationSignal);
}

[[noreturn]] void handleExit(int status)
{
    if (ProcessExit::isForkedChild())
        leave(status);
    UnwrittenErrors::write();
    const bool isFirst = !isLeaving.exchange(true);
    if (isGuiThread() || isCompleted) {
        completeFiles();
        leave(status);
    }
    if (isFirst)
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [status] {
                completeFiles();
                leave(status);
            },
            Qt::QueuedConnection);
    std::this_thread::sleep_for(exitPatience);
    leave(status);
}

void handleTermination(int number)
{
    if (getpid() != viewerProcess || terminationSignal.exchange(number) != 0)
        leaveBySignal(number); // a forked child, or the second signal
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(terminationFd, &one, sizeof one);
}

/// The action before this one decides what the signal does then; by default the process ends.
void handleCrash(int number, siginfo_t* info, void* /*context*/)
{
    UnwrittenErrors::write();
    for (std::size_t i = 0; i < crashes.size(); ++i)
        if (crashes[i] == number)
            sigaction(number, &actionsBefore[i], nullptr);
    // A fault occurs again when the handler returns; a signal that was sent does not.
    if (info->si_code <= 0)
        raise(number);
}

/// A second stack for the calling thread: a handler of a stack overflow has no room on the first one.
class SignalStack
{
public:
    SignalStack()
    {
        stack_t before = {};
        if (sigaltstack(nullptr, &before) != 0 || !(before.ss_flags & SS_DISABLE))
            return; // the thread has one
        m_memory = std::make_unique<char[]>(size);
        stack_t stack = {};
        stack.ss_sp = m_memory.get();
        stack.ss_size = size;
        sigaltstack(&stack, nullptr);
    }
    ~SignalStack()
    {
        stack_t current = {};
        if (!m_memory || sigaltstack(nullptr, &current) != 0 || current.ss_sp != m_memory.get())
            return;
        stack_t none = {};
        none.ss_flags = SS_DISABLE;
        sigaltstack(&none, nullptr);
    }
    Q_DISABLE_COPY_MOVE(SignalStack)

private:
    static constexpr std::size_t size = 65536;
    std::unique_ptr<char[]> m_memory;
};

void handleCrashes()
{
    struct sigaction action = {};
    action.sa_sigaction = handleCrash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < crashes.size(); ++i)
        sigaction(crashes[i], &action, &actionsBefore[i]);
}

bool isOurs(const struct sigaction& action)
{
    return action.sa_handler == handleTermination;
}

/// Waits for a termination signal, and then until the process has ended. It needs no event loop, which the GUI thread
/// does not have while a script works there.
class Watch
{
public:
    Watch()
    {
        sigset_t all = {};
        sigset_t before = {};
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
        m_thread = std::thread([this] { run(); });
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }
    ~Watch()
    {
        m_ends = true;
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(terminationFd, &one, sizeof one);
        m_thread.join();
    }
    Q_DISABLE_COPY_MOVE(Watch)

private:
    void run()
    {
        pollfd termination = {terminationFd, POLLIN, 0};
        while (!m_ends && terminationSignal == 0)
            poll(&termination, 1, -1);
        if (m_ends)
            return;
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [] { completeAndLeaveBySignal(); }, Qt::QueuedConnection);
        for (auto waited = 0ms; waited < signalPatience && !m_ends; waited += interval) {
            theHooks.interruptScript();
            std::this_thread::sleep_for(interval);
        }
        if (!m_ends)
            leaveBySignal(terminationSignal);
    }

    std::atomic<bool> m_ends = false;
    std::thread m_thread;
};

std::unique_ptr<Watch> theWatch;

} // namespace

/// Every call of exit() in the process reaches this function before the one of the C library: the dynamic linker looks
/// into the program first. A function registered with atexit() would come too late, since the objects that were made
/// after its registration are destroyed before it runs.
extern "C" Q_DECL_EXPORT void exit(int status) noexcept
{
    if (isAlive)
        handleExit(status);
    using Exit = void(int);
    if (auto* next = reinterpret_cast<Exit*>(dlsym(RTLD_NEXT, "exit")))
        next(status);
    _exit(status);
}

ProcessExit::ProcessExit(Hooks hooks)
{
    theHooks = std::move(hooks);
    isCompleted = false;
    for (std::size_t i = 0; i < terminations.size(); ++i) {
        struct sigaction before = {};
        isIgnored[i] = sigaction(terminations[i], nullptr, &before) == 0 && before.sa_handler == SIG_IGN;
    }
    terminationFd = eventfd(0, EFD_CLOEXEC);
    theWatch = std::make_unique<Watch>();
    prepareScriptThread();
    handleCrashes();
    restoreHandlers();
    isAlive = true;
}

ProcessExit::~ProcessExit()
{
    completeFiles();
    isAlive = false;
    theWatch.reset();
    if (terminationSignal != 0)
        leaveBySignal(terminationSignal);
    for (const int number : terminations) {
        struct sigaction current = {};
        if (sigaction(number, nullptr, &current) == 0 && isOurs(current))
            signal(number, SIG_DFL);
    }
    for (std::size_t i = 0; i < crashes.size(); ++i)
        sigaction(crashes[i], &actionsBefore[i], nullptr);
    close(terminationFd);
    terminationFd = -1;
    theHooks = {};
}

void ProcessExit::complete()
{
    completeFiles();
}

void ProcessExit::leaveIfAsked()
{
    if (terminationSignal != 0 && isGuiThread())
        completeAndLeaveBySignal();
}

void ProcessExit::prepareScriptThread()
{
    thread_local const SignalStack stack;
}

void ProcessExit::restoreHandlers()
{
    for (std::size_t i = 0; i < terminations.size(); ++i) {
        struct sigaction action = {};
        if (isIgnored[i] || sigaction(terminations[i], nullptr, &action) != 0 || isOurs(action))
            continue;
        action = {};
        action.sa_handler = handleTermination;
        sigemptyset(&action.sa_mask);
        sigaction(terminations[i], &action, nullptr);
    }
}

bool ProcessExit::isForkedChild()
{
    return getpid() != viewerProcess;
}
