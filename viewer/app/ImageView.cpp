#include "ImageView.h"

#include "CxImageData.h"
#include "ImageWidget.h"
#include "ViewStore.h"

#include <QtGui/QCloseEvent>

ImageView::ImageView(int id, const QString& title, ViewStore& store)
    : m_id(id)
    , m_store(store)
    , m_widget(new ImageWidget)
{
    setWidget(m_widget);
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
}

ImageView::~ImageView()
{
    m_store.remove(m_id);
}

void ImageView::setImage(std::shared_ptr<CxImageData> image)
{
    m_image = std::move(image);
    m_store.setImage(m_id, m_image);
    m_widget->setImage(m_image);
    if (const SxPicBuf* buffer = m_image ? m_image->picBuf() : nullptr)
        m_recorder.add(*buffer);
    Q_EMIT imageShown();
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
    return nullptr;
}

void ImageView::closeEvent(QCloseEvent* event)
{
    QMdiSubWindow::closeEvent(event);
    if (!event->isAccepted())
        return;
    // The object is deleted when the event loop comes round again, which a long script can put off: what is large goes
    // now.
    m_recorder.stop();
    m_image.reset();
    m_widget->setImage(nullptr);
    m_store.remove(m_id);
    Q_EMIT closed();
}

void ImageView::doClose()
{
    close();
}
