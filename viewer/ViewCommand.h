#pragma once

struct ViewOptions;

/// Carries out `vantrel view`. Needs the application object. Returns the exit status of the process when the user has
/// closed the viewer.
int openViewer(const ViewOptions& options);
