// How the program finds the interpreter, its packages and a script's arguments.

#include "Program.h"
#include "support/TestSettings.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <algorithm>

namespace {

class RunLikePython : public ProgramTest
{
protected:
    /// Makes a virtual environment in the folder "env", with a module in it.
    void makeEnvironment()
    {
        const Outcome outcome = run("import os, sys, venv\n"
                                    "os.chdir(os.path.dirname(__file__))\n"
                                    "venv.create('env')\n"
                                    "packages = 'env/lib/python{}.{}/site-packages/'.format(*sys.version_info)\n"
                                    "open(packages + 'of_environment.py', 'w').write('value = 3\\n')\n");
        ASSERT_EQ(outcome.errors, "");
        ASSERT_TRUE(QFileInfo::exists(path("env/pyvenv.cfg")));
    }

    /// Runs a script that must not come to its first line.
    std::string refusal(const QStringList& options)
    {
        const Outcome outcome = run("print('never')\n", options);
        EXPECT_EQ(outcome.status, 2) << outcome.signal;
        EXPECT_EQ(outcome.output, "");
        const std::string start = "vantrel run: ";
        EXPECT_EQ(outcome.errors.substr(0, start.size()), start);
        return outcome.errors.substr(std::min(start.size(), outcome.errors.size()));
    }

    std::string absolute(const char* name) const
    {
        return QDir(folder.path()).absoluteFilePath(QString::fromUtf8(name)).toStdString();
    }
};

TEST_F(RunLikePython, ArgumentsFollowTwoDashes)
{
    write("first.py", "import sys\nprint(sys.argv)\n");
    const QStringList arguments = list({"run", "--python-home"}) + QStringList(TestSettings::pythonHome) +
                                  list({"first.py", "first.py", "--", "--open", "a b", "--", "ä"});
    const Outcome outcome = call(arguments);
    const std::string line = "['first.py', '--open', 'a b', '--', 'ä']\n";
    EXPECT_EQ(outcome.output, line + line) << outcome.errors;
}

TEST_F(RunLikePython, NamesMayContainSignsOfPercent)
{
    write("50%5 %1.py", "import sys\nprint(sys.argv)\n");
    const QStringList arguments =
        list({"run", "--python-home"}) + QStringList(TestSettings::pythonHome) + list({"50%5 %1.py", "--", "%1", "%5"});
    const Outcome outcome = call(arguments);
    EXPECT_EQ(outcome.output, "['50%5 %1.py', '%1', '%5']\n") << outcome.errors;
}

TEST_F(RunLikePython, ModulesBesideTheScriptAreFoundAndReadAgainWhenTheyChange)
{
    write("beside.py", "value = 1\n");
    const QString first = write("first.py", "import beside, os\nprint(beside.value)\n"
                                            "open(beside.__file__, 'w').write('value = 20\\n')\n");
    const Outcome outcome = run("import beside, sys\nprint(beside.value, sys.path[0])\n", QStringList(first));
    EXPECT_EQ(outcome.output, "1\n20 " + folder.path().toStdString() + "\n") << outcome.errors;
}

TEST_F(RunLikePython, PackagesOfAVirtualEnvironmentAreUsed)
{
    makeEnvironment();
    const char* const script = "import of_environment, sys\nprint(of_environment.value, sys.prefix)\n";
    EXPECT_EQ(run(script, list({"--venv", "env"})).output, "3 " + absolute("env") + "\n");
    environment.insert(QStringLiteral("VIRTUAL_ENV"), path("env"));
    EXPECT_EQ(run(script).output, "3 " + absolute("env") + "\n");
    environment.remove(QStringLiteral("VIRTUAL_ENV"));
    EXPECT_EQ(run("import of_environment\n").status, 1);
}

TEST_F(RunLikePython, AVirtualEnvironmentOfAnotherVersionIsRefused)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("env")));
    write("env/pyvenv.cfg", "home = /usr/bin\nversion = 3.7.4\n");
    EXPECT_EQ(refusal(list({"--venv", "env"})),
              "env is a virtual environment of Python 3.7, but scripts run with Python " +
                  TestSettings::pythonVersion.toStdString() + " here.\n");
}

TEST_F(RunLikePython, AFolderThatIsNoVirtualEnvironmentIsRefused)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("env")));
    EXPECT_EQ(refusal(list({"--venv", "env"})), "env is not a virtual environment: there is no pyvenv.cfg in it.\n");
    EXPECT_EQ(refusal(list({"--venv", "missing"})), "missing is not a folder.\n");
}

TEST_F(RunLikePython, AHomeWithoutAPythonIsRefused)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("home")));
    const std::string version = TestSettings::pythonVersion.toStdString();
    EXPECT_EQ(refusal(list({"--python-home", "home"})),
              "home is not the home of a Python " + version + ": there is no lib/python" + version + "/os.py in it.\n");
    write("home/pyvenv.cfg", "");
    EXPECT_EQ(refusal(list({"--python-home", "home"})),
              "home is a virtual environment and not a Python home; use --venv home.\n");
}

TEST_F(RunLikePython, PlainOutputIsThatOfTheInterpreter)
{
    const char* const script = "import sys\n"
                               "print(sys.stdout is sys.__stdout__, sys.stdout.fileno(), sys.stdout.encoding)\n";
    EXPECT_EQ(run(script, list({"--plain-output"})).output, "True 1 utf-8\n");
    EXPECT_EQ(run("import sys\nprint(sys.stdout is sys.__stdout__)\n").output, "False\n");
}

TEST_F(RunLikePython, ProcessesOfAScriptAreThoseOfItsInterpreter)
{
    const Outcome outcome =
        run("import subprocess, sys\n"
            "print(subprocess.check_output([sys.executable, '-c', 'import sys; print(sys.version)'],\n"
            "                              text=True).strip() == sys.version)\n");
    EXPECT_EQ(outcome.output, "True\n") << outcome.errors;
}

TEST_F(RunLikePython, ThreadsGoOnWhileTheScriptWaits)
{
    const Outcome outcome = run("import threading, time, vantrel\n"
                                "ticks = 0\n"
                                "ends = False\n"
                                "def tick():\n"
                                "    global ticks\n"
                                "    while not ends:\n"
                                "        ticks += 1\n"
                                "        time.sleep(0.005)\n"
                                "thread = threading.Thread(target=tick)\n"
                                "thread.start()\n"
                                "def during(wait):\n"
                                "    before = ticks\n"
                                "    wait(0.5)\n"
                                "    return ticks - before\n"
                                "asleep, waiting = during(time.sleep), during(vantrel.wait)\n"
                                "ends = True\n"
                                "thread.join()\n"
                                "assert waiting > 0.5 * asleep, (waiting, asleep)\n");
    EXPECT_EQ(outcome.errors, "");
}

} // namespace
