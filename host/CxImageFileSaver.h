#pragma once

#include "HostGlobal.h"

#include <QtCore/QVariant>

class CxImageData;

/// Writes one image file. Made by CxImageFormatManager::saverForFile(); deleted by the caller.
class VANTREL_HOST_EXPORT CxImageFileSaver
{
public:
    virtual ~CxImageFileSaver();

    /// Writes the image to the saver's file. options may be null for the format's defaults. On failure returns false,
    /// logs the reason in one line and leaves an existing file unchanged. An image without a buffer or without pixels
    /// is a failure.
    virtual bool saveImage(CxImageData* image, const QVariantMap* options) = 0;

protected:
    CxImageFileSaver() = default;
    Q_DISABLE_COPY_MOVE(CxImageFileSaver)
};
