#include "ImageView.h"

#include "ChainPanel.h"
#include "CxImageData.h"
#include "ImageWidget.h"
#include "RecordingBar.h"
#include "ViewChain.h"
#include "ViewStore.h"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QGridLayout>

ImageView::ImageView(int id, const QString& title, ViewStore& store)
    : m_id(id)
    , m_store(store)
    , m_chain(std::make_unique<ViewChain>())
    , m_widget(new ImageWidget)
    , m_panel(new ChainPanel(*m_chain, m_chain->end()))
{
    auto* recordingBar = new RecordingBar(m_recorder);
    auto* contents = new QWidget;
    auto* layout = new QGridLayout(contents);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_widget, 0, 0);
    layout->addWidget(recordingBar, 1, 0);
    layout->addWidget(m_panel, 0, 1, 2, 1);
    layout->setColumnStretch(0, 1);
    layout->setRowStretch(0, 1);
    setWidget(contents);
    connect(&m_recorder, &VideoRecorder::recordingChanged, recordingBar, &RecordingBar::refresh);
    connect(&m_recorder, &VideoRecorder::recordingChanged, this, &ImageView::recordingChanged);
    connect(recordingBar, &RecordingBar::stopRequested, this, &ImageView::stopVideoRecording);
    connect(m_chain.get(), &CxChain::changed, this, &ImageView::reprocess);
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
}

ImageView::~ImageView()
{
    m_recorder.disconnect(); // ends its recording, when this object is half destroyed
    m_store.remove(m_id);
    // The panel uses the chain, but child widgets are deleted after the chain. So the panel goes first.
    m_chain->disconnect();
    delete m_panel;
}

void ImageView::setImage(std::shared_ptr<CxImageData> image)
{
    m_source = std::move(image);
    present();
    if (const SxPicBuf* buffer = m_image ? m_image->picBuf() : nullptr)
        m_recorder.add(*buffer);
    Q_EMIT imageShown();
}

void ImageView::present()
{
    m_image = m_chain->processed(m_source);
    m_store.setImage(m_id, m_image);
    m_widget->setImage(m_image);
}

void ImageView::reprocess()
{
    // This is not a next image: it is not recorded, and a wait for a frame goes on. A stopped chain is still being
    // changed and signals its start.
    if (m_source && !m_chain->stopped())
        present();
}

void ImageView::setLive(bool live)
{
    const bool ended = m_live && !live;
    m_live = live;
    if (ended)
        Q_EMIT liveEnded();
}

bool ImageView::startVideoRecording(const QString& path)
{
    return m_recorder.start(path, m_image ? m_image->picBuf() : nullptr, m_frameRate);
}

void ImageView::stopVideoRecording()
{
    m_recorder.stop();
}

CxChainable* ImageView::chainObject()
{
    return m_chain->end();
}

void ImageView::closeEvent(QCloseEvent* event)
{
    QMdiSubWindow::closeEvent(event);
    if (!event->isAccepted())
        return;
    // The event loop deletes this object, and a long script can delay that: large data is released now.
    m_recorder.stop();
    m_source.reset();
    m_image.reset();
    m_widget->setImage(nullptr);
    m_store.remove(m_id);
    Q_EMIT closed();
}

void ImageView::doClose()
{
    close();
}
