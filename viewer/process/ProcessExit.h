#pragma once

#include <functional>

/// Owns the ways in which the process ends before main() returns. Whatever ends it, what the running script has written
/// to its standard error is shown; and where code can still run, the application completes its files.
///
/// - exit() is called: by the interpreter for an uncaught SystemExit, or by a library. Perhaps not on the GUI thread,
/// and
///   while windows are open, so that static objects would be destroyed under the application. Instead the application
///   completes its files on the GUI thread, and the process ends with the status at once.
/// - SIGTERM and SIGHUP: the same, and then the process ends by the signal. A script on the GUI thread is interrupted
///   for that, and not continued. If it cannot be interrupted, the process ends after some seconds all the same.
/// - A crash (SIGSEGV, SIGABRT and their like): a signal handler writes the text. The process then ends by the signal.
/// - A forked child of a script owns nothing here: it ends by itself, and nothing of its parent is touched.
///
/// One object per process, on the GUI thread. It outlives the scripts.
class ProcessExit
{
public:
    struct Hooks {
        /// Completes the application's files. Called on the GUI thread.
        std::function<void()> complete;

        /// Makes a script on the GUI thread call leaveIfAsked(). Called on any thread, repeatedly.
        std::function<void()> interruptScript;
    };

    explicit ProcessExit(Hooks hooks);
    ~ProcessExit();

    /// Completes the application's files before the object goes. From now on no way out waits for the GUI thread.
    static void complete();

    /// Ends the process if a signal has asked for that. Called on the thread that runs scripts.
    static void leaveIfAsked();

    /// Prepares the calling thread, which runs scripts, for the use of its whole stack: a handler needs one, too.
    static void prepareScriptThread();

    /// Puts the handlers back that a script has replaced. Called after a run.
    static void restoreHandlers();

    /// Whether this is a process that a script has forked, a copy of the viewer without its threads.
    static bool isForkedChild();

private:
    ProcessExit(const ProcessExit&) = delete;
    ProcessExit& operator=(const ProcessExit&) = delete;
};
