#include "CxImageFormatManager.h"

#include "ImageFileReader.h"
#include "ImageFileWriter.h"

#include <QtCore/QFileInfo>

namespace {

QString extensionOf(const QString& path)
{
    return QFileInfo(path).suffix().toLower();
}

} // namespace

CxImageFormatManager* CxImageFormatManager::instance()
{
    static CxImageFormatManager manager;
    return &manager;
}

CxImageFileLoader* CxImageFormatManager::loaderForFile(const QString& path)
{
    return extensions().contains(extensionOf(path)) ? new ImageFileReader(path) : nullptr;
}

CxImageFileSaver* CxImageFormatManager::saverForFile(const QString& path)
{
    const QString extension = extensionOf(path);
    return extensions().contains(extension) ? new ImageFileWriter(path, extension) : nullptr;
}

QStringList CxImageFormatManager::extensions() const
{
    return {QStringLiteral("png"),  QStringLiteral("tif"), QStringLiteral("tiff"), QStringLiteral("jpg"),
            QStringLiteral("jpeg"), QStringLiteral("bmp"), QStringLiteral("pgm"),  QStringLiteral("ppm")};
}
