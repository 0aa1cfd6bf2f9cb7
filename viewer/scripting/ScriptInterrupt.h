#pragma once

#include <QtCore/QObject>

class QSocketNotifier;

/// Lets Ctrl-C, or the user, stop a running script.
///
/// The interpreter turns the interrupt signal into KeyboardInterrupt as soon as it executes script code again. This
/// object sees the signal first and tells whoever waits on the script's behalf, so that it does get there.
///
/// One object per process, on the GUI thread; scriptStarted() and scriptEnded() are called on the thread that runs
/// scripts.
class ScriptInterrupt : public QObject
{
    Q_OBJECT
public:
    ScriptInterrupt();
    ~ScriptInterrupt() override;

    static ScriptInterrupt* instance();

    /// Puts itself before the interpreter's handler, which must be in place. It stays there between scripts.
    void scriptStarted();
    void scriptEnded();

    /// Stops the running script as Ctrl-C does; nothing when none runs.
    void interruptScript();

    /// Forgets a signal that has not been reported yet: it came while script code ran and has been dealt with there.
    void forgetPending();

Q_SIGNALS:
    /// The running script is to stop: waits end, dialogs are dismissed.
    void interrupted();

    /// The signal came while no script ran.
    void interruptedWhileIdle();

private:
    void report();

    QSocketNotifier* m_notifier = nullptr;
};
