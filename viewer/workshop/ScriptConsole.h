#pragma once

#include <QtWidgets/QDockWidget>

class QPlainTextEdit;

/// Shows what scripts print and report as errors. Appears with the first text.
class ScriptConsole : public QDockWidget
{
    Q_OBJECT
public:
    explicit ScriptConsole(QWidget* parent);

    void appendOutput(const QString& text);
    void appendError(const QString& text);

private:
    void append(const QString& text, const QColor& color);

    QPlainTextEdit* m_text;
};
