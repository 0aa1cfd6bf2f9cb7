#pragma once

struct RunOptions;

/// Runs scripts as `vantrel run` does, with the application object in place. Returns the exit status.
int runScripts(const RunOptions& options);
