#pragma once

#include <QtCore/QString>

#include <atomic>
#include <thread>

/// Lets the viewer work while a script executes Python code on the GUI thread, and stops scripts there.
///
/// While such a script runs, a thread sends the script's thread a signal several times a second. The interpreter
/// handles the signal at the next opportunity between two instructions, or when the signal interrupts a system call:
/// it calls a function of this object, which lets the viewer process its events and raises KeyboardInterrupt if the
/// script is to stop. Interrupted system calls continue where they were. The signal is SIGURG, which programs ignore
/// by default.
///
/// One object per process. Constructed on the GUI thread before the first run, destroyed there after the last one.
class ScriptPulse
{
public:
    /// With processesEvents the viewer works while a script runs on the GUI thread. Otherwise the signal is sent only
    /// by send().
    explicit ScriptPulse(bool processesEvents);
    ~ScriptPulse();

    /// The object of this process, or null.
    static ScriptPulse* instance();

    /// The part of PythonSide::preparation() that gives the interpreter the handler of the signal; empty if the handler
    /// is in place.
    QString preparation() const;

    /// Called on the script's thread after preparation() has run without an error.
    void prepared();

    /// Called on the script's thread.
    void scriptStarted();
    void scriptEnded();

    /// Makes the interpreter look for an order at once. Returns false if the handler is not in place, for example
    /// because the script uses the signal itself. Any thread.
    static bool send();

    /// True while an event loop runs inside a script on the GUI thread: no Python code of the script may come for long.
    /// GUI thread.
    static bool isInEventLoop();

private:
    void beat();

    bool m_processesEvents;
    std::atomic<bool> m_ends = false;
    std::thread m_thread;
    Q_DISABLE_COPY_MOVE(ScriptPulse)
};
