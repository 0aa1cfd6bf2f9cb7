#include "ImageFiles.h"

#include "CxImageData.h"
#include "CxImageFormatManager.h"

#include <QtCore/QDebug>

#include <cstring>
#include <vector>

namespace {

/// Image files keep 16 bits and do not tell how many of them the camera used. Cameras deliver 12, 14 or 16: the
/// smallest of these that holds every value, so that a 12-bit picture is not shown sixteen times too dark.
void findBitDepth(SxPicBuf& buffer)
{
    if (buffer.dataType != ExImageDataType::UInt16 || buffer.bpc != 16)
        return;
    unsigned used = 0;
    std::vector<std::uint16_t> row(std::size_t(buffer.width) * buffer.channels);
    for (std::uint32_t y = 0; y < buffer.height; ++y) {
        std::memcpy(row.data(), buffer.row(y), row.size() * sizeof(std::uint16_t));
        for (const std::uint16_t value : row)
            used |= value;
    }
    buffer.bpc = used < (1U << 12U) ? 12 : used < (1U << 14U) ? 14 : 16;
}

} // namespace

std::shared_ptr<CxImageData> loadImageFile(const QString& path)
{
    const std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(path));
    if (!loader) {
        qCritical().noquote() << QStringLiteral("%1 is not an image file that can be read").arg(path);
        return nullptr;
    }
    if (!loader->readFile())
        return nullptr;
    auto* frame = qobject_cast<CxImageData*>(loader->frameAt(0));
    std::shared_ptr<CxImageData> image(frame ? qobject_cast<CxImageData*>(frame->clone(nullptr, nullptr)) : nullptr);
    if (!image) {
        qCritical().noquote() << QStringLiteral("%1 cannot be shown: out of memory").arg(path);
        return nullptr;
    }
    if (SxPicBuf* buffer = image->picBuf())
        findBitDepth(*buffer);
    return image;
}

bool saveImageFile(CxImageData& image, const QString& path)
{
    const std::unique_ptr<CxImageFileSaver> saver(CxImageFormatManager::instance()->saverForFile(path));
    if (!saver) {
        qCritical().noquote() << QStringLiteral("%1 is not an image file that can be written").arg(path);
        return false;
    }
    return saver->saveImage(&image, nullptr);
}
