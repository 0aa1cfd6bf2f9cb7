#pragma once

#include <QtCore/QByteArray>

/// Writes bytes to a file descriptor, all of them and at once; gives up silently when nobody reads them any more.
void writeAll(int fd, const QByteArray& bytes);
