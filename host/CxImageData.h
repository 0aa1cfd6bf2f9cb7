#pragma once

#include "HostGlobal.h"
#include "SxImageMetadata.h"
#include "SxPicBuf.h"

#include <QtCore/QObject>

#include <memory>

class QThread;

/// An image of the host: a picture buffer that it owns, and perhaps the metadata of a camera frame.
///
/// Not locked: one thread at a time.
class VANTREL_HOST_EXPORT CxImageData : public QObject
{
    Q_OBJECT
public:
    /// An image without a picture buffer.
    CxImageData();

    /// Frees the picture buffer.
    ~CxImageData() override;

    /// A new independent image with its own pixels and the same metadata, owned by the caller; null when memory runs
    /// out. The copy gets the parent and lives in the given thread (null: the calling one).
    virtual QObject* clone(QObject* parent, QThread* thread);

    /// A new image copied from this one, owned by the caller; null when memory runs out. With infoOnly the copy has
    /// geometry and metadata but no pixels.
    virtual QObject* copy(bool infoOnly);

    /// The picture buffer, or null when the image has none. Stays owned by the image.
    virtual SxPicBuf* picBuf();

    /// Takes over the pixels of a buffer record, also when the call throws, and frees the ones held so far. The caller
    /// keeps the record and must not free the pixels, whatever `data` says afterwards (this class sets it to null).
    virtual void attachPicBuf(SxPicBuf* buffer);

    /// The acquisition metadata, or null when the image has none. Stays owned by the image.
    virtual SxImageMetadata* imageMetadata();

    /// Copies the record into the image; null removes what is there.
    virtual void setImageMetadata(SxImageMetadata* metadata);

    /// Takes over the pixels of a record in the same way, also when the call throws, and leaves the record as it is.
    void setPicBuf(const SxPicBuf& buffer);

    /// Number of images that exist in the process at this moment. For tests and diagnostics; any thread.
    static int liveCount();

private:
    SxPicBuf m_buffer;
    bool m_hasBuffer = false;
    std::unique_ptr<SxImageMetadata> m_metadata;
};
