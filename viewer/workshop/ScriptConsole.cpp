#include "ScriptConsole.h"

#include "ErrorColor.h"
#include "LinkedText.h"
#include "OutputPane.h"
#include "process/LogRecords.h"

#include <QtCore/QLocale>
#include <QtGui/QSyntaxHighlighter>
#include <QtWidgets/QStyle>
#include <QtWidgets/QTabWidget>

namespace {

/// Emphasises the word for the severity.
class SeverityHighlighter : public QSyntaxHighlighter
{
public:
    explicit SeverityHighlighter(QPlainTextEdit& log)
        : QSyntaxHighlighter(log.document())
    {
        m_critical.setFontWeight(QFont::Bold);
        m_critical.setForeground(errorColor(log.palette()));
    }

protected:
    void highlightBlock(const QString& line) override
    {
        const QLatin1String word(LogCollector::criticalWord);
        if (QStringView(line).mid(LogCollector::severityColumn).startsWith(word))
            setFormat(LogCollector::severityColumn, int(word.size()), m_critical);
    }

private:
    QTextCharFormat m_critical;
};

} // namespace

ScriptConsole::ScriptConsole(QWidget* parent)
    : QDockWidget(tr("Output and Log"), parent)
    , m_tabs(new QTabWidget)
    , m_output(new OutputPane([this] { return m_outputCollector.take(); }))
    , m_log(new OutputPane([this] { return m_logCollector.take(); }))
{
    setObjectName(QStringLiteral("scriptConsole"));
    m_output->text()->setObjectName(QStringLiteral("scriptOutput"));
    m_log->text()->setObjectName(QStringLiteral("log"));
    new SeverityHighlighter(*m_log->text());
    m_tabs->setDocumentMode(true);
    m_tabs->addTab(m_output, tr("Output"));
    m_tabs->addTab(m_log, tr("Log"));
    setWidget(m_tabs);
    connect(m_output->text(), &LinkedText::placeChosen, this, &ScriptConsole::placeChosen);
    connect(m_log->text(), &LinkedText::placeChosen, this, &ScriptConsole::placeChosen);
    connect(m_output, &OutputPane::grown, this, &QWidget::show);
    connect(m_log, &OutputPane::grown, this, &ScriptConsole::showLogGrown);
    connect(m_log, &OutputPane::shown, this, &ScriptConsole::markUnseen);
    LogRecords::setListener([this](QtMsgType type, const QString& text) { addRecord(type, text); });
    hide();
}

ScriptConsole::~ScriptConsole()
{
    LogRecords::setListener({});
}

void ScriptConsole::addOutput(const QString& text)
{
    if (!text.isEmpty() && m_outputCollector.add(text))
        m_output->lookSoon();
}

void ScriptConsole::appendErrors(const QString& text)
{
    m_output->addError(text);
}

void ScriptConsole::addRecord(QtMsgType type, const QString& text)
{
    ++m_unseen;
    if (m_logCollector.add(type, text))
        m_log->lookSoon();
}

void ScriptConsole::showLogGrown()
{
    if (isHidden() && m_output->isEmpty())
        m_tabs->setCurrentWidget(m_log);
    show();
    markUnseen();
}

void ScriptConsole::markUnseen()
{
    if (m_log->isVisible())
        m_unseen = 0;
    const qint64 unseen = m_unseen;
    const int tab = m_tabs->indexOf(m_log);
    m_tabs->setTabText(tab, unseen ? tr("Log (%1 new)").arg(QLocale().toString(unseen)) : tr("Log"));
    m_tabs->setTabIcon(tab, unseen ? style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this) : QIcon());
}
