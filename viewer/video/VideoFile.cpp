#include "VideoFile.h"

#include "modules/ProductModule.h"

#include <QtCore/QDebug>

#include <opencv2/core.hpp>

std::unique_ptr<VideoFile> VideoFile::open(const std::string& path, double framesPerSecond, cv::Size size,
                                           QString& problem)
{
    using Open = VideoFile*(const std::string&, double, cv::Size);
    QString missing;
    static void* module = nullptr;
    if (!module)
        module = moduleFunction("viewer/libvantrel_video.so", "vantrel_open_video", missing);
    if (!module) {
        problem = QStringLiteral("the library for videos cannot be loaded: %1").arg(missing);
        return nullptr;
    }
    std::unique_ptr<VideoFile> file;
    try {
        file.reset(reinterpret_cast<Open*>(module)(path, framesPerSecond, size));
    } catch (const cv::Exception& error) {
        qCritical().noquote() << "Video:" << error.what();
    }
    if (!file)
        problem = QStringLiteral("the video file cannot be written");
    return file;
}
