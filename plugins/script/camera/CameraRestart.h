#pragma once

// Restarting a camera, free of the interpreter.

/// Restarts a camera with its default settings and waits until the host has it back, for about thirty seconds at the
/// most, while the application keeps working. Returns the camera's new handle, or null when the camera was unknown or
/// did not come back. The old handle is invalid afterwards.
void* fx_script_restartCamera(void* camera);

/// Waits that many milliseconds while the application keeps working. Replaceable for tests.
extern void (*fx_script_waitForHost)(int milliseconds);
