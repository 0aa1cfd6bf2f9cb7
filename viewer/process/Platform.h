#pragma once

/// Settles what Qt takes from the process's environment. Called before the application object is made.
///
/// Windows go where there is a display, and to Qt's offscreen platform where there is none. A locale that is not UTF-8
/// becomes one that is: Qt and scripts assume it.
void preparePlatform();
