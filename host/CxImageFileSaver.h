#pragma once

#include "HostGlobal.h"

#include <QtCore/QVariant>

class CxImageData;

/// Writes one image file. Made by CxImageFormatManager::saverForFile(); deleted by the caller.
class VANTREL_HOST_EXPORT CxImageFileSaver
{
public:
    virtual ~CxImageFileSaver();

    /// Writes the image to the file that the saver was made for. options may be null: the format's defaults. True on
    /// success; otherwise a log line says why, and a file that was there before is unchanged. An image without a buffer
    /// or without pixels is a failure.
    virtual bool saveImage(CxImageData* image, const QVariantMap* options) = 0;

protected:
    CxImageFileSaver() = default;
    Q_DISABLE_COPY_MOVE(CxImageFileSaver)
};
