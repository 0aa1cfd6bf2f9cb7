#pragma once

/// Makes the calling thread the one that the module `threading` takes for the interpreter's main thread, when a script
/// has imported it.
///
/// Finalising waits for the main thread to end unless it is the finalising thread itself. For the module that is
/// whichever thread imported it first: a host that runs scripts on one thread and ends the interpreter on another would
/// wait for ever. Called before anything that may finalise; leaves no error set.
void fx_takeOverMainThread();
