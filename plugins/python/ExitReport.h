#pragma once

#include <string>

/// Saves the error text of a run that ends the process.
///
/// A script that raises SystemExit ends the process from inside the interpreter. runScript() then never returns, and
/// the text collected for its result, such as a message given to sys.exit, would be lost. While an object of this class
/// exists, that text is written to the process's standard error stream when the process exits.
///
/// A process that the script has forked writes what it has added itself.
///
/// The interpreter is finalised before exit() is called. The text is therefore written before the host's atexit()
/// functions run, even if one of them ends the process.
class ExitReport
{
public:
    /// Call it each time after the interpreter has started.
    static void writeWhenInterpreterEnds();

    /// The caller owns errors, which must outlive this object.
    explicit ExitReport(const std::string& errors);
    ~ExitReport();

    ExitReport(const ExitReport&) = delete;
    ExitReport& operator=(const ExitReport&) = delete;
};
