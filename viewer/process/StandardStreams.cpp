#include "StandardStreams.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

void writeAll(int fd, const QByteArray& bytes)
{
    const char* next = bytes.constData();
    auto left = std::size_t(bytes.size());
    while (left > 0) {
        const ssize_t written = write(fd, next, left);
        if (written >= 0) {
            next += written;
            left -= std::size_t(written);
        } else if (errno == EAGAIN) {
            pollfd ready = {fd, POLLOUT, 0};
            poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return;
        }
    }
}
