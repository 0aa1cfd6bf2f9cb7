#pragma once

#include <QtCore/QObject>

class QSocketNotifier;

/// Lets Ctrl-C, or the Stop Script menu item, stop a running script.
///
/// After SIGINT the interpreter raises KeyboardInterrupt as soon as it executes script code again. This object's signal
/// handler calls the interpreter's handler; then the object emits interrupted(), so that waits and dialogs end and
/// script code can execute again.
///
/// One object per process, on the GUI thread. scriptStarted() and scriptEnded() are called on the thread that runs
/// scripts.
class ScriptInterrupt : public QObject
{
    Q_OBJECT
public:
    ScriptInterrupt();
    ~ScriptInterrupt() override;

    /// The object of this process, or null.
    static ScriptInterrupt* instance();

    /// Installs the signal handler in front of the interpreter's, which must be installed already; installs nothing if
    /// there is none. The handler stays between scripts.
    void scriptStarted();
    void scriptEnded();

    /// Stops the running script as Ctrl-C does. Does nothing if no script runs.
    void interruptScript();

    /// Drops a signal that has not been reported yet. Called before a wait: such a signal came while script code ran,
    /// and the interpreter handles it there.
    void forgetPending();

Q_SIGNALS:
    /// The running script must stop: waits must end and dialogs must close.
    void interrupted();

    /// A signal came while no script ran.
    void interruptedWhileIdle();

private:
    void report();

    QSocketNotifier* m_notifier = nullptr;
};
