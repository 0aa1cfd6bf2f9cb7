// The module itself: the only file that needs OpenCV's library of videos, which brings about 220 other libraries.

#include "VideoFile.h"

#include <opencv2/videoio.hpp>

namespace {

/// OpenCV's own writer, which needs no codec library and behaves the same everywhere.
class MotionJpeg final : public VideoFile
{
public:
    bool begin(const std::string& path, double framesPerSecond, cv::Size size)
    {
        return m_writer.open(path, cv::CAP_OPENCV_MJPEG, cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), framesPerSecond,
                             size, true);
    }

    void write(const cv::Mat& frame) override { m_writer.write(frame); }

private:
    cv::VideoWriter m_writer;
};

} // namespace

extern "C" __attribute__((visibility("default"))) VideoFile* vantrel_open_video(const std::string& path,
                                                                                double framesPerSecond, cv::Size size);
extern "C" VideoFile* vantrel_open_video(const std::string& path, double framesPerSecond, cv::Size size)
{
    auto file = std::make_unique<MotionJpeg>();
    return file->begin(path, framesPerSecond, size) ? file.release() : nullptr;
}
