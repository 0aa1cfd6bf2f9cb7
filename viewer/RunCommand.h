#pragma once

struct RunOptions;

/// Carries out `vantrel run`. Needs the application object. Returns the exit status of the process.
int runScripts(const RunOptions& options);
