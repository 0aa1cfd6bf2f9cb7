#pragma once

#include <QtCore/QString>
#include <QtCore/qlogging.h>

#include <functional>

/// Where the program's log records go.
namespace LogRecords {

/// Writes each record to standard error at once, whatever standard error is connected to.
void writeToStandardError();

/// Appends records to a file instead. Returns an error message, empty on success; after an error records go where they
/// went before.
QString writeToFile(const QString& path);

/// Receives the text of a record, with its category unless that is the default.
using Listener = std::function<void(QtMsgType type, const QString& text)>;

/// Passes each warning and each critical record to the listener as well, on the thread that logs, in one call at a
/// time. What the listener logs itself is not passed to it. An empty listener ends this. After this function has
/// returned, the former listener is called no more.
void setListener(Listener listener);

} // namespace LogRecords
