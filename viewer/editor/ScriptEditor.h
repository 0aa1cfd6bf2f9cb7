#pragma once

#include "EditorLibrary.h"

#include <utility>

class QsciLexerPython;

/// Edits the text of one script.
class ScriptEditor : public QsciScintilla
{
    Q_OBJECT
public:
    explicit ScriptEditor(QWidget* parent = nullptr);

    /// Sets the whole text. The user cannot undo it.
    void begin(const QString& text);

    /// Sets the whole text as one step that the user can undo.
    void replaceAll(const QString& text);

    /// The selected text, as whole lines; the current line if nothing is selected.
    QString selectedLines() const;

    /// Turns the selected lines into comments, or back if all of them are comments.
    void toggleComment();

    /// Moves the cursor to a line, counted from 1, and shows it. With a sign, until the text changes.
    void goToLine(int line, bool withSign = false);

    /// Marks a line, counted from 1, with the error that a run ended with, until the text changes.
    void showError(int line, const QString& message);

    /// Underlines a line, counted from 1, from a column on, counted from 1, as invalid. A line below 1 underlines
    /// nothing.
    void underline(int line, int column);

    /// Removes what showError() and goToLine() have marked.
    void removeMarks();

    /// The size of the text, in steps from the usual one.
    int zoom() const;

Q_SIGNALS:
    void zoomChanged(int steps);

protected:
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    /// The first and the last of the selected lines, counted from 0.
    std::pair<int, int> lineRange() const;

    /// Indents a new line as the text before it asks for.
    void indentNewLine(int character);

    void applyColors();
    void updateMarginWidth();

    QsciLexerPython* m_lexer;
    bool m_hasMarks = false;
};
