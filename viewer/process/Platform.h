#pragma once

/// Sets what Qt takes from the process's environment. Call it before the application object is made.
///
/// Unless QT_QPA_PLATFORM is set, windows appear on the display, or on Qt's offscreen platform if there is no display.
/// A locale that is not UTF-8 becomes C.UTF-8: Qt and scripts assume UTF-8. A write beyond the limit on file sizes
/// fails and no longer ends the process.
void preparePlatform();

/// Gives numbers, dates and messages of the C library the form that scripts expect, which is that of the C locale.
/// Called after the application object has been constructed, which sets another one.
void resetLocale();

/// Whether windows were to appear on a display and there is none. Call it after the application object was made.
bool isDisplayMissing();
