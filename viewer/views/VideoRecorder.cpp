#include "VideoRecorder.h"

#include "DisplayImage.h"
#include "SxPicBuf.h"
#include "storage/FileReplacement.h"
#include "video/VideoFile.h"

#include <QtCore/QDebug>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>
#include <QtCore/QtEndian>

#include <opencv2/imgproc.hpp>

namespace {

/// The files that recorders of any view write to. Never destroyed: when a script ends the process, recordings are
/// completed after static objects are gone.
QSet<QString>& filesUnderWay()
{
    static auto* const files = new QSet<QString>;
    return *files;
}

/// Frames after which the file must have grown. A frame takes at least 600 bytes, and the writer holds back 32 kB.
constexpr int framesWithoutGrowth = 200;

} // namespace

struct VideoRecorder::Recording {
    explicit Recording(const QString& file)
        : path(file)
        , replacement(file)
    {
    }

    ~Recording()
    {
        video.reset();
        filesUnderWay().remove(claimed);
    }

    Q_DISABLE_COPY_MOVE(Recording)

    QString path;
    double framesPerSecond = 0;
    FileReplacement replacement;
    QString claimed; ///< the file, once no other recorder may write to it
    std::unique_ptr<VideoFile> video;
    cv::Size size;
    int frames = 0;
    qint64 bytes = 0;      ///< what has reached the disk
    int framesAtBytes = 0; ///< the number of frames when it did

    /// Creates the temporary file. Returns why the file cannot be written, or an empty text.
    QString begin()
    {
        if (const FileProblem problem = replacement.begin())
            return problem.text();
        if (filesUnderWay().contains(replacement.target()))
            return QStringLiteral("another view is being recorded to it");
        claimed = replacement.target();
        filesUnderWay().insert(claimed);
        return {};
    }
    int dropped = 0;
    QElapsedTimer clock;

    /// Returns why the video cannot be written, or an empty text.
    QString open(cv::Size frameSize)
    {
        size = frameSize;
        video.reset(); // before another writer opens the same file
        QString problem;
        video = VideoFile::open(QFile::encodeName(replacement.temporaryPath()).toStdString(), framesPerSecond, size,
                                problem);
        return problem;
    }

    /// True if frames no longer reach the disk. The writer does not say so.
    bool hasStalled()
    {
        const qint64 now = QFileInfo(replacement.temporaryPath()).size();
        if (now != bytes)
            framesAtBytes = frames;
        bytes = now;
        return frames - framesAtBytes > framesWithoutGrowth;
    }

    /// True if the whole video is in the file: the writer puts the length into the header last.
    bool isWhole() const
    {
        QFile file(replacement.temporaryPath());
        constexpr qint64 headerBytes = 8; // a name, and the length of what follows
        const QByteArray header = file.open(QIODevice::ReadOnly) ? file.read(headerBytes) : QByteArray();
        return header.size() == headerBytes &&
               qFromLittleEndian<quint32>(header.constData() + 4) == quint32(file.size() - headerBytes);
    }

    /// Why the disk takes no more.
    QString diskProblem()
    {
        if (!QFileInfo::exists(replacement.temporaryPath()))
            return QStringLiteral("its temporary file has been removed");
        const FileProblem problem = replacement.append(QByteArray(1 << 20, '\0'));
        return problem ? problem.text() : QStringLiteral("the disk has not taken everything");
    }
};

VideoRecorder::VideoRecorder() = default;

VideoRecorder::~VideoRecorder()
{
    stop();
}

bool VideoRecorder::start(const QString& path, const SxPicBuf* shown, double framesPerSecond)
{
    auto recording = std::make_unique<Recording>(path);
    recording->framesPerSecond = framesPerSecond;
    QString problem;
    if (m_recording)
        problem = QStringLiteral("already recording to %1").arg(m_recording->path);
    else if (QFileInfo(path).suffix().compare(QStringLiteral("avi"), Qt::CaseInsensitive) != 0)
        problem = QStringLiteral("the extension must be .avi");
    else
        problem = recording->begin();
    if (problem.isEmpty() && shown && shown->data)
        problem = recording->open(cv::Size(int(shown->width), int(shown->height)));
    if (!problem.isEmpty()) {
        qCritical().noquote() << QStringLiteral("Cannot record to %1: %2").arg(path, problem);
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
    if (m_recording->frames == 0 && !(m_recording->video && size == m_recording->size)) {
        if (const QString problem = m_recording->open(size); !problem.isEmpty()) {
            fail(problem);
            return;
        }
    }
    try {
        const cv::Mat pixels(size, CV_8UC3, const_cast<uchar*>(frame.constBits()), std::size_t(frame.bytesPerLine()));
        cv::Mat scaled = pixels;
        if (size != m_recording->size)
            cv::resize(pixels, scaled, m_recording->size, 0, 0, cv::INTER_AREA);
        m_recording->video->write(scaled);
        ++m_recording->frames;
    } catch (const cv::Exception& error) {
        fail(QString::fromUtf8(error.what()));
        return;
    }
    if (m_recording->hasStalled())
        fail(m_recording->diskProblem());
}

void VideoRecorder::stop()
{
    if (!m_recording)
        return;
    m_recording->video.reset();
    if (m_recording->frames == 0) {
        qWarning().noquote() << QStringLiteral("No frame was recorded to %1").arg(m_recording->path);
    } else if (!m_recording->isWhole()) {
        fail(m_recording->diskProblem());
        return;
    } else if (const FileProblem problem = m_recording->replacement.complete()) {
        const QString kept = m_recording->replacement.temporaryPath();
        m_recording->replacement.keepTemporary();
        qCritical().noquote() << QStringLiteral("Cannot write %1: %2. The recording is in %3")
                                     .arg(m_recording->path, problem.text(), kept);
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

void VideoRecorder::fail(const QString& reason)
{
    qCritical().noquote() << QStringLiteral("Recording to %1 failed: %2").arg(m_recording->path, reason);
    endRecording();
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
