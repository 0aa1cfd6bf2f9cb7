#pragma once

#include <QtCore/QString>

/// Where the program's log records go.
namespace LogRecords {

/// Writes records to standard error, each as it comes and whatever standard error is connected to.
void writeToStandardError();

/// Appends records to a file instead. Returns what went wrong, empty on success.
QString writeToFile(const QString& path);

} // namespace LogRecords
