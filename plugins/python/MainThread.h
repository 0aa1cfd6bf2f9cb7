#pragma once

/// Makes the calling thread the main thread of the module `threading`. Does nothing if no script has imported the
/// module.
///
/// Finalising waits for the main thread to end, unless the main thread is the finalising thread itself. The module
/// takes the thread that imported it first for the main thread. A host that runs scripts on one thread and ends the
/// interpreter on another would therefore wait for ever. Call this before anything that may finalise the interpreter.
/// Leaves no error set.
void fx_takeOverMainThread();
