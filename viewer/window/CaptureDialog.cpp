#include "CaptureDialog.h"

#include "CxImageData.h"
#include "ViewerCamera.h"
#include "views/ImageWidget.h"

#include <QtCore/QDebug>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <array>

namespace {
constexpr std::array<int, 3> delaySeconds = {0, 3, 10};
}

CaptureDialog::CaptureDialog(ViewerCamera& camera, const QString& title, const QString& message, int delay,
                             QWidget* parent)
    : QDialog(parent)
    , m_camera(&camera)
    , m_preview(new ImageWidget)
    , m_captureButton(new QPushButton(tr("Capture")))
    , m_state(new QLabel)
{
    setWindowTitle(title);
    auto* text = new QLabel(message);
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    m_preview->setMinimumSize(480, 360);
    m_captureButton->setDefault(true);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(m_captureButton, QDialogButtonBox::ActionRole);
    buttons->addButton(QDialogButtonBox::Cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(m_preview, 1);
    if (delay >= 0) {
        m_delays = new QComboBox;
        m_delays->addItems({tr("Immediately"), tr("After 3 seconds"), tr("After 10 seconds")});
        m_delays->setCurrentIndex(std::min(delay, m_delays->count() - 1));
        auto* form = new QFormLayout;
        form->addRow(tr("Capture the image"), m_delays);
        layout->addLayout(form);
    }
    layout->addWidget(m_state);
    layout->addWidget(buttons);

    connect(m_captureButton, &QPushButton::clicked, this, &CaptureDialog::beginCapture);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(&m_countdown, &QTimer::timeout, this, &CaptureDialog::countDown);
    connect(&camera, &ViewerCamera::frameArrived, this, &CaptureDialog::showFrame);
    connect(&camera, &QObject::destroyed, this, [this] {
        m_camera = nullptr;
        reject();
    });
    if (!camera.isRunning())
        m_startedCamera = camera.start();
    if (!camera.isLive())
        m_state->setText(tr("The camera sends no frames by itself."));
}

CaptureDialog::~CaptureDialog()
{
    if (m_camera && m_startedCamera)
        m_camera->stop();
}

int CaptureDialog::delay() const
{
    return m_delays ? m_delays->currentIndex() : -1;
}

void CaptureDialog::showFrame(std::shared_ptr<CxImageData> frame)
{
    m_frame = std::move(frame);
    m_preview->setImage(m_frame);
    if (m_waitsForFrame)
        capture();
}

void CaptureDialog::beginCapture()
{
    m_captureButton->setEnabled(false);
    m_secondsLeft = delaySeconds.at(std::size_t(std::max(delay(), 0)));
    if (m_secondsLeft == 0) {
        capture();
        return;
    }
    m_secondsLeft += 1;
    m_countdown.start(1000);
    countDown();
}

void CaptureDialog::countDown()
{
    if (--m_secondsLeft > 0) {
        m_state->setText(tr("Capturing in %1 s").arg(m_secondsLeft));
        return;
    }
    m_countdown.stop();
    capture();
}

void CaptureDialog::capture()
{
    if (m_frame) {
        m_captured = m_frame;
        accept();
    } else if (m_camera && m_camera->isLive()) {
        // The user clicked before the first frame arrived: that frame is captured.
        m_waitsForFrame = true;
    } else {
        qWarning() << "No image captured: the camera sends no frames";
        reject();
    }
}
