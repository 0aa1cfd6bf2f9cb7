#include "ThreadSignals.h"

#include <atomic>
#include <csignal>
#include <initializer_list>

namespace {
sigset_t maskBefore = {};
std::atomic<bool> areKeptAway = false;
} // namespace

void ThreadSignals::keepAway()
{
    sigset_t kept = {};
    sigfillset(&kept);
    for (const int number : {SIGINT, SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS})
        sigdelset(&kept, number);
    pthread_sigmask(SIG_BLOCK, &kept, &maskBefore);
    areKeptAway = true;
}

void ThreadSignals::receive()
{
    if (areKeptAway)
        pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
}
