#include "ImageFiles.h"

#include "CxImageData.h"
#include "CxImageFormatManager.h"
#include "TakeAs.h"

#include <QtCore/QDebug>

std::shared_ptr<CxImageData> loadImageFile(const QString& path)
{
    const std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(path));
    if (!loader) {
        qCritical().noquote() << QStringLiteral("Cannot read image file %1: unknown format").arg(path);
        return nullptr;
    }
    if (!loader->readFile())
        return nullptr;
    auto* frame = qobject_cast<CxImageData*>(loader->frameAt(0));
    std::shared_ptr<CxImageData> image = takeAs<CxImageData>(frame ? frame->clone(nullptr, nullptr) : nullptr);
    if (!image)
        qCritical().noquote() << QStringLiteral("Cannot show image file %1: out of memory").arg(path);
    return image;
}

bool saveImageFile(CxImageData& image, const QString& path)
{
    const std::unique_ptr<CxImageFileSaver> saver(CxImageFormatManager::instance()->saverForFile(path));
    if (!saver) {
        qCritical().noquote() << QStringLiteral("Cannot write image file %1: unknown format").arg(path);
        return false;
    }
    return saver->saveImage(&image, nullptr);
}
