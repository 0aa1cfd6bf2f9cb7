#pragma once

#include "HostGlobal.h"

#include <QtCore/QObject>

/// Reads one image file. Made by CxImageFormatManager::loaderForFile(); deleted by the caller.
class VANTREL_HOST_EXPORT CxImageFileLoader
{
public:
    virtual ~CxImageFileLoader();

    /// Reads the file. True if an image is available. On failure returns false and logs one line.
    virtual bool readFile() = 0;

    /// The image with the given index, counted from 0 (a CxImageData), or null. Owned by the loader.
    virtual QObject* frameAt(int index) = 0;

protected:
    CxImageFileLoader() = default;
    Q_DISABLE_COPY_MOVE(CxImageFileLoader)
};
