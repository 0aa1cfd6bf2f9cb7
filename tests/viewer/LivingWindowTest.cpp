// The window while a script works on its thread.

#include "CxImageData.h"
#include "Pictures.h"
#include "ViewerTest.h"
#include "stopping/EventLoops.h"
#include "stopping/RunState.h"
#include "views/ImageView.h"
#include "views/ImageWidget.h"

#include <QtCore/QElapsedTimer>
#include <QtGui/QMouseEvent>
#include <QtTest/QTest>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMdiSubWindow>

#include <algorithm>

namespace {

constexpr int patience = 60000;

class LivingWindow : public ViewerTest
{
protected:
    void SetUp() override
    {
        ViewerTest::SetUp();
        viewer->window().show();
    }

    /// Runs a script that never ends for a while and returns the longest times between two events, in milliseconds:
    /// the median and the maximum.
    std::pair<qint64, qint64> gaps(const char* script)
    {
        const auto count = results.size();
        std::vector<qint64> measured;
        QElapsedTimer clock;
        QTimer timer;
        int left = 60;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            if (!console().contains(QStringLiteral("begun")))
                return;
            if (clock.isValid())
                measured.push_back(clock.elapsed());
            clock.start();
            if (--left == 0)
                viewer->runState().stop();
        });
        timer.start(10);
        run(script);
        QObject context;
        QObject::connect(&viewer->scripts(), &ScriptQueue::becameIdle, &context, [] { QCoreApplication::quit(); });
        EventLoops::run();
        timer.stop();
        EXPECT_EQ(results.size(), count + 1);
        EXPECT_EQ(results.last().count(QStringLiteral("Traceback")), 1) << results.last().toStdString();
        EXPECT_TRUE(results.last().endsWith(QStringLiteral("\nKeyboardInterrupt\n"))) << results.last().toStdString();
        if (measured.empty())
            return {patience, patience};
        std::sort(measured.begin(), measured.end());
        return {measured[measured.size() / 2], measured.back()};
    }

    void expectAnswers(const char* script)
    {
        const auto [median, longest] = gaps(script);
        EXPECT_LE(median, 100) << script;
        EXPECT_LE(longest, 1000) << script; // 250 on an idle machine
    }

    static void dragTo(QWidget& widget, const QPoint& point, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        QMouseEvent move(QEvent::MouseMove, point, widget.mapToGlobal(point), Qt::NoButton, buttons, {});
        QCoreApplication::sendEvent(&widget, &move);
    }

    QAction* item(int menu, const char* text)
    {
        for (QAction* action : viewer->window().menu(menu)->actions())
            if (action->text() == QString::fromUtf8(text))
                return action;
        return nullptr;
    }
};

TEST_F(LivingWindow, AnswersInABusyLoop)
{
    expectAnswers("print('begun')\nwhile True: pass\n");
}

TEST_F(LivingWindow, AnswersInALongComprehension)
{
    expectAnswers("print('begun')\nsum(1 for i in iter(int, 1))\n");
}

TEST_F(LivingWindow, AnswersInASleep)
{
    expectAnswers("import time\nprint('begun')\ntime.sleep(1000)\n");
}

TEST_F(LivingWindow, AnswersInAReadFromASocket)
{
    expectAnswers("import socket\na, b = socket.socketpair()\nprint('begun')\na.recv(1)\n");
}

TEST_F(LivingWindow, AnswersWhileAProgramRuns)
{
    expectAnswers("import subprocess\nprint('begun')\nsubprocess.run(['sleep', '1000'])\n");
}

TEST_F(LivingWindow, AnswersWhileAThreadIsAwaited)
{
    expectAnswers("import threading\nlock = threading.Lock()\nlock.acquire()\nprint('begun')\nlock.acquire()\n");
}

TEST_F(LivingWindow, AnswersInAnEventLoopOfTheLanguage)
{
    expectAnswers("import asyncio\nasync def work():\n    await asyncio.sleep(1000)\n"
                  "print('begun')\nloop = asyncio.new_event_loop()\nloop.run_until_complete(work())\n");
}

/// A script may bring the toolkit along, and run an event loop of its own. This one makes a loop with the library that
/// the viewer uses.
const char* const eventLoop = "import ctypes, threading\n"
                              "core = ctypes.CDLL('libQt6Core.so.6')\n"
                              "loop = ctypes.create_string_buffer(64)\n"
                              "core._ZN10QEventLoopC1EP7QObject(loop, None)\n"
                              "print('begun')\n";

TEST_F(LivingWindow, AnswersInAnEventLoopThatAScriptRuns)
{
    const QByteArray script =
        eventLoop + QByteArray("threading.Timer(2, core._ZN10QEventLoop4quitEv, (loop,)).start()\n"
                               "core._ZN10QEventLoop4execE6QFlagsINS_17ProcessEventsFlagEE(loop, 0)\n"
                               "print('never')\n");
    expectAnswers(script.constData());
    EXPECT_FALSE(console().contains(QStringLiteral("never")));
}

TEST_F(LivingWindow, AnswersWhileAScriptProcessesEvents)
{
    const QByteArray script =
        eventLoop + QByteArray("wait_for_more = 4\n"
                               "while True:\n"
                               "    core._ZN10QEventLoop13processEventsE6QFlagsINS_17ProcessEventsFlagEE(loop, "
                               "wait_for_more)\n");
    expectAnswers(script.constData());
}

/// Scripts that use the toolkit's binding for the language.
class LivingWindowWithBinding : public LivingWindow
{
protected:
    void SetUp() override
    {
        LivingWindow::SetUp();
        run("from PyQt6 import QtWidgets\n");
        ASSERT_TRUE(QTest::qWaitFor([this] { return results.size() == 1; }, patience));
        if (results[0].contains(QStringLiteral("ModuleNotFoundError")))
            GTEST_SKIP() << "PyQt6 is not installed for this Python";
        ASSERT_EQ(results[0].toStdString(), "");
    }

    QByteArray script(const char* body) const { return QByteArray("from PyQt6 import QtCore, QtWidgets\n") + body; }
};

TEST_F(LivingWindowWithBinding, AnswersInAnEventLoop)
{
    expectAnswers(script("loop = QtCore.QEventLoop()\nprint('begun')\nloop.exec()\nprint('never')\n").constData());
    EXPECT_FALSE(console().contains(QStringLiteral("never")));
}

TEST_F(LivingWindowWithBinding, AnswersInAnEventLoopWithSlotsOfTheScript)
{
    expectAnswers(script("import time\n"
                         "def work():\n"
                         "    end = time.monotonic() + 0.05\n"
                         "    while time.monotonic() < end: pass\n"
                         "timer = QtCore.QTimer()\n"
                         "timer.timeout.connect(work)\n"
                         "timer.start(60)\n"
                         "loop = QtCore.QEventLoop()\n"
                         "print('begun')\n"
                         "loop.exec()\n")
                      .constData());
}

TEST_F(LivingWindowWithBinding, AnswersWhileSlotsOfTheScriptAreCalledInTheWindow)
{
    expectAnswers(script("timer = QtCore.QTimer()\n"
                         "timer.timeout.connect(lambda: sum(range(100000)))\n"
                         "timer.start(1)\n"
                         "print('begun')\n"
                         "while True: pass\n")
                      .constData());
}

TEST_F(LivingWindowWithBinding, AnswersInADialogOfTheScript)
{
    expectAnswers(script("box = QtWidgets.QMessageBox()\nprint('begun')\nwhile True: box.exec()\n").constData());
}

TEST_F(LivingWindowWithBinding, AnswersWhileAScriptProcessesEvents)
{
    expectAnswers(script("print('begun')\nwhile True: QtCore.QCoreApplication.processEvents()\n").constData());
}

TEST_F(LivingWindow, ShowsPicturesOfACameraInABusyLoop)
{
    run("import vantrel\ncamera = vantrel.Camera()\ncamera.open_device_by_user_id('LEFT')\n"
        "view = camera.start_acquisition()\nprint('begun')\nwhile True: pass\n");
    int pictures = 0;
    once([this] { return viewer->window().views().active() != nullptr; },
         [&] {
             QObject::connect(viewer->window().views().active(), &ImageView::imageShown, &viewer->window(), [&] {
                 if (++pictures == 20)
                     viewer->runState().stop();
             });
         });
    runAll();
    EXPECT_GE(pictures, 20);
}

TEST_F(LivingWindow, KeepsTheTimeOfASleepAndTheSystemCallsOfAScript)
{
    run("import os, time\n"
        "begin = time.monotonic()\n"
        "time.sleep(0.5)\n"
        "took = time.monotonic() - begin\n"
        "assert 0.5 <= took < 5, took\n"
        "r, w = os.pipe()\n"
        "child = os.fork()\n"
        "if child == 0:\n"
        "    time.sleep(0.3)\n"
        "    end = time.monotonic() + 0.2\n"
        "    while time.monotonic() < end: pass\n"
        "    os.write(w, b'x' * 10)\n"
        "    os._exit(7)\n"
        "assert os.read(r, 100) == b'x' * 10\n"
        "assert os.waitpid(child, 0)[1] == 7 << 8\n"
        "import subprocess\n"
        "assert subprocess.check_output(['sh', '-c', 'sleep 0.3; echo out']) == b'out\\n'\n"
        "print('done')\n");
    runAll();
    EXPECT_EQ(results.join(QString()).toStdString(), "");
    EXPECT_EQ(console().toStdString(), "done\n");
}

TEST_F(LivingWindow, StartsNoSecondScriptInsideTheFirst)
{
    QAction* tool = addItem(write("tool.py", "print('tool')\n"));
    run("import time\nprint('begin')\nend = time.monotonic() + 0.5\nwhile time.monotonic() < end: "
        "pass\nprint('end')\n");
    oncePrinted("begin\n", [&] {
        EXPECT_FALSE(item(MainWindow::ScriptMenu, "&Run Script...")->isEnabled());
        EXPECT_TRUE(item(MainWindow::ScriptMenu, "&Stop")->isEnabled());
        tool->trigger();
    });
    runAll();
    EXPECT_EQ(console().toStdString(), "begin\nend\ntool\n");
    EXPECT_TRUE(item(MainWindow::ScriptMenu, "&Run Script...")->isEnabled());
    EXPECT_FALSE(item(MainWindow::ScriptMenu, "&Stop")->isEnabled());
}

TEST_F(LivingWindow, KeepsAScriptGoingWhileItsOwnDialogIsOpen)
{
    run("import vantrel\nprint('begun')\nfor i in range(5): vantrel.wait(0.05); print(i)\nprint('end')\n");
    bool wasOpen = false;
    oncePrinted("begun\n", [&] { item(MainWindow::FileMenu, "&Open...")->trigger(); });
    QObject::connect(&viewer->scripts(), &ScriptQueue::runEnded, &viewer->window(), [&] {
        auto* dialog = viewer->window().findChild<QFileDialog*>();
        wasOpen = dialog && dialog->isVisible();
    });
    runAll();
    EXPECT_TRUE(wasOpen);
    EXPECT_EQ(console().toStdString(), "begun\n0\n1\n2\n3\n4\nend\n");
}

TEST_F(LivingWindow, AStopLeavesTheDialogsOfTheUserOpen)
{
    run("import vantrel\nprint('begun')\nvantrel.wait(600)\n");
    oncePrinted("begun\n", [&] {
        item(MainWindow::FileMenu, "&Open...")->trigger();
        QTimer::singleShot(100, &viewer->window(), [this] { viewer->runState().stop(); });
    });
    // Not runAll(): leaving the event loop closes all windows.
    ASSERT_TRUE(QTest::qWaitFor([this] { return results.size() == 1; }, patience));
    auto* dialog = viewer->window().findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(LivingWindow, ClosesAViewThatAScriptReadsAllTheTime)
{
    ImageView* view = viewer->window().views().add(std::make_shared<CxImageData>(), QStringLiteral("view"));
    run("import vantrel\nprint('begun')\nwhile True:\n    if vantrel.get_active_view_id() < 0: break\n"
        "vantrel.close_view()\nprint('gone')\n");
    oncePrinted("begun\n", [view] { view->close(); });
    runAll();
    EXPECT_EQ(console().toStdString(), "begun\ngone\n");
}

TEST_F(LivingWindow, ZoomsAndMovesViewsInABusyLoop)
{
    ImageView* view = viewer->window().views().add(greyPicture(64, 48, 10), QStringLiteral("view"));
    run("print('begun')\nwhile True: pass\n");
    double before = 0;
    oncePrinted("begun\n", [&] {
        before = view->imageWidget()->scale();
        item(MainWindow::ViewMenu, "Zoom &In")->trigger();
        QWidget* frame = view;
        while (!qobject_cast<QMdiSubWindow*>(frame))
            frame = frame->parentWidget();
        const QPoint place = frame->pos();
        const QPoint title(frame->width() / 2, 8);
        dragTo(*frame, title, Qt::NoButton);
        QTest::mousePress(frame, Qt::LeftButton, {}, title);
        for (int i = 1; i <= 10; ++i) // the frame ignores a move without a pressed button, which QTest would send
            dragTo(*frame, title + QPoint(4 * i, 3 * i));
        QTest::mouseRelease(frame, Qt::LeftButton, {}, title + QPoint(40, 30));
        EXPECT_NE(frame->pos(), place);
        viewer->runState().stop();
    });
    runAll();
    EXPECT_GT(view->imageWidget()->scale(), before);
}

TEST_F(LivingWindow, KeepsALimitedNumberOfLinesAndSaysHowManyItDropped)
{
    run("for i in range(50000): print('line', i)\n");
    runAll();
    const auto* text = viewer->window().findChild<QPlainTextEdit*>(QStringLiteral("scriptOutput"));
    EXPECT_LE(text->blockCount(), 10000);
    EXPECT_GE(text->blockCount(), 9000);
    EXPECT_TRUE(console().endsWith(QStringLiteral("\nline 49999\n")));
    const auto* dropped =
        text->parentWidget()->findChild<QLabel*>(QStringLiteral("droppedLines")); // not that of the log
    ASSERT_NE(dropped, nullptr);
    const QString number = dropped->text().section(QLatin1Char(' '), 0, 0).remove(QLatin1Char(','));
    // The last block is empty: the text ends with a line feed.
    EXPECT_EQ(number.toInt() + text->blockCount() - 1, 50000) << dropped->text().toStdString();
}

TEST_F(LivingWindow, ShowsALineWithoutAnEnd)
{
    run("import sys\nfor i in range(3000): sys.stdout.write('x' * 100)\n");
    runAll();
    EXPECT_EQ(console().count(QLatin1Char('x')), 300000);
}

} // namespace
