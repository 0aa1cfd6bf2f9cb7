#pragma once

#include <QtCore/QByteArray>

#include <functional>

/// Does work with a library that writes about damaged files to standard error, and returns what it wrote. Exceptions
/// of the work arrive at the caller.
///
/// The work runs on a thread of its own while the caller waits. That thread has its own table of file descriptors, in
/// which standard error is a file in memory; nothing that other threads write is affected. The work must not use any
/// other file. Where the system refuses such a table, messages go to standard error.
QByteArray withoutMessages(const std::function<void()>& work);
