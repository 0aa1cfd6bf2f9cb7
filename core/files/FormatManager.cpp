#include "CxImageFormatManager.h"

#include "ImageFileFormat.h"
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
    return formatOfExtension(extensionOf(path)) != ImageFileFormat::Unknown ? new ImageFileReader(path) : nullptr;
}

CxImageFileSaver* CxImageFormatManager::saverForFile(const QString& path)
{
    const QString extension = extensionOf(path);
    return formatOfExtension(extension) != ImageFileFormat::Unknown ? new ImageFileWriter(path, extension) : nullptr;
}

QStringList CxImageFormatManager::extensions() const
{
    return imageFileExtensions();
}
