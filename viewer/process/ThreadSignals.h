#pragma once

/// Which thread receives the signals of the process if scripts run on a thread of their own. A sleep or a read of a
/// script returns early only if the signal comes to the script's thread.
namespace ThreadSignals {

/// Keeps signals away from the calling thread, and from all threads that it starts. Left out are SIGINT, which
/// ScriptInterrupt sends to the right thread, and the signals of faults. To be called before any other thread starts.
void keepAway();

/// Lets the calling thread receive signals again.
void receive();

} // namespace ThreadSignals
