#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QFrame>

class QLabel;
class VideoRecorder;

/// Shows a recording while it is under way: a red dot, its time, its frames, and a button that ends it. Otherwise the
/// bar is hidden.
class RecordingBar : public QFrame
{
    Q_OBJECT
public:
    /// The recorder must outlive the bar.
    explicit RecordingBar(const VideoRecorder& recorder);

    /// Shows what the recorder does now.
    void refresh();

    /// The time and the frames of one recording or several.
    static QString text(double seconds, int frames, int dropped);

    /// The sign of a recording.
    static QIcon dot();

    /// Milliseconds between two looks at a recording.
    static constexpr int period = 250;

Q_SIGNALS:
    void stopRequested();

private:
    const VideoRecorder& m_recorder;
    QLabel* m_text;
    QTimer m_timer;
};
