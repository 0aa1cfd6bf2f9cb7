#include "CommandLine.h"

#include <gtest/gtest.h>

namespace {

using Command = CommandLine::Command;

CommandLine parse(const char* arguments)
{
    return parseCommandLine(QString::fromUtf8(arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

TEST(CommandLine, RunTakesAllItsOptions)
{
    const CommandLine line =
        parse("run --open a.png --open b.png --image dark=d.tif --sim-cameras 3 --answer Yes "
              "--answer <cancel> --worker --workdir w --python-home h --log l --show one.py two.py");
    ASSERT_EQ(line.command, Command::Run) << line.text.toStdString();
    const RunOptions& run = line.run;
    EXPECT_EQ(run.filesToOpen, QStringList({QStringLiteral("a.png"), QStringLiteral("b.png")}));
    ASSERT_EQ(run.images.size(), 1);
    EXPECT_EQ(run.images[0], std::pair(QStringLiteral("dark"), QStringLiteral("d.tif")));
    EXPECT_EQ(run.simulatedCameras, 3);
    EXPECT_EQ(run.answers, QStringList({QStringLiteral("Yes"), QStringLiteral("<cancel>")}));
    EXPECT_TRUE(run.worker);
    EXPECT_EQ(run.workingDirectory, QStringLiteral("w"));
    EXPECT_EQ(run.pythonHome, QStringLiteral("h"));
    EXPECT_EQ(run.logFile, QStringLiteral("l"));
    EXPECT_TRUE(run.show);
    EXPECT_EQ(run.scripts, QStringList({QStringLiteral("one.py"), QStringLiteral("two.py")}));
}

TEST(CommandLine, RunHasTwoCamerasAndNoWindowsByDefault)
{
    const CommandLine line = parse("run one.py");
    ASSERT_EQ(line.command, Command::Run);
    EXPECT_EQ(line.run.simulatedCameras, 2);
    EXPECT_FALSE(line.run.show);
    EXPECT_FALSE(line.run.worker);
}

TEST(CommandLine, AnAnswerMayBeEmptyOrLookLikeAnOption)
{
    const QStringList arguments = {QStringLiteral("run"),      QStringLiteral("--answer"), QString(),
                                   QStringLiteral("--answer"), QStringLiteral("-5"),       QStringLiteral("one.py")};
    const CommandLine line = parseCommandLine(arguments);
    ASSERT_EQ(line.command, Command::Run) << line.text.toStdString();
    EXPECT_EQ(line.run.answers, QStringList({QString(), QStringLiteral("-5")}));
}

TEST(CommandLine, AnImageFileMayHaveAnEqualsSignInItsName)
{
    const CommandLine line = parse("run --image a=b=c.png one.py");
    ASSERT_EQ(line.command, Command::Run);
    EXPECT_EQ(line.run.images[0], std::pair(QStringLiteral("a"), QStringLiteral("b=c.png")));
}

TEST(CommandLine, ViewTakesFiles)
{
    const CommandLine line = parse("view a.png b.tif");
    ASSERT_EQ(line.command, Command::View);
    EXPECT_EQ(line.view.files, QStringList({QStringLiteral("a.png"), QStringLiteral("b.tif")}));
    EXPECT_EQ(parse("view").command, Command::View);
}

TEST(CommandLine, HelpIsGivenForEveryCommand)
{
    for (const char* arguments : {"--help", "run --help", "run -h", "view --help"}) {
        const CommandLine line = parse(arguments);
        EXPECT_EQ(line.command, Command::Text) << arguments;
        EXPECT_TRUE(line.text.startsWith(QStringLiteral("Usage: vantrel "))) << arguments;
    }
}

TEST(CommandLine, TheFirstExampleOfTheHelpShowsTheWindows)
{
    for (const char* arguments : {"--help", "run --help"}) {
        const QString help = parse(arguments).text;
        const qsizetype usage = help.indexOf(QStringLiteral("\n\n"));
        const qsizetype example = help.indexOf(QStringLiteral("vantrel run "), usage);
        EXPECT_EQ(help.mid(example, 19).toStdString(), "vantrel run --show ") << arguments;
    }
}

TEST(CommandLine, HelpOfRunNamesEveryOption)
{
    const QString help = parse("run --help").text;
    for (const char* option : {"--open", "--image", "--sim-cameras", "--answer", "--worker", "--workdir",
                               "--python-home", "--log", "--show"})
        EXPECT_TRUE(help.contains(QString::fromUtf8(option))) << option;
}

class WrongCommandLine : public testing::TestWithParam<const char*>
{
};

TEST_P(WrongCommandLine, IsExplainedInOneSentence)
{
    const CommandLine line = parse(GetParam());
    EXPECT_EQ(line.command, Command::Invalid);
    EXPECT_TRUE(line.text.endsWith(QLatin1Char('.'))) << line.text.toStdString();
    EXPECT_FALSE(line.text.contains(QLatin1Char('\n')));
}

INSTANTIATE_TEST_SUITE_P(Cases, WrongCommandLine,
                         testing::Values("", "fly", "run", "run --open", "run --unknown one.py", "run --image x one.py",
                                         "run --image =x.png one.py", "run --image 1a=x.png one.py",
                                         "run --image a= one.py", "run --sim-cameras 5 one.py",
                                         "run --sim-cameras -1 one.py", "run --sim-cameras two one.py",
                                         "run --workdir= one.py", "view --unknown"));

} // namespace
