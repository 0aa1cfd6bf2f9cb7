#include "ScriptEditor.h"

#include "EditorColors.h"
#include "EditorMarks.h"
#include "workshop/ErrorColor.h"

#include <QtCore/QEvent>
#include <QtCore/QRegularExpression>
#include <QtGui/QFontDatabase>
#include <QtGui/QWheelEvent>

#include <algorithm>
#include <initializer_list>

namespace {

constexpr int numberMargin = 0;
constexpr int signMargin = 1;
constexpr int foldMargin = 2;
constexpr int indentSpaces = 4;
const QString commentSign = QStringLiteral("# ");

/// The number of blank characters that a line begins with.
int spaceBefore(const QString& line)
{
    const auto first = std::find_if(line.begin(), line.end(), [](QChar c) { return !c.isSpace(); });
    return int(first - line.begin());
}

/// Takes away the keys of commands that the window's own menus use.
void leaveKeysToWindow(QsciScintilla& editor)
{
    for (const int key : {Qt::Key_D, Qt::Key_T, Qt::Key_L, Qt::Key_Slash})
        if (QsciCommand* command = editor.standardCommands()->boundTo(int(Qt::CTRL) | key))
            command->setKey(0);
}

} // namespace

ScriptEditor::ScriptEditor(QWidget* parent)
    : QsciScintilla(parent)
    , m_lexer(new QsciLexerPython(this))
{
    const QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    m_lexer->setDefaultFont(font);
    m_lexer->setFont(font);
    setLexer(m_lexer);
    setUtf8(true);
    setMarginsFont(font);
    setMarginType(numberMargin, NumberMargin);
    setMarginType(signMargin, SymbolMargin);
    setMarginWidth(signMargin, 14);
    setMarginMarkerMask(signMargin, 1 << EditorMarks::errorSign);
    setFolding(PlainFoldStyle, foldMargin);
    setIndentationsUseTabs(false);
    setIndentationWidth(indentSpaces);
    setTabWidth(indentSpaces);
    setBackspaceUnindents(true);
    setTabIndents(true);
    setIndentationGuides(true);
    setBraceMatching(SloppyBraceMatch);
    setCaretLineVisible(true);
    setScrollWidth(1);
    setScrollWidthTracking(true);
    setAnnotationDisplay(AnnotationStandard);
    markerDefine(Background, EditorMarks::errorLine);
    markerDefine(RightTriangle, EditorMarks::errorSign);
    markerDefine(Background, EditorMarks::visitedLine);
    indicatorDefine(SquiggleIndicator, EditorMarks::badSyntax);
    leaveKeysToWindow(*this);
    applyColors();
    updateMarginWidth();
    connect(this, &QsciScintilla::linesChanged, this, &ScriptEditor::updateMarginWidth);
    connect(this, &QsciScintilla::textChanged, this, &ScriptEditor::removeMarks);
    connect(this, &QsciScintilla::SCN_CHARADDED, this, &ScriptEditor::indentNewLine);
}

void ScriptEditor::begin(const QString& text)
{
    setText(text);
    // New lines end as the first line of the text does.
    const qsizetype end = text.indexOf(QRegularExpression(QStringLiteral("[\r\n]")));
    if (end >= 0 && text.at(end) == QLatin1Char('\r'))
        setEolMode(text.mid(end + 1, 1) == QStringLiteral("\n") ? EolWindows : EolMac);
    else
        setEolMode(EolUnix);
    setModified(false);
}

void ScriptEditor::replaceAll(const QString& text)
{
    int line = 0;
    int column = 0;
    getCursorPosition(&line, &column);
    beginUndoAction();
    selectAll();
    replaceSelectedText(text);
    endUndoAction();
    setCursorPosition(std::min(line, lines() - 1), 0);
}

std::pair<int, int> ScriptEditor::lineRange() const
{
    int first = 0;
    int last = 0;
    int column = 0;
    int lastColumn = 0;
    getCursorPosition(&first, &column);
    if (!hasSelectedText())
        return {first, first};
    getSelection(&first, &column, &last, &lastColumn);
    return {first, lastColumn == 0 && last > first ? last - 1 : last};
}

QString ScriptEditor::selectedLines() const
{
    const auto [first, last] = lineRange();
    QString chosen;
    for (int line = first; line <= last; ++line)
        chosen += text(line);
    return chosen;
}

void ScriptEditor::toggleComment()
{
    const bool selected = hasSelectedText();
    const auto [first, last] = lineRange();
    bool allComments = true;
    int least = -1;
    for (int line = first; line <= last; ++line) {
        const QString content = text(line).trimmed();
        if (content.isEmpty())
            continue;
        allComments = allComments && content.startsWith(QLatin1Char('#'));
        const int before = spaceBefore(text(line));
        least = least < 0 ? before : std::min(least, before);
    }
    if (least < 0)
        return;
    beginUndoAction();
    for (int line = first; line <= last; ++line) {
        const QString content = text(line);
        if (content.trimmed().isEmpty())
            continue;
        if (!allComments) {
            insertAt(commentSign, line, least);
            continue;
        }
        const int sign = int(content.indexOf(QLatin1Char('#')));
        const bool hasSpace = content.mid(sign + 1, 1) == QStringLiteral(" ");
        setSelection(line, sign, line, sign + (hasSpace ? 2 : 1));
        removeSelectedText();
    }
    endUndoAction();
    if (selected)
        setSelection(first, 0, last, int(text(last).size()) - (text(last).endsWith(QLatin1Char('\n')) ? 1 : 0));
}

void ScriptEditor::goToLine(int line, bool withSign)
{
    const int index = std::clamp(line - 1, 0, lines() - 1);
    if (withSign) {
        removeMarks();
        markerAdd(index, EditorMarks::visitedLine);
        m_hasMarks = true;
    }
    ensureLineVisible(index);
    setCursorPosition(index, spaceBefore(text(index)));
    // Some lines above it, too.
    const int shown = int(SendScintilla(SCI_LINESONSCREEN));
    const int displayed = int(SendScintilla(SCI_VISIBLEFROMDOCLINE, index));
    const int top = firstVisibleLine();
    if (displayed < top + 2 || displayed > top + shown - 3)
        setFirstVisibleLine(std::max(0, displayed - shown / 3));
}

void ScriptEditor::showError(int line, const QString& message)
{
    if (line < 1 || line > lines())
        return;
    goToLine(line);
    removeMarks();
    markerAdd(line - 1, EditorMarks::errorLine);
    markerAdd(line - 1, EditorMarks::errorSign);
    const QColor red = errorColor(palette());
    const QsciStyle style(-1, QStringLiteral("error"), red, palette().color(QPalette::Base),
                          m_lexer->font(QsciLexerPython::Default));
    annotate(line - 1, QString(spaceBefore(text(line - 1)), QLatin1Char(' ')) + message, style);
    m_hasMarks = true;
}

void ScriptEditor::underline(int line, int column)
{
    clearIndicatorRange(0, 0, lines() - 1, int(text(lines() - 1).size()), EditorMarks::badSyntax);
    if (line < 1 || line > lines())
        return;
    const QString content = text(line - 1);
    int end = int(content.size());
    while (end > 0 && content.at(end - 1).isSpace())
        --end;
    const int begin = std::clamp(column - 1, 0, std::max(0, end - 1));
    fillIndicatorRange(line - 1, begin, line - 1, std::max(end, begin + 1), EditorMarks::badSyntax);
}

void ScriptEditor::removeMarks()
{
    if (!m_hasMarks)
        return;
    m_hasMarks = false;
    for (const int marker : {EditorMarks::errorLine, EditorMarks::errorSign, EditorMarks::visitedLine})
        markerDeleteAll(marker);
    clearAnnotations();
}

int ScriptEditor::zoom() const
{
    return int(SendScintilla(SCI_GETZOOM));
}

void ScriptEditor::changeEvent(QEvent* event)
{
    QsciScintilla::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyColors();
}

void ScriptEditor::wheelEvent(QWheelEvent* event)
{
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        QsciScintilla::wheelEvent(event);
        return;
    }
    if (event->angleDelta().y() > 0)
        zoomIn();
    else if (event->angleDelta().y() < 0)
        zoomOut();
    updateMarginWidth();
    Q_EMIT zoomChanged(zoom());
}

void ScriptEditor::indentNewLine(int character)
{
    int line = 0;
    int column = 0;
    getCursorPosition(&line, &column);
    if (character != (eolMode() == EolMac ? '\r' : '\n') || line == 0)
        return;
    static const QRegularExpression opening(QStringLiteral(":\\s*(#.*)?$"));
    static const QRegularExpression leaving(QStringLiteral("^\\s*(return|pass|break|continue|raise)\\b"));
    const QString before = text(line - 1);
    int spaces = indentation(line - 1);
    if (opening.match(before.trimmed()).hasMatch())
        spaces += indentSpaces;
    else if (leaving.match(before).hasMatch())
        spaces = std::max(0, spaces - indentSpaces);
    if (spaces == 0)
        return;
    setIndentation(line, spaces);
    setCursorPosition(line, spaceBefore(text(line).section(QRegularExpression(QStringLiteral("[\r\n]")), 0, 0)));
}

void ScriptEditor::applyColors()
{
    setEditorColors(*this, *m_lexer, palette());
}

void ScriptEditor::updateMarginWidth()
{
    const int digits = std::max(3, int(QString::number(lines()).size()));
    setMarginWidth(numberMargin, QString(digits + 1, QLatin1Char('9')));
}
