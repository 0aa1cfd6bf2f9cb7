#include "Program.h"
#include "support/SleepingThread.h"
#include "support/TestSettings.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QImage>
#include <QtTest/QTest>

#include <opencv2/videoio.hpp>

#include <csignal>

namespace {

using testing::Test;

void interrupt(QProcess& process)
{
    kill(pid_t(process.processId()), SIGINT);
}

/// Interrupts a script that waits as soon as the whole process does.
void interruptTheWait(QProcess& process)
{
    EXPECT_TRUE(QTest::qWaitFor([&process] { return processSleeps(process.processId()); }, 60000));
    interrupt(process);
}

/// What is to hold on the GUI thread and on a thread of the scripts' own.
class RunOnEitherThread : public ProgramTest, public testing::WithParamInterface<bool>
{
protected:
    QStringList thread() const { return GetParam() ? list({"--worker"}) : QStringList(); }
};

INSTANTIATE_TEST_SUITE_P(Thread, RunOnEitherThread, testing::Bool(),
                         [](const auto& thread) { return thread.param ? "Worker" : "Gui"; });

TEST_P(RunOnEitherThread, OutputAndErrorsGoTheirOwnWays)
{
    const Outcome outcome = run("import sys\nprint('Grüße', end='')\nsys.stderr.write('öops')\n", thread());
    EXPECT_EQ(outcome.output, "Grüße");
    EXPECT_EQ(outcome.errors, "öops");
    EXPECT_EQ(outcome.status, 0);
}

TEST_P(RunOnEitherThread, AScriptWithoutErrorsGivesStatusZero)
{
    const Outcome outcome = run("print(1)\n", thread());
    EXPECT_EQ(outcome.output, "1\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST_P(RunOnEitherThread, ATracebackIsWrittenVerbatim)
{
    const Outcome outcome = run("raise ValueError('no')\n", thread());
    EXPECT_EQ(outcome.errors, "Traceback (most recent call last):\n  File \"" + path("script.py").toStdString() +
                                  "\", line 1, in <module>\n    raise ValueError('no')\nValueError: no\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST_P(RunOnEitherThread, SystemExitEndsTheProcessWithItsCode)
{
    for (const int code : {0, 7}) {
        const QByteArray script = "import sys\nprint('before')\nsys.exit(" + QByteArray::number(code) + ")\n";
        const Outcome outcome = run(script.constData(), thread());
        EXPECT_EQ(outcome.output, "before\n");
        EXPECT_EQ(outcome.status, code) << outcome.errors;
    }
}

TEST_P(RunOnEitherThread, ATextGivenToSysExitIsShownInEveryRun)
{
    const QString good = write("good.py", "print('good')\n");
    for (const int before : {0, 1, 2}) {
        const Outcome outcome =
            run("import sys\nsys.stderr.write('first\\n')\nsys.exit('a text')\n", thread() + QStringList(before, good));
        EXPECT_EQ(outcome.errors, "first\na text\n") << "after " << before << " runs";
        EXPECT_EQ(outcome.status, 1);
    }
}

TEST_P(RunOnEitherThread, AnInterruptStopsAScriptThatComputes)
{
    const Outcome outcome = run("print('begun')\nwhile True: pass\n", thread(), interrupt);
    EXPECT_NE(outcome.errors.find("KeyboardInterrupt"), std::string::npos) << outcome.errors;
    EXPECT_EQ(outcome.status, 130);
}

TEST_P(RunOnEitherThread, AnInterruptStopsAScriptThatSleeps)
{
    const Outcome outcome = run("import time\nprint('begun')\ntime.sleep(600)\n", thread(), interruptTheWait);
    EXPECT_NE(outcome.errors.find("KeyboardInterrupt"), std::string::npos) << outcome.errors;
    EXPECT_EQ(outcome.status, 130);
}

TEST_P(RunOnEitherThread, ATimerInterruptsASleepThatGoesOnThen)
{
    const Outcome outcome = run("import signal, time, threading\n"
                                "begin = time.monotonic()\n"
                                "took = []\n"
                                "def handle(number, frame):\n"
                                "    took.append(time.monotonic() - begin)\n"
                                "    assert threading.current_thread() is threading.main_thread()\n"
                                "signal.signal(signal.SIGALRM, handle)\n"
                                "signal.setitimer(signal.ITIMER_REAL, 0.2, 0.2)\n"
                                "time.sleep(1.1)\n"
                                "signal.setitimer(signal.ITIMER_REAL, 0)\n"
                                "assert 1.1 <= time.monotonic() - begin < 3, time.monotonic() - begin\n"
                                "assert len(took) >= 4 and took[0] < 0.6, took\n",
                                thread());
    EXPECT_EQ(outcome.errors, "");
}

TEST_P(RunOnEitherThread, AHandlerOfASignalMayEndASleepOrARead)
{
    for (const char* wait :
         {"time.sleep(600)", "os.read(os.pipe()[0], 1)", "lock.acquire()", "subprocess.run(['sleep', '600'])"}) {
        const Outcome outcome = run((std::string("import os, signal, subprocess, threading, time\n"
                                                 "lock = threading.Lock()\n"
                                                 "lock.acquire()\n"
                                                 "def handle(number, frame): raise TimeoutError\n"
                                                 "signal.signal(signal.SIGALRM, handle)\n"
                                                 "signal.alarm(1)\n"
                                                 "try:\n    ") +
                                     wait + "\nexcept TimeoutError:\n    print('ended')\n")
                                        .c_str(),
                                    thread());
        EXPECT_EQ(outcome.output, "ended\n") << wait;
        EXPECT_EQ(outcome.errors, "") << wait;
    }
}

TEST_P(RunOnEitherThread, ProgramsOfAScriptReceiveSignals)
{
    const Outcome outcome = run("import signal, subprocess, sys\n"
                                "child = subprocess.Popen(['sleep', '600'])\n"
                                "child.send_signal(signal.SIGALRM)\n"
                                "print(child.wait())\n"
                                "print(signal.pthread_sigmask(signal.SIG_BLOCK, []))\n",
                                thread());
    EXPECT_EQ(outcome.output, "-14\nset()\n") << outcome.errors;
}

TEST_P(RunOnEitherThread, ImagesArePublishedUnderTheirNames)
{
    ASSERT_TRUE(QImage(6, 4, QImage::Format_Grayscale8).save(path("dark.png")));
    const Outcome outcome = run("print(dark.width, dark.height)\n",
                                thread() + list({"--image"}) + QStringList(QStringLiteral("dark=dark.png")));
    EXPECT_EQ(outcome.output, "6 4\n");
    EXPECT_EQ(outcome.errors, "");
}

using RunCommand = ProgramTest;

TEST_F(RunCommand, LaterScriptsRunAfterOneThatFails)
{
    const QString bad = write("bad.py", "print('bad')\nraise ValueError('no')\n");
    const Outcome outcome = run("print('good')\n", QStringList(bad));
    EXPECT_EQ(outcome.output, "bad\ngood\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(RunCommand, AllScriptsShareOneInterpreterButNoVariables)
{
    const QString first = write("first.py", "import sys\nsys.mine = 1\nother = 2\n");
    const Outcome outcome = run("import sys\nprint(sys.mine, 'other' in globals())\n", QStringList(first));
    EXPECT_EQ(outcome.output, "1 False\n");
}

TEST_F(RunCommand, OutputAppearsAsItIsPrinted)
{
    run("import vantrel\nprint('a', end='')\nvantrel.wait(600)\n", {}, [](QProcess& process) {
        EXPECT_EQ(process.readAllStandardOutput(), "a");
        interruptTheWait(process);
    });
}

TEST_F(RunCommand, ThousandsOfLinesArriveWhole)
{
    const Outcome outcome = run("for i in range(20000): print('line', i, 'ä' * 20)\n");
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 20000);
    EXPECT_NE(outcome.output.find("line 19999 ää"), std::string::npos);
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(RunCommand, ConstantsAreThere)
{
    const Outcome outcome = run("print(PARAM_EXPOSURE, DATA_UINT8, DATA_FLOAT, DATA_PACKED565)\n");
    EXPECT_EQ(outcome.output, "exposure 2 9 11\n");
}

TEST_F(RunCommand, AnInterruptStopsAScriptThatWaits)
{
    QElapsedTimer clock;
    clock.start();
    const Outcome outcome = run("import vantrel\n"
                                "print('begun')\n"
                                "try:\n"
                                "    vantrel.wait(600)\n"
                                "except KeyboardInterrupt:\n"
                                "    print('stopped')\n"
                                "vantrel.wait(0.2)\n"
                                "print('went on')\n",
                                {}, interruptTheWait);
    EXPECT_EQ(outcome.output, "begun\nstopped\nwent on\n");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
}

TEST_F(RunCommand, AnInterruptStopsOneScriptOfSeveral)
{
    const QString first = write("first.py", "import vantrel\nprint('begun')\nvantrel.wait(600)\n");
    const Outcome outcome = run("print('next')\n", QStringList(first), interruptTheWait);
    EXPECT_EQ(outcome.output, "begun\nnext\n");
    EXPECT_EQ(outcome.status, 130);
}

TEST_F(RunCommand, OnItsOwnThreadAScriptMayNotTouchTheWindows)
{
    const Outcome outcome = run("import vantrel\nvantrel.tile_views()\n", list({"--worker"}));
    EXPECT_NE(outcome.errors.find("Exception: running GUI function from non-main thread"), std::string::npos);
}

TEST_F(RunCommand, OnItsOwnThreadAScriptCanReadAViewsImage)
{
    ASSERT_TRUE(QImage(6, 4, QImage::Format_Grayscale8).save(path("a.png")));
    const Outcome outcome =
        run("import vantrel\nprint(vantrel.get_view_image().width)\n", list({"--worker", "--open", "a.png"}));
    EXPECT_EQ(outcome.output, "6\n") << outcome.errors;
}

TEST_F(RunCommand, FilesAreOpenedBeforeTheFirstScript)
{
    ASSERT_TRUE(QImage(6, 4, QImage::Format_Grayscale8).save(path("a.png")));
    ASSERT_TRUE(QImage(3, 2, QImage::Format_Grayscale8).save(path("b.png")));
    const Outcome outcome = run("import vantrel\n"
                                "last = vantrel.get_active_view_id()\n"
                                "print(vantrel.get_view_image(last).width, vantrel.get_view_image(last - 1).width)\n",
                                list({"--open", "a.png", "--open", "b.png"}));
    EXPECT_EQ(outcome.output, "3 6\n") << outcome.errors;
}

TEST_F(RunCommand, ViewsAreSavedBesideTheScriptOrInTheGivenFolder)
{
    ASSERT_TRUE(QImage(6, 4, QImage::Format_Grayscale8).save(path("a.png")));
    ASSERT_TRUE(QDir().mkpath(path("elsewhere")));
    const char* const script = "import vantrel\nvantrel.save_to_file('one/two/b.png')\n";
    EXPECT_EQ(run(script, list({"--open", "a.png"})).status, 0);
    EXPECT_TRUE(QFile::exists(path("one/two/b.png")));
    EXPECT_EQ(run(script, list({"--open", "a.png", "--workdir", "elsewhere"})).status, 0);
    EXPECT_TRUE(QFile::exists(path("elsewhere/one/two/b.png")));
}

TEST_F(RunCommand, ASystemExitWhileAVideoIsRecordedCompletesIt)
{
    ASSERT_TRUE(QImage(64, 48, QImage::Format_Grayscale8).save(path("a.png")));
    const Outcome outcome = run("import sys, vantrel\n"
                                "print(vantrel.record_video_to_file('v.avi'))\n"
                                "for i in range(3): vantrel.set_view_image(vantrel.get_view_image())\n"
                                "sys.exit(5)\n",
                                list({"--open", "a.png"}));
    EXPECT_EQ(outcome.output, "True\n") << outcome.errors;
    EXPECT_EQ(outcome.status, 5);
    cv::VideoCapture video(path("v.avi").toStdString(), cv::CAP_OPENCV_MJPEG);
    int frames = 0;
    for (cv::Mat frame; video.read(frame);)
        ++frames;
    EXPECT_EQ(frames, 3);
}

TEST_F(RunCommand, ARecordingWithoutAFrameLeavesTheOldFile)
{
    ASSERT_TRUE(QImage(64, 48, QImage::Format_Grayscale8).save(path("a.png")));
    write("v.avi", "old");
    for (const char* end : {"vantrel.stop_video_recording()", "import sys; sys.exit(3)", "import os; os._exit(3)",
                            "import os; os.abort()", "vantrel.close_view()"}) {
        const std::string script = std::string("import vantrel\nprint(vantrel.record_video_to_file('v.avi'))\n") + end;
        const Outcome outcome = run(script.c_str(), list({"--open", "a.png"}));
        EXPECT_EQ(outcome.output.substr(0, 5), "True\n") << end << outcome.errors;
        EXPECT_EQ(read("v.avi"), "old") << end;
    }
}

TEST_F(RunCommand, AKilledRecordingLeavesTheOldFile)
{
    ASSERT_TRUE(QImage(64, 48, QImage::Format_Grayscale8).save(path("a.png")));
    write("v.avi", "old");
    const char* const script = "import vantrel\nvantrel.record_video_to_file('v.avi')\n"
                               "for i in range(100): vantrel.set_view_image(vantrel.get_view_image())\n"
                               "print('recording', flush=True)\nvantrel.wait(600)\n";
    run(script, list({"--open", "a.png"}), [](QProcess& process) { process.kill(); });
    EXPECT_EQ(read("v.avi"), "old");
}

TEST_F(RunCommand, DamagedFilesBringOnlyLinesOfItsOwn)
{
    QImage picture(64, 48, QImage::Format_RGB888);
    picture.fill(Qt::white);
    for (int i = 0; i < 64 * 48; ++i)
        picture.setPixel(i % 64, i / 64, QRgb(unsigned(i) * 2654435761U));
    int files = 0;
    for (const char* extension : {"png", "jpg", "bmp", "ppm"}) {
        const QByteArray name = QByteArray("whole.") + extension;
        ASSERT_TRUE(picture.save(path(name.constData())));
        const QByteArray whole = read(name.constData());
        for (const int step : {0, 1, 2, 3, 4}) {
            QByteArray broken = whole;
            broken.replace(whole.size() * (step + 1) / 6, 40, QByteArray(40, char(0x40 + step)));
            write((QByteArray("broken") + QByteArray::number(files++) + '.' + extension).constData(), broken);
            const qsizetype length = whole.size() * (step + 1) / 6;
            write((QByteArray("broken") + QByteArray::number(files++) + '.' + extension).constData(),
                  whole.left(length));
        }
    }
    const Outcome outcome = run("import glob, os, vantrel\nos.chdir(vantrel.get_working_directory())\n"
                                "image = vantrel.Image()\nnames = sorted(glob.glob('broken*'))\n"
                                "for name in names:\n    image.from_file(name)\n    image = vantrel.Image()\n"
                                "print(len(names))\n");
    EXPECT_EQ(outcome.output, std::to_string(files) + "\n") << outcome.errors;
    const QStringList lines = QString::fromStdString(outcome.errors).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    EXPECT_GE(lines.size(), files / 2);
    for (const QString& line : lines)
        EXPECT_TRUE(line.startsWith(QStringLiteral("Cannot read image file ")) ||
                    (line.startsWith(QStringLiteral("Image file ")) && line.contains(QStringLiteral("is damaged"))))
            << line.toStdString();
}

TEST_F(RunCommand, ASaveThatTheDiskDoesNotTakeLeavesTheOldFileAndTheScriptGoesOn)
{
    write("a.bmp", "old");
    const Outcome outcome = run("import resource, vantrel\nimage = vantrel.Image()\nimage.alloc(600, 600, 3, 8)\n"
                                "resource.setrlimit(resource.RLIMIT_FSIZE, (9999, resource.RLIM_INFINITY))\n"
                                "print(image.save_to_file('a.bmp'))\n");
    EXPECT_EQ(outcome.output, "None\n") << outcome.errors;
    EXPECT_NE(outcome.errors.find("a.bmp: it would be larger than files may be\n"), std::string::npos)
        << outcome.errors;
    EXPECT_EQ(read("a.bmp"), "old");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).join(u' '), QStringLiteral("a.bmp script.py"));
}

TEST_F(RunCommand, WaitingForAFrameWhereNoneComesGivesFalse)
{
    ASSERT_TRUE(QImage(6, 4, QImage::Format_Grayscale8).save(path("a.png")));
    const Outcome outcome = run("import vantrel\n"
                                "print(vantrel.wait_for_next_frame(), vantrel.wait_for_next_frame(0.05))\n",
                                list({"--open", "a.png"}));
    EXPECT_EQ(outcome.output, "False False\n") << outcome.errors;
}

TEST_F(RunCommand, LogRecordsGoToTheLogFileWhenThereIsOne)
{
    const char* const script = "import vantrel\nname = 'missing'\nvantrel.open_file(name + '.png')\n";
    const Outcome without = run(script);
    EXPECT_NE(without.errors.find("missing.png"), std::string::npos);
    const Outcome with = run(script, list({"--log", "log.txt"}));
    EXPECT_EQ(with.errors.find("missing.png"), std::string::npos) << with.errors;
    EXPECT_TRUE(read("log.txt").contains("missing.png"));
    EXPECT_EQ(with.errors.substr(0, 9), "Traceback");
}

TEST_F(RunCommand, NothingButTheErrorsIsWrittenWithoutADisplayAndALocale)
{
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    environment.remove(QStringLiteral("XDG_RUNTIME_DIR"));
    const Outcome outcome = run("print('ä')\n");
    EXPECT_EQ(outcome.output, "ä\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(RunCommand, ADisplayThatDoesNotAnswerCountsAsNone)
{
    environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":987"));
    const Outcome outcome = run("import vantrel\nvantrel.tile_views()\nprint('ran')\n");
    EXPECT_EQ(outcome.output, "ran\n") << outcome.errors;
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(RunCommand, ScriptsMayHaveAByteOrderMarkAndWindowsLineEnds)
{
    const Outcome outcome = run("\xEF\xBB\xBFx = 'ä'\r\nif x:\r\n    print(x)\r\n");
    EXPECT_EQ(outcome.output, "ä\n") << outcome.errors;
}

TEST_F(RunCommand, UnreadableFilesGiveStatusTwoBeforeAnyScriptRuns)
{
    const QString script = write("ok.py", "print('ran')\n");
    write("broken.png", "no image");
    const QStringList home = list({"run", "--python-home"}) + QStringList(TestSettings::pythonHome);
    const QList<QStringList> calls = {
        list({"ok.py", "missing.py"}),
        list({"ok.py", "."}),
        list({"--open", "missing.png", "ok.py"}),
        list({"--open", "broken.png", "ok.py"}),
        list({"--open", "ok.py", "ok.py"}),
        list({"--image", "a=missing.png", "ok.py"}),
        list({"--image", "a=broken.png", "ok.py"}),
        list({"--workdir", "missing", "ok.py"}),
        list({"--python-home", "missing", "ok.py"}),
        list({"--log", "missing/log.txt", "ok.py"}),
    };
    for (const QStringList& arguments : calls) {
        const Outcome outcome = call(home + arguments);
        const std::string what = arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(outcome.status, 2) << what;
        EXPECT_EQ(outcome.output, "") << what;
        EXPECT_NE(outcome.errors.find("vantrel run: "), std::string::npos) << what << outcome.errors;
    }
    const Outcome missing = call(home + list({"--open", "missing.png", "ok.py"}));
    EXPECT_NE(missing.errors.find("vantrel run: Cannot open missing.png as an image: it does not exist.\n"),
              std::string::npos)
        << missing.errors;
}

TEST_F(RunCommand, WrongUsageGivesOneSentenceAndStatusTwo)
{
    for (const QStringList& arguments :
         {QStringList(), list({"run"}), list({"fly"}), list({"run", "--fast", "a.py"})}) {
        const Outcome outcome = call(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    }
}

TEST_F(RunCommand, HelpGoesToStandardOutput)
{
    for (const QStringList& arguments : {list({"--help"}), list({"run", "--help"}), list({"view", "--help"})}) {
        const Outcome outcome = call(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.output.substr(0, 6), "Usage:");
        EXPECT_EQ(outcome.errors, "");
    }
}

TEST_F(RunCommand, WindowsWithoutADisplayGiveStatusTwoAndAHint)
{
    write("script.py", "print('ran')\n");
    for (const char* display : {"", ":987"}) { // none, and one that does not answer
        environment.insert(QStringLiteral("DISPLAY"), QString::fromUtf8(display));
        for (const QStringList& arguments : {list({"view"}), list({"run", "--show", "script.py"})}) {
            const Outcome outcome = call(arguments);
            EXPECT_EQ(outcome.status, 2) << display;
            EXPECT_EQ(outcome.output, "");
            EXPECT_NE(outcome.errors.find("there is no display"), std::string::npos) << outcome.errors;
            EXPECT_NE(outcome.errors.find("ssh -X"), std::string::npos) << outcome.errors;
            EXPECT_NE(outcome.errors.find("xvfb-run"), std::string::npos) << outcome.errors;
        }
    }
}

TEST_F(RunCommand, TheViewerStaysOpenAndSaysWhatItCannotShow)
{
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    ASSERT_TRUE(QImage(6, 4, QImage::Format_Grayscale8).save(path("a.png")));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(VANTREL_PROGRAM), list({"view", "a.png", "missing.png"}));
    QByteArray said;
    while (!said.contains("missing.png") && process.waitForReadyRead(30000))
        said += process.readAll();
    EXPECT_TRUE(said.contains("There is no display")) << said.toStdString();
    EXPECT_TRUE(said.contains("missing.png")) << said.toStdString();
    EXPECT_TRUE(said.contains("it does not exist")) << said.toStdString();
    EXPECT_FALSE(said.contains("image file a.png")) << said.toStdString();
    EXPECT_FALSE(process.waitForFinished(300)) << "the viewer has ended by itself";
    process.terminate();
    EXPECT_TRUE(process.waitForFinished(30000));
}

TEST_F(RunCommand, AMissingPluginIsSaidInOneSentence)
{
    environment.insert(QStringLiteral("VANTREL_PLUGIN"), QStringLiteral("/nowhere/plugin.so"));
    const Outcome outcome = run("print(1)\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
}

} // namespace
