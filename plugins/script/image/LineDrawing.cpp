#include "LineDrawing.h"

#include "SxPicBuf.h"

#include <cstring>

namespace {
template<typename T>
std::ptrdiff_t offsetOf(const SxPicBuf& buf, int x, int y, int channel)
{
    return std::ptrdiff_t(y) * buf.lineStride +
           (std::ptrdiff_t(x) * buf.channels + channel) * std::ptrdiff_t(sizeof(T));
}

template<typename T>
long long read(const SxPicBuf& buf, int x, int y, int channel)
{
    T value;
    std::memcpy(&value, buf.data + offsetOf<T>(buf, x, y, channel), sizeof(T));
    return value;
}

template<typename T>
void write(std::uint8_t* to, T value)
{
    std::memcpy(to, &value, sizeof(T));
}

template<typename T>
void write(SxPicBuf& buf, int x, int y, int channel, T value)
{
    write(buf.data + offsetOf<T>(buf, x, y, channel), value);
}

int sign(long long number)
{
    return (number > 0) - (number < 0);
}

// Writes what fx_setPicPixelValue() would, but moves from pixel to pixel instead of computing each position.
// Each move takes one step along the major axis, and one along the minor axis if the error is not negative.
template<typename T>
void drawLine(std::uint8_t* to, T value, long long majorLength, long long minorLength, std::ptrdiff_t majorStep,
              std::ptrdiff_t minorStep)
{
    long long error = 2 * minorLength - majorLength;
    for (long long left = majorLength;; --left) {
        write(to, value);
        if (left == 0)
            return;
        if (error >= 0) {
            to += minorStep;
            error -= 2 * majorLength;
        }
        to += majorStep;
        error += 2 * minorLength;
    }
}

template<typename T>
void drawLine(SxPicBuf& buf, int x1, int y1, int x2, int y2, int channel, T value)
{
    const long long dx = (long long)x2 - x1;
    const long long dy = (long long)y2 - y1;
    const std::ptrdiff_t xStep = sign(dx) * std::ptrdiff_t(buf.channels * sizeof(T));
    const std::ptrdiff_t yStep = sign(dy) * std::ptrdiff_t(buf.lineStride);
    const long long xLength = dx < 0 ? -dx : dx;
    const long long yLength = dy < 0 ? -dy : dy;
    std::uint8_t* start = buf.data + offsetOf<T>(buf, x1, y1, channel);
    if (xLength <= yLength)
        drawLine<T>(start, value, yLength, xLength, yStep, xStep);
    else
        drawLine<T>(start, value, xLength, yLength, xStep, yStep);
}
} // namespace

long long fx_getPicPixelValue(const SxPicBuf& buf, int x, int y, int channel)
{
    switch (buf.dataType) {
    case ExImageDataType::UInt8:
        return read<std::uint8_t>(buf, x, y, channel);
    case ExImageDataType::UInt16:
        return read<std::uint16_t>(buf, x, y, channel);
    case ExImageDataType::Int32:
        return read<std::int32_t>(buf, x, y, channel);
    case ExImageDataType::UInt32:
        return read<std::uint32_t>(buf, x, y, channel);
    default:
        return 0;
    }
}

void fx_setPicPixelValue(SxPicBuf& buf, int x, int y, int channel, long long value)
{
    switch (buf.dataType) {
    case ExImageDataType::UInt8:
        write(buf, x, y, channel, std::uint8_t(value));
        break;
    case ExImageDataType::UInt16:
        write(buf, x, y, channel, std::uint16_t(value));
        break;
    case ExImageDataType::Int32:
    case ExImageDataType::UInt32:
        write(buf, x, y, channel, std::uint32_t(value));
        break;
    default:
        break;
    }
}

void fx_drawPicPixelLine(SxPicBuf& buf, int x1, int y1, int x2, int y2, int channel, long long value)
{
    switch (buf.dataType) {
    case ExImageDataType::UInt8:
        drawLine(buf, x1, y1, x2, y2, channel, std::uint8_t(value));
        break;
    case ExImageDataType::UInt16:
        drawLine(buf, x1, y1, x2, y2, channel, std::uint16_t(value));
        break;
    case ExImageDataType::Int32:
    case ExImageDataType::UInt32:
        drawLine(buf, x1, y1, x2, y2, channel, std::uint32_t(value));
        break;
    default:
        break;
    }
}
