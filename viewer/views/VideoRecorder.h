#pragma once

#include <QtCore/QString>

#include <memory>

struct SxPicBuf;

/// Records images to a Motion JPEG AVI file, one frame for each. Used on one thread.
class VideoRecorder
{
public:
    VideoRecorder();

    /// Completes a file that is being written.
    ~VideoRecorder();

    /// Begins a recording. The frames get the size of the first image; shown is the image at hand, which is not
    /// recorded but whose size tells early whether the file can be written, or null.
    ///
    /// False with a log line when a recording is under way, the file's extension is not .avi or it cannot be written.
    bool start(const QString& path, const SxPicBuf* shown, double framesPerSecond);

    bool isRecording() const;

    /// Adds a frame; an image of another size than the first is scaled to it. Does nothing when nothing is recorded, or
    /// for an image without pixels.
    void add(const SxPicBuf& image);

    /// Ends the recording and completes the file. A recording that got no frame leaves no file.
    void stop();

    /// Frames written in this recording.
    int frameCount() const;

private:
    struct Recording;
    std::unique_ptr<Recording> m_recording;
    Q_DISABLE_COPY_MOVE(VideoRecorder)
};
