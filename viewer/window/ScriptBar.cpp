#include "ScriptBar.h"

#include "process/ClockTime.h"

#include <QtGui/QAction>
#include <QtGui/QPainter>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

namespace {

/// A filled square: red while there is something to stop.
QIcon stopIcon()
{
    const auto square = [](const QColor& color) {
        QPixmap pixmap(32, 32);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawRoundedRect(5, 5, 22, 22, 3, 3);
        return pixmap;
    };
    QIcon icon;
    icon.addPixmap(square(QColor(0xd0, 0x20, 0x20)), QIcon::Normal);
    icon.addPixmap(square(QColor(0x90, 0x90, 0x90)), QIcon::Disabled);
    return icon;
}

QString stateText(ScriptState state, double seconds)
{
    switch (state) {
    case ScriptState::Idle:
        return {};
    case ScriptState::Running:
        return ScriptBar::tr("running, %1").arg(clockTime(seconds));
    case ScriptState::StopRequested:
        return ScriptBar::tr("stop requested, %1").arg(clockTime(seconds));
    case ScriptState::StopCaught:
        return ScriptBar::tr("the script has caught the stop and goes on, %1").arg(clockTime(seconds));
    case ScriptState::Uninterruptible:
        return ScriptBar::tr("waiting for a call that cannot be interrupted, %1").arg(clockTime(seconds));
    case ScriptState::Stopped:
        return ScriptBar::tr("stopped");
    case ScriptState::Failed:
        return ScriptBar::tr("failed");
    case ScriptState::Finished:
        return ScriptBar::tr("finished in %1 s").arg(seconds, 0, 'f', 1);
    }
    return {};
}

} // namespace

ScriptBar::ScriptBar(QAction* stop, QWidget* parent)
    : QToolBar(tr("Script"), parent)
    , m_text(new QLabel)
    , m_warning(new QFrame)
    , m_warningText(new QLabel)
{
    setObjectName(QStringLiteral("scriptBar"));
    setMovable(false);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    stop->setIcon(stopIcon());
    addAction(stop);
    m_text->setObjectName(QStringLiteral("scriptState"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setContentsMargins(8, 0, 8, 0);
    addWidget(m_text);

    m_warning->setObjectName(QStringLiteral("stopWarning"));
    m_warning->setAutoFillBackground(true);
    QPalette colors = m_warning->palette();
    colors.setColor(QPalette::Window, QColor(0xff, 0xe9, 0xa8));
    colors.setColor(QPalette::WindowText, Qt::black);
    m_warning->setPalette(colors);
    auto* layout = new QHBoxLayout(m_warning);
    layout->setContentsMargins(8, 4, 8, 4);
    m_warningText->setTextFormat(Qt::PlainText);
    m_warningText->setWordWrap(true);
    layout->addWidget(m_warningText, 1);
    auto* forGood = new QPushButton(tr("Stop for good"));
    forGood->setObjectName(QStringLiteral("stopForGood"));
    layout->addWidget(forGood);
    connect(forGood, &QPushButton::clicked, this, &ScriptBar::stopForGoodRequested);
    m_warning->hide();
}

void ScriptBar::display(ScriptState state, const QString& name, double seconds)
{
    const QString text = stateText(state, seconds);
    m_text->setText(text.isEmpty() ? QString() : QStringLiteral("%1 · %2").arg(name, text));
    const bool overdue = state == ScriptState::StopCaught || state == ScriptState::Uninterruptible;
    if (overdue)
        m_warningText->setText(state == ScriptState::StopCaught
                                   ? tr("The script has caught the stop and goes on.")
                                   : tr("The script is waiting for a call that cannot be interrupted."));
    m_warning->setVisible(overdue);
}
