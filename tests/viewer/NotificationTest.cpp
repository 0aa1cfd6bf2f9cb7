#include "window/NotificationArea.h"

#include "scripting/ApplicationDelegate.h"
#include "window/MainWindow.h"

#include <QtTest/QTest>
#include <QtWidgets/QStatusBar>

#include <gtest/gtest.h>

namespace {

class Notifications : public testing::Test
{
protected:
    Notifications() { window.show(); }

    void notify(const char* text) { delegate.showNotification(QString::fromUtf8(text)); }
    std::string shown() { return area->isVisible() ? area->text().toStdString() : std::string("(none)"); }

    MainWindow window;
    ApplicationDelegate delegate{window};
    NotificationArea* area = window.findChild<NotificationArea*>();
};

TEST_F(Notifications, AppearInTheCornerAndInTheStatusLine)
{
    EXPECT_EQ(shown(), "(none)");
    notify("Saved");
    EXPECT_EQ(shown(), "Saved");
    EXPECT_EQ(window.statusBar()->currentMessage(), QStringLiteral("Saved"));
    const QRect place = area->geometry();
    EXPECT_TRUE(window.rect().contains(place));
    EXPECT_LT(window.width() - place.right(), 30);
    EXPECT_LE(place.bottom(), window.statusBar()->geometry().top());
    EXPECT_LT(window.statusBar()->geometry().top() - place.bottom(), 30);
}

TEST_F(Notifications, StayInTheCornerWhenTheWindowChangesItsSize)
{
    notify("Saved");
    window.resize(500, 400);
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.rect().contains(area->geometry()));
    EXPECT_LT(window.width() - area->geometry().right(), 30);
}

TEST_F(Notifications, AreShownOneAfterAnother)
{
    notify("one");
    notify("two");
    notify("three");
    EXPECT_EQ(shown(), "one");
    EXPECT_EQ(area->waiting(), 2);
    QTest::mouseClick(area, Qt::LeftButton);
    EXPECT_EQ(shown(), "two");
    EXPECT_EQ(window.statusBar()->currentMessage(), QStringLiteral("two"));
    QTest::mouseClick(area, Qt::LeftButton);
    EXPECT_EQ(shown(), "three");
    QTest::mouseClick(area, Qt::LeftButton);
    EXPECT_EQ(shown(), "(none)");
    EXPECT_EQ(window.statusBar()->currentMessage(), QString());
    notify("four");
    EXPECT_EQ(shown(), "four");
}

TEST_F(Notifications, GoByThemselves)
{
    notify("one");
    notify("two");
    EXPECT_TRUE(QTest::qWaitFor([this] { return shown() == "two"; }, NotificationArea::shortTime + 1000));
    EXPECT_TRUE(QTest::qWaitFor([this] { return shown() == "(none)"; }, NotificationArea::usualTime + 1000));
}

TEST_F(Notifications, ShowMarkupAsItIs)
{
    notify("<b>bold</b> & <img src='x'>");
    EXPECT_EQ(area->textFormat(), Qt::PlainText);
    EXPECT_EQ(shown(), "<b>bold</b> & <img src='x'>");
}

TEST_F(Notifications, FitTheWindowAtAnyLength)
{
    delegate.showNotification(QString(1 << 20, u'x'));
    EXPECT_TRUE(window.rect().contains(area->geometry()));
    delegate.showNotification(QString());
    QTest::mouseClick(area, Qt::LeftButton);
    EXPECT_EQ(shown(), "");
}

} // namespace
