#pragma once

#include <functional>

/// Ends the process cleanly when a script ends it.
///
/// An uncaught SystemExit makes the interpreter call exit() during a run, perhaps not on the GUI thread, and while
/// windows are open. exit() would destroy static objects that the application still uses. While armed, this intercepts
/// exit(): the application completes its files on the GUI thread, and the process ends with the status.
namespace ProcessExit {

/// Sets the function that completes the application's files when a script ends the process. Both are called on the GUI
/// thread; this one before the first run.
void prepare(std::function<void()> complete);

/// Called on the thread of a run as late as possible before the run begins: the handler that is registered last with
/// exit() runs first.
void arm();

/// Called after the run.
void disarm();

} // namespace ProcessExit
