// Copying and scaling of rectangles.

#include "CxPicBufAPI.h"

#include "OwnedPicBuf.h"
#include "Packed565.h"
#include "PicBufChecks.h"
#include "PicBufMat.h"
#include "PixelTypes.h"
#include "WideScaling.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace {

/// Copies rows of equal length. The order of the rows allows the buffers to overlap.
void moveRows(const SxPicBuf& src, SxPicBuf& dst)
{
    const std::size_t bytes = src.rowBytes();
    const bool lastFirst = reinterpret_cast<std::uintptr_t>(dst.data) > reinterpret_cast<std::uintptr_t>(src.data);
    for (std::uint32_t i = 0; i < src.height; ++i) {
        const std::uint32_t y = lastFirst ? src.height - 1 - i : i;
        std::memmove(dst.row(y), src.row(y), bytes);
    }
}

/// Scales in to the size of out. Averages along an axis that shrinks and interpolates along one that grows. If one
/// axis shrinks and the other grows, shrinks first, since OpenCV would interpolate both.
void scaleMat(const cv::Mat& in, cv::Mat& out)
{
    const bool narrower = out.cols < in.cols;
    const bool lower = out.rows < in.rows;
    const bool wider = out.cols > in.cols;
    const bool higher = out.rows > in.rows;
    if ((narrower && higher) || (wider && lower)) {
        cv::Mat shrunk;
        cv::resize(in, shrunk, cv::Size(std::min(in.cols, out.cols), std::min(in.rows, out.rows)), 0, 0,
                   cv::INTER_AREA);
        cv::resize(shrunk, out, out.size(), 0, 0, cv::INTER_LINEAR);
    } else {
        cv::resize(in, out, out.size(), 0, 0, narrower || lower ? cv::INTER_AREA : cv::INTER_LINEAR);
    }
}

/// The type in which to let OpenCV scale values of a type.
ExImageDataType scalingType(ExImageDataType type)
{
    switch (type) {
    case ExImageDataType::Int8:
        return ExImageDataType::Int16;
    case ExImageDataType::Packed565:
        return ExImageDataType::UInt8;
    default:
        return type;
    }
}

SxPicBufInfo scalingInfo(const SxPicBufInfo& info)
{
    SxPicBufInfo result = info;
    result.dataType = scalingType(info.dataType);
    result.channels = info.dataType == ExImageDataType::Packed565 ? 3 : info.channels;
    result.bpc = 0;
    return result;
}

/// Converts to another type, scales, and converts back.
void scaleConverted(const SxPicBuf& src, SxPicBuf& dst)
{
    OwnedPicBuf in;
    OwnedPicBuf out;
    if (!in.allocate(scalingInfo(src)) || !out.allocate(scalingInfo(dst)))
        throw std::bad_alloc();
    const bool packed = src.dataType == ExImageDataType::Packed565;
    if (packed)
        unpackComponents(src, in.buffer);
    else
        CxPicBufAPI::ConvertPicToDifBpc(src, in.buffer, false);
    const int depth = matDepth(in.buffer.dataType);
    cv::Mat scaled = readMat(out.buffer, depth);
    scaleMat(readMat(in.buffer, depth), scaled);
    if (packed)
        packComponents(out.buffer, dst);
    else
        CxPicBufAPI::ConvertPicToDifBpc(out.buffer, dst, false);
}

/// Scales in the pixels' own type, without a conversion.
void scaleDirectly(const SxPicBuf& src, SxPicBuf& dst)
{
    const int depth = matDepth(src.dataType);
    const cv::Mat in = readMat(src, depth);
    if (std::optional<cv::Mat> out = wrapMat(dst, depth)) {
        scaleMat(in, *out);
    } else {
        cv::Mat scaled(int(dst.height), int(dst.width), in.type());
        scaleMat(in, scaled);
        storeMat(scaled, dst);
    }
}

} // namespace

bool CxPicBufAPI::CopyRect(SxPicBuf& dst, unsigned dx, unsigned dy, const SxPicBuf& src, unsigned x, unsigned y,
                           unsigned w, unsigned h)
{
    if (!hasPixels(src) || !hasPixels(dst) || !sameKind(src, dst))
        return refuse("CopyRect", "a buffer has no pixels, or the buffers differ in channels or type");
    SxPicBuf to = rectangleOf(dst, dx, dy, w, h);
    const SxPicBuf from = rectangleOf(src, x, y, to.width, to.height);
    if (!from.data)
        return refuse("CopyRect", "the rectangle is empty or lies outside the image");
    to = rectangleOf(to, 0, 0, from.width, from.height);
    moveRows(from, to);
    return true;
}

bool CxPicBufAPI::ResizeRect(const SxPicBuf& src, unsigned x, unsigned y, unsigned w, unsigned h, SxPicBuf& dst,
                             unsigned dx, unsigned dy, unsigned dw, unsigned dh)
{
    if (!hasPixels(src) || !hasPixels(dst) || !sameKind(src, dst))
        return refuse("ResizeRect", "a buffer has no pixels, or the buffers differ in channels or type");
    constexpr unsigned toTheEdge = std::numeric_limits<unsigned>::max();
    const SxPicBuf from = rectangleOf(src, x, y, w ? w : toTheEdge, h ? h : toTheEdge);
    SxPicBuf to = rectangleOf(dst, dx, dy, dw ? dw : toTheEdge, dh ? dh : toTheEdge);
    if (!from.data || !to.data)
        return refuse("ResizeRect", "a rectangle lies outside its image");
    if (sameSize(from, to)) {
        moveRows(from, to);
        return true;
    }
    if (from.dataType != ExImageDataType::Packed565 && !visitNumberType(from.dataType, [](auto) {}))
        return refuse("ResizeRect", "the type is unknown");
    try {
        OwnedPicBuf copy;
        if (overlap(from, to) && !copy.copyFrom(from))
            throw std::bad_alloc();
        const SxPicBuf source = copy.buffer.data ? copy.buffer : from;
        if (scaleWidePixels(source, to))
            return true;
        if (scalingType(from.dataType) == from.dataType)
            scaleDirectly(source, to);
        else
            scaleConverted(source, to);
        return true;
    } catch (const cv::Exception& error) {
        return refuse("ResizeRect", error.err.c_str());
    } catch (const std::bad_alloc&) {
        return refuse("ResizeRect", "out of memory");
    }
}

bool CxPicBufAPI::Resize(const SxPicBuf& src, SxPicBuf& dst)
{
    return ResizeRect(src, 0, 0, 0, 0, dst, 0, 0, 0, 0);
}
