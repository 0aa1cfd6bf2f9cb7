#include "views/ImageView.h"

#include "Pictures.h"
#include "scripting/ApplicationDelegate.h"
#include "views/DisplayImage.h"
#include "views/ImageFiles.h"
#include "views/ImageWidget.h"
#include "window/MainWindow.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMenu>
#include <QtWidgets/QStatusBar>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>

namespace {

void settle()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

QString statusText(MainWindow& window)
{
    QStringList texts;
    for (const QLabel* label : window.statusBar()->findChildren<QLabel*>())
        texts += label->text();
    return texts.join(QLatin1Char('|'));
}

/// Everything is to hold with the window hidden and with the window shown.
class Views : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        if (GetParam())
            window.show();
    }

    int add(std::uint8_t grey = 7)
    {
        const int id = window.views().add(greyPicture(8, 6, grey), QStringLiteral("view"))->id();
        settle();
        return id;
    }

    MainWindow window;
    ApplicationDelegate delegate{window};
};

INSTANTIATE_TEST_SUITE_P(Window, Views, testing::Bool(),
                         [](const auto& window) { return window.param ? "Shown" : "Hidden"; });

TEST_P(Views, ShowTheIconOfTheApplication)
{
    const QImage icon = window.views().view(add())->windowIcon().pixmap(64).toImage();
    ASSERT_EQ(icon.size(), QSize(64, 64));
    EXPECT_EQ(icon.pixelColor(8, 32), QColor(0x2B, 0x3A, 0x4A));
}

TEST_P(Views, WithoutViewsTheActiveIdIsNegative)
{
    EXPECT_LT(delegate.activeViewId(), 0);
    EXPECT_EQ(delegate.viewImage(-1), nullptr);
    EXPECT_FALSE(delegate.duplicateView(-1));
}

TEST_P(Views, ANewViewIsTheActiveOne)
{
    const int first = add();
    EXPECT_EQ(delegate.activeViewId(), first);
    const int second = add();
    EXPECT_NE(second, first);
    EXPECT_EQ(delegate.activeViewId(), second);
}

TEST_P(Views, ActivatingChangesTheActiveOneAndUnknownIdsNothing)
{
    const int first = add();
    const int second = add();
    delegate.activateView(first);
    settle();
    EXPECT_EQ(delegate.activeViewId(), first);
    delegate.activateView(-1);
    delegate.activateView(999);
    settle();
    EXPECT_EQ(delegate.activeViewId(), first);
    delegate.activateView(second);
    EXPECT_EQ(delegate.activeViewId(), second);
}

TEST_P(Views, IdsAreNeverUsedAgain)
{
    const int first = add();
    delegate.view(first)->closeMdiView();
    settle();
    EXPECT_NE(add(), first);
}

TEST_P(Views, AClosedViewIsGoneAtOnceAndTheFormerOneIsActive)
{
    const int first = add();
    const int second = add();
    const int third = add();
    delegate.activateView(first);
    settle();
    delegate.view(first)->closeMdiView();
    EXPECT_EQ(delegate.view(first), nullptr);
    EXPECT_EQ(delegate.viewImage(first), nullptr);
    EXPECT_EQ(delegate.activeViewId(), third);
    settle();
    EXPECT_EQ(delegate.activeViewId(), third);
    delegate.view(third)->closeMdiView();
    settle();
    EXPECT_EQ(delegate.activeViewId(), second);
    delegate.view(second)->closeMdiView();
    EXPECT_LT(delegate.activeViewId(), 0);
}

TEST_P(Views, ClosingAViewFreesItsImageAtOnce)
{
    const int before = CxImageData::liveCount();
    const int id = add();
    EXPECT_EQ(CxImageData::liveCount(), before + 1);
    delegate.view(id)->closeMdiView();
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_P(Views, ClosingByHandIsTheSameAsClosingByScript)
{
    const int first = add();
    const int second = add();
    window.views().view(second)->close();
    EXPECT_EQ(delegate.view(second), nullptr);
    EXPECT_EQ(delegate.activeViewId(), first);
    QAction* close = nullptr;
    for (QAction* action : window.menu(MainWindow::FileMenu)->actions())
        if (action->text() == QStringLiteral("&Close"))
            close = action;
    ASSERT_NE(close, nullptr);
    close->trigger();
    EXPECT_EQ(delegate.view(first), nullptr);
    EXPECT_LT(delegate.activeViewId(), 0);
}

TEST_P(Views, ANewViewTakesTheImageOver)
{
    auto* given = new CxImageData;
    ASSERT_TRUE(delegate.newViewWithImage(given, QStringLiteral("mine")));
    EXPECT_EQ(delegate.viewImage(delegate.activeViewId()), given);
    EXPECT_EQ(window.views().active()->windowTitle(), QStringLiteral("mine"));
    EXPECT_FALSE(delegate.newViewWithImage(nullptr, QStringLiteral("none")));
}

/// The views that exist, wherever they are.
int existingViews()
{
    const QWidgetList widgets = QApplication::allWidgets();
    return int(std::count_if(widgets.begin(), widgets.end(),
                             [](QWidget* widget) { return qobject_cast<ImageView*>(widget) != nullptr; }));
}

/// An image whose pixels cannot be had.
class BrokenImage : public CxImageData
{
public:
    SxPicBuf* picBuf() override { throw std::runtime_error("broken"); }
};

TEST_P(Views, AnImageThatCannotBeShownStaysTheCallersAndNoViewIsLeft)
{
    const int first = add();
    const int before = CxImageData::liveCount();
    auto image = std::make_unique<BrokenImage>();
    EXPECT_THROW(delegate.newViewWithImage(image.get(), QStringLiteral("broken")), std::runtime_error);
    ASSERT_EQ(CxImageData::liveCount(), before + 1);
    EXPECT_EQ(window.views().ids(), std::vector<int>{first});
    EXPECT_EQ(delegate.activeViewId(), first);
    EXPECT_EQ(existingViews(), 1);
    settle();
    image.reset();
    EXPECT_EQ(CxImageData::liveCount(), before);
    settle();
    EXPECT_TRUE(delegate.newViewWithImage(new CxImageData, QStringLiteral("next")));
}

TEST_P(Views, TheSameHoldsForAScriptOnAThreadOfItsOwn)
{
    const int first = add();
    const int before = CxImageData::liveCount();
    std::atomic<bool> returned = false;
    std::thread script([&] {
        auto image = std::make_unique<BrokenImage>();
        EXPECT_THROW(delegate.newViewWithImage(image.get(), QStringLiteral("broken")), std::runtime_error);
        EXPECT_EQ(CxImageData::liveCount(), before + 1);
        returned = true;
    });
    while (!returned)
        EXPECT_NO_THROW(QCoreApplication::processEvents());
    script.join();
    EXPECT_EQ(CxImageData::liveCount(), before);
    EXPECT_EQ(delegate.activeViewId(), first);
    EXPECT_EQ(existingViews(), 1);
}

TEST_P(Views, SettingAnImageReplacesTheOldOne)
{
    const int id = add();
    const int before = CxImageData::liveCount();
    auto* image = new CxImageData;
    delegate.setViewImage(id, image);
    EXPECT_EQ(delegate.viewImage(id), image);
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_P(Views, AnImageForAViewThatDoesNotExistIsFreed)
{
    const int before = CxImageData::liveCount();
    delegate.setViewImage(999, new CxImageData);
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_P(Views, ADuplicateHasItsOwnCopyAndIsActive)
{
    const int first = add(42);
    ASSERT_TRUE(delegate.duplicateView(first));
    const int copy = delegate.activeViewId();
    EXPECT_NE(copy, first);
    ASSERT_NE(delegate.viewImage(copy), delegate.viewImage(first));
    EXPECT_EQ(delegate.viewImage(copy)->picBuf()->row(0)[0], 42);
    EXPECT_TRUE(delegate.duplicateView(-1));
    EXPECT_FALSE(delegate.duplicateView(999));
}

TEST_P(Views, AnImageLentToAnotherThreadOutlivesItsView)
{
    const int id = add(42);
    std::thread script([&] {
        CxImageData* lent = delegate.viewImage(id);
        EXPECT_NE(lent, nullptr);
        QMetaObject::invokeMethod(
            &window, [&] { delegate.view(id)->closeMdiView(); }, Qt::BlockingQueuedConnection);
        if (lent) {
            EXPECT_EQ(lent->picBuf()->row(5)[7], 42);
        }
        EXPECT_LT(delegate.activeViewId(), 0);
        QMetaObject::invokeMethod(qApp, [] { QCoreApplication::quit(); });
    });
    QCoreApplication::exec();
    script.join();
}

TEST_P(Views, TilingAndFullScreenKeepThemAll)
{
    add();
    add();
    delegate.tileViews();
    settle();
    EXPECT_EQ(window.views().ids().size(), 2U);
    delegate.setFullScreen(true);
    EXPECT_TRUE(window.isFullScreen());
    EXPECT_EQ(window.isVisible(), GetParam()) << "full screen must not show a hidden window";
    delegate.setFullScreen(false);
    EXPECT_FALSE(window.isFullScreen());
}

TEST_P(Views, WithoutCamerasTheirOperationsSayNo)
{
    EXPECT_FALSE(delegate.setCameraAcquisition(true, nullptr));
    delegate.restartCameraWithDefaults(nullptr);
    EXPECT_EQ(delegate.askUserCaptureImage(nullptr, nullptr, nullptr, nullptr, false, nullptr, 0), nullptr);
}

TEST(MainWindow, HasTheMenusOfEachKind)
{
    MainWindow window;
    EXPECT_EQ(window.menu(MainWindow::FileMenu)->title(), QStringLiteral("&File"));
    EXPECT_EQ(window.menu(3)->title(), QStringLiteral("&Script"));
    EXPECT_EQ(window.menu(0), nullptr);
    EXPECT_EQ(window.menu(99), nullptr);
}

TEST(MainWindow, CanGoWhileViewsAreOpen)
{
    const int before = CxImageData::liveCount();
    {
        MainWindow window;
        window.show();
        window.views().add(greyPicture(8, 6, 1), QStringLiteral("one"));
        window.views().add(greyPicture(8, 6, 1), QStringLiteral("two"))->closeMdiView();
    }
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST(MainWindow, ShowingItKeepsTheActiveViewAndTheOrderOfActivation)
{
    MainWindow window;
    std::vector<int> ids;
    for (const char* title : {"one", "two", "three", "four"})
        ids.push_back(window.views().add(greyPicture(8, 6, 1), QString::fromLatin1(title))->id());
    window.views().activate(ids[0]);
    window.views().activate(ids[2]);
    window.show();
    settle();
    EXPECT_EQ(window.views().store().activeId(), ids[2]);
    EXPECT_EQ(window.views().area()->activeSubWindow(), window.views().view(ids[2]));
    for (const int next : {ids[0], ids[3], ids[1]}) {
        window.views().active()->closeMdiView();
        settle();
        EXPECT_EQ(window.views().store().activeId(), next);
    }
}

TEST(MainWindow, StatusLineTellsTheFormatTheScaleAndThePixel)
{
    MainWindow window;
    window.show();
    ImageView* view = window.views().add(picture<std::uint16_t>(ExImageDataType::UInt16, 12, 2, 1, {1, 2, 3, 4095}),
                                         QStringLiteral("view"));
    view->resize(300, 300);
    settle();
    view->imageWidget()->setScale(2);
    EXPECT_TRUE(statusText(window).contains(QStringLiteral("2 x 2, mono, 12 bit (uint16)")));
    EXPECT_TRUE(statusText(window).contains(QStringLiteral("200%"))) << statusText(window).toStdString();
    ImageWidget* widget = view->imageWidget();
    const QPointF lowerRight = QRectF(widget->rect()).center() + QPointF(1, 1);
    QMouseEvent move(QEvent::MouseMove, lowerRight, widget->mapToGlobal(lowerRight), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
    EXPECT_TRUE(statusText(window).contains(QStringLiteral("(1, 1)  4095"))) << statusText(window).toStdString();
    view->setImage(greyPicture(2, 2, 9));
    EXPECT_TRUE(statusText(window).contains(QStringLiteral("(1, 1)  9"))) << statusText(window).toStdString();
}

TEST(ImageFiles, APictureComesBackAsItWasSaved)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.tif"));
    QString problem;
    ASSERT_TRUE(saveImageFile(*picture<std::uint16_t>(ExImageDataType::UInt16, 12, 2, 1, {0, 4000}), path, problem));
    const auto loaded = loadImageFile(path, problem);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(formatText(*loaded->picBuf()).toStdString(), "2 x 1, mono, 12 bit (uint16)");
    EXPECT_EQ(pixelText(*loaded->picBuf(), 1, 0).toStdString(), "4000");
}

TEST(ImageFiles, UnknownExtensionsAreNeitherReadNorWritten)
{
    QString problem;
    EXPECT_EQ(loadImageFile(QStringLiteral("a.xyz"), problem), nullptr);
    EXPECT_FALSE(saveImageFile(*greyPicture(2, 2, 3), QStringLiteral("a.xyz"), problem));
}

TEST(ImageWidget, FitsTheImageUntilToldAScale)
{
    ImageWidget widget;
    widget.resize(400, 300);
    widget.setImage(greyPicture(800, 300, 1));
    EXPECT_DOUBLE_EQ(widget.scale(), 0.5);
    EXPECT_EQ(widget.pixelAt({0, 80}), QPoint(0, 10));
    EXPECT_EQ(widget.pixelAt({200, 10}), std::nullopt);
    widget.setScale(1);
    EXPECT_DOUBLE_EQ(widget.scale(), 1);
    EXPECT_EQ(widget.pixelAt({200, 150}), QPoint(400, 150));
    widget.zoomToFit();
    EXPECT_TRUE(widget.isFitted());
    EXPECT_DOUBLE_EQ(widget.scale(), 0.5);
}

TEST(ImageWidget, WheelZoomsAroundTheMouse)
{
    ImageWidget widget;
    widget.resize(400, 400);
    widget.setImage(greyPicture(400, 400, 1));
    widget.setScale(2);
    const QPointF mouse(100, 300);
    const auto pixel = widget.pixelAt(mouse);
    QWheelEvent wheel(mouse, mouse, QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &wheel);
    EXPECT_DOUBLE_EQ(widget.scale(), 2.5);
    EXPECT_EQ(widget.pixelAt(mouse), pixel);
}

TEST(ImageWidget, PaintsTheImageScaledForDisplay)
{
    ImageWidget widget;
    widget.resize(100, 100);
    widget.setImage(picture<std::uint16_t>(ExImageDataType::UInt16, 12, 2, 1, {4095, 0, 0, 2048}));
    const QImage shot = widget.grab().toImage();
    EXPECT_EQ(qGray(shot.pixel(25, 25)), 255);
    EXPECT_EQ(qGray(shot.pixel(75, 25)), 0);
    EXPECT_EQ(qGray(shot.pixel(75, 75)), 128);
}

} // namespace
