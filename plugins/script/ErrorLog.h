#pragma once

#include <QtCore/QString>

#include <source_location>

/// Writes one critical record: thread, source file, "L", line, ":", an empty text, and the message. The message names
/// the reporting function, as in "PyInit_emb(): ...".
void fx_logError(const QString& message, std::source_location where = std::source_location::current());
