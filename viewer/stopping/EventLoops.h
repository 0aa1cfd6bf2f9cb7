#pragma once

/// The event loop of the application, and those that a script runs inside it, for example with a binding of the
/// toolkit. GUI thread only.
namespace EventLoops {

/// Processes events until the application quits, and returns its status.
int run();

/// Ends all event loops that run inside run(), as soon as control is back in them. Until the script has ended, further
/// ones end at once.
void endInner();

} // namespace EventLoops
