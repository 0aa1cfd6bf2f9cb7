#pragma once

#include <QtCore/QString>

#include <opencv2/core/mat.hpp>

#include <memory>
#include <string>

/// A Motion JPEG AVI file that is being written. The encoder is in a module (see ProductModule.h), which the first
/// recording loads.
class VideoFile
{
public:
    VideoFile() = default;

    /// Writes the rest of the file.
    virtual ~VideoFile() = default;

    /// Adds a frame: 8-bit colours, blue first, of the size given to open(). Throws cv::Exception.
    virtual void write(const cv::Mat& frame) = 0;

    /// Begins a file. Returns null and sets problem to the reason if it cannot be written.
    static std::unique_ptr<VideoFile> open(const std::string& path, double framesPerSecond, cv::Size size,
                                           QString& problem);

    Q_DISABLE_COPY_MOVE(VideoFile)
};
