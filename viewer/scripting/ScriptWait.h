#pragma once

class ImageView;

/// Waiting on a script's behalf while the application keeps working. Each ends early when the script is interrupted and
/// when the application quits. Times are seconds.
namespace ScriptWait {

/// Waits the given time. Nothing to wait for in a negative one or not-a-number; zero lets the application work off what
/// is pending.
void forTime(double seconds);

/// Waits until the view shows an image that arrives after the call: true. False when the time has passed, when the view
/// is closed, and for not-a-number. A negative or infinite time waits without limit while images arrive by themselves,
/// and not at all where none do.
bool forImage(ImageView& view, double seconds);

} // namespace ScriptWait
