// Shared by all functions that fill an image from script data.

#include "ArrayCopy.h"
#include "CxImageData.h"
#include "ImageMethods.h"
#include "Narrowing.h"

#include <limits>

bool fx_img_allocate(OwnedPicBuf& target, const ImageSize& size)
{
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    const auto fits = [](std::int64_t number) { return number > 0 && number <= most; };
    if (!fits(size.width) || !fits(size.height) || !fits(size.channels))
        return false;
    SxPicBufInfo info = target.buffer;
    info.width = std::uint32_t(size.width);
    info.height = std::uint32_t(size.height);
    info.channels = std::uint32_t(size.channels);
    info.storageFormat = ExDataStorageFormat::Interleaved;
    info.isColor = SxPicBufInfo::isColorArray(info.channels, info.dataType);
    return target.allocate(info);
}

// The image owns the pixels from the call on, whatever attachPicBuf() leaves in the record.
static void attach(CxImageData& image, OwnedPicBuf& pixels)
{
    SxPicBuf given = pixels.release();
    image.attachPicBuf(&given);
}

PyObject* fx_img_installNarrowed(TxPyImage& object, OwnedPicBuf filled, const ArrayLayout* array)
{
    auto image = std::make_unique<CxImageData>();
    SxPicBuf values = array ? arrayInPlace(*array, filled.buffer).value() : filled.buffer;
    OwnedPicBuf narrowed;
    if (fx_img_convertToBestBpc(narrowed.buffer, values)) {
        attach(*image, narrowed);
        filled.free(); // before the object's old image is deleted
    } else {
        filled.buffer.bpc = values.bpc;
        if (array)
            copyArray(*array, filled.buffer);
        attach(*image, filled);
    }
    fx_img_installImage(object, std::move(image));
    return fx_none();
}
