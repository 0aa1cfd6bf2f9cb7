#pragma once

#include <QtCore/QString>

#include <memory>

struct SxPicBuf;

/// Records images to a Motion JPEG AVI file, one frame per image. Not thread-safe.
class VideoRecorder
{
public:
    VideoRecorder();

    /// Ends a recording as stop() does.
    ~VideoRecorder();

    /// Begins a recording. The first image added sets the size of the frames. shown is the image on display, or null:
    /// it is not recorded, but its size is used to find out early whether the file can be written.
    ///
    /// Returns false and logs why if a recording is under way, the extension is not .avi or the file cannot be written.
    bool start(const QString& path, const SxPicBuf* shown, double framesPerSecond);

    bool isRecording() const;

    /// Adds a frame, scaled to the size of the first one. Does nothing without a recording or for an image without
    /// pixels. If the frame cannot be written, logs that and ends the recording.
    void add(const SxPicBuf& image);

    /// Ends the recording and completes the file. A recording without frames leaves a log line and no file.
    void stop();

    /// Number of frames written in this recording; 0 without a recording.
    int frameCount() const;

private:
    struct Recording;
    std::unique_ptr<Recording> m_recording;
    Q_DISABLE_COPY_MOVE(VideoRecorder)
};
