#pragma once

#include "ScriptJob.h"

/// The viewer's own Python modules, in the folder python/: how the viewer calls them. The texts are Python source.
namespace PythonSide {

/// What must run before the first script: makes the modules known to the interpreter. environment is the absolute path
/// of the virtual environment whose packages scripts use; empty: none.
QString preparation(const QString& environment);

/// Text that runs the job's file as Python runs a file. Sets outcome, which must live until then, to a ScriptOutcome.
/// If stays, a SystemExit ends the script alone.
QString callFor(const ScriptJob& job, bool stays, int& outcome);

/// Text that ends a process that a script has forked, with an exit status.
QString endOfChild(int status);

} // namespace PythonSide
