#pragma once

struct ViewOptions;

/// Opens the desktop viewer as `vantrel view` does, with the application object in place. Returns the exit status when
/// the user has closed it.
int openViewer(const ViewOptions& options);
