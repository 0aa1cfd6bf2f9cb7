#pragma once

#include <cstddef>

/// A copy of what the running script has written to its standard error. The script's language hands the text over when
/// the run ends; if the process dies before that, the copy goes to the process's standard error instead.
namespace UnwrittenErrors {

/// Adds a text. Called on any thread, but on one at a time.
void add(const char* text, std::size_t size);

/// Empties the copy: the text has been handed over. Called as add() is.
void forget();

/// Writes the copy to standard error. Only the first call in a process does so, and none in a forked child, whose copy
/// is its parent's. May be called in a signal handler.
void write() noexcept;

} // namespace UnwrittenErrors
