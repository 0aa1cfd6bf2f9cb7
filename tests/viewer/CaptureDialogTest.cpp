#include "window/CaptureDialog.h"

#include "CameraWindowTest.h"
#include "CxPicBufAPI.h"
#include "views/ImageWidget.h"

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include <cstring>

namespace {

class CaptureDialogTest : public CameraWindowTest
{
protected:
    /// What the user does once the dialog is there.
    using Act = std::function<void(CaptureDialog&)>;

    /// The captured buffer, or null.
    std::unique_ptr<SxPicBuf> ask(const Act& act, int option = -1)
    {
        lastOption = option;
        QTimer::singleShot(0, &window, [act] {
            auto* dialog = qobject_cast<CaptureDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
        });
        QString title = QStringLiteral("Dark frame");
        QString message = QStringLiteral("Close the <lid> & press");
        return std::unique_ptr<SxPicBuf>(
            delegate.askUserCaptureImage(nullptr, handle(), &title, &message, option >= 0, &lastOption, 0));
    }

    static QPushButton* button(const CaptureDialog& dialog, const char* label)
    {
        for (QPushButton* each : dialog.findChildren<QPushButton*>())
            if (each->text().remove(u'&') == QString::fromUtf8(label))
                return each;
        return nullptr;
    }

    static void press(const CaptureDialog& dialog, const char* label)
    {
        QPushButton* found = button(dialog, label);
        ASSERT_NE(found, nullptr) << label;
        found->click();
    }

    static void freePixels(const std::unique_ptr<SxPicBuf>& buffer)
    {
        if (buffer)
            CxPicBufAPI::FreePicBuf(*buffer, true);
    }

    int lastOption = -1;
};

TEST_F(CaptureDialogTest, ShowsTitleMessageAndALivePreview)
{
    ask([](CaptureDialog& dialog) {
        EXPECT_TRUE(dialog.isModal());
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Dark frame"));
        EXPECT_EQ(dialog.findChildren<QLabel*>()[0]->text(), QStringLiteral("Close the <lid> & press"));
        EXPECT_EQ(dialog.findChildren<QLabel*>()[0]->textFormat(), Qt::PlainText);
        EXPECT_TRUE(dialog.findChildren<QComboBox*>().isEmpty());
        auto* preview = dialog.findChild<ImageWidget*>();
        ASSERT_NE(preview, nullptr);
        const QImage before = preview->grab().toImage();
        EXPECT_TRUE(until([&] { return preview->grab().toImage() != before; }));
        press(dialog, "Cancel");
    });
}

TEST_F(CaptureDialogTest, GivesACopyOfTheFrameThatIsShown)
{
    std::shared_ptr<CxImageData> shown;
    QObject::connect(camera(), &ViewerCamera::frameArrived, &window,
                     [&shown](std::shared_ptr<CxImageData> frame) { shown = std::move(frame); });
    const auto buffer = ask([&](CaptureDialog& dialog) {
        ASSERT_TRUE(until([&shown] { return shown && shown->picBuf()->frameNumber >= 2; }));
        press(dialog, "Capture");
    });
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->frameNumber, shown->picBuf()->frameNumber);
    EXPECT_NE(buffer->data, shown->picBuf()->data);
    EXPECT_EQ(std::memcmp(buffer->data, shown->picBuf()->data, buffer->dataSize()), 0);
    freePixels(buffer);
}

TEST_F(CaptureDialogTest, PressedBeforeTheFirstFrameItTakesThatOne)
{
    const auto buffer = ask([](CaptureDialog& dialog) { press(dialog, "Capture"); });
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->frameNumber, 1);
    freePixels(buffer);
}

TEST_F(CaptureDialogTest, RunsTheCameraOnlyWhileItIsShown)
{
    ask([this](CaptureDialog& dialog) {
        EXPECT_TRUE(camera()->isRunning());
        press(dialog, "Cancel");
    });
    EXPECT_FALSE(camera()->isRunning());
    EXPECT_TRUE(window.views().ids().empty());

    delegate.setCameraAcquisition(true, handle());
    ask([](CaptureDialog& dialog) { press(dialog, "Cancel"); });
    EXPECT_TRUE(camera()->isRunning());
}

TEST_F(CaptureDialogTest, GivesNothingHoweverItIsDismissed)
{
    EXPECT_EQ(ask([](CaptureDialog& dialog) { press(dialog, "Cancel"); }), nullptr);
    EXPECT_EQ(ask([](CaptureDialog& dialog) { dialog.close(); }), nullptr);
    EXPECT_EQ(ask([](CaptureDialog& dialog) { dialog.reject(); }), nullptr);
}

TEST_F(CaptureDialogTest, PreselectsTheOptionWhereOneIsGivenAndGivesTheChoiceBack)
{
    const struct {
        int option;
        int selected;
    } rows[] = {{0, 0}, {1, 1}, {2, 2}, {99, 2}};
    for (const auto& row : rows) {
        ask(
            [&row](CaptureDialog& dialog) {
                auto* delays = dialog.findChild<QComboBox*>();
                ASSERT_NE(delays, nullptr);
                EXPECT_EQ(delays->currentIndex(), row.selected);
                delays->setCurrentIndex(1);
                press(dialog, "Cancel");
            },
            row.option);
        EXPECT_EQ(lastOption, 1);
    }
}

TEST_F(CaptureDialogTest, CapturesAfterTheChosenDelay)
{
    QElapsedTimer timer;
    timer.start();
    const auto buffer = ask(
        [](CaptureDialog& dialog) {
            press(dialog, "Capture");
            EXPECT_FALSE(button(dialog, "Capture")->isEnabled());
        },
        CaptureDialog::AfterThreeSeconds);
    ASSERT_NE(buffer, nullptr);
    EXPECT_GE(timer.elapsed(), 2800); // a timer of three seconds may be some percent early
    EXPECT_GT(buffer->frameNumber, 30);
    freePixels(buffer);
}

TEST_F(CaptureDialogTest, GivesNothingWhenNoFrameCanCome)
{
    trigger("line0");
    EXPECT_EQ(ask([](CaptureDialog& dialog) { press(dialog, "Capture"); }), nullptr);
}

TEST_F(CaptureDialogTest, OutlivesARestartOfItsCamera)
{
    EXPECT_EQ(ask([this](CaptureDialog& dialog) {
                  delegate.restartCameraWithDefaults(handle());
                  press(dialog, "Capture");
              }),
              nullptr);
    ASSERT_TRUE(until([] { return CxCameraManager::instance()->openedCameraCount() == 2; }));
    EXPECT_FALSE(camera()->isRunning());
}

TEST_F(CaptureDialogTest, IsNotShownForAHandleThatIsNotInUse)
{
    QString text;
    int option = 0;
    EXPECT_EQ(delegate.askUserCaptureImage(nullptr, nullptr, &text, &text, true, &option, 0), nullptr);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

} // namespace
