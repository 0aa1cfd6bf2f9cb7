#include "RecordingBar.h"

#include "VideoRecorder.h"
#include "process/ClockTime.h"

#include <QtCore/QLocale>
#include <QtGui/QIcon>
#include <QtGui/QPainter>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>

RecordingBar::RecordingBar(const VideoRecorder& recorder)
    : m_recorder(recorder)
    , m_text(new QLabel)
{
    setObjectName(QStringLiteral("recordingBar"));
    auto* sign = new QLabel;
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    sign->setPixmap(dot().pixmap(QSize(size, size), devicePixelRatio()));
    m_text->setObjectName(QStringLiteral("recordingText"));
    m_text->setTextFormat(Qt::PlainText);
    auto* stop = new QPushButton(tr("Stop Recording"));
    stop->setObjectName(QStringLiteral("stopRecording"));
    connect(stop, &QPushButton::clicked, this, &RecordingBar::stopRequested);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    layout->addWidget(sign);
    layout->addWidget(m_text, 1);
    layout->addWidget(stop);
    m_timer.setInterval(period);
    connect(&m_timer, &QTimer::timeout, this, &RecordingBar::refresh);
    hide();
}

void RecordingBar::refresh()
{
    const bool recording = m_recorder.isRecording();
    setVisible(recording);
    if (!recording) {
        m_timer.stop();
        return;
    }
    m_text->setText(text(m_recorder.seconds(), m_recorder.frameCount(), m_recorder.droppedCount()));
    if (!m_timer.isActive())
        m_timer.start();
}

QString RecordingBar::text(double seconds, int frames, int dropped)
{
    const QLocale locale;
    return (frames == 1 ? tr("%1 · %2 frame · %3 dropped") : tr("%1 · %2 frames · %3 dropped"))
        .arg(clockTime(seconds), locale.toString(frames), locale.toString(dropped));
}

QIcon RecordingBar::dot()
{
    constexpr int size = 64; // larger than shown, for displays with small pixels
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xe0, 0x20, 0x20));
    painter.drawEllipse(QRectF(0, 0, size, size).adjusted(10, 10, -10, -10));
    return pixmap;
}
