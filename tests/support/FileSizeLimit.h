#pragma once

#include <csignal>
#include <sys/resource.h>

/// Lets no file of this process grow beyond a size, as a disk does that has become full.
class FileSizeLimit
{
public:
    /// Without the signal, which is ignored unless kills is true, a write fails.
    explicit FileSizeLimit(rlim_t bytes, bool kills = false)
    {
        m_handler = std::signal(SIGXFSZ, kills ? SIG_DFL : SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before = {};
    void (*m_handler)(int) = SIG_DFL;
};
