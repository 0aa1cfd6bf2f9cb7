#pragma once

// Restarting a camera, without the interpreter.

/// Restarts a camera with its default settings. Waits until the host lists the camera again, for at most about thirty
/// seconds; the application keeps working meanwhile. Returns the camera's new handle. Returns null if the camera is
/// unknown, if the host has no delegate or if the camera does not come back. After the restart the old handle is
/// invalid.
void* fx_script_restartCamera(void* camera);

/// Waits for the given time while the application keeps working. Tests may replace this function.
extern void (*fx_script_waitForHost)(int milliseconds);
