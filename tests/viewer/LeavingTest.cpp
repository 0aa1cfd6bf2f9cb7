// The ways in which the program ends while a script runs: what is on standard error, which status, which files.

#include "Program.h"

#include <QtCore/QElapsedTimer>
#include <QtGui/QImage>
#include <QtTest/QTest>

#include <opencv2/videoio.hpp>

#include <csignal>

namespace {

/// On the GUI thread and on a thread of the scripts' own.
class Leaving : public ProgramTest, public testing::WithParamInterface<bool>
{
protected:
    Leaving()
    {
        // A sanitizer would report a crash itself, and leave with a status.
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           QStringLiteral("handle_segv=0:handle_sigbus=0:handle_sigfpe=0:handle_abort=0"));
    }

    QStringList thread() const { return GetParam() ? list({"--worker"}) : QStringList(); }

    /// The options of a run with windows, which nobody sees.
    QStringList withWindow()
    {
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        return thread() + list({"--show"});
    }

    int framesOf(const char* video) const
    {
        cv::VideoCapture capture(path(video).toStdString(), cv::CAP_OPENCV_MJPEG);
        int frames = 0;
        for (cv::Mat frame; capture.read(frame);)
            ++frames;
        return frames;
    }
};

INSTANTIATE_TEST_SUITE_P(Thread, Leaving, testing::Bool(),
                         [](const auto& thread) { return thread.param ? "Worker" : "Gui"; });

void terminate(QProcess& process)
{
    ASSERT_NE(process.processId(), 0) << "the program has ended: " << process.readAllStandardError().toStdString();
    kill(pid_t(process.processId()), SIGTERM);
}

/// A moment after the script has begun.
void terminateSoon(QProcess& process)
{
    QTest::qWait(200);
    terminate(process);
}

const char* const recording = "import sys, time, vantrel\n"
                              "vantrel.record_video_to_file('v.avi')\n"
                              "for i in range(3): vantrel.set_view_image(vantrel.get_view_image())\n"
                              "sys.stderr.write('said\\n')\n"
                              "print('begun')\n";

TEST_P(Leaving, BySystemExitWithAWindowAndMuchOutputIsQuiet)
{
    for (int i = 0; i < 3; ++i) {
        const Outcome outcome = run("import sys, time\n"
                                    "for i in range(20000): print('line', i)\n"
                                    "time.sleep(0.2)\n"
                                    "print('end')\n"
                                    "sys.exit(7)\n",
                                    withWindow());
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(outcome.status, 7) << outcome.signal;
        EXPECT_TRUE(outcome.output.ends_with("line 19999\nend\n"));
    }
}

TEST_P(Leaving, BySystemExitDestroysNoObjectThatIsNewerThanTheRun)
{
    // What is registered last is called first.
    const Outcome outcome = run("import ctypes, sys\n"
                                "library = ctypes.CDLL(None)\n"
                                "library.__cxa_atexit(ctypes.cast(library.abort, ctypes.c_void_p), None, None)\n"
                                "sys.exit(7)\n",
                                thread());
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 7) << outcome.signal;
}

TEST_P(Leaving, ByACallOfExitFromALibraryIsQuietAndLosesNothing)
{
    const Outcome outcome = run("import ctypes, sys, time\n"
                                "for i in range(20000): print('line', i)\n"
                                "sys.stderr.write('said\\n')\n"
                                "time.sleep(0.2)\n"
                                "ctypes.CDLL(None).exit(7)\n",
                                withWindow());
    EXPECT_EQ(outcome.errors, "said\n");
    EXPECT_EQ(outcome.status, 7) << outcome.signal;
}

TEST_P(Leaving, BySigtermShowsWhatTheScriptHasSaid)
{
    for (const char* rest : {"while True: pass\n", "time.sleep(600)\n", "import vantrel\nvantrel.wait(600)\n",
                             "import threading\nthreading.Event().wait(600)\n"}) {
        if (GetParam() && std::string(rest).find("vantrel.wait") != std::string::npos)
            continue; // not allowed there
        for (const QStringList& options : {thread(), withWindow()}) {
            const std::string script =
                std::string("import sys, time\nsys.stderr.write('said\\n')\nprint('begun')\n") + rest;
            QElapsedTimer clock;
            const Outcome outcome = run(script.c_str(), options, [&clock](QProcess& process) {
                terminateSoon(process);
                clock.start();
            });
            EXPECT_LT(clock.elapsed(), 2500) << rest;
            EXPECT_EQ(outcome.errors, "said\n") << rest;
            EXPECT_EQ(outcome.signal, SIGTERM) << rest << outcome.status;
        }
    }
}

TEST_P(Leaving, BySigtermDoesNotWaitLongForACallThatCannotBeInterrupted)
{
    const Outcome outcome =
        run("import sys\nsys.stderr.write('said\\n')\nprint('begun')\nsum(range(10 ** 12))\n", thread(), terminateSoon);
    EXPECT_EQ(outcome.errors, "said\n");
    EXPECT_EQ(outcome.signal, SIGTERM) << outcome.status;
}

TEST_F(ProgramTest, ASecondSigtermEndsTheProgramAtOnce)
{
    QElapsedTimer clock;
    const Outcome outcome = run("import sys\nsys.stderr.write('said\\n')\nprint('begun')\nsum(range(10 ** 12))\n", {},
                                [&clock](QProcess& process) {
                                    terminateSoon(process);
                                    QTest::qWait(200);
                                    clock.start();
                                    terminate(process);
                                });
    EXPECT_LT(clock.elapsed(), 1500);
    EXPECT_EQ(outcome.errors, "said\n");
    EXPECT_EQ(outcome.signal, SIGTERM) << outcome.status;
}

TEST_P(Leaving, ByACrashShowsWhatTheScriptHasSaid)
{
    const std::vector<std::pair<const char*, int>> crashes = {
        {"os.kill(os.getpid(), signal.SIGSEGV)\ntime.sleep(60)\n", SIGSEGV},
        {"ctypes.string_at(8)\n", SIGSEGV},
        {"os.abort()\n", SIGABRT},
        {"ctypes.CDLL(None).abort()\n", SIGABRT},
        {"os.kill(os.getpid(), signal.SIGFPE)\ntime.sleep(60)\n", SIGFPE},
        {"signal.raise_signal(signal.SIGBUS)\n", SIGBUS},
        // A stack that is used up leaves no room for a handler.
        {"import threading\n@ctypes.CFUNCTYPE(None)\ndef again(): again()\nsys.setrecursionlimit(10**9)\nagain()\n",
         SIGSEGV},
    };
    for (const auto& [crash, number] : crashes) {
        const std::string script = std::string("import ctypes, os, resource, signal, sys, time\n"
                                               "resource.setrlimit(resource.RLIMIT_CORE, (0, 0))\n"
                                               "sys.stderr.write('said ')\nprint('more', file=sys.stderr)\n") +
                                   crash;
        const Outcome outcome = run(script.c_str(), thread());
        EXPECT_EQ(outcome.errors, "said more\n") << crash;
        EXPECT_EQ(outcome.signal, number) << crash << outcome.status;
    }
}

TEST_P(Leaving, ByACrashShowsNothingTwice)
{
    const QString first = write("first.py", "import sys\nsys.stderr.write('first\\n')\n");
    const Outcome outcome =
        run("import os, sys\nsys.stderr.write('second\\n')\nos.abort()\n", thread() + QStringList(first));
    EXPECT_EQ(outcome.errors, "first\nsecond\n");
    EXPECT_EQ(outcome.signal, SIGABRT);
}

TEST_P(Leaving, ByACrashShowsMuchTextWhole)
{
    const Outcome outcome = run("import os, sys\n"
                                "for i in range(30000): print('line', i, 'ä', file=sys.stderr)\n"
                                "os.abort()\n",
                                thread());
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 30000);
    EXPECT_TRUE(outcome.errors.ends_with("line 29999 ä\n"));
}

TEST_P(Leaving, ByOsExitShowsWhatTheScriptHasSaid)
{
    const Outcome outcome = run("import os, sys\nsys.stderr.write('said\\n')\nos._exit(3)\n", thread());
    EXPECT_EQ(outcome.errors, "said\n");
    EXPECT_EQ(outcome.status, 3) << outcome.signal;
}

TEST_P(Leaving, TheFaultHandlerOfTheLanguageWorksToo)
{
    const Outcome outcome = run("import faulthandler, os, signal, sys\n"
                                "faulthandler.enable(file=sys.__stderr__)\n"
                                "sys.stderr.write('said\\n')\n"
                                "os.kill(os.getpid(), signal.SIGSEGV)\nfor i in range(10**9): pass\n",
                                thread());
    EXPECT_NE(outcome.errors.find("Fatal Python error: Segmentation fault"), std::string::npos) << outcome.errors;
    EXPECT_TRUE(outcome.errors.ends_with("said\n")) << outcome.errors;
    EXPECT_EQ(outcome.signal, SIGSEGV);
}

TEST_P(Leaving, AScriptMayHandleSigtermItself)
{
    const Outcome outcome = run("import os, signal, time\n"
                                "signal.signal(signal.SIGTERM, lambda number, frame: print('handled'))\n"
                                "os.kill(os.getpid(), signal.SIGTERM)\n"
                                "time.sleep(0.1)\n",
                                thread());
    EXPECT_EQ(outcome.output, "handled\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0) << outcome.signal;
}

TEST_P(Leaving, AForkedChildSaysWhatItHasToSayOnceAndEndsAlone)
{
    const char* const ways[] = {"os._exit(3)",
                                "sys.exit(3)",
                                "sys.exit('a text')",
                                "os.abort()",
                                "1/0",
                                "pass",
                                "os.kill(os.getpid(), signal.SIGTERM); time.sleep(60)"};
    const char* const results[] = {"3", "3", "1", "-6", "1", "0", "-15"};
    for (std::size_t i = 0; i < std::size(ways); ++i) {
        const std::string script = std::string("import os, resource, signal, sys, time\n"
                                               "resource.setrlimit(resource.RLIMIT_CORE, (0, 0))\n"
                                               "sys.stderr.write('parent\\n')\n"
                                               "child = os.fork()\n"
                                               "if child == 0:\n"
                                               "    print('in the child')\n"
                                               "    sys.stderr.write('child')\n"
                                               "    ") +
                                   ways[i] +
                                   "\n"
                                   "else:\n"
                                   "    status = os.waitpid(child, 0)[1]\n"
                                   "    print(os.WEXITSTATUS(status) if os.WIFEXITED(status) else "
                                   "-os.WTERMSIG(status))\n";
        const Outcome outcome = run(script.c_str(), thread());
        EXPECT_EQ(outcome.output, std::string("in the child\n") + results[i] + "\n") << ways[i];
        EXPECT_EQ(outcome.errors.find("child"), 0U) << ways[i] << outcome.errors;
        EXPECT_EQ(outcome.errors.rfind("child"), 0U) << ways[i] << outcome.errors;
        EXPECT_TRUE(outcome.errors.ends_with("parent\n")) << ways[i] << outcome.errors;
        EXPECT_EQ(outcome.errors.find("parent"), outcome.errors.rfind("parent")) << ways[i] << outcome.errors;
        EXPECT_EQ(outcome.errors.find("Error") != std::string::npos, ways[i] == std::string("1/0")) << outcome.errors;
        EXPECT_EQ(outcome.status, 0) << ways[i] << outcome.signal;
    }
}

TEST_P(Leaving, ProcessesOfTheLibraryCanBeTerminated)
{
    const Outcome outcome = run("import multiprocessing, time\n"
                                "fork = multiprocessing.get_context('fork')\n"
                                "child = fork.Process(target=time.sleep, args=(600,))\n"
                                "child.start()\n"
                                "child.terminate()\n"
                                "child.join()\n"
                                "print(child.exitcode)\n",
                                thread());
    EXPECT_EQ(outcome.output, "-15\n") << outcome.errors;
    EXPECT_EQ(outcome.status, 0) << outcome.signal;
}

class LeavingWithAVideo : public Leaving
{
protected:
    void SetUp() override { ASSERT_TRUE(QImage(64, 48, QImage::Format_Grayscale8).save(path("a.png"))); }
};

INSTANTIATE_TEST_SUITE_P(Thread, LeavingWithAVideo, testing::Values(false),
                         [](const auto& thread) { return thread.param ? "Worker" : "Gui"; });

TEST_P(LeavingWithAVideo, BySigtermCompletesIt)
{
    for (const char* rest : {"while True: pass\n", "time.sleep(600)\n", "vantrel.wait(600)\n"}) {
        const Outcome outcome = run((std::string(recording) + rest).c_str(), list({"--open", "a.png"}), terminateSoon);
        EXPECT_EQ(outcome.errors, "said\n") << rest;
        EXPECT_EQ(outcome.signal, SIGTERM) << outcome.status;
        EXPECT_EQ(framesOf("v.avi"), 3) << rest;
    }
}

} // namespace
