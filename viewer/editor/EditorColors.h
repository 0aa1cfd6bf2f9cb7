#pragma once

class QPalette;
class QsciLexerPython;
class QsciScintilla;

/// Gives an editor of Python text the colours that fit a palette, light or dark.
void setEditorColors(QsciScintilla& editor, QsciLexerPython& lexer, const QPalette& palette);
