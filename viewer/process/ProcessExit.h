#pragma once

#include <functional>

/// Ends the process cleanly when a script ends it.
///
/// An uncaught SystemExit makes the interpreter call exit(), in the midst of a run and perhaps on a thread of its own
/// while the windows are alive. Destroying static objects then would pull the ground away from under the running
/// application. Armed, this steps in first: it lets the application complete its files on the GUI thread, and leaves
/// with the status.
namespace ProcessExit {

/// Called on the GUI thread before any run. complete is called on the GUI thread when a script ends the process.
void prepare(std::function<void()> complete);

/// Called on the thread of a run when it begins, as late as can be: what is registered last with exit() runs first.
void arm();

/// Called when the run is over.
void disarm();

} // namespace ProcessExit
