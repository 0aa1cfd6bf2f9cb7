#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <unistd.h>

/// Collects what the process writes to standard error, by whatever way, while it lives.
class StandardErrorCapture
{
public:
    StandardErrorCapture()
        : m_file(std::tmpfile())
        , m_before(dup(STDERR_FILENO))
    {
        std::fflush(stderr);
        dup2(fileno(m_file), STDERR_FILENO);
    }
    ~StandardErrorCapture()
    {
        std::fflush(stderr);
        dup2(m_before, STDERR_FILENO);
        close(m_before);
        std::fclose(m_file);
    }
    StandardErrorCapture(const StandardErrorCapture&) = delete;
    StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;

    std::string text() const
    {
        std::fflush(stderr);
        std::string text;
        char part[4096];
        for (ssize_t length = 1; length > 0; text.append(part, std::size_t(length)))
            length = std::max<ssize_t>(pread(fileno(m_file), part, sizeof part, off_t(text.size())), 0);
        return text;
    }

private:
    std::FILE* m_file;
    int m_before;
};
