// What the window shows of recordings, and how they are ended there.

#include "CameraSet.h"
#include "CxCameraManager.h"
#include "Pictures.h"
#include "process/ClockTime.h"
#include "views/ImageView.h"
#include "window/MainWindow.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolButton>

namespace {

class RecordingDisplay : public testing::Test
{
protected:
    RecordingDisplay() { window.show(); }

    QString path(const char* name = "video.avi") const { return folder.filePath(QString::fromUtf8(name)); }

    static QWidget* bar(ImageView* view) { return view->findChild<QWidget*>(QStringLiteral("recordingBar")); }

    static bool waitForText(ImageView* view, const char* text)
    {
        const auto* label = view->findChild<QLabel*>(QStringLiteral("recordingText"));
        return QTest::qWaitFor([&] { return label->text() == QString::fromUtf8(text); });
    }

    bool waitForStatus(const char* text)
    {
        return QTest::qWaitFor([&] { return status()->text() == QString::fromUtf8(text); });
    }

    QToolButton* status() const { return window.findChild<QToolButton*>(QStringLiteral("recordingStatus")); }

    QStringList menuItems() const
    {
        QStringList items;
        for (const QAction* action : status()->findChild<QMenu*>()->actions())
            if (!action->isSeparator())
                items += action->text();
        return items;
    }

    QTemporaryDir folder;
    MainWindow window;
    ImageView* view = window.views().add(greyPicture(64, 48, 10), QStringLiteral("one"));
};

TEST_F(RecordingDisplay, ShowsTimeAndFramesInTheViewAndInTheStatusLine)
{
    EXPECT_FALSE(bar(view)->isVisible());
    EXPECT_FALSE(status()->isVisible());
    ASSERT_TRUE(view->startVideoRecording(path()));
    EXPECT_TRUE(bar(view)->isVisible());
    EXPECT_TRUE(status()->isVisible());
    EXPECT_FALSE(status()->icon().isNull());
    for (int i = 0; i < 3; ++i)
        view->setImage(greyPicture(64, 48, 40));
    view->setImage(std::make_shared<CxImageData>()); // nothing to record
    EXPECT_TRUE(waitForText(view, "0:00 · 3 frames · 0 dropped"));
    EXPECT_TRUE(waitForStatus("Recording 0:00 · 3 frames · 0 dropped"));
    EXPECT_TRUE(waitForText(view, "0:01 · 3 frames · 0 dropped"));
    view->stopVideoRecording();
    EXPECT_FALSE(bar(view)->isVisible());
    EXPECT_FALSE(status()->isVisible());
}

TEST_F(RecordingDisplay, CountsFramesThatDidNotArrive)
{
    view->noteLostFrames(5); // before the recording
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->setImage(greyPicture(64, 48, 40));
    view->noteLostFrames(2);
    view->setImage(greyPicture(64, 48, 40));
    EXPECT_TRUE(waitForText(view, "0:00 · 2 frames · 2 dropped"));
    view->stopVideoRecording();
    ASSERT_TRUE(view->startVideoRecording(path()));
    EXPECT_TRUE(waitForText(view, "0:00 · 0 frames · 0 dropped"));
}

TEST_F(RecordingDisplay, IsStoppedInTheView)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->setImage(greyPicture(64, 48, 40));
    QTest::mouseClick(view->findChild<QPushButton*>(QStringLiteral("stopRecording")), Qt::LeftButton);
    EXPECT_FALSE(view->recorder().isRecording());
    EXPECT_FALSE(bar(view)->isVisible());
    EXPECT_TRUE(QFile::exists(path()));
}

TEST_F(RecordingDisplay, SeveralRecordingsAreCountedTogetherAndStoppedInTheStatusLine)
{
    ImageView* second = window.views().add(greyPicture(64, 48, 10), QStringLiteral("two & more"));
    ImageView* third = window.views().add(greyPicture(64, 48, 10), QStringLiteral("three"));
    for (ImageView* each : {view, second, third})
        ASSERT_TRUE(each->startVideoRecording(path(QByteArray::number(each->id()) + ".avi")));
    for (ImageView* each : {view, second, third})
        each->setImage(greyPicture(64, 48, 40));
    third->noteLostFrames(1);
    EXPECT_TRUE(waitForStatus("3 recordings 0:00 · 3 frames · 1 dropped"));

    QTest::mouseClick(status(), Qt::LeftButton);
    auto* menu = status()->findChild<QMenu*>();
    EXPECT_TRUE(menu->isVisible());
    EXPECT_EQ(menuItems().join(QLatin1Char('|')).toStdString(),
              "Stop Recording of one|Stop Recording of two && more|Stop Recording of three|Stop All Recordings");
    menu->actions().at(1)->trigger();
    menu->close();
    EXPECT_TRUE(view->recorder().isRecording());
    EXPECT_FALSE(second->recorder().isRecording());
    EXPECT_TRUE(waitForStatus("2 recordings 0:00 · 2 frames · 1 dropped"));

    third->close();
    EXPECT_TRUE(waitForStatus("Recording 0:00 · 1 frame · 0 dropped"));
    QTest::mouseClick(status(), Qt::LeftButton);
    EXPECT_EQ(menuItems().join(QLatin1Char('|')).toStdString(), "Stop Recording of one");
    menu->actions().constFirst()->trigger();
    menu->close();
    EXPECT_FALSE(status()->isVisible());
}

TEST_F(RecordingDisplay, VanishesWithItsView)
{
    ASSERT_TRUE(view->startVideoRecording(path()));
    view->setImage(greyPicture(64, 48, 40));
    view->closeMdiView();
    EXPECT_FALSE(status()->isVisible());
    QTest::qWait(300); // the display looks again
    EXPECT_FALSE(status()->isVisible());
}

TEST(ClockTime, HasHoursOnlyIfThereAreAny)
{
    EXPECT_EQ(clockTime(0.9).toStdString(), "0:00");
    EXPECT_EQ(clockTime(61).toStdString(), "1:01");
    EXPECT_EQ(clockTime(3599.9).toStdString(), "59:59");
    EXPECT_EQ(clockTime(3600 + 62).toStdString(), "1:01:02");
}

} // namespace
