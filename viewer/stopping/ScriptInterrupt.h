#pragma once

#include <QtCore/QObject>

#include <cstdint>

class QSocketNotifier;

/// Stops a running script: for the user's Stop, and for Ctrl-C in the terminal.
///
/// Each run has a number. A stop belongs to the run for which it was asked: when that run has ended, the stop does
/// nothing. A stop raises KeyboardInterrupt in the script, through ScriptPulse where that reaches the script, otherwise
/// as Ctrl-C does. Ctrl-C is the signal SIGINT, which the interpreter handles.
///
/// One object per process, on the GUI thread. runBegins(), scriptStarted() and scriptEnded() are called on the thread
/// that runs scripts.
class ScriptInterrupt : public QObject
{
    Q_OBJECT
public:
    /// Identifies a run; 0 stands for none.
    using Run = std::uint64_t;

    ScriptInterrupt();
    ~ScriptInterrupt() override;

    /// The object of this process, or null.
    static ScriptInterrupt* instance();

    /// A run gets its number. A stop from now on is raised as soon as the script has started.
    void runBegins();

    /// Installs the signal handler in front of the interpreter's, which must be installed already; installs nothing if
    /// there is none. The handler stays between scripts.
    void scriptStarted();

    /// The run has ended. Interrupts that the script did not see are dropped, so that no later script sees them.
    void scriptEnded();

    /// The run in progress. Any thread.
    static Run currentRun();

    /// Stops the run in progress, if any.
    void interruptScript() { stop(currentRun()); }

    /// Stops the run that begins next, or takes that back. For the time between the start of a run and its beginning on
    /// the thread that runs scripts.
    void stopNextRun(bool stop);

    /// Stops a run. Does nothing if that run is not in progress.
    void stop(Run run);

    /// Stops a run that swallows KeyboardInterrupt: raises it at every line until no line is left.
    void stopForGood(Run run);

    /// True from a stop of the run in progress until the script sees it. Any thread.
    static bool isStopPending();

    /// True if the run in progress is to be stopped for good. Any thread.
    static bool isForGood();

    /// True once the run in progress, or the latest one, has seen an interrupt. Any thread.
    static bool wasInterrupted();

    enum class Order { Continue, Interrupt, InterruptEveryLine };

    /// What the script has to do; called where it executes Python code, on its thread. Each stop is told once.
    static Order takeOrder();

    /// Drops a Ctrl-C that has not been reported yet. Called before a wait: such a signal came while script code ran,
    /// and the interpreter handles it there.
    void forgetPending();

Q_SIGNALS:
    /// The running script must stop: waits must end and dialogs must close.
    void interrupted();

    /// Ctrl-C came while no script ran.
    void interruptedWhileIdle();

private:
    void report();

    QSocketNotifier* m_notifier = nullptr;
};
