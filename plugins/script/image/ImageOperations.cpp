// Conversions that make a new image, operations on two images, and saving.

#include "CxImageData.h"
#include "CxImageFormatManager.h"
#include "ImageMethods.h"
#include "ScriptModule.h"
#include "TakeAs.h"
#include "UnclearedAllocations.h"
#include "support/HostContext.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cstring>

namespace {

constexpr const char* outOfMemory = "cannot allocate new image, out of memory";

// On failure, returns false with an error set.
bool allocateResult(OwnedPicBuf& result, SxPicBufInfo info)
{
    info.lineStride = 0;
    fx_img_allocateResult(result, info);
    if (!result.buffer.data)
        fx_raise(outOfMemory);
    return result.buffer.data != nullptr;
}

// Runs an operation that fills all pixels of a result, or refuses.
template<typename Operation>
void fill(OwnedPicBuf& result, Operation operation)
{
    fx_img_fillCorner(result.buffer, result.buffer.width, result.buffer.height, operation);
}

// How much of a side from a start on lies within a size.
std::uint32_t within(std::uint32_t size, std::uint32_t start, std::uint32_t side)
{
    return start < size ? std::min(side, size - start) : 0;
}

PyObject* newImage(OwnedPicBuf& result)
{
    return fx_img_newOwner(std::move(result));
}

// False with an error set for a negative size, which would become enormous as an unsigned number.
bool isSize(int width, int height)
{
    if (width >= 0 && height >= 0)
        return true;
    fx_raise(outOfMemory);
    return false;
}

// Runs an operation on the buffers of two images. Null without an error if one of the buffers is missing.
template<typename Operation>
PyObject* onTwoImages(PyObject* self, PyObject* other, Operation operation)
{
    SxPicBuf* own = fx_img_buffer(self);
    SxPicBuf* others = own ? fx_img_buffer(other) : nullptr;
    if (!others)
        return nullptr;
    operation(*own, *others);
    return fx_none();
}

} // namespace

bool fx_img_allocateResult(OwnedPicBuf& result, const SxPicBufInfo& info)
{
    const UnclearedAllocations uncleared;
    return CxPicBufAPI::AllocPicBufFromHeap(result.buffer, info, false, 0);
}

void fx_img_clearAllBut(SxPicBuf& buffer, std::uint32_t width, std::uint32_t height)
{
    const std::size_t used = std::size_t(buffer.bytesPerPixel()) * width;
    if (used < buffer.lineStride)
        for (std::uint32_t y = 0; y < height; ++y)
            std::memset(buffer.row(y) + used, 0, buffer.lineStride - used);
    std::memset(buffer.row(height), 0, std::size_t(buffer.height - height) * buffer.lineStride);
}

// ---- new images ----

PyObject* fx_pyimg_ToRgb(PyObject* self, PyObject* /*args*/)
{
    const SxPicBuf* source = fx_img_buffer(self);
    if (!source)
        return nullptr;
    SxPicBufInfo info = *source;
    info.setByteColors(4);
    info.blackLevel = 0;
    OwnedPicBuf result;
    if (!allocateResult(result, info))
        return nullptr;
    fill(result, [&] { return CxPicBufAPI::ConvertPicToRGB(*source, result.buffer); });
    return newImage(result);
}

PyObject* fx_pyimg_ExtractChannel(PyObject* self, PyObject* args)
{
    int channel = 0;
    if (!PyArg_ParseTuple(args, "i", &channel))
        return nullptr;
    const SxPicBuf* source = fx_img_buffer(self);
    if (!source)
        return nullptr;
    if (channel < 0 || unsigned(channel) >= source->channels)
        return fx_raise("channel number out of range");
    SxPicBufInfo info = *source;
    info.channels = 1;
    info.isColor = false;
    OwnedPicBuf result;
    if (!allocateResult(result, info))
        return nullptr;
    fill(result, [&] { return CxPicBufAPI::ExtractChannel(*source, result.buffer, unsigned(channel)); });
    return newImage(result);
}

PyObject* fx_pyimg_ConvertBpc(PyObject* self, PyObject* args)
{
    int bpc = 0;
    int scale = 1;
    if (!PyArg_ParseTuple(args, "i|p", &bpc, &scale))
        return nullptr;
    const SxPicBuf* source = fx_img_buffer(self);
    if (!source)
        return nullptr;
    if (bpc <= 0 || bpc > 32)
        return fx_raise("number of bits out of range");
    SxPicBufInfo info = *source;
    info.bpc = unsigned(bpc);
    info.dataType = SxPicBufInfo::unsignedTypeForBits(info.bpc);
    OwnedPicBuf result;
    if (!allocateResult(result, info))
        return nullptr;
    fill(result, [&] { return CxPicBufAPI::ConvertPicToDifBpc(*source, result.buffer, scale != 0); });
    if (!CxPicBufAPI::CheckPicValidData(result.buffer))
        return fx_raise("new image contained values over max bpc");
    return newImage(result);
}

PyObject* fx_pyimg_NewCopy(PyObject* self, PyObject* /*args*/)
{
    CxImageData* image = fx_pyimg_getImageObjectData(self);
    if (!image)
        return nullptr;
    std::unique_ptr<CxImageData> copy = takeAs<CxImageData>(image->clone(nullptr, nullptr));
    return copy ? fx_img_newOwner(std::move(copy)) : fx_raise(outOfMemory);
}

PyObject* fx_pyimg_Crop(PyObject* self, PyObject* args)
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    if (!PyArg_ParseTuple(args, "iiii", &x, &y, &width, &height))
        return nullptr;
    const SxPicBuf* source = fx_img_buffer(self);
    if (!source || !isSize(width, height))
        return nullptr;
    SxPicBufInfo info = *source;
    info.width = unsigned(width);
    info.height = unsigned(height);
    OwnedPicBuf result;
    if (!allocateResult(result, info))
        return nullptr;
    fx_img_fillCorner(result.buffer, within(source->width, unsigned(x), info.width),
                      within(source->height, unsigned(y), info.height), [&] {
                          return CxPicBufAPI::CopyRect(result.buffer, 0, 0, *source, unsigned(x), unsigned(y),
                                                       info.width, info.height);
                      });
    return newImage(result);
}

PyObject* fx_pyimg_Resize(PyObject* self, PyObject* args)
{
    int newWidth = 0;
    int newHeight = 0;
    int x = 0;
    int y = 0;
    int width = 1;
    int height = 1;
    if (!PyArg_ParseTuple(args, "ii|iiii", &newWidth, &newHeight, &x, &y, &width, &height))
        return nullptr;
    const SxPicBuf* source = fx_img_buffer(self);
    if (!source || !isSize(newWidth, newHeight))
        return nullptr;
    SxPicBufInfo info = *source;
    info.width = unsigned(newWidth);
    info.height = unsigned(newHeight);
    OwnedPicBuf result;
    if (!allocateResult(result, info))
        return nullptr;
    fill(result, [&] {
        return CxPicBufAPI::ResizeRect(*source, unsigned(x), unsigned(y), width == 0 ? source->width : unsigned(width),
                                       height == 0 ? source->height : unsigned(height), result.buffer, 0, 0, info.width,
                                       info.height);
    });
    return newImage(result);
}

// ---- into another image ----

PyObject* fx_pyimg_CopyTo(PyObject* self, PyObject* other)
{
    return onTwoImages(self, other,
                       [](const SxPicBuf& source, SxPicBuf& target) { CxPicBufAPI::CopyPicBuf(target, source, true); });
}

PyObject* fx_pyimg_CopyRectTo(PyObject* self, PyObject* args)
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    PyObject* other = nullptr;
    int toX = 0;
    int toY = 0;
    if (!PyArg_ParseTuple(args, "iiiiOii", &x, &y, &width, &height, &other, &toX, &toY))
        return nullptr;
    return onTwoImages(self, other, [&](const SxPicBuf& source, SxPicBuf& target) {
        CxPicBufAPI::CopyRect(target, unsigned(toX), unsigned(toY), source, unsigned(x), unsigned(y), unsigned(width),
                              unsigned(height));
    });
}

PyObject* fx_pyimg_ResizeTo(PyObject* self, PyObject* other)
{
    return onTwoImages(self, other,
                       [](const SxPicBuf& source, SxPicBuf& target) { CxPicBufAPI::Resize(source, target); });
}

PyObject* fx_pyimg_ResizeRectTo(PyObject* self, PyObject* args)
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    PyObject* other = nullptr;
    int toX = 0;
    int toY = 0;
    int toWidth = 0;
    int toHeight = 0;
    if (!PyArg_ParseTuple(args, "iiiiOiiii", &x, &y, &width, &height, &other, &toX, &toY, &toWidth, &toHeight))
        return nullptr;
    return onTwoImages(self, other, [&](const SxPicBuf& source, SxPicBuf& target) {
        CxPicBufAPI::ResizeRect(source, unsigned(x), unsigned(y), unsigned(width), unsigned(height), target,
                                unsigned(toX), unsigned(toY), unsigned(toWidth), unsigned(toHeight));
    });
}

// ---- in place ----

PyObject* fx_pyimg_Add(PyObject* self, PyObject* other)
{
    return onTwoImages(self, other, [](SxPicBuf& target, const SxPicBuf& source) { CxPicBufAPI::Add(target, source); });
}

PyObject* fx_pyimg_Subtract(PyObject* self, PyObject* other)
{
    return onTwoImages(self, other,
                       [](SxPicBuf& target, const SxPicBuf& source) { CxPicBufAPI::Subtract(target, source); });
}

PyObject* fx_pyimg_DivideByValue(PyObject* self, PyObject* args)
{
    int divisor = 0;
    if (!PyArg_ParseTuple(args, "i", &divisor))
        return nullptr;
    SxPicBuf* target = fx_img_buffer(self);
    if (!target)
        return nullptr;
    CxPicBufAPI::DivideByValue(*target, divisor);
    return fx_none();
}

// ---- saving ----

PyObject* fx_pyimg_SaveToFile(PyObject* self, PyObject* args)
{
    const char* utf8 = nullptr;
    if (!PyArg_ParseTuple(args, "s", &utf8))
        return nullptr;
    CxImageData* image = fx_pyimg_getImageObjectData(self);
    if (!image)
        return nullptr;
    const QString path = fx_resolvePath(utf8);
    QDir().mkpath(QFileInfo(path).absolutePath());
    const std::unique_ptr<CxImageFileSaver> saver(CxImageFormatManager::instance()->saverForFile(path));
    if (!saver)
        return nullptr;
    saver->saveImage(image, nullptr);
    return fx_none();
}
