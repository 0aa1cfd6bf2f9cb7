#include "Pictures.h"
#include "scripting/ApplicationDelegate.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "views/ImageView.h"
#include "window/MainWindow.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <opencv2/videoio.hpp>

namespace {

/// What a video player makes of a file.
struct Video {
    explicit Video(const QString& path)
    {
        cv::VideoCapture capture(path.toStdString(), cv::CAP_OPENCV_MJPEG);
        opens = capture.isOpened();
        for (cv::Mat frame; capture.read(frame);)
            frames.push_back(frame.clone());
    }

    bool opens = false;
    std::vector<cv::Mat> frames;
};

class Recording : public testing::Test
{
protected:
    QString path(const char* name = "video.avi") const { return folder.filePath(QString::fromUtf8(name)); }

    void write(const char* name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QByteArray read(const char* name = "video.avi") const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    }

    QStringList names() const
    {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    /// An image that compression does not make small: it takes about 60 kB in a video.
    static std::shared_ptr<CxImageData> noise()
    {
        std::vector<std::uint8_t> values(std::size_t(320) * 240);
        unsigned random = 1;
        for (std::uint8_t& value : values)
            value = std::uint8_t((random = random * 1103515245 + 12345) >> 16U);
        return picture(ExImageDataType::UInt8, 8, 320, 1, values);
    }

    QTemporaryDir folder;
    MainWindow window;
    ImageView* view = window.views().add(greyPicture(64, 48, 10), QStringLiteral("view"));
};

TEST_F(Recording, HasOneFrameForEachImageGiven)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    for (const int grey : {40, 120, 200})
        view->setImage(greyPicture(64, 48, std::uint8_t(grey)));
    view->stopVideoRecording();
    view->setImage(greyPicture(64, 48, 255));
    const Video video(path());
    ASSERT_TRUE(video.opens);
    ASSERT_EQ(video.frames.size(), 3U);
    EXPECT_EQ(video.frames[0].size(), cv::Size(64, 48));
    EXPECT_NEAR(video.frames[0].at<cv::Vec3b>(20, 20)[0], 40, 3);
    EXPECT_NEAR(video.frames[2].at<cv::Vec3b>(20, 20)[2], 200, 3);
}

TEST_F(Recording, ScalesHighDepthsAndKeepsColours)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->setImage(picture(ExImageDataType::UInt16, 12, 64, 1, std::vector<std::uint16_t>(std::size_t(64) * 48, 2048)));
    std::vector<std::uint8_t> blue;
    for (int i = 0; i < 64 * 48; ++i)
        blue.insert(blue.end(), {220, 30, 30});
    view->setImage(picture(ExImageDataType::UInt8, 8, 64, 3, blue));
    view->stopVideoRecording();
    const Video video(path());
    ASSERT_EQ(video.frames.size(), 2U);
    EXPECT_NEAR(video.frames[0].at<cv::Vec3b>(20, 20)[1], 128, 3);
    EXPECT_NEAR(video.frames[1].at<cv::Vec3b>(20, 20)[0], 220, 12);
    EXPECT_NEAR(video.frames[1].at<cv::Vec3b>(20, 20)[2], 30, 12);
}

TEST_F(Recording, ScalesImagesOfAnotherSizeToTheFirst)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->setImage(greyPicture(80, 33, 50)); // not the size shown when the recording began
    view->setImage(greyPicture(20, 20, 150));
    view->stopVideoRecording();
    const Video video(path());
    ASSERT_EQ(video.frames.size(), 2U);
    EXPECT_EQ(video.frames[0].size(), cv::Size(80, 33));
    EXPECT_EQ(video.frames[1].size(), cv::Size(80, 33));
    EXPECT_NEAR(video.frames[1].at<cv::Vec3b>(10, 10)[0], 150, 3);
}

TEST_F(Recording, BeginsInAViewThatShowsNothingYet)
{
    ImageView* empty = window.views().add(nullptr, QStringLiteral("empty"));
    ASSERT_TRUE(empty->startVideoRecording(path()));
    empty->setImage(nullptr);
    empty->setImage(greyPicture(64, 48, 99));
    empty->stopVideoRecording();
    EXPECT_EQ(Video(path()).frames.size(), 1U);
}

TEST_F(Recording, IsCompletedWhenTheViewCloses)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->setImage(greyPicture(64, 48, 99));
    view->closeMdiView();
    EXPECT_EQ(Video(path()).frames.size(), 1U);
}

TEST_F(Recording, WithoutAFrameLeavesNoFile)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->stopVideoRecording();
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(Recording, CanBeginAgainAfterItHasEnded)
{
    for (const char* name : {"one.avi", "two.AVI"}) {
        ASSERT_TRUE(view->startVideoRecording(path(name)));
        view->setImage(greyPicture(64, 48, 99));
        view->stopVideoRecording();
        EXPECT_EQ(Video(path(name)).frames.size(), 1U) << name;
    }
}

TEST_F(Recording, DoesNotBeginTwice)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    EXPECT_FALSE(view->startVideoRecording(path("other.avi")));
    view->setImage(greyPicture(64, 48, 99));
    view->stopVideoRecording();
    EXPECT_EQ(Video(path()).frames.size(), 1U);
}

TEST_F(Recording, DoesNotBeginWhereNoFileCanBeWritten)
{
    EXPECT_FALSE(view->startVideoRecording(path("missing/video.avi")));
    EXPECT_FALSE(view->startVideoRecording(folder.path()));
    EXPECT_FALSE(view->startVideoRecording(path("video.mp4")));
    EXPECT_FALSE(view->startVideoRecording(QString()));
    ASSERT_TRUE(QDir().mkpath(path("folder.avi")));
    EXPECT_FALSE(view->startVideoRecording(path("folder.avi")));
    EXPECT_FALSE(view->recorder().isRecording());
    EXPECT_FALSE(QFile::exists(path("video.mp4")));
}

TEST_F(Recording, ThatEndsBeforeItsFirstFrameLeavesTheOldFile)
{
    write("video.avi", "old");
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->stopVideoRecording();
    EXPECT_EQ(read(), "old");
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->closeMdiView();
    EXPECT_EQ(read(), "old");
    EXPECT_EQ(names(), QStringList(QStringLiteral("video.avi")));
}

TEST_F(Recording, TakesThePlaceOfTheOldFileWhenItIsComplete)
{
    write("video.avi", "old");
    ASSERT_TRUE(view->startVideoRecording(path()));
    EXPECT_FALSE(view->startVideoRecording(path()));
    for (int frame = 0; frame < 5; ++frame)
        view->setImage(noise());
    EXPECT_EQ(read(), "old");
    view->stopVideoRecording();
    EXPECT_EQ(Video(path()).frames.size(), 5U);
    EXPECT_EQ(names(), QStringList(QStringLiteral("video.avi")));
}

TEST_F(Recording, ShowsNoFileUntilItIsComplete)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    EXPECT_FALSE(QFile::exists(path()));
    view->setImage(greyPicture(64, 48, 99));
    EXPECT_FALSE(QFile::exists(path()));
    view->stopVideoRecording();
    EXPECT_TRUE(QFile::exists(path()));
}

TEST_F(Recording, ReplacesAFileThatIsMadeMeanwhile)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->setImage(greyPicture(64, 48, 99));
    write("video.avi", "made meanwhile");
    view->stopVideoRecording();
    EXPECT_EQ(Video(path()).frames.size(), 1U);
}

TEST_F(Recording, IsKeptBesideAFolderThatIsMadeMeanwhile)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->setImage(greyPicture(64, 48, 99));
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("video.avi")));
    const LogCapture log;
    view->stopVideoRecording();
    ASSERT_EQ(names().size(), 2);
    const QString kept = names().value(0);
    EXPECT_EQ(Video(folder.filePath(kept)).frames.size(), 1U);
    ASSERT_EQ(log.criticals().size(), 1);
    EXPECT_TRUE(log.criticals()[0].contains(kept)) << log.criticals()[0].toStdString();
    EXPECT_TRUE(log.criticals()[0].contains(QStringLiteral("it is a folder"))) << log.criticals()[0].toStdString();
}

TEST_F(Recording, IsFollowedThroughALink)
{
    write("real.avi", "old");
    ASSERT_TRUE(QFile::link(QStringLiteral("real.avi"), path()));
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->setImage(greyPicture(64, 48, 99));
    view->stopVideoRecording();
    EXPECT_EQ(Video(path("real.avi")).frames.size(), 1U);
    EXPECT_TRUE(QFileInfo(path()).isSymLink());
}

TEST_F(Recording, OfTwoViewsGoesToTwoFiles)
{
    ImageView* other = window.views().add(greyPicture(32, 32, 1), QStringLiteral("other"));
    ASSERT_TRUE(view->startVideoRecording(path()));
    const LogCapture log;
    EXPECT_FALSE(other->startVideoRecording(folder.path() + QStringLiteral("/./video.avi")));
    EXPECT_EQ(log.criticals().size(), 1);
    EXPECT_TRUE(other->startVideoRecording(path("other.avi")));
    view->setImage(greyPicture(64, 48, 99));
    other->setImage(greyPicture(32, 32, 99));
    view->stopVideoRecording();
    EXPECT_EQ(Video(path()).frames.size(), 1U);
    EXPECT_TRUE(view->startVideoRecording(path())); // the name is free again
    view->stopVideoRecording();
    other->stopVideoRecording();
    EXPECT_EQ(Video(path("other.avi")).frames.size(), 1U);
}

TEST_F(Recording, ThatTheDiskDoesNotTakeLeavesTheOldFile)
{
    write("video.avi", "old");
    const FileSizeLimit limit(200000);
    const LogCapture log;
    ASSERT_TRUE(view->startVideoRecording(path()));
    for (int frame = 0; frame < 10; ++frame)
        view->setImage(noise());
    view->stopVideoRecording();
    EXPECT_EQ(read(), "old");
    EXPECT_EQ(names(), QStringList(QStringLiteral("video.avi")));
    ASSERT_EQ(log.criticals().size(), 1);
    EXPECT_TRUE(log.criticals()[0].contains(QStringLiteral("it would be larger than files may be")))
        << log.criticals()[0].toStdString();
}

TEST_F(Recording, EndsSoonWhenTheDiskTakesNoMore)
{
    const FileSizeLimit limit(200000);
    const LogCapture log;
    ASSERT_TRUE(view->startVideoRecording(path()));
    for (int frame = 0; frame < 1000 && view->recorder().isRecording(); ++frame)
        view->setImage(greyPicture(64, 48, std::uint8_t(frame)));
    EXPECT_FALSE(view->recorder().isRecording());
    EXPECT_EQ(log.criticals().size(), 1);
    EXPECT_TRUE(names().isEmpty());
}

TEST_F(Recording, WhoseFolderIsRemovedSaysSo)
{
    const LogCapture log;
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("data")));
    ASSERT_TRUE(view->startVideoRecording(path("data/video.avi")));
    view->setImage(noise());
    ASSERT_TRUE(QDir(path("data")).removeRecursively());
    view->stopVideoRecording();
    ASSERT_EQ(log.criticals().size(), 1);
    EXPECT_TRUE(log.criticals()[0].endsWith(QStringLiteral("its temporary file has been removed")))
        << log.criticals()[0].toStdString();
}

TEST_F(Recording, OfAStillPictureDoesNotEndByItself)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    for (int frame = 0; frame < 1000; ++frame)
        view->setImage(greyPicture(1, 1, 0));
    view->stopVideoRecording();
    EXPECT_EQ(Video(path()).frames.size(), 1000U);
}

TEST_F(Recording, CountsItsFramesAndSaysWhenItBeginsAndEnds)
{
    const VideoRecorder& recorder = view->recorder();
    std::vector<bool> changes;
    QObject::connect(&recorder, &VideoRecorder::recordingChanged, &window,
                     [&] { changes.push_back(recorder.isRecording()); });
    ASSERT_TRUE(view->startVideoRecording(path()));
    EXPECT_FALSE(view->startVideoRecording(path()));
    for (int i = 0; i < 3; ++i)
        view->setImage(greyPicture(64, 48, 99));
    auto empty = std::make_shared<CxImageData>();
    empty->setPicBuf(SxPicBuf());
    view->setImage(empty);
    QTest::qWait(20);
    EXPECT_EQ(recorder.frameCount(), 3);
    EXPECT_EQ(recorder.droppedCount(), 1);
    EXPECT_GE(recorder.seconds(), 0.02);
    view->stopVideoRecording();
    view->stopVideoRecording();
    EXPECT_EQ(recorder.frameCount() + recorder.droppedCount(), 0);
    EXPECT_EQ(changes, (std::vector<bool>{true, false}));
}

TEST_F(Recording, StoppingWithoutOneDoesNothing)
{
    view->stopVideoRecording();
    EXPECT_FALSE(view->recorder().isRecording());
}

} // namespace
