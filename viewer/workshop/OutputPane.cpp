#include "OutputPane.h"

#include "ErrorColor.h"
#include "LinkedText.h"

#include <QtCore/QLocale>
#include <QtGui/QFontDatabase>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

/// Text is shown at most 30 times a second. While it takes long, it is shown more rarely: the script must go on.
constexpr int shortestPause = 34;
constexpr int pauseFactor = 10;

/// A longer line is broken: its layout would take too long.
constexpr int longestLine = 4000;

/// The end of a text, with at most that many lines. The other lines are counted.
QString lastLines(const QString& text, int most, qint64& dropped)
{
    qsizetype begin = text.size();
    for (int lines = 0; lines < most && begin > 0; ++lines)
        begin = begin > 1 ? text.lastIndexOf(QLatin1Char('\n'), begin - 2) + 1 : 0;
    dropped += QStringView(text).left(begin).count(QLatin1Char('\n'));
    return text.mid(begin);
}

/// Breaks long lines. column is the length of the last line, before and after.
QString broken(const QString& text, int& column)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c == QLatin1Char('\n')) {
            column = 0;
        } else if (++column > longestLine) {
            result += QLatin1Char('\n');
            column = 1;
        }
        result += c;
    }
    return result;
}

} // namespace

OutputPane::OutputPane(Source source)
    : m_source(std::move(source))
    , m_pause(shortestPause)
    , m_droppedText(new QLabel)
    , m_text(new LinkedText)
{
    m_text->setMaximumBlockCount(mostLines);
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_droppedText->setObjectName(QStringLiteral("droppedLines"));
    m_droppedText->setContentsMargins(6, 2, 6, 2);
    m_droppedText->hide();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_droppedText);
    layout->addWidget(m_text, 1);
    const QScrollBar* scrollBar = m_text->verticalScrollBar();
    connect(scrollBar, &QScrollBar::valueChanged, this, &OutputPane::noteScrolling);
    // Later, because the text changes the range before the position.
    connect(scrollBar, &QScrollBar::rangeChanged, this, &OutputPane::followEnd, Qt::QueuedConnection);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &OutputPane::showCollected);
}

void OutputPane::lookSoon()
{
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!m_timer.isActive())
                m_timer.start(m_pause);
        },
        Qt::QueuedConnection);
}

void OutputPane::addError(const QString& text)
{
    showCollected();
    if (!text.isEmpty())
        append(text, errorColor(palette()));
}

bool OutputPane::isEmpty() const
{
    return m_text->document()->isEmpty();
}

void OutputPane::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Q_EMIT shown();
}

void OutputPane::showCollected()
{
    m_timer.stop();
    QElapsedTimer clock;
    clock.start();
    const OutputCollector::Text collected = m_source();
    if (collected.text.isEmpty())
        return;
    noteDropped(collected.droppedLines);
    append(collected.text, palette().color(QPalette::Text));
    m_pause = int(std::max<qint64>(shortestPause, pauseFactor * clock.elapsed()));
}

void OutputPane::append(const QString& text, const QColor& color)
{
    m_isAppending = true;
    qint64 dropped = 0;
    const QString shown = lastLines(broken(text, m_column), mostLines, dropped);
    const qint64 lines = m_text->blockCount() + QStringView(shown).count(QLatin1Char('\n'));
    m_text->addText(shown, color);
    noteDropped(dropped + std::max<qint64>(0, lines - m_text->blockCount()));
    m_isAppending = false;
    followEnd();
    Q_EMIT grown();
}

void OutputPane::noteScrolling()
{
    const QScrollBar* scrollBar = m_text->verticalScrollBar();
    if (!m_isAppending)
        m_followsEnd = scrollBar->value() == scrollBar->maximum();
}

void OutputPane::followEnd()
{
    if (m_followsEnd)
        m_text->verticalScrollBar()->setValue(m_text->verticalScrollBar()->maximum());
}

void OutputPane::noteDropped(qint64 lines)
{
    m_dropped += lines;
    if (m_dropped == 0)
        return;
    m_droppedText->setText(tr("%1 earlier lines were dropped.").arg(QLocale().toString(m_dropped)));
    m_droppedText->show();
}
