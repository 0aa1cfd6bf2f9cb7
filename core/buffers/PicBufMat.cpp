#include "PicBufMat.h"

#include "CxPicBufAPI.h"

#include <opencv2/core.hpp>

#include <cstring>
#include <limits>

namespace {

bool fitsMat(const SxPicBuf& buffer)
{
    constexpr std::uint32_t maxSide = std::uint32_t(std::numeric_limits<int>::max());
    return buffer.width <= maxSide && buffer.height <= maxSide && buffer.channels <= CV_CN_MAX;
}

} // namespace

int matDepth(ExImageDataType type)
{
    switch (type) {
    case ExImageDataType::Int8:
        return CV_8S;
    case ExImageDataType::UInt8:
        return CV_8U;
    case ExImageDataType::Int16:
        return CV_16S;
    case ExImageDataType::UInt16:
        return CV_16U;
    case ExImageDataType::Int32:
        return CV_32S;
    case ExImageDataType::Float:
        return CV_32F;
    case ExImageDataType::Double:
        return CV_64F;
    default:
        return -1;
    }
}

ExImageDataType dataTypeOfDepth(int depth)
{
    switch (depth) {
    case CV_8S:
        return ExImageDataType::Int8;
    case CV_8U:
        return ExImageDataType::UInt8;
    case CV_16S:
        return ExImageDataType::Int16;
    case CV_16U:
        return ExImageDataType::UInt16;
    case CV_32S:
        return ExImageDataType::Int32;
    case CV_32F:
        return ExImageDataType::Float;
    case CV_64F:
        return ExImageDataType::Double;
    default:
        return ExImageDataType::None;
    }
}

int moveDepth(ExImageDataType type)
{
    switch (SxPicBufInfo::bytesPerValue(type)) {
    case 2:
        return CV_16U;
    case 4:
        return CV_32S;
    case 8:
        return CV_64F;
    default:
        return CV_8U;
    }
}

std::optional<cv::Mat> wrapMat(const SxPicBuf& buffer, int depth)
{
    const std::size_t valueBytes = SxPicBufInfo::bytesPerValue(buffer.dataType);
    const bool aligned =
        reinterpret_cast<std::uintptr_t>(buffer.data) % valueBytes == 0 && buffer.lineStride % valueBytes == 0;
    if (!aligned || !fitsMat(buffer))
        return std::nullopt;
    return cv::Mat(int(buffer.height), int(buffer.width), CV_MAKETYPE(depth, int(buffer.channels)), buffer.data,
                   buffer.lineStride);
}

cv::Mat readMat(const SxPicBuf& buffer, int depth)
{
    if (std::optional<cv::Mat> wrapped = wrapMat(buffer, depth))
        return *wrapped;
    if (!fitsMat(buffer))
        CV_Error(cv::Error::StsOutOfRange, "the image is too large");
    cv::Mat copy(int(buffer.height), int(buffer.width), CV_MAKETYPE(depth, int(buffer.channels)));
    const std::size_t rowBytes = std::size_t(buffer.bytesPerPixel()) * buffer.width;
    for (std::uint32_t y = 0; y < buffer.height; ++y)
        std::memcpy(copy.ptr(int(y)), buffer.row(y), rowBytes);
    return copy;
}

void storeMat(const cv::Mat& mat, SxPicBuf& buffer)
{
    const std::size_t rowBytes = std::size_t(buffer.bytesPerPixel()) * buffer.width;
    for (std::uint32_t y = 0; y < buffer.height; ++y)
        std::memcpy(buffer.row(y), mat.ptr(int(y)), rowBytes);
}

SxPicBuf picBufFromMat(const cv::Mat& mat)
{
    SxPicBufInfo info;
    info.width = std::uint32_t(mat.cols);
    info.height = std::uint32_t(mat.rows);
    info.channels = std::uint32_t(mat.channels());
    info.dataType = dataTypeOfDepth(mat.depth());
    info.bpc = SxPicBufInfo::bytesPerValue(info.dataType) * 8;
    info.storageFormat = ExDataStorageFormat::Interleaved;
    info.isColor = info.channels == 3 || info.channels == 4;
    SxPicBuf buffer;
    if (CxPicBufAPI::AllocPicBufFromHeap(buffer, info, true, 0))
        storeMat(mat, buffer);
    return buffer;
}
