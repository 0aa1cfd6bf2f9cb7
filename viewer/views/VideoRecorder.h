#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

struct SxPicBuf;

/// Records images to a Motion JPEG AVI file, one frame per image. Not thread-safe.
class VideoRecorder : public QObject
{
    Q_OBJECT
public:
    VideoRecorder();

    /// Ends a recording as stop() does.
    ~VideoRecorder() override;

    /// Begins a recording. The first image added sets the size of the frames. shown is the image on display, or null:
    /// it is not recorded, but its size is used to find out early whether the file can be written.
    ///
    /// Returns false and logs why if a recording is under way, the extension is not .avi or the file cannot be written.
    bool start(const QString& path, const SxPicBuf* shown, double framesPerSecond);

    bool isRecording() const;

    /// Adds a frame, scaled to the size of the first one. Does nothing without a recording. An image without pixels
    /// counts as a frame that was dropped. If the frame cannot be written, logs that and ends the recording.
    void add(const SxPicBuf& image);

    /// Ends the recording and completes the file. A recording without frames leaves a log line and no file.
    void stop();

    /// Counts frames of this recording that are lost: they will never be added. Does nothing without a recording.
    void noteDropped(int frames);

    /// Number of frames written in this recording; 0 without a recording.
    int frameCount() const;

    /// Number of frames that are missing in this recording; 0 without a recording.
    int droppedCount() const;

    /// How long this recording has been under way; 0 without a recording.
    double seconds() const;

Q_SIGNALS:
    /// A recording has begun or ended.
    void recordingChanged();

private:
    void endRecording();

    struct Recording;
    std::unique_ptr<Recording> m_recording;
};
