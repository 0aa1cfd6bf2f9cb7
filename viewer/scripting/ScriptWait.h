#pragma once

class ImageView;

/// Waits on behalf of a script while the application keeps working. A wait ends early if the script is interrupted or
/// the application quits. Times are in seconds.
namespace ScriptWait {

/// Waits for the given time. With zero the application handles its pending events; with a negative time or NaN the
/// function returns at once.
void forTime(double seconds);

/// Waits until the view shows an image that arrives after the call, and then returns true. Returns false if the wait
/// ends before that, if the view is closed, and at once for NaN. A negative or infinite time waits without limit while
/// images arrive by themselves; if they do not, the function returns false at once.
bool forImage(ImageView& view, double seconds);

} // namespace ScriptWait
