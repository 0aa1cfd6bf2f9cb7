#include "CxImageData.h"

#include "OwnedPicBuf.h"
#include "TakeAs.h"

#include <QtCore/QThread>

#include <atomic>

namespace {
std::atomic<int> liveImages = 0;
}

CxImageData::CxImageData()
{
    ++liveImages;
}

CxImageData::~CxImageData()
{
    CxPicBufAPI::FreePicBuf(m_buffer, true);
    --liveImages;
}

int CxImageData::liveCount()
{
    return liveImages;
}

QObject* CxImageData::clone(QObject* parent, QThread* thread)
{
    std::unique_ptr<CxImageData> image = takeAs<CxImageData>(copy(false));
    if (!image)
        return nullptr;
    if (thread)
        image->moveToThread(thread);
    if (parent)
        image->setParent(parent);
    return image.release();
}

QObject* CxImageData::copy(bool infoOnly)
{
    auto image = std::make_unique<CxImageData>();
    image->setImageMetadata(m_metadata.get());
    if (!m_hasBuffer)
        return image.release();
    if (infoOnly || !m_buffer.data) {
        image->m_buffer = m_buffer;
        image->m_buffer.data = nullptr;
        image->m_hasBuffer = true;
        return image.release();
    }
    OwnedPicBuf pixels;
    // Clear the memory if rows have padding: padding is not copied and must not show what was in the memory before.
    const bool isDense = m_buffer.rowBytes() == m_buffer.lineStride;
    if (!CxPicBufAPI::AllocPicBufFromHeap(pixels.buffer, m_buffer, isDense, 0))
        return nullptr;
    CxPicBufAPI::CopyPicBuf(pixels.buffer, m_buffer, true);
    image->setPicBuf(pixels.release());
    return image.release();
}

SxPicBuf* CxImageData::picBuf()
{
    return m_hasBuffer ? &m_buffer : nullptr;
}

void CxImageData::attachPicBuf(SxPicBuf* buffer)
{
    if (!buffer)
        return;
    setPicBuf(*buffer);
    buffer->data = nullptr;
}

void CxImageData::setPicBuf(const SxPicBuf& buffer)
{
    const SxPicBuf incoming = buffer; // may be this image's own record
    if (incoming.data != m_buffer.data)
        CxPicBufAPI::FreePicBuf(m_buffer, true);
    m_buffer = incoming;
    m_hasBuffer = true;
}

SxImageMetadata* CxImageData::imageMetadata()
{
    return m_metadata.get();
}

void CxImageData::setImageMetadata(SxImageMetadata* metadata)
{
    m_metadata = metadata ? std::make_unique<SxImageMetadata>(*metadata) : nullptr;
}
