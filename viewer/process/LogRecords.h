#pragma once

#include <QtCore/QString>

/// Where the program's log records go.
namespace LogRecords {

/// Writes each record to standard error at once, whatever standard error is connected to.
void writeToStandardError();

/// Appends records to a file instead. Returns an error message, empty on success; after an error records go where they
/// went before.
QString writeToFile(const QString& path);

} // namespace LogRecords
