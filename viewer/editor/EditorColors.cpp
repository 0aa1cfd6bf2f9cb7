#include "EditorColors.h"

#include "EditorLibrary.h"
#include "EditorMarks.h"
#include "workshop/ErrorColor.h"

#include <QtGui/QPalette>

#include <initializer_list>

namespace {

/// The colour of a kind of text on a light and on a dark background.
struct Ink {
    std::initializer_list<int> styles;
    QRgb onLight;
    QRgb onDark;
};

const Ink inks[] = {
    {{QsciLexerPython::Keyword}, 0x0033b3, 0x7aa2f7},
    {{QsciLexerPython::HighlightedIdentifier}, 0x00627a, 0x4fc1c9},
    {{QsciLexerPython::ClassName, QsciLexerPython::FunctionMethodName}, 0x00627a, 0x4fc1c9},
    {{QsciLexerPython::Decorator}, 0x7a5c00, 0xd7ba7d},
    {{QsciLexerPython::Number}, 0x1750eb, 0xb5cea8},
    {{QsciLexerPython::Comment, QsciLexerPython::CommentBlock}, 0x6a737d, 0x8b949e},
    {{QsciLexerPython::SingleQuotedString, QsciLexerPython::DoubleQuotedString,
      QsciLexerPython::TripleSingleQuotedString, QsciLexerPython::TripleDoubleQuotedString,
      QsciLexerPython::SingleQuotedFString, QsciLexerPython::DoubleQuotedFString,
      QsciLexerPython::TripleSingleQuotedFString, QsciLexerPython::TripleDoubleQuotedFString},
     0x067d17,
     0x98c379},
    {{QsciLexerPython::UnclosedString}, 0xb00020, 0xff8080},
};

QColor mixed(const QColor& a, const QColor& b, double share)
{
    return QColor::fromRgbF(float(a.redF() * (1 - share) + b.redF() * share),
                            float(a.greenF() * (1 - share) + b.greenF() * share),
                            float(a.blueF() * (1 - share) + b.blueF() * share));
}

} // namespace

void setEditorColors(QsciScintilla& editor, QsciLexerPython& lexer, const QPalette& palette)
{
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    const bool isDark = base.lightness() < 128;
    const QColor red = errorColor(palette);
    lexer.setDefaultPaper(base);
    lexer.setDefaultColor(text);
    lexer.setPaper(base);
    lexer.setColor(text);
    for (const Ink& ink : inks) {
        for (const int style : ink.styles)
            lexer.setColor(QColor(isDark ? ink.onDark : ink.onLight), style);
    }
    editor.setCaretForegroundColor(text);
    editor.setCaretLineBackgroundColor(mixed(base, text, 0.06));
    editor.setSelectionBackgroundColor(palette.color(QPalette::Highlight));
    editor.setSelectionForegroundColor(palette.color(QPalette::HighlightedText));
    editor.setMarginsBackgroundColor(mixed(base, text, 0.04));
    editor.setMarginsForegroundColor(mixed(base, text, 0.5));
    editor.setFoldMarginColors(mixed(base, text, 0.04), mixed(base, text, 0.04));
    editor.setMatchedBraceBackgroundColor(mixed(base, palette.color(QPalette::Highlight), 0.35));
    editor.setMatchedBraceForegroundColor(text);
    editor.setUnmatchedBraceBackgroundColor(base);
    editor.setUnmatchedBraceForegroundColor(red);
    editor.setIndentationGuidesForegroundColor(mixed(base, text, 0.2));
    editor.setIndentationGuidesBackgroundColor(base);
    editor.setMarkerBackgroundColor(mixed(base, red, 0.25), EditorMarks::errorLine);
    editor.setMarkerBackgroundColor(red, EditorMarks::errorSign);
    editor.setMarkerForegroundColor(red, EditorMarks::errorSign);
    editor.setMarkerBackgroundColor(mixed(base, palette.color(QPalette::Highlight), 0.3), EditorMarks::visitedLine);
    editor.setIndicatorForegroundColor(red, EditorMarks::badSyntax);
    for (const int marker : EditorMarks::foldMarkers) {
        editor.setMarkerForegroundColor(base, marker);
        editor.setMarkerBackgroundColor(mixed(base, text, 0.5), marker);
    }
}
