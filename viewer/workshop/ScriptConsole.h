#pragma once

#include "OutputCollector.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QDockWidget>

class QLabel;
class QPlainTextEdit;

/// Shows the output and the errors of scripts. Appears when there is something to show.
class ScriptConsole : public QDockWidget
{
    Q_OBJECT
public:
    explicit ScriptConsole(QWidget* parent);

    /// Shows a text soon, together with others. May be called on any thread.
    void addOutput(const QString& text);

    /// Shows the output so far, then the errors.
    void appendErrors(const QString& text);

    /// The most lines that are kept.
    static constexpr int mostLines = 10000;

private:
    void showCollected();
    void append(const QString& text, const QColor& color);
    void noteDropped(qint64 lines);

    OutputCollector m_collector;
    QTimer m_timer;
    int m_pause; ///< milliseconds between two texts
    int m_column = 0;
    qint64 m_dropped = 0;
    QLabel* m_droppedText;
    QPlainTextEdit* m_text;
};
