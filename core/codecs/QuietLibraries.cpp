#include "QuietLibraries.h"

#include <csignal>
#include <exception>
#include <initializer_list>
#include <linux/close_range.h>
#include <sys/mman.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace {

/// Gives this thread its own file descriptors. The others are closed there: a pipe that the process closes meanwhile
/// must not stay open. Returns the file that collects the messages, or -1.
int divertMessages()
{
    if (close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_UNSHARE) != 0)
        return -1;
    const int messages = memfd_create("messages", MFD_CLOEXEC);
    return messages < 0 ? -1 : dup2(messages, STDERR_FILENO);
}

QByteArray contentOf(int file)
{
    constexpr std::size_t enough = 4096;
    QByteArray content(enough, Qt::Uninitialized);
    const ssize_t length = file < 0 ? 0 : pread(file, content.data(), enough, 0);
    content.resize(length < 0 ? 0 : qsizetype(length));
    return content;
}

/// Keeps the signals of the process away from threads that are started meanwhile: a handler could write to a file
/// descriptor that such a thread does not have. Faults of the thread itself are handled as everywhere.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
            sigdelset(&all, fault);
        pthread_sigmask(SIG_BLOCK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before = {};
};

template<typename Function>
std::thread startQuietly(Function function)
{
    const SignalsBlocked blocked;
    return std::thread(function);
}

} // namespace

QByteArray withoutMessages(const std::function<void()>& work)
{
    QByteArray messages;
    std::exception_ptr failure;
    std::thread thread;
    try {
        thread = startQuietly([&] {
            const int file = divertMessages();
            try {
                work();
            } catch (...) {
                failure = std::current_exception();
            }
            messages = contentOf(file);
        });
    } catch (const std::system_error&) { // the system allows no more threads
        work();
        return messages;
    }
    thread.join();
    if (failure)
        std::rethrow_exception(failure);
    return messages;
}
