// The processing chain of a view, and the panel that shows it.

#include "views/ViewChain.h"

#include "CxChainManager.h"
#include "CxRTTI.h"
#include "Pictures.h"
#include "scripting/ApplicationDelegate.h"
#include "views/ImageView.h"
#include "window/MainWindow.h"

#include <QtCore/QPointer>
#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QToolButton>
#include <QtXml/QDomDocument>

namespace {

class ViewChains : public testing::Test
{
protected:
    ViewChains() { window.show(); }

    CxChainable* add(const char* className, const char* setting = "", const char* value = "")
    {
        auto* stage =
            qobject_cast<CxChainable*>(CxRTTI::instance()->createInstanceOfClass(QString::fromLatin1(className)));
        QDomDocument document;
        QDomElement conf = document.createElement(QStringLiteral("conf"));
        conf.setAttribute(QString::fromLatin1(setting), QString::fromLatin1(value));
        stage->readConfig(conf);
        CxChainable* end = delegate.view(view->id())->chainObject();
        EXPECT_TRUE(CxChainManager::instance()->insertBefore(end->chain(), stage, end));
        return stage;
    }

    int grey() { return delegate.viewImage(view->id())->picBuf()->data[0]; }

    QFrame* panel() { return view->findChild<QFrame*>(QStringLiteral("chainPanel")); }
    QList<QCheckBox*> boxes() { return visible<QCheckBox>(); }
    QList<QToolButton*> removers() { return visible<QToolButton>(); }

    template<typename Widget>
    QList<Widget*> visible()
    {
        QCoreApplication::processEvents(); // new rows show then
        QList<Widget*> found;
        for (Widget* widget : panel()->findChildren<Widget*>()) {
            if (widget->isVisible())
                found.append(widget);
        }
        return found;
    }

    MainWindow window;
    ApplicationDelegate delegate{window};
    ImageView* view = window.views().add(greyPicture(8, 6, 20), QStringLiteral("view"));
};

TEST_F(ViewChains, EveryViewHasAChainObject)
{
    CxChainable* end = delegate.view(view->id())->chainObject();
    ASSERT_NE(end, nullptr);
    ASSERT_NE(end->chain(), nullptr);
    EXPECT_FALSE(end->chain()->stopped());
    EXPECT_EQ(end->chain()->objects(), QList<CxChainable*>({end}));
}

TEST_F(ViewChains, AStageChangesWhatIsShownAndEveryLaterImage)
{
    const auto original = view->image();
    add("GainStage", "gain", "2");
    EXPECT_EQ(grey(), 40);
    EXPECT_EQ(original->picBuf()->data[0], 20); // others may hold it
    view->setImage(greyPicture(8, 6, 30));
    EXPECT_EQ(grey(), 60);
    delegate.setViewImage(view->id(), qobject_cast<CxImageData*>(greyPicture(8, 6, 40)->copy(false)));
    EXPECT_EQ(grey(), 80);
}

TEST_F(ViewChains, StagesWorkInTheirOrder)
{
    add("GainStage", "gain", "2");
    add("InvertStage");
    EXPECT_EQ(grey(), 255 - 40);
}

TEST_F(ViewChains, WithoutAStageThatIsOnTheImageIsShownAsItCame)
{
    const auto original = view->image();
    CxChainable* stage = add("GainStage", "gain", "2");
    stage->setEnabled(false);
    EXPECT_EQ(view->image(), original);
    stage->setEnabled(true);
    EXPECT_EQ(grey(), 40);
    delete stage;
    EXPECT_EQ(view->image(), original);
}

TEST_F(ViewChains, AnImageInAStoppedChainPassesUnchanged)
{
    add("GainStage", "gain", "2");
    view->processingChain().stop();
    EXPECT_EQ(grey(), 40); // shown until the next one comes
    view->setImage(greyPicture(8, 6, 30));
    EXPECT_EQ(grey(), 30);
    view->processingChain().start();
    EXPECT_EQ(grey(), 60);
}

TEST_F(ViewChains, ProcessingAnewIsNoNextImage)
{
    int images = 0;
    QObject::connect(view, &ImageView::imageShown, [&images] { ++images; });
    add("GainStage", "gain", "2");
    EXPECT_EQ(images, 0);
    view->setImage(greyPicture(8, 6, 30));
    EXPECT_EQ(images, 1);
}

TEST_F(ViewChains, ACopyOfAViewShowsTheProcessedImageAndHasAChainOfItsOwn)
{
    add("GainStage", "gain", "2");
    ASSERT_TRUE(delegate.duplicateView(view->id()));
    ImageView* copy = window.views().active();
    EXPECT_EQ(copy->image()->picBuf()->data[0], 40);
    EXPECT_EQ(copy->processingChain().objects().size(), 1);
}

TEST_F(ViewChains, AViewWithoutAnImageTakesStagesToo)
{
    view->setImage(nullptr);
    add("GainStage", "gain", "2");
    EXPECT_EQ(view->image(), nullptr);
    view->setImage(greyPicture(8, 6, 30));
    EXPECT_EQ(grey(), 60);
}

TEST_F(ViewChains, ClosingTheViewEndsItsStages)
{
    const QPointer<CxChainable> stage = add("GainStage", "gain", "2");
    view->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(stage.isNull());
}

// ---- the panel ----

TEST_F(ViewChains, ThePanelShowsUpWithTheFirstStage)
{
    EXPECT_FALSE(panel()->isVisible());
    add("GainStage", "gain", "2");
    add("GaussianBlurStage");
    EXPECT_TRUE(panel()->isVisible());
    ASSERT_EQ(boxes().size(), 2);
    EXPECT_EQ(boxes().at(0)->text(), QStringLiteral("Gain"));
    EXPECT_TRUE(boxes().at(0)->isChecked());
    EXPECT_EQ(boxes().at(1)->text(), QStringLiteral("Gaussian Blur"));
    QStringList texts;
    for (const QLabel* label : visible<QLabel>())
        texts += label->text();
    EXPECT_TRUE(texts.contains(QStringLiteral("gain 2, offset 0"))) << texts.join(u'|').toStdString();
}

TEST_F(ViewChains, AClickSwitchesAStageOffAndOn)
{
    add("GainStage", "gain", "2");
    QTest::mouseClick(boxes().at(0), Qt::LeftButton, {}, QPoint(8, boxes().at(0)->height() / 2));
    EXPECT_EQ(grey(), 20);
    EXPECT_FALSE(boxes().at(0)->isChecked());
    QTest::mouseClick(boxes().at(0), Qt::LeftButton, {}, QPoint(8, boxes().at(0)->height() / 2));
    EXPECT_EQ(grey(), 40);
}

TEST_F(ViewChains, ThePanelFollowsAStageThatIsSwitchedElsewhere)
{
    add("GainStage", "gain", "2")->setEnabled(false);
    EXPECT_FALSE(boxes().at(0)->isChecked());
}

TEST_F(ViewChains, AClickRemovesAStage)
{
    add("GainStage", "gain", "2");
    add("InvertStage");
    QTest::mouseClick(removers().at(0), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    EXPECT_EQ(grey(), 255 - 20);
    ASSERT_EQ(boxes().size(), 1);
    EXPECT_EQ(boxes().at(0)->text(), QStringLiteral("Invert"));
    QTest::mouseClick(removers().at(0), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(panel()->isVisible());
    EXPECT_EQ(grey(), 20);
}

} // namespace
