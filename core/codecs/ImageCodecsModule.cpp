// The module itself: the only file that needs OpenCV's library of codecs, which brings about 120 other libraries.

#include "ImageCodecs.h"

#include <opencv2/imgcodecs.hpp>

namespace {

cv::Mat decode(const cv::Mat& file)
{
    return cv::imdecode(file, cv::IMREAD_UNCHANGED);
}

bool encode(const std::string& extension, const cv::Mat& pixels, int quality, std::vector<uchar>& file)
{
    std::vector<int> parameters;
    constexpr int lzw = 5; // explicit, because the default for floating colours is lossy
    if (extension == ".jpg")
        parameters = {cv::IMWRITE_JPEG_QUALITY, quality};
    else if (extension == ".tiff")
        parameters = {cv::IMWRITE_TIFF_COMPRESSION, lzw};
    return cv::imencode(extension, pixels, file, parameters);
}

} // namespace

extern "C" __attribute__((visibility("default"))) const ImageCodecs* vantrel_image_codecs();
extern "C" const ImageCodecs* vantrel_image_codecs()
{
    static constexpr ImageCodecs codecs = {decode, encode};
    return &codecs;
}
