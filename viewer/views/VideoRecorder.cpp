#include "VideoRecorder.h"

#include "DisplayImage.h"
#include "SxPicBuf.h"

#include <QtCore/QDebug>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

struct VideoRecorder::Recording {
    QString path;
    double framesPerSecond = 0;
    cv::VideoWriter writer;
    cv::Size size;
    int frames = 0;
    int dropped = 0;
    QElapsedTimer clock;

    /// Uses OpenCV's own writer, which needs no codec library and behaves the same everywhere.
    bool open(cv::Size frameSize)
    {
        size = frameSize;
        try {
            return writer.open(QFile::encodeName(path).toStdString(), cv::CAP_OPENCV_MJPEG,
                               cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), framesPerSecond, size, true);
        } catch (const cv::Exception& error) {
            qCritical().noquote() << "Video:" << error.what();
            return false;
        }
    }
};

namespace {

bool canBeWritten(const QString& path)
{
    if (QFileInfo(path).suffix().compare(QStringLiteral("avi"), Qt::CaseInsensitive) != 0) {
        qCritical().noquote() << QStringLiteral("Cannot record to %1: the extension must be .avi").arg(path);
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::Append)) {
        qCritical().noquote() << QStringLiteral("Cannot record to %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

} // namespace

VideoRecorder::VideoRecorder() = default;

VideoRecorder::~VideoRecorder()
{
    stop();
}

bool VideoRecorder::start(const QString& path, const SxPicBuf* shown, double framesPerSecond)
{
    if (m_recording) {
        qCritical().noquote()
            << QStringLiteral("Cannot record to %1: already recording to %2").arg(path, m_recording->path);
        return false;
    }
    if (!canBeWritten(path))
        return false;
    auto recording = std::make_unique<Recording>();
    recording->path = path;
    recording->framesPerSecond = framesPerSecond;
    if (shown && shown->data && !recording->open(cv::Size(int(shown->width), int(shown->height)))) {
        qCritical().noquote() << QStringLiteral("Cannot record to %1: the video file cannot be written").arg(path);
        return false;
    }
    recording->clock.start();
    m_recording = std::move(recording);
    Q_EMIT recordingChanged();
    return true;
}

bool VideoRecorder::isRecording() const
{
    return m_recording != nullptr;
}

void VideoRecorder::add(const SxPicBuf& image)
{
    if (!m_recording)
        return;
    const QImage frame = displayImage(image).convertToFormat(QImage::Format_BGR888);
    if (frame.isNull()) {
        noteDropped(1);
        return;
    }
    const cv::Size size(frame.width(), frame.height());
    if (m_recording->frames == 0 && !(m_recording->writer.isOpened() && size == m_recording->size) &&
        !m_recording->open(size)) {
        qCritical().noquote() << QStringLiteral("Recording to %1 failed").arg(m_recording->path);
        endRecording();
        return;
    }
    try {
        const cv::Mat pixels(size, CV_8UC3, const_cast<uchar*>(frame.constBits()), std::size_t(frame.bytesPerLine()));
        cv::Mat scaled = pixels;
        if (size != m_recording->size)
            cv::resize(pixels, scaled, m_recording->size, 0, 0, cv::INTER_AREA);
        m_recording->writer.write(scaled);
        ++m_recording->frames;
    } catch (const cv::Exception& error) {
        qCritical().noquote()
            << QStringLiteral("Recording to %1 failed: %2").arg(m_recording->path, QString::fromUtf8(error.what()));
        endRecording();
    }
}

void VideoRecorder::stop()
{
    if (!m_recording)
        return;
    m_recording->writer.release();
    if (m_recording->frames == 0) {
        QFile::remove(m_recording->path);
        qWarning().noquote() << QStringLiteral("No frame was recorded to %1").arg(m_recording->path);
    }
    endRecording();
}

void VideoRecorder::endRecording()
{
    m_recording.reset();
    Q_EMIT recordingChanged();
}

void VideoRecorder::noteDropped(int frames)
{
    if (m_recording)
        m_recording->dropped += frames;
}

int VideoRecorder::frameCount() const
{
    return m_recording ? m_recording->frames : 0;
}

int VideoRecorder::droppedCount() const
{
    return m_recording ? m_recording->dropped : 0;
}

double VideoRecorder::seconds() const
{
    return m_recording ? double(m_recording->clock.elapsed()) / 1000 : 0;
}
