#include "scripting/ScriptEnvironment.h"

#include "Pictures.h"
#include "views/ImageView.h"
#include "window/MainWindow.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QMenu>

#include <limits>
#include <thread>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

class Environment : public testing::Test
{
protected:
    /// Calls a function when the event loop has run for some milliseconds.
    template<typename Function>
    void later(int milliseconds, Function function)
    {
        QTimer::singleShot(milliseconds, &context, function);
    }

    QObject context;
    QStringList started;
    ScriptEnvironment environment{QStringLiteral("/tmp/scripts"), [this](const QString& path) { started += path; }};
    MainWindow window;
    ImageView* view = window.views().add(greyPicture(4, 4, 1), QStringLiteral("view"));
    QElapsedTimer clock;

    void SetUp() override { clock.start(); }
};

TEST_F(Environment, PublishesOneConstantForEachCameraParameter)
{
    QStringList constants;
    for (const auto& constant : environment.apiParamDefs())
        constants += constant.name + QLatin1Char('=') + constant.value;
    constants.sort();
    EXPECT_EQ(constants.join(QLatin1Char(' ')).toStdString(),
              "PARAM_AUTO_EXPOSURE=auto_exposure PARAM_BLACK_LEVEL=black_level PARAM_COOLING=cooling "
              "PARAM_EXPOSURE=exposure PARAM_FRAMERATE=framerate PARAM_FRAME_COUNT=frame_count PARAM_GAIN=gain "
              "PARAM_LINK_SPEED=link_speed PARAM_SENSOR_TEMPERATURE=sensor_temperature "
              "PARAM_TRIGGER_MODE=trigger_mode");
}

TEST_F(Environment, PublishesOneConstantForEachPixelType)
{
    QStringList constants;
    for (const auto& constant : environment.apiParamEnumVals())
        constants += QStringLiteral("%1=%2").arg(constant.name).arg(constant.value);
    EXPECT_EQ(constants.join(QLatin1Char(' ')).toStdString(),
              "DATA_INT8=1 DATA_UINT8=2 DATA_INT16=3 DATA_UINT16=4 DATA_INT32=5 DATA_UINT32=6 DATA_INT64=7 "
              "DATA_UINT64=8 DATA_FLOAT=9 DATA_DOUBLE=10 DATA_PACKED565=11");
}

TEST_F(Environment, KnowsCameraParametersAndDeviceKeysOnly)
{
    for (const char* name : {"exposure", "gain", "black_level", "framerate", "auto_exposure", "trigger_mode",
                             "frame_count", "cooling", "sensor_temperature", "link_speed", "device_name", "device_type",
                             "device_model_id", "device_sn", "device_user_id", "device_inst_path"})
        EXPECT_TRUE(environment.isCameraParameter(QString::fromUtf8(name))) << name;
    for (const char* name : {"", "Exposure", "set_roi", "device", "exposure:min"})
        EXPECT_FALSE(environment.isCameraParameter(QString::fromUtf8(name))) << name;
}

TEST_F(Environment, ResolvesRelativePathsAgainstTheWorkingDirectory)
{
    EXPECT_EQ(environment.workingDirectory(), QStringLiteral("/tmp/scripts"));
    EXPECT_EQ(environment.resolveFilePath(QStringLiteral("a/b.png")), QStringLiteral("/tmp/scripts/a/b.png"));
    EXPECT_EQ(environment.resolveFilePath(QStringLiteral("./x/../a.png")), QStringLiteral("/tmp/scripts/a.png"));
    EXPECT_EQ(environment.resolveFilePath(QStringLiteral("../a.png")), QStringLiteral("/tmp/a.png"));
    EXPECT_EQ(environment.resolveFilePath(QStringLiteral("/abs//a.png")), QStringLiteral("/abs/a.png"));
    EXPECT_EQ(environment.resolveFilePath(QString()), QString());
}

TEST_F(Environment, ARelativeWorkingDirectoryIsMadeAbsolute)
{
    ScriptEnvironment relative(QStringLiteral("sub"), {});
    EXPECT_EQ(relative.workingDirectory(), QDir::currentPath() + QStringLiteral("/sub"));
}

TEST_F(Environment, KnowsTheMainThread)
{
    EXPECT_TRUE(environment.isMainThread());
    bool elsewhere = true;
    std::thread([&] { elsewhere = environment.isMainThread(); }).join();
    EXPECT_FALSE(elsewhere);
}

TEST_F(Environment, WaitsWhileTheApplicationWorks)
{
    bool worked = false;
    later(20, [&] { worked = true; });
    environment.wait(0.1);
    EXPECT_TRUE(worked);
    EXPECT_GE(clock.elapsed(), 100);
}

TEST_F(Environment, NothingIsWaitedForInNegativeTimesAndNotANumber)
{
    for (const double time : {-1.0, nan, -infinity})
        environment.wait(time);
    EXPECT_LT(clock.elapsed(), 1000);
}

TEST_F(Environment, WaitingNoTimeWorksOffWhatIsPending)
{
    bool worked = false;
    QMetaObject::invokeMethod(
        &context, [&] { worked = true; }, Qt::QueuedConnection);
    environment.wait(0);
    EXPECT_TRUE(worked);
}

TEST_F(Environment, AnEndlessWaitEndsWithTheApplication)
{
    bool ended = false;
    later(0, [&] {
        later(20, [] { QCoreApplication::quit(); });
        environment.wait(infinity);
        ended = true;
    });
    QCoreApplication::exec();
    EXPECT_TRUE(ended);
}

TEST_F(Environment, AFrameEndsTheWaitForIt)
{
    later(20, [&] { view->setImage(greyPicture(4, 4, 2)); });
    EXPECT_TRUE(environment.waitForNextFrame(view, 30));
    EXPECT_LT(clock.elapsed(), 10000);
}

TEST_F(Environment, AFrameThatCameBeforeDoesNotCount)
{
    view->setImage(greyPicture(4, 4, 2));
    EXPECT_FALSE(environment.waitForNextFrame(view, 0.05));
    EXPECT_GE(clock.elapsed(), 50);
}

TEST_F(Environment, AFrameOfAnotherViewDoesNotCount)
{
    ImageView* other = window.views().add(nullptr, QStringLiteral("other"));
    later(10, [&] { other->setImage(greyPicture(4, 4, 2)); });
    EXPECT_FALSE(environment.waitForNextFrame(view, 0.05));
}

TEST_F(Environment, WithoutLimitNoFrameIsWaitedForWhereNoneCanCome)
{
    EXPECT_FALSE(environment.waitForNextFrame(view, -1));
    EXPECT_FALSE(environment.waitForNextFrame(view, infinity));
    EXPECT_LT(clock.elapsed(), 1000);
}

TEST_F(Environment, WithoutLimitAFrameIsWaitedForWhereFramesCome)
{
    view->setLive(true);
    later(50, [&] { view->setImage(greyPicture(4, 4, 2)); });
    EXPECT_TRUE(environment.waitForNextFrame(view, -1));
}

TEST_F(Environment, AWaitWithoutLimitEndsWhenFramesStopComing)
{
    view->setLive(true);
    later(20, [&] { view->setLive(false); });
    EXPECT_FALSE(environment.waitForNextFrame(view, -1));
}

TEST_F(Environment, AWaitEndsWhenTheViewIsClosed)
{
    view->setLive(true);
    later(20, [&] { view->closeMdiView(); });
    EXPECT_FALSE(environment.waitForNextFrame(view, 30));
    EXPECT_LT(clock.elapsed(), 10000);
}

TEST_F(Environment, NoFrameComesInNoTimeNorInNotANumberNorWithoutAView)
{
    view->setLive(true);
    EXPECT_FALSE(environment.waitForNextFrame(view, nan));
    EXPECT_FALSE(environment.waitForNextFrame(view, 0));
    EXPECT_FALSE(environment.waitForNextFrame(nullptr, -1));
    bool elsewhere = true;
    std::thread([&] { elsewhere = environment.waitForNextFrame(view, -1); }).join();
    EXPECT_FALSE(elsewhere);
}

TEST_F(Environment, AMenuItemRunsItsScriptAndShowsItsText)
{
    QMenu* menu = window.menu(MainWindow::ScriptMenu);
    environment.addMenuItem(menu, QStringLiteral("Tool"), QStringLiteral("tools/t.py"), QStringLiteral("what it does"));
    QAction* action = menu->actions().last();
    EXPECT_EQ(action->text(), QStringLiteral("Tool"));
    EXPECT_EQ(action->toolTip(), QStringLiteral("what it does"));
    EXPECT_EQ(action->statusTip(), QStringLiteral("what it does"));
    EXPECT_TRUE(started.isEmpty());
    action->trigger();
    EXPECT_EQ(started, QStringList(QStringLiteral("/tmp/scripts/tools/t.py")));
}

} // namespace
