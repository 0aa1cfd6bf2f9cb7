#pragma once

#include <QtCore/QString>

/// Writes one critical record: thread, source file, "L", line, ":", an empty text, and the message. The message names
/// the reporting function, as in "PyInit_emb(): ...". The file and line default to the caller's.
void fx_logError(const QString& message, const char* file = __builtin_FILE(), int line = __builtin_LINE());
