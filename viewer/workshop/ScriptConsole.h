#pragma once

#include <QtWidgets/QDockWidget>

class QPlainTextEdit;

/// Shows the output and the errors of scripts. Appears when a text is added.
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
