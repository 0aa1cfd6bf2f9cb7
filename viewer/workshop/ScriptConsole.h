#pragma once

#include "LogCollector.h"
#include "OutputCollector.h"

#include <QtCore/qlogging.h>
#include <QtWidgets/QDockWidget>

#include <atomic>

class OutputPane;
class QTabWidget;

/// Shows the output and the errors of scripts, and beside them the program's log. Appears when there is something to
/// show.
class ScriptConsole : public QDockWidget
{
    Q_OBJECT
public:
    explicit ScriptConsole(QWidget* parent);
    ~ScriptConsole() override;

    /// Shows a text soon, together with others. May be called on any thread.
    void addOutput(const QString& text);

    /// Shows the output so far, then the errors.
    void appendErrors(const QString& text);

Q_SIGNALS:
    /// The user has clicked on a place in a script, which the text names by file and line.
    void placeChosen(const QString& file, int line);

private:
    void addRecord(QtMsgType type, const QString& text);
    void showLogGrown();
    void markUnseen();

    OutputCollector m_outputCollector;
    LogCollector m_logCollector;
    QTabWidget* m_tabs;
    OutputPane* m_output;
    OutputPane* m_log;
    std::atomic<qint64> m_unseen = 0; ///< number of records that came while the log was out of sight
};
