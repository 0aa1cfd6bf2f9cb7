#include "PicBufMat.h"

#include "CxPicBufAPI.h"
#include "PicBufChecks.h"

#include <opencv2/core.hpp>

#include <array>
#include <cstring>
#include <limits>
#include <utility>

namespace {

/// The OpenCV depths, each with the type of its values.
constexpr std::array<std::pair<ExImageDataType, int>, 7> depths = {{
    {ExImageDataType::Int8, CV_8S},
    {ExImageDataType::UInt8, CV_8U},
    {ExImageDataType::Int16, CV_16S},
    {ExImageDataType::UInt16, CV_16U},
    {ExImageDataType::Int32, CV_32S},
    {ExImageDataType::Float, CV_32F},
    {ExImageDataType::Double, CV_64F},
}};

bool fitsMat(const SxPicBufInfo& info)
{
    constexpr std::uint32_t maxSide = std::uint32_t(std::numeric_limits<int>::max());
    return info.width <= maxSide && info.height <= maxSide && info.channels <= CV_CN_MAX;
}

} // namespace

int matDepth(ExImageDataType type)
{
    for (const auto& [valueType, depth] : depths)
        if (valueType == type)
            return depth;
    return -1;
}

ExImageDataType dataTypeOfDepth(int depth)
{
    for (const auto& [type, valueDepth] : depths)
        if (valueDepth == depth)
            return type;
    return ExImageDataType::None;
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
    if (!isAligned(buffer) || !fitsMat(buffer))
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
    for (std::uint32_t y = 0; y < buffer.height; ++y)
        std::memcpy(copy.ptr(int(y)), buffer.row(y), buffer.rowBytes());
    return copy;
}

void storeMat(const cv::Mat& mat, SxPicBuf& buffer)
{
    for (std::uint32_t y = 0; y < buffer.height; ++y)
        std::memcpy(buffer.row(y), mat.ptr(int(y)), buffer.rowBytes());
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
    info.isColor = SxPicBufInfo::isColorChannelCount(info.channels);
    SxPicBuf buffer;
    if (CxPicBufAPI::AllocPicBufFromHeap(buffer, info, true, 0))
        storeMat(mat, buffer);
    return buffer;
}
