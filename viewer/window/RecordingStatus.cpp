#include "RecordingStatus.h"

#include "ViewList.h"
#include "views/ImageView.h"
#include "views/RecordingBar.h"

#include <QtWidgets/QMenu>

#include <algorithm>

RecordingStatus::RecordingStatus(const ViewList& views)
    : m_views(views)
    , m_menu(new QMenu(this))
{
    setObjectName(QStringLiteral("recordingStatus"));
    setIcon(RecordingBar::dot());
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setToolTip(tr("Stop a recording"));
    m_timer.setInterval(RecordingBar::period);
    connect(&m_timer, &QTimer::timeout, this, &RecordingStatus::refresh);
    connect(&views, &ViewList::recordingsChanged, this, &RecordingStatus::refresh);
    // Not the button's own menu: that would wait in an event loop, and a script would wait with it.
    connect(this, &QToolButton::clicked, this, &RecordingStatus::openMenu);
    hide();
}

void RecordingStatus::refresh()
{
    int recordings = 0;
    int frames = 0;
    int dropped = 0;
    double seconds = 0;
    for (const int id : m_views.ids()) {
        const VideoRecorder& recorder = m_views.view(id)->recorder();
        if (!recorder.isRecording())
            continue;
        ++recordings;
        frames += recorder.frameCount();
        dropped += recorder.droppedCount();
        seconds = std::max(seconds, recorder.seconds());
    }
    setVisible(recordings > 0);
    if (recordings == 0) {
        m_timer.stop();
        return;
    }
    const QString counts = RecordingBar::text(seconds, frames, dropped);
    setText(recordings == 1 ? tr("Recording %1").arg(counts) : tr("%1 recordings %2").arg(recordings).arg(counts));
    if (!m_timer.isActive())
        m_timer.start();
}

void RecordingStatus::openMenu()
{
    m_menu->clear();
    int recordings = 0;
    const auto stop = [this](int id) {
        if (ImageView* view = m_views.view(id))
            view->stopVideoRecording();
    };
    for (const int id : m_views.ids()) {
        const ImageView* view = m_views.view(id);
        if (!view->recorder().isRecording())
            continue;
        ++recordings;
        QString title = view->windowTitle();
        title.replace(QLatin1Char('&'), QStringLiteral("&&"));
        m_menu->addAction(tr("Stop Recording of %1").arg(title), this, [stop, id] { stop(id); });
    }
    if (recordings > 1) {
        m_menu->addSeparator();
        m_menu->addAction(tr("Stop All Recordings"), this, [this, stop] {
            for (const int id : m_views.ids())
                stop(id);
        });
    }
    m_menu->popup(mapToGlobal(QPoint(0, -m_menu->sizeHint().height())));
}
