#pragma once

#include "support/PythonApi.h"

#include <functional>
#include <string>

/// Initialises the built-in module "emb", which holds the type of the objects that replace the standard streams during
/// a run. Returns the new module, or null with an error set.
PyObject* PyInit_emb();

namespace emb {

/// Receives one written text, in UTF-8, on the thread that writes it.
using Write = std::function<void(std::string)>;

/// Replaces sys.stdout (sys.stderr) with an object that calls the function once for each write. If such an object is
/// already in place, only replaces its function. Does nothing before the module exists.
void set_stdout(Write write);
void set_stderr(Write write);

/// Restores the previous stream.
void reset_stdout();
void reset_stderr();

/// Releases the previous streams without restoring them. A stream flushes its buffer when its last reference goes, so
/// call this before the interpreter is finalised.
void release_saved_streams();

/// Removes the functions of both objects, which stay in place. Writes then do nothing.
void clear_writers();

} // namespace emb
