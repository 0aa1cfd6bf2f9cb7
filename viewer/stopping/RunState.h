#pragma once

#include "window/ScriptBar.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>

class ScriptInterrupt;

/// What the running script does, as far as the viewer knows: for the display. GUI thread only.
class RunState : public QObject
{
    Q_OBJECT
public:
    explicit RunState(ScriptInterrupt& interrupt);

    /// A run has begun; name is shown for the script.
    void begin(const QString& name);

    /// The run has ended: Stopped, Failed or Finished.
    void end(ScriptState how);

    /// Stops the running script, if any.
    void stop();

    /// Stops the script that the user sees running. Does nothing if that one has just ended and the next one of the
    /// queue runs: nobody can have meant that.
    void stopSeen();

    /// Stops a script that swallows KeyboardInterrupt, too.
    void stopForGood();

    ScriptState state() const { return m_state; }
    bool isRunning() const { return m_clock.isValid(); }

    /// How long after a stop the script's end is overdue, in milliseconds.
    static constexpr int patience = 3000;

Q_SIGNALS:
    /// Emitted when the state changes, and now and then while a script runs. seconds is how long it has run.
    void changed(ScriptState state, const QString& name, double seconds);

private:
    void update();
    void show(ScriptState state);

    ScriptInterrupt& m_interrupt;
    QString m_name;
    ScriptState m_state = ScriptState::Idle;
    QElapsedTimer m_clock;     ///< valid while a script runs
    QElapsedTimer m_sinceStop; ///< valid once a stop was asked for
    bool m_hasJustEnded = false;
    bool m_followsOther = false; ///< the running script has begun when the one before it ended
    QTimer m_timer;
};
