#pragma once

#include "support/PythonApi.h"

#include <functional>
#include <string>

/// Initialises the built-in module "emb", which carries the type that stands in for the standard streams during a run.
/// Returns the new module, or null with an error set.
PyObject* PyInit_emb();

namespace emb {

/// Receives one written text, UTF-8, on the thread that writes it.
using Write = std::function<void(std::string)>;

/// Puts an object in the place of sys.stdout (sys.stderr) that hands every written text to the function, one call for
/// each write. While one is in place another call only replaces the function. Does nothing before the module exists.
void set_stdout(Write write);
void set_stderr(Write write);

/// Puts the stream back that was there before.
void reset_stdout();
void reset_stderr();

/// Lets go of the streams that stood there before, without putting them back. They write out what they hold when nobody
/// holds them any more: to be called before the interpreter is finalised.
void release_saved_streams();

/// Empties the functions of both streams and leaves everything else in place: writes then do nothing.
void clear_writers();

} // namespace emb
