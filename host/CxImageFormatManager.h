#pragma once

#include "CxImageFileLoader.h"
#include "CxImageFileSaver.h"
#include "HostGlobal.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

/// The image file formats that the host knows, chosen by a file's extension. Any thread.
class VANTREL_HOST_EXPORT CxImageFormatManager
{
public:
    static CxImageFormatManager* instance();

    /// A new loader for the file, owned by the caller, or null if no format has the file's extension. The file need not
    /// exist; a missing file fails in CxImageFileLoader::readFile().
    CxImageFileLoader* loaderForFile(const QString& path);

    /// A new saver for the file, owned by the caller, or null if no format has the file's extension.
    CxImageFileSaver* saverForFile(const QString& path);

    /// The extensions that can be read and written, in lower case, without the dot.
    QStringList extensions() const;

private:
    CxImageFormatManager() = default;
    Q_DISABLE_COPY_MOVE(CxImageFormatManager)
};
