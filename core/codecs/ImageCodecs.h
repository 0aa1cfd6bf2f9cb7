#pragma once

#include <QtCore/QString>

#include <opencv2/core/mat.hpp>

#include <string>
#include <vector>

/// The decoders and encoders of image files. They are in a module (see ProductModule.h), which the first file that
/// needs them loads.
struct ImageCodecs {
    /// The pixels of a file as they are stored; none if it is damaged. Throws what a decoder throws.
    cv::Mat (*decode)(const cv::Mat& file);

    /// Encodes pixels in the format of an extension such as ".png". quality is for JPEG: 0 to 100. Returns false or
    /// throws cv::Exception if the format cannot hold the pixels.
    bool (*encode)(const std::string& extension, const cv::Mat& pixels, int quality, std::vector<uchar>& file);

    /// Returns null and sets problem to the reason if the module cannot be loaded. Any thread may call this.
    static const ImageCodecs* load(QString& problem);
};
