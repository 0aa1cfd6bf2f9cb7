// Leaving the process, each time in a process of its own: clean exit status, nothing on standard error.

#include "support/TestSettings.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Left {
    int status = -1; ///< exit status, or -1 when the process crashed or hung
    std::string output;
    std::string errors;
};

Left leaveAt(const char* stage, const char* script = "")
{
    const QTemporaryDir runtimeFolder;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeFolder.path());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.remove(QStringLiteral("PYTHONUNBUFFERED")); // it would hide text that waits to be written
    process.setProcessEnvironment(environment);
    process.start(
        QCoreApplication::applicationDirPath() + QStringLiteral("/plugin_leave_at_stage"),
        {QString::fromLatin1(stage), TestSettings::pluginFile, TestSettings::pythonHome, QString::fromUtf8(script)});
    Left left;
    if (!process.waitForFinished(60'000)) {
        left.errors = process.errorString().toStdString();
        process.kill();
        process.waitForFinished();
        return left;
    }
    if (process.exitStatus() == QProcess::NormalExit)
        left.status = process.exitCode();
    left.output = process.readAllStandardOutput().toStdString();
    left.errors = process.readAllStandardError().toStdString();
    return left;
}

class Leaving : public testing::TestWithParam<const char*>
{
};

TEST_P(Leaving, IsClean)
{
    const Left left = leaveAt(GetParam());
    EXPECT_EQ(left.status, 0);
    EXPECT_EQ(left.errors, "");
}

INSTANTIATE_TEST_SUITE_P(
    Stages, Leaving,
    testing::Values("library_loaded", "library_unloaded", "created", "initialised", "in_the_start_notification",
                    "in_an_output_callback", "in_an_output_callback_of_the_second_run", "in_a_nested_event_loop",
                    "after_a_run", "by_exit_after_a_run", "after_a_failed_run", "after_a_native_exception",
                    "after_finalising", "after_finalising_and_unloading", "after_a_second_start",
                    "after_a_second_start_and_finalising", "after_finalising_and_a_new_start",
                    "after_runs_on_other_threads", "after_runs_on_other_threads_and_finalising",
                    "after_finalising_on_another_thread", "by_system_exit_on_another_thread",
                    "while_a_thread_of_the_script_runs", "while_a_thread_of_the_script_calls_the_module"),
    [](const auto& row) { return std::string(row.param); });

struct Status {
    const char* name;
    const char* script;
    int status;
};

class SystemExitStatus : public testing::TestWithParam<Status>
{
};

TEST_P(SystemExitStatus, IsThatOfTheProcess)
{
    const Left left = leaveAt("script", GetParam().script);
    EXPECT_EQ(left.status, GetParam().status) << left.errors;
    EXPECT_EQ(left.output, "before\n");
}

TEST_P(SystemExitStatus, IsThatOfTheProcessOnAnotherThread)
{
    const Left left = leaveAt("script_on_another_thread", GetParam().script);
    EXPECT_EQ(left.status, GetParam().status) << left.errors;
    EXPECT_EQ(left.output, "before\n");
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, SystemExitStatus,
    testing::Values(
        Status{"None", "print('before')\nraise SystemExit\nprint('after')", 0},
        Status{"Zero", "import sys\nprint('before')\nsys.exit(0)", 0},
        Status{"Number", "print('before')\nraise SystemExit(7)", 7},
        Status{"Text", "import sys\nprint('before')\nsys.exit('a text')", 1},
        Status{"InAFunction", "import sys\ndef f(): sys.exit(5)\nprint('before')\nlist(map(lambda x: f(), [1]))", 5},
        Status{"WithAnImage", "print('before')\nimg = vantrel.Image()\nimg.alloc(4, 4, 1, 8)\nraise SystemExit(3)", 3}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ScriptThatCatchesItsSystemExit, RunsOn)
{
    const Left left = leaveAt("script", "try:\n    raise SystemExit(7)\nexcept SystemExit:\n    print('caught')");
    EXPECT_EQ(left.status, 0);
    EXPECT_EQ(left.output, "caught\n");
    EXPECT_EQ(left.errors, "");
}

TEST(ScriptThatExitsWithAText, ShowsItAndTheErrorsBeforeIt)
{
    const Left left = leaveAt("script", "import sys\nsys.stderr.write('first\\n')\nsys.exit('a text')");
    EXPECT_EQ(left.status, 1);
    EXPECT_EQ(left.errors, "first\na text\n");
}

TEST(ScriptThatExitsWithAText, ShowsItWhenTheHostHasItsOwnWayToLeave)
{
    const Left left = leaveAt("script_after_others_of_a_host_that_leaves_by_itself",
                              "import sys\nsys.stderr.write('first\\n')\nsys.exit('a text')");
    EXPECT_EQ(left.status, 1);
    EXPECT_EQ(left.errors, "first\na text\n");
}

TEST(ScriptThatForks, LeavesItsErrorsToItsChildOnlyOnce)
{
    const Left left = leaveAt("script", "import os, sys\n"
                                        "sys.stderr.write('parent\\n')\n"
                                        "child = os.fork()\n"
                                        "if child == 0:\n"
                                        "    sys.stderr.write('child\\n')\n"
                                        "    sys.exit(3)\n"
                                        "print(os.waitpid(child, 0)[1] >> 8)\n"
                                        "sys.exit(0)\n");
    EXPECT_EQ(left.errors, "child\nparent\n");
    EXPECT_EQ(left.output, "3\n");
    EXPECT_EQ(left.status, 0);
}

// Which modules of compiled code load, although Qt loads the plugin with local symbols.
class ExtensionModule : public testing::TestWithParam<const char*>
{
};

TEST_P(ExtensionModule, Imports)
{
    const std::string module = GetParam();
    const std::string script = "import importlib.util\n"
                               "if importlib.util.find_spec('" +
                               module + "') is None:\n    print('absent')\nelse:\n    import " + module +
                               "\n    print('imported')\n";
    const Left left = leaveAt("script", script.c_str());
    EXPECT_EQ(left.status, 0);
    EXPECT_EQ(left.errors, "");
    if (left.output == "absent\n")
        GTEST_SKIP() << "this Python has no " << module;
    EXPECT_EQ(left.output, "imported\n");
}

INSTANTIATE_TEST_SUITE_P(Modules, ExtensionModule,
                         testing::Values("_ctypes", "ctypes", "_ssl", "ssl", "_json", "_decimal", "sqlite3", "hashlib",
                                         "numpy"),
                         [](const auto& row) { return std::string(row.param); });

TEST(ExtensionModules, Compute)
{
    const Left left = leaveAt("script", "import importlib.util, ctypes\n"
                                        "print(ctypes.sizeof(ctypes.c_int64))\n"
                                        "if importlib.util.find_spec('numpy'):\n"
                                        "    import numpy\n"
                                        "    assert numpy.arange(10).sum() == 45\n");
    EXPECT_EQ(left.status, 0);
    EXPECT_EQ(left.output, "8\n");
    EXPECT_EQ(left.errors, "");
}

TEST(TextForTheProcess, IsWrittenAtTheLatestWhenTheInterpreterIsFinalised)
{
    const Left left =
        leaveAt("script_without_output_callback", "import sys\nprint('plain')\nsys.__stdout__.write('direct')");
    EXPECT_EQ(left.status, 0);
    EXPECT_EQ(left.output, "plain\ndirect");
    EXPECT_EQ(left.errors, "");
}

TEST(TextForTheProcess, IsNotLostByANativeException)
{
    const Left left = leaveAt("after_a_native_exception");
    EXPECT_EQ(left.status, 0);
    EXPECT_NE(left.output.find("direct "), std::string::npos) << left.output;
    EXPECT_NE(left.output.find("[8]\n"), std::string::npos) << left.output;
}

} // namespace
