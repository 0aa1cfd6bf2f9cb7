#pragma once

#include "HostGlobal.h"
#include "SxImageMetadata.h"
#include "SxPicBuf.h"

#include <QtCore/QObject>

#include <memory>

class QThread;

/// An image of the host: a picture buffer, which the image owns, and optionally the metadata of a camera frame.
///
/// Not thread-safe: use an image on one thread at a time.
class VANTREL_HOST_EXPORT CxImageData : public QObject
{
    Q_OBJECT
public:
    /// An image without a picture buffer.
    CxImageData();

    /// Frees the picture buffer.
    ~CxImageData() override;

    /// An independent copy with its own pixels and the same metadata, owned by the caller. Null if there is not enough
    /// memory. The copy gets the parent and lives in the given thread (null: the calling thread).
    virtual QObject* clone(QObject* parent, QThread* thread);

    /// A copy of this image, owned by the caller. Null if there is not enough memory. With infoOnly, the copy has
    /// geometry and metadata but no pixels.
    virtual QObject* copy(bool infoOnly);

    /// The picture buffer, or null if the image has none. Owned by the image.
    virtual SxPicBuf* picBuf();

    /// Takes over the pixels of a record, even if the call throws, and frees those held so far. The caller keeps the
    /// record itself. The caller must not free the pixels even if `data` still points to them; this class sets `data`
    /// to null.
    virtual void attachPicBuf(SxPicBuf* buffer);

    /// The acquisition metadata, or null if the image has none. Owned by the image.
    virtual SxImageMetadata* imageMetadata();

    /// Copies metadata into the image; null removes the metadata.
    virtual void setImageMetadata(SxImageMetadata* metadata);

    /// Takes over the pixels like attachPicBuf(), even if the call throws, but leaves the record unchanged.
    void setPicBuf(const SxPicBuf& buffer);

    /// Number of images that currently exist in the process. For tests and diagnostics. Any thread.
    static int liveCount();

private:
    SxPicBuf m_buffer;
    bool m_hasBuffer = false;
    std::unique_ptr<SxImageMetadata> m_metadata;
};
