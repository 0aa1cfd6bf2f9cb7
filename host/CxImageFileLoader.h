#pragma once

#include "HostGlobal.h"

#include <QtCore/QObject>

/// Reads one image file. Made by CxImageFormatManager::loaderForFile(); deleted by the caller.
class VANTREL_HOST_EXPORT CxImageFileLoader
{
public:
    virtual ~CxImageFileLoader();

    /// Reads the file; true when an image is available. A damaged file gives a log line and false.
    virtual bool readFile() = 0;

    /// The image with that index (a CxImageData), or null. Owned by the loader.
    virtual QObject* frameAt(int index) = 0;

protected:
    CxImageFileLoader() = default;
    Q_DISABLE_COPY_MOVE(CxImageFileLoader)
};
