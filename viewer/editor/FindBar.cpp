#include "FindBar.h"

#include "ScriptEditor.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

#include <initializer_list>
#include <utility>

namespace {

QToolButton* addButton(QHBoxLayout& row, const QString& text)
{
    auto* button = new QToolButton;
    button->setText(text);
    row.addWidget(button);
    return button;
}

FindBar::Place beginOfSelection(const ScriptEditor& editor)
{
    FindBar::Place begin;
    FindBar::Place end;
    if (editor.hasSelectedText())
        editor.getSelection(&begin.line, &begin.column, &end.line, &end.column);
    else
        editor.getCursorPosition(&begin.line, &begin.column);
    return begin;
}

FindBar::Place endOfSelection(const ScriptEditor& editor)
{
    FindBar::Place begin;
    FindBar::Place end;
    if (!editor.hasSelectedText())
        return beginOfSelection(editor);
    editor.getSelection(&begin.line, &begin.column, &end.line, &end.column);
    return end;
}

} // namespace

FindBar::FindBar(Current current)
    : m_current(std::move(current))
    , m_text(new QLineEdit)
    , m_replacement(new QLineEdit)
    , m_replaceRow(new QWidget)
    , m_case(new QCheckBox(tr("&Case")))
    , m_words(new QCheckBox(tr("&Words")))
    , m_expression(new QCheckBox(tr("Re&gular expression")))
    , m_note(new QLabel)
{
    m_text->setObjectName(QStringLiteral("findText"));
    m_text->setPlaceholderText(tr("Find"));
    m_text->setClearButtonEnabled(true);
    m_replacement->setObjectName(QStringLiteral("replacementText"));
    m_replacement->setPlaceholderText(tr("Replace with"));
    m_note->setObjectName(QStringLiteral("findNote"));
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(4, 2, 4, 2);
    rows->setSpacing(2);
    auto* findRow = new QHBoxLayout;
    findRow->addWidget(m_text, 1);
    QToolButton* previous = addButton(*findRow, tr("Previous"));
    QToolButton* next = addButton(*findRow, tr("Next"));
    for (QCheckBox* box : {m_case, m_words, m_expression}) {
        findRow->addWidget(box);
        connect(box, &QCheckBox::toggled, this, &FindBar::findWhileTyping);
    }
    findRow->addWidget(m_note);
    QToolButton* close = addButton(*findRow, QStringLiteral("\u00d7"));
    close->setAutoRaise(true);
    close->setToolTip(tr("Close"));
    rows->addLayout(findRow);
    auto* replaceRow = new QHBoxLayout(m_replaceRow);
    replaceRow->setContentsMargins(0, 0, 0, 0);
    replaceRow->addWidget(m_replacement, 1);
    QToolButton* one = addButton(*replaceRow, tr("Replace"));
    QToolButton* all = addButton(*replaceRow, tr("Replace All"));
    rows->addWidget(m_replaceRow);
    hide();

    connect(m_text, &QLineEdit::textEdited, this, &FindBar::findWhileTyping);
    connect(m_replacement, &QLineEdit::returnPressed, this, &FindBar::replaceOne);
    connect(previous, &QToolButton::clicked, this, &FindBar::findPrevious);
    connect(next, &QToolButton::clicked, this, &FindBar::findNext);
    connect(one, &QToolButton::clicked, this, &FindBar::replaceOne);
    connect(all, &QToolButton::clicked, this, &FindBar::replaceAll);
    connect(close, &QToolButton::clicked, this, &FindBar::leave);
}

void FindBar::openToFind()
{
    open(false);
}

void FindBar::openToReplace()
{
    open(true);
}

void FindBar::open(bool withReplacement)
{
    ScriptEditor* editor = m_current();
    if (!editor)
        return;
    const QString selected = editor->selectedText();
    if (!selected.isEmpty() && !selected.contains(QLatin1Char('\n')) && !selected.contains(QLatin1Char('\r')))
        m_text->setText(selected);
    m_note->clear();
    m_replaceRow->setVisible(withReplacement);
    show();
    m_text->setFocus();
    m_text->selectAll();
}

void FindBar::find(bool forward)
{
    ScriptEditor* editor = m_current();
    if (!editor || m_text->text().isEmpty()) {
        open(m_replaceRow->isVisibleTo(this));
        return;
    }
    const Place from = forward ? endOfSelection(*editor) : beginOfSelection(*editor);
    findFrom(*editor, from, forward, true);
}

bool FindBar::findFrom(ScriptEditor& editor, Place from, bool forward, bool wraps)
{
    const bool found =
        editor.findFirst(m_text->text(), m_expression->isChecked(), m_case->isChecked(), m_words->isChecked(), wraps,
                         forward, from.line, from.column, true, false, true);
    m_note->setText(found ? QString() : tr("Not found"));
    return found;
}

void FindBar::findWhileTyping()
{
    ScriptEditor* editor = m_current();
    if (!editor || m_text->text().isEmpty()) {
        m_note->clear();
        return;
    }
    findFrom(*editor, beginOfSelection(*editor), true, true);
}

void FindBar::replaceOne()
{
    ScriptEditor* editor = m_current();
    if (!editor || m_text->text().isEmpty())
        return;
    // Only what the search has selected is replaced; a selection of the user's is searched first.
    const Place begin = beginOfSelection(*editor);
    if (!findFrom(*editor, begin, true, true) || beginOfSelection(*editor) != begin)
        return; // shows it first
    editor->replace(m_replacement->text());
    find(true);
}

void FindBar::replaceAll()
{
    ScriptEditor* editor = m_current();
    if (!editor || m_text->text().isEmpty())
        return;
    int count = 0;
    editor->beginUndoAction();
    // Without wrapping, so that a replacement which contains the text is not replaced again.
    bool found = findFrom(*editor, {}, true, false);
    // An expression that finds a place without characters would find it without end.
    while (found && editor->hasSelectedText()) {
        editor->replace(m_replacement->text());
        ++count;
        found = editor->findNext();
    }
    editor->endUndoAction();
    m_note->setText(count == 0 ? tr("Not found") : tr("%1 replaced").arg(count));
}

void FindBar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        leave();
    } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && m_text->hasFocus()) {
        find(!event->modifiers().testFlag(Qt::ShiftModifier));
    } else {
        QWidget::keyPressEvent(event);
    }
}

void FindBar::leave()
{
    hide();
    if (ScriptEditor* editor = m_current())
        editor->setFocus();
}
