#pragma once

#include <QtCore/QByteArray>

/// Writes all bytes to a file descriptor, unbuffered; waits while it cannot take more. Gives up silently on an error,
/// for example when the reader is gone.
void writeAll(int fd, const QByteArray& bytes);
