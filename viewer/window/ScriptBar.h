#pragma once

#include <QtWidgets/QToolBar>

class QFrame;
class QLabel;

/// What a script does.
enum class ScriptState {
    Idle, ///< no script has run yet
    Running,
    StopRequested,
    StopCaught,      ///< the script has seen the stop and continues
    Uninterruptible, ///< the script has not seen the stop
    Stopped,
    Failed,
    Finished
};

/// The tool bar with the Stop button, the script's name, the time and the state; and a warning, a widget of its own,
/// about a script that does not end when it is stopped.
class ScriptBar : public QToolBar
{
    Q_OBJECT
public:
    /// stop is the action of the button.
    ScriptBar(QAction* stop, QWidget* parent);

    /// The warning. Hidden unless a stop is overdue; belongs into the layout of the window, which owns it.
    QFrame* warning() const { return m_warning; }

    /// seconds is how long the script has run.
    void display(ScriptState state, const QString& name, double seconds);

Q_SIGNALS:
    void stopForGoodRequested();

private:
    QLabel* m_text;
    QFrame* m_warning;
    QLabel* m_warningText;
};
