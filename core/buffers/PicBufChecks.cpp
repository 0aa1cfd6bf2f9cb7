#include "PicBufChecks.h"

#include "PixelTypes.h"

#include <QtCore/QLoggingCategory>

#include <algorithm>
#include <cmath>
#include <limits>

bool hasPixels(const SxPicBuf& buffer)
{
    return buffer.data && buffer.width > 0 && buffer.height > 0 && buffer.channels > 0 &&
           (buffer.height == 1 || buffer.lineStride >= rowBytes(buffer));
}

bool sameSize(const SxPicBufInfo& a, const SxPicBufInfo& b)
{
    return a.width == b.width && a.height == b.height;
}

bool sameKind(const SxPicBufInfo& a, const SxPicBufInfo& b)
{
    return a.dataType == b.dataType && a.channels == b.channels;
}

std::size_t valuesPerRow(const SxPicBufInfo& info)
{
    return std::size_t(info.width) * info.channels;
}

std::size_t rowBytes(const SxPicBufInfo& info)
{
    return std::size_t(info.bytesPerPixel()) * info.width;
}

bool overlap(const SxPicBuf& a, const SxPicBuf& b)
{
    const auto beginA = reinterpret_cast<std::uintptr_t>(a.data);
    const auto beginB = reinterpret_cast<std::uintptr_t>(b.data);
    const std::size_t sizeA = std::size_t(a.height - 1) * a.lineStride + rowBytes(a);
    const std::size_t sizeB = std::size_t(b.height - 1) * b.lineStride + rowBytes(b);
    return beginA < beginB + sizeB && beginB < beginA + sizeA;
}

SxPicBuf rectangleOf(const SxPicBuf& buffer, unsigned x, unsigned y, unsigned w, unsigned h)
{
    SxPicBuf part = buffer;
    if (!buffer.data || x >= buffer.width || y >= buffer.height || w == 0 || h == 0) {
        part.width = 0;
        part.height = 0;
        part.data = nullptr;
        return part;
    }
    part.width = std::min(w, buffer.width - x);
    part.height = std::min(h, buffer.height - y);
    part.data = buffer.data + std::size_t(y) * buffer.lineStride + std::size_t(x) * buffer.bytesPerPixel();
    return part;
}

long double fullScale(const SxPicBufInfo& info)
{
    long double full = 1;
    visitNumberType(info.dataType, [&]<typename T>(std::type_identity<T>) {
        if constexpr (std::is_floating_point_v<T>) {
            if (info.saturation > 0)
                full = static_cast<long double>(info.saturation);
        } else {
            full = static_cast<long double>(std::numeric_limits<T>::max());
            if (info.bpc > 0 && info.bpc < std::uint32_t(std::numeric_limits<T>::digits))
                full = std::ldexp(1.0L, int(info.bpc)) - 1;
        }
    });
    return full;
}

bool refuse(const char* operation, const char* reason)
{
    qWarning("%s: %s", operation, reason);
    return false;
}
