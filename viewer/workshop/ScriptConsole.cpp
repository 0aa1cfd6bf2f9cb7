#include "ScriptConsole.h"

#include <QtGui/QFontDatabase>
#include <QtGui/QTextCharFormat>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QScrollBar>

namespace {
constexpr int maxLines = 10000;
}

ScriptConsole::ScriptConsole(QWidget* parent)
    : QDockWidget(tr("Script Output"), parent)
    , m_text(new QPlainTextEdit)
{
    setObjectName(QStringLiteral("scriptConsole"));
    m_text->setReadOnly(true);
    m_text->setMaximumBlockCount(maxLines);
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setWidget(m_text);
    hide();
}

void ScriptConsole::appendOutput(const QString& text)
{
    append(text, palette().color(QPalette::Text));
}

void ScriptConsole::appendError(const QString& text)
{
    append(text, Qt::red);
}

void ScriptConsole::append(const QString& text, const QColor& color)
{
    QTextCharFormat format;
    format.setForeground(color);
    QTextCursor end(m_text->document());
    end.movePosition(QTextCursor::End);
    end.insertText(text, format);
    m_text->verticalScrollBar()->setValue(m_text->verticalScrollBar()->maximum());
    show();
}
