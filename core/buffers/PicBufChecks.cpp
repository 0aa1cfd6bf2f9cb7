#include "PicBufChecks.h"

#include <QtCore/QLoggingCategory>

#include <algorithm>

bool hasPixels(const SxPicBuf& buffer)
{
    return buffer.data && buffer.width > 0 && buffer.height > 0 && buffer.channels > 0 &&
           (buffer.height == 1 || buffer.lineStride >= buffer.rowBytes());
}

bool sameSize(const SxPicBufInfo& a, const SxPicBufInfo& b)
{
    return a.width == b.width && a.height == b.height;
}

bool sameKind(const SxPicBufInfo& a, const SxPicBufInfo& b)
{
    return a.dataType == b.dataType && a.channels == b.channels;
}

bool isAligned(const SxPicBuf& buffer)
{
    const std::size_t valueBytes = SxPicBufInfo::bytesPerValue(buffer.dataType);
    return reinterpret_cast<std::uintptr_t>(buffer.data) % valueBytes == 0 && buffer.lineStride % valueBytes == 0;
}

bool overlap(const SxPicBuf& a, const SxPicBuf& b)
{
    const auto beginA = reinterpret_cast<std::uintptr_t>(a.data);
    const auto beginB = reinterpret_cast<std::uintptr_t>(b.data);
    const std::size_t sizeA = std::size_t(a.height - 1) * a.lineStride + a.rowBytes();
    const std::size_t sizeB = std::size_t(b.height - 1) * b.lineStride + b.rowBytes();
    return beginA < beginB + sizeB && beginB < beginA + sizeA;
}

bool isGapless(const SxPicBuf& buffer, std::size_t valuesPerRow)
{
    return buffer.lineStride == valuesPerRow * SxPicBufInfo::bytesPerValue(buffer.dataType);
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

bool refuse(const char* operation, const char* reason)
{
    qWarning("%s: %s", operation, reason);
    return false;
}
