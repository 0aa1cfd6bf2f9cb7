#pragma once

#include <string>

/// Saves the error text of a run that ends the process.
///
/// A script that raises SystemExit ends the process from inside the interpreter: runScript() never returns, and the
/// text collected for its result (a message given to sys.exit, for one) would be lost. While an object of this class
/// lives, such a text is written to the process's standard error stream when the process exits.
///
/// The interpreter ends before exit() is called, so the text comes before all that the host has registered with exit(),
/// perhaps to leave the process by itself.
class ExitReport
{
public:
    /// Called each time the interpreter has been started.
    static void writeWhenInterpreterEnds();

    /// errors stays the caller's and outlives this.
    explicit ExitReport(const std::string& errors);
    ~ExitReport();

    ExitReport(const ExitReport&) = delete;
    ExitReport& operator=(const ExitReport&) = delete;
};
