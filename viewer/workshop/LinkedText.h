#pragma once

#include <QtWidgets/QPlainTextEdit>

/// A text to read, in which the places in scripts that it names are links.
class LinkedText : public QPlainTextEdit
{
    Q_OBJECT
public:
    LinkedText();

    /// Adds text at the end.
    void addText(const QString& text, const QColor& color);

Q_SIGNALS:
    /// The user has clicked on a place. The file is as the text has it; the line is counted from 1.
    void placeChosen(const QString& file, int line);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QPoint m_pressed;
};
