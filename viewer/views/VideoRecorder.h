#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

struct SxPicBuf;

/// Records images to a Motion JPEG AVI file, one frame per image. GUI thread only.
///
/// The frames go to a temporary file beside the file (see FileReplacement). An existing file stays as it was until the
/// recording is complete, and for good if it has no frame or cannot be written.
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
    /// Returns false and logs why if a recording is under way here, if another recorder records to the file, if the
    /// extension is not .avi or if the file cannot be written.
    bool start(const QString& path, const SxPicBuf* shown, double framesPerSecond);

    bool isRecording() const;

    /// Adds a frame, scaled to the size of the first one. Does nothing without a recording. An image without pixels
    /// counts as a frame that was dropped. If frames cannot be written, logs why and ends the recording; a full disk is
    /// noticed after a while.
    void add(const SxPicBuf& image);

    /// Ends the recording and puts it into the place of the file. A recording without frames leaves a log line and no
    /// file. Logs why if the recording could not be written.
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
    void fail(const QString& reason);
    void endRecording();

    struct Recording;
    std::unique_ptr<Recording> m_recording;
};
