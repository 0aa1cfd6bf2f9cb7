// Stops that a person asks for, at any moment of a script.

#include "ViewerTest.h"
#include "stopping/RunState.h"
#include "views/ImageView.h"
#include "window/ScriptBar.h"

#include <QtCore/QDir>
#include <QtCore/QRandomGenerator>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <vector>

namespace {

constexpr int patience = 60000;

class Stops : public ViewerTest
{
protected:
    void SetUp() override
    {
        ViewerTest::SetUp();
        viewer->window().show();
        QObject::connect(&viewer->window(), &MainWindow::closed, [this] { ++timesClosed; });
    }

    void pressStop() { viewer->runState().stop(); }

    void moveScriptsToOwnThread()
    {
        Viewer::Settings settings;
        settings.pythonHome = TestSettings::pythonHome;
        settings.showsOutput = true;
        settings.scriptsOnOwnThread = true;
        viewer.reset();
        viewer = std::make_unique<Viewer>(settings);
        ASSERT_EQ(viewer->loadScripting(), QString());
        QObject::connect(&viewer->scripts(), &ScriptQueue::runEnded, [this](const QString& text) { results += text; });
    }

    /// Does something once the script has printed a text. A script on the GUI thread runs inside the event loop, which
    /// comes back to the test only when the script has ended.
    void whenPrinted(const char* text, const std::function<void()>& act)
    {
        once([this, text] { return console().contains(QString::fromUtf8(text)); }, act);
    }

    /// Presses Stop a moment after the script has printed a text.
    void stopWhenPrinted(const char* text)
    {
        whenPrinted(text, [this] { QTimer::singleShot(100, &viewer->window(), [this] { pressStop(); }); });
    }

    bool waitForEnds(qsizetype count)
    {
        return QTest::qWaitFor([&] { return results.size() >= count && !viewer->scripts().isBusy(); }, patience);
    }

    /// The text is one traceback of the script's own lines that ends with KeyboardInterrupt.
    static void expectOneTraceback(const QString& text)
    {
        EXPECT_EQ(text.count(QStringLiteral("Traceback")), 1) << text.toStdString();
        EXPECT_TRUE(text.endsWith(QStringLiteral("\nKeyboardInterrupt\n"))) << text.toStdString();
        EXPECT_FALSE(text.contains(QStringLiteral("vantrel_viewer"))) << text.toStdString();
        EXPECT_FALSE(text.contains(QStringLiteral("ignored"))) << text.toStdString();
    }

    template<typename Widget = QWidget>
    Widget* widget(const char* name)
    {
        return viewer->window().findChild<Widget*>(QString::fromUtf8(name));
    }

    std::string shownState() { return widget<QLabel>("scriptState")->text().toStdString(); }

    /// The dialog that is open and has the text, or null.
    static QMessageBox* box(const char* text)
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* found = qobject_cast<QMessageBox*>(window))
                if (found->isVisible() && found->text() == QString::fromUtf8(text))
                    return found;
        return nullptr;
    }

    static void click(const QMessageBox& box, const char* label)
    {
        for (QAbstractButton* button : box.buttons())
            if (button->text().remove(u'&') == QString::fromUtf8(label))
                return button->click();
        ADD_FAILURE() << "no button " << label;
    }

    int timesClosed = 0;
};

/// Works longer than a frame takes, so that the next frame is there at once and the script waits hardly ever.
const char* const busyLiveLoop = "import vantrel, time\n"
                                 "camera = vantrel.Camera()\n"
                                 "camera.open_device_by_user_id('LEFT')\n"
                                 "view = camera.start_acquisition()\n"
                                 "print('begun')\n"
                                 "while True:\n"
                                 "    vantrel.wait_for_next_frame(1.0, view)\n"
                                 "    end = time.monotonic() + 0.05\n"
                                 "    while time.monotonic() < end: pass\n";

TEST_F(Stops, OfALoopThatWorksLongerThanAFrameTakesLeaveTheWindowOpen)
{
    for (int i = 0; i < 8 && timesClosed == 0; ++i) {
        const auto before = results.size();
        run(busyLiveLoop);
        QTimer::singleShot(200 + 37 * i, &viewer->window(), [this] { pressStop(); });
        ASSERT_TRUE(waitForEnds(before + 1));
        expectOneTraceback(results.last());
        QTest::qWait(20); // a stop that is reported late would close the window now
    }
    EXPECT_EQ(timesClosed, 0);
    EXPECT_TRUE(viewer->window().isVisible());
}

TEST_F(Stops, BelongToTheirRun)
{
    ScriptInterrupt::Run first = 0;
    run("import vantrel\nprint('one')\nvantrel.wait(0.05)\n");
    run("import vantrel, time\nprint('two')\nfor i in range(50): time.sleep(0.005)\nvantrel.wait(0.1)\nprint('end')\n");
    oncePrinted("one\n", [&] { first = ScriptInterrupt::currentRun(); });
    oncePrinted("one\ntwo\n", [&] {
        EXPECT_NE(first, ScriptInterrupt::currentRun());
        viewer->interrupt().stop(first);
        viewer->interrupt().stopForGood(first);
    });
    ASSERT_TRUE(waitForEnds(2));
    EXPECT_EQ(console().toStdString(), "one\ntwo\nend\n");
    pressStop(); // nothing runs
    viewer->interrupt().interruptScript();
    QTest::qWait(50);
    EXPECT_EQ(results.join(QString()).toStdString(), "");
    EXPECT_EQ(timesClosed, 0);
}

TEST_F(Stops, ForAScriptThatHasJustEndedNeverReachTheNextOfTheQueue)
{
    auto* stop = [this]() -> QAction* {
        for (QAction* action : viewer->window().menu(MainWindow::ScriptMenu)->actions())
            if (action->text() == QStringLiteral("&Stop"))
                return action;
        return nullptr;
    }();
    ASSERT_NE(stop, nullptr);
    run("print('one')\n");
    run("import vantrel\nprint('two')\nvantrel.wait(0.5)\nprint('end')\n");
    run("import vantrel\nprint('three')\nvantrel.wait(600)\n");
    int begun = 1;
    QObject::connect(&viewer->scripts(), &ScriptQueue::runStarted, stop, [&] {
        if (++begun == 2)
            stop->trigger(); // meant for the first script
    });
    oncePrinted("one\ntwo\nend\nthree\n",
                [&] { QTimer::singleShot(300, &viewer->window(), [stop] { stop->trigger(); }); });
    ASSERT_TRUE(waitForEnds(3));
    EXPECT_EQ(console().section(QStringLiteral("Traceback"), 0, 0).toStdString(), "one\ntwo\nend\nthree\n");
    EXPECT_EQ(results[1].toStdString(), "");
    expectOneTraceback(results[2]);
    QCoreApplication::processEvents();
    // A script that the user starts can be stopped at once.
    run("import vantrel\nvantrel.wait(600)\n");
    stop->trigger();
    ASSERT_TRUE(waitForEnds(4));
    expectOneTraceback(results[3]);
}

TEST_F(Stops, AtTheVeryEndOfAScriptNeverReachTheNext)
{
    // The stop comes while the last statement runs: the interpreter would notice it in the next script only.
    for (int i = 0; i < 20; ++i) {
        run("import os, signal\nos.kill(os.getpid(), signal.SIGINT) if True else 0");
        run("print('next')\n");
        ASSERT_TRUE(waitForEnds(2 * i + 2));
        EXPECT_EQ(results[2 * i + 1].toStdString(), "");
    }
    EXPECT_EQ(console().count(QStringLiteral("next")), 20);
    EXPECT_EQ(timesClosed, 0);
}

TEST_F(Stops, EndABusyLoopWithOneTraceback)
{
    run("print('begun')\nwhile True: pass\n");
    whenPrinted("begun", [this] {
        EXPECT_EQ(shownState(), "s.py · running, 0:00");
        pressStop();
        EXPECT_EQ(shownState(), "s.py · stop requested, 0:00");
    });
    ASSERT_TRUE(waitForEnds(1));
    expectOneTraceback(results[0]);
    EXPECT_EQ(shownState(), "s.py · stopped");
}

TEST_F(Stops, WorkWhereCtrlCIsIgnored)
{
    struct sigaction before = {};
    sigaction(SIGINT, nullptr, &before);
    signal(SIGINT, SIG_IGN); // as the shell does for `vantrel view &` in a script; the interpreter leaves it so
    for (const char* body :
         {"while True: pass\n", "import time\ntime.sleep(600)\n", "import vantrel\nvantrel.wait(600)\n"}) {
        const auto count = results.size();
        const QByteArray mark = "begun " + QByteArray::number(count);
        run("print('" + mark + "')\n" + body);
        stopWhenPrinted(mark.constData());
        ASSERT_TRUE(waitForEnds(count + 1));
        expectOneTraceback(results.last());
    }
    sigaction(SIGINT, &before, nullptr);
}

TEST_F(Stops, EndALoopOfDialogs)
{
    run("import vantrel\nwhile True: vantrel.message_box('a', 'b', 'OK', 'Not OK')\n");
    once([] { return box("b") != nullptr; }, [this] { pressStop(); });
    ASSERT_TRUE(waitForEnds(1));
    expectOneTraceback(results[0]);
    EXPECT_EQ(box("b"), nullptr);
}

TEST_F(Stops, ComeFromTheKeyboardWhileADialogOfTheScriptIsOpen)
{
    run("import vantrel\nvantrel.ask_user_for_string('a', 'b')\nprint('never')\n");
    once([] { return QApplication::activeModalWidget() != nullptr; },
         [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Period, Qt::ControlModifier); });
    ASSERT_TRUE(waitForEnds(1));
    expectOneTraceback(results[0]);
}

TEST_F(Stops, ThatAreCaughtAreShownAndStopForGoodEndsTheScript)
{
    run("def work():\n"
        "    while True:\n"
        "        try:\n"
        "            x = 0\n"
        "            while True: x += 1\n"
        "        except BaseException:\n"
        "            print('caught')\n"
        "while True:\n"
        "    try:\n"
        "        work()\n"
        "    except BaseException:\n"
        "        continue\n"
        "    finally:\n"
        "        print('finally')\n");
    QTimer::singleShot(200, &viewer->window(), [this] {
        pressStop();
        EXPECT_EQ(viewer->runState().state(), ScriptState::StopRequested);
    });
    bool wasCaught = false;
    whenPrinted("caught", [&] {
        wasCaught = true;
        EXPECT_FALSE(widget("stopWarning")->isVisible());
    });
    once([this] { return widget("stopWarning")->isVisible(); },
         [this] {
             EXPECT_EQ(viewer->runState().state(), ScriptState::StopCaught);
             EXPECT_NE(shownState().find("the script has caught the stop and goes on"), std::string::npos);
             widget<QPushButton>("stopForGood")->click();
         });
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_TRUE(wasCaught);
    expectOneTraceback(results[0]);
    EXPECT_FALSE(widget("stopWarning")->isVisible());
    run("try:\n    1/0\nexcept ZeroDivisionError:\n    print('next')\n");
    ASSERT_TRUE(waitForEnds(2));
    EXPECT_EQ(results[1].toStdString(), "");
    EXPECT_TRUE(console().contains(QStringLiteral("next")));
}

TEST_F(Stops, BeforeTheFirstLineOfAScriptEndIt)
{
    run("while True: pass\n");
    pressStop(); // the event loop has not started the script
    ASSERT_TRUE(waitForEnds(1));
    expectOneTraceback(results[0]);
}

TEST_F(Stops, ThatAScriptHandlesLetItCleanUp)
{
    run("import time\n"
        "print('begun')\n"
        "try:\n"
        "    time.sleep(600)\n"
        "finally:\n"
        "    print('cleaned')\n");
    stopWhenPrinted("begun");
    ASSERT_TRUE(waitForEnds(1));
    expectOneTraceback(results[0]);
    EXPECT_TRUE(console().contains(QStringLiteral("cleaned")));
}

TEST_F(Stops, ReachAScriptThatUsesTheirSignalItself)
{
    run("import os, signal, time\n"
        "seen = []\n"
        "signal.signal(signal.SIGURG, lambda number, frame: seen.append(number))\n"
        "os.kill(os.getpid(), signal.SIGURG)\n"
        "time.sleep(0.3)\n"
        "print('seen', len(seen))\n"
        "import vantrel\n"
        "vantrel.wait(600)\n");
    stopWhenPrinted("seen 1\n");
    ASSERT_TRUE(waitForEnds(1));
    expectOneTraceback(results[0]);
    run("print('begun')\nwhile True: pass\n"); // the window lives again
    QTimer::singleShot(200, &viewer->window(), [this] { pressStop(); });
    ASSERT_TRUE(waitForEnds(2));
    expectOneTraceback(results[1]);
}

TEST_F(Stops, ByCtrlCStopTheScriptAndThenCloseTheWindow)
{
    run("print('begun')\nwhile True: pass\n");
    whenPrinted("begun", [] { raise(SIGINT); });
    ASSERT_TRUE(waitForEnds(1));
    expectOneTraceback(results[0]);
    QTest::qWait(50);
    EXPECT_EQ(timesClosed, 0);
    raise(SIGINT);
    EXPECT_TRUE(QTest::qWaitFor([this] { return timesClosed == 1; }, patience));
}

TEST_F(Stops, AreAskedAboutWhenTheWindowCloses)
{
    const char* const question = "A script is running: stop it and close?";
    run("print('begun')\nwhile True: pass\n");
    whenPrinted("begun", [&] {
        viewer->window().close();
        ASSERT_NE(box(question), nullptr);
        click(*box(question), "Cancel");
        QTimer::singleShot(100, &viewer->window(), [&] {
            EXPECT_TRUE(viewer->window().isVisible());
            EXPECT_TRUE(viewer->scripts().isBusy());
            viewer->window().close();
            ASSERT_NE(box(question), nullptr);
            click(*box(question), "Stop and Close");
        });
    });
    ASSERT_TRUE(waitForEnds(1));
    expectOneTraceback(results[0]);
    EXPECT_EQ(timesClosed, 1);
}

TEST_F(Stops, TheQuestionIsWithdrawnWhenTheScriptEnds)
{
    run("import time\nprint('begun')\ntime.sleep(0.5)\n");
    whenPrinted("begun", [this] { viewer->window().close(); });
    ASSERT_TRUE(waitForEnds(1));
    QTest::qWait(50);
    EXPECT_EQ(box("A script is running: stop it and close?"), nullptr);
    EXPECT_TRUE(viewer->window().isVisible());
}

TEST_F(Stops, InACallThatCannotBeInterruptedAreShownAsThat)
{
    // The window lives beside a thread of the scripts, and can show what it waits for.
    moveScriptsToOwnThread();
    viewer->window().show();
    run("import ctypes\nprint('begun')\nctypes.PyDLL(None).system(b'sleep 5')\nprint('never')\n");
    stopWhenPrinted("begun");
    ASSERT_TRUE(QTest::qWaitFor([this] { return widget("stopWarning")->isVisible(); }, patience));
    EXPECT_EQ(viewer->runState().state(), ScriptState::Uninterruptible);
    EXPECT_NE(shownState().find("s.py · waiting for a call that cannot be interrupted, 0:0"), std::string::npos);
    ASSERT_TRUE(waitForEnds(1));
    expectOneTraceback(results[0]);
    EXPECT_FALSE(widget("stopWarning")->isVisible());
    EXPECT_EQ(shownState(), "s.py · stopped");
    EXPECT_FALSE(console().contains(QStringLiteral("never")));
}

TEST_F(Stops, AreNotWhatOtherEndsAreCalled)
{
    run("1 / 0\n");
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_EQ(shownState(), "s.py · failed");
    run("raise KeyboardInterrupt\n"); // nobody has stopped it
    ASSERT_TRUE(waitForEnds(2));
    EXPECT_EQ(shownState(), "s2.py · failed");
    run("import time\ntime.sleep(0.3)\n");
    ASSERT_TRUE(waitForEnds(3));
    const QString shown = QString::fromStdString(shownState());
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^s3.py · finished in [0-9]+\\.[0-9] s$")).match(shown).hasMatch())
        << shown.toStdString();
}

TEST_F(Stops, ReachTheThreadOfTheScripts)
{
    viewer.reset();
    signal(SIGINT, SIG_IGN);
    moveScriptsToOwnThread();
    for (const char* body : {"while True: pass\n", "import time\ntime.sleep(600)\n"}) {
        const auto count = results.size();
        const QByteArray mark = "begun " + QByteArray::number(count);
        run("print('" + mark + "')\n" + body);
        stopWhenPrinted(mark.constData());
        ASSERT_TRUE(waitForEnds(count + 1));
        expectOneTraceback(results.last());
    }
    signal(SIGINT, SIG_DFL);
}

/// Every kind of work, stopped at random moments, as often as VANTREL_STOPS says.
TEST_F(Stops, AtRandomMomentsEndTheirScriptAndNothingElse)
{
    const std::string live = "import vantrel\n"
                             "camera = vantrel.Camera()\n"
                             "camera.open_device_by_user_id('LEFT')\n"
                             "view = camera.start_acquisition()\n"
                             "print('begun')\n";
    const std::vector<std::pair<const char*, std::string>> kinds = {
        {"live loop", live + "while True: vantrel.wait_for_next_frame(1.0, view)\n"},
        {"busy live loop", busyLiveLoop},
        {"busy loop", "print('begun')\nwhile True: pass\n"},
        {"sleep", "import time\nprint('begun')\ntime.sleep(1000)\n"},
        {"dialogs", "import vantrel\nprint('begun')\nwhile True: vantrel.message_box('a', 'b', 'OK', 'Not OK')\n"},
        {"wait for a frame",
         "import vantrel\nprint('begun')\nvantrel.wait_for_next_frame(1000.0, 1)\n"}, // the empty view
        {"program", "import subprocess\nprint('begun')\nsubprocess.run(['sleep', '1000'])\n"},
        // A loop that is the first statement of a `try` would not do: 3.11 raises the error outside.
        {"swallowing loop", "print('begun')\nwhile True:\n    try:\n        x = 0\n        while True: x += 1\n"
                            "    except BaseException:\n        pass\n"},
    };
    bool isNumber = false;
    const int given = qEnvironmentVariableIntValue("VANTREL_STOPS", &isNumber);
    const int count = isNumber ? given : 3;
    viewer->window().views().add(nullptr, QStringLiteral("first"))->setLive(true);
    run("import vantrel, threading\nprint('first')\n"); // opens nothing, but starts what stays
    ASSERT_TRUE(waitForEnds(1));
    const auto threads = [] { return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs).size(); };
    qsizetype threadsBefore = 0;
    std::size_t viewsBefore = 0;
    for (const auto& [name, script] : kinds) {
        const bool swallows = std::string(name) == "swallowing loop";
        for (int i = 0; i < count; ++i) {
            const auto ended = results.size();
            // Counted from the start of the script on, which may take long, so some stops come before its first line.
            run(QByteArray::fromStdString(script));
            // The first stop may end the script before its `try`; the second one must not come to the next script.
            auto hand = std::make_unique<QObject>();
            QTimer::singleShot(int(QRandomGenerator::global()->bounded(300)), hand.get(), [&] {
                pressStop();
                if (swallows)
                    QTimer::singleShot(50, hand.get(), [this] { viewer->runState().stopForGood(); });
            });
            ASSERT_TRUE(waitForEnds(ended + 1)) << name << ' ' << i;
            hand.reset();
            expectOneTraceback(results.last());
            run("print('next')\n");
            ASSERT_TRUE(waitForEnds(ended + 2)) << name << ' ' << i;
            ASSERT_EQ(results.last().toStdString(), "") << name << ' ' << i;
            ASSERT_EQ(timesClosed, 0) << name << ' ' << i;
            ASSERT_TRUE(viewer->window().isVisible());
            // A live view that was opened stays; each camera has one.
            const std::size_t views = viewer->window().views().ids().size();
            ASSERT_GE(views, viewsBefore);
            ASSERT_LE(views, 2U);
            viewsBefore = views;
            if (threadsBefore == 0)
                threadsBefore = threads();
            ASSERT_LE(threads(), threadsBefore + 1) << name << ' ' << i;
            // A program that the language's library has killed may wait to be reaped; none may run.
            const auto isGone = [] {
                pid_t child = 0;
                do
                    child = waitpid(-1, nullptr, WNOHANG);
                while (child > 0);
                return child < 0 && errno == ECHILD;
            };
            ASSERT_TRUE(QTest::qWaitFor(isGone, 5000)) << name << " left a child";
        }
    }
}

} // namespace
