#include "NotificationArea.h"

#include <QtCore/QEvent>
#include <QtWidgets/QStyle>

#include <algorithm>

namespace {

constexpr int distance = 12; // pixels from the edges
constexpr int maxWidth = 420;
constexpr qsizetype maxLength = 400; // characters: nobody can read more in the time

/// The text, cut to a length that fits the corner.
QString shortened(const QString& text)
{
    return text.size() <= maxLength ? text : text.left(maxLength) + QChar(u'\u2026');
}

} // namespace

NotificationArea::NotificationArea(QWidget* parent)
    : QLabel(parent)
{
    setObjectName(QStringLiteral("notification"));
    setTextFormat(Qt::PlainText); // texts come from scripts and may look like markup
    setWordWrap(true);
    setMargin(10);
    setFrameStyle(QFrame::Box | QFrame::Plain); // a line that shows on every background
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setToolTip(tr("Click to dismiss"));
    hide();
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &NotificationArea::showNext);
    parent->installEventFilter(this);
}

void NotificationArea::add(const QString& text)
{
    m_waiting.append(text);
    if (!m_timer.isActive())
        showNext();
    else
        m_timer.start(std::min(m_timer.remainingTime(), shortTime));
}

void NotificationArea::showNext()
{
    if (m_waiting.isEmpty()) {
        m_timer.stop();
        hide();
        Q_EMIT notificationShown(QString());
        return;
    }
    const QString text = m_waiting.takeFirst();
    setText(shortened(text));
    place();
    show();
    raise();
    m_timer.start(m_waiting.isEmpty() ? usualTime : shortTime);
    Q_EMIT notificationShown(text);
}

bool NotificationArea::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QLabel::eventFilter(object, event);
}

void NotificationArea::mousePressEvent(QMouseEvent* /*event*/)
{
    showNext();
}

void NotificationArea::place()
{
    const QSize room = parentWidget()->size();
    const int width = std::min(maxWidth, room.width() - 2 * distance);
    setFixedWidth(std::max(width, 1));
    const int height = std::min(heightForWidth(width), room.height() - m_bottomMargin - 2 * distance);
    resize(width, std::max(height, 1));
    move(room.width() - width - distance, room.height() - m_bottomMargin - this->height() - distance);
}
