// Scripts in a viewer of the test's own process: what only shows when somebody uses the windows meanwhile.

#include "Pictures.h"
#include "ViewerTest.h"
#include "process/LogRecords.h"
#include "views/ImageView.h"
#include "workshop/EnvironmentDialog.h"
#include "workshop/Preferences.h"

#include <QtCore/QDir>
#include <QtCore/QSettings>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTabWidget>

#include <cstdlib>

namespace {

using ScriptsInViewer = ViewerTest;

TEST_F(ScriptsInViewer, AMenuItemUsedWhileAScriptWaitsRunsWhenThatHasEnded)
{
    QAction* item = addItem(write("tool.py", "print('tool')\n"));
    run("import vantrel\nprint('begin')\nvantrel.wait(0.3)\nprint('end')\n");
    run("print('second')\n");
    oncePrinted("begin\n", [item] { item->trigger(); });
    runAll();
    EXPECT_EQ(console().toStdString(), "begin\nend\nsecond\ntool\n");
    EXPECT_EQ(results.join(QString()), QString());
}

TEST_F(ScriptsInViewer, AMenuItemWhoseScriptIsGoneIsReported)
{
    QAction* item = addItem(QStringLiteral("gone.py"));
    item->trigger();
    EXPECT_FALSE(viewer->scripts().isBusy());
    run("print('still there')\n");
    runAll();
    EXPECT_EQ(console().toStdString(), "still there\n");
}

TEST_F(ScriptsInViewer, WhatAScriptLogsIsShownBesideItsOutput)
{
    ASSERT_EQ(LogRecords::writeToFile(folder.filePath(QStringLiteral("log.txt"))), QString());
    viewer->window().show();
    run("import threading, vantrel\n"
        "print('begun')\n"
        "vantrel.print_to_error_log('from the script')\n"
        "thread = threading.Thread(target=vantrel.print_to_error_log, args=('from a thread',))\n"
        "thread.start()\n"
        "thread.join()\n"
        "vantrel.wait(0.3)\n");
    runAll();
    qInstallMessageHandler(nullptr);
    EXPECT_EQ(console().toStdString(), "begun\n");
    const QString log = text("log");
    EXPECT_TRUE(log.contains(QStringLiteral("critical  \"from the script\"\n"))) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("critical  \"from a thread\"\n"))) << log.toStdString();
    const auto* tabs = viewer->window().findChild<QTabWidget*>();
    EXPECT_TRUE(tabs->tabText(1).startsWith(QStringLiteral("Log (")));
}

TEST_F(ScriptsInViewer, TheStopItemStopsTheRunningScript)
{
    run("import vantrel\nprint('begun')\nvantrel.wait(600)\n");
    QAction* stop = nullptr;
    for (QAction* action : viewer->window().menu(MainWindow::ScriptMenu)->actions())
        if (action->text() == QStringLiteral("&Stop"))
            stop = action;
    ASSERT_NE(stop, nullptr);
    EXPECT_TRUE(stop->isEnabled());
    oncePrinted("begun\n", [stop] { stop->trigger(); });
    runAll();
    ASSERT_EQ(results.size(), 1);
    EXPECT_TRUE(results[0].contains(QStringLiteral("KeyboardInterrupt"))) << results[0].toStdString();
    EXPECT_FALSE(stop->isEnabled());
}

TEST_F(ScriptsInViewer, ClosingTheWindowStopsTheScriptBeforeTheApplicationEnds)
{
    viewer->window().show();
    run("import vantrel\nprint('begun')\nvantrel.wait(600)\n");
    run("print('never')\n");
    oncePrinted("begun\n", [this] { stopAndClose(); });
    QCoreApplication::exec();
    EXPECT_FALSE(viewer->scripts().isBusy());
    ASSERT_EQ(results.size(), 1);
    EXPECT_TRUE(results[0].contains(QStringLiteral("KeyboardInterrupt")));
    EXPECT_EQ(console().contains(QStringLiteral("never")), false);
}

TEST_F(ScriptsInViewer, ADialogIsDismissedWhenTheMainWindowCloses)
{
    for (const char* dialog :
         {"vantrel.message_box('t', 'x', 'a', 'b', 'c')", "vantrel.ask_user_for_string('t', 'x')"}) {
        viewer.reset(); // one at a time
        SetUp();
        results.clear();
        viewer->window().show();
        run(QByteArray("import vantrel\nprint('asking')\n").append(dialog).append("\nprint('never')\n"));
        once([] { return QApplication::activeModalWidget() != nullptr; }, [this] { stopAndClose(); });
        QTimer::singleShot(20000, &viewer->window(), [] {
            ADD_FAILURE() << "the dialog stays open";
            std::abort();
        });
        QCoreApplication::exec();
        EXPECT_FALSE(viewer->scripts().isBusy());
        ASSERT_EQ(results.size(), 1);
        EXPECT_TRUE(results[0].contains(QStringLiteral("KeyboardInterrupt"))) << results[0].toStdString();
        EXPECT_TRUE(console().startsWith(QStringLiteral("asking\n")));
        EXPECT_FALSE(console().contains(QStringLiteral("never")));
    }
}

TEST_F(ScriptsInViewer, AStageAddedByAScriptWorksOnWhatScriptsGet)
{
    viewer->window().views().add(greyPicture(4, 3, 20), QStringLiteral("view"));
    run("import vantrel\n"
        "vantrel.add_chain_object('gain', {'gain': 2, 'offset': 1.5, 'unknown': 'x'})\n"
        "print(vantrel.get_view_image().get_image_data_raw()[0])\n"
        "vantrel.set_view_image(vantrel.get_view_image())\n" // which passes the chain as every image does
        "print(vantrel.get_view_image().get_image_data_raw()[0])\n");
    runAll();
    EXPECT_EQ(console().toStdString(), "42\n86\n");
}

TEST_F(ScriptsInViewer, AMenuItemAddedByAScriptTellsItsFourthTextAndRunsItsScript)
{
    write("tool.py", "print('tool')\n");
    run("import vantrel\n"
        "vantrel.add_menu_item('One', 'tool.py', 'Tools', 'what it <does>')\n"
        "vantrel.add_menu_item('Two', 'tool.py', 'Tools')\n");
    runAll();
    const auto submenus = viewer->window().menu(MainWindow::ScriptMenu)->findChildren<QMenu*>();
    ASSERT_EQ(submenus.size(), 1);
    const QList<QAction*> items = submenus.first()->actions();
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items.at(0)->toolTip(), QStringLiteral("what it <does>"));
    EXPECT_EQ(items.at(0)->statusTip(), QStringLiteral("what it <does>"));
    EXPECT_TRUE(submenus.first()->toolTipsVisible());
    items.at(0)->trigger();
    runAll();
    EXPECT_EQ(console().toStdString(), "tool\n");
}

TEST_F(ScriptsInViewer, AViewClosedByHandEndsTheWaitForItsFrame)
{
    ImageView* view = viewer->window().views().add(nullptr, QStringLiteral("camera"));
    view->setLive(true);
    run("import vantrel\nprint('begun')\nprint(vantrel.wait_for_next_frame())\nprint(vantrel.get_active_view_id())\n");
    oncePrinted("begun\n", [view] { view->close(); });
    runAll();
    EXPECT_EQ(console().toStdString(), "begun\nFalse\n-1\n");
}

TEST_F(ScriptsInViewer, AScriptMayCloseTheViewItWorksOn)
{
    viewer->window().views().add(nullptr, QStringLiteral("view"));
    run("import vantrel\nvantrel.close_view()\nvantrel.close_view()\nvantrel.wait(0.05)\nvantrel.get_view_image()\n");
    run("print('next')\n");
    runAll();
    ASSERT_EQ(results.size(), 2);
    EXPECT_TRUE(results[0].contains(QStringLiteral("no view or view contains no image"))) << results[0].toStdString();
    EXPECT_EQ(results[1], QString());
}

TEST_F(ScriptsInViewer, ErrorsAreShownInTheWindow)
{
    run("1/0\n");
    runAll();
    EXPECT_TRUE(console().contains(QStringLiteral("ZeroDivisionError")));
}

/// The entry of the menu Script that asks for a virtual environment.
class EnvironmentChoice : public ViewerTest
{
protected:
    void SetUp() override
    {
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.filePath(QStringLiteral("config")));
        ViewerTest::SetUp();
        viewer->window().show();
        for (QAction* action : viewer->window().menu(MainWindow::ScriptMenu)->actions())
            if (action->text().contains(QStringLiteral("Environment")))
                action->trigger();
        dialog = viewer->window().findChild<EnvironmentDialog*>();
        ASSERT_NE(dialog, nullptr);
    }

    /// Enters a folder and presses OK. Returns what the dialog says against it.
    std::string enter(const QString& text)
    {
        auto* line = dialog->findChild<QLineEdit*>(QStringLiteral("environmentFolder"));
        line->setText(text);
        QTest::keyClick(line, Qt::Key_Return);
        const auto* problem = dialog->findChild<QLabel*>(QStringLiteral("environmentProblem"));
        return problem->isVisible() ? problem->text().toStdString() : "";
    }

    QString makeEnvironment(const char* version)
    {
        const QString environment = folder.filePath(QString::fromUtf8(version));
        QDir().mkpath(environment);
        write((QByteArray(version) + "/pyvenv.cfg").constData(), (QByteArray("version = ") + version).constData());
        return environment;
    }

    EnvironmentDialog* dialog = nullptr;
};

TEST_F(EnvironmentChoice, IsKeptForTheNextStart)
{
    const QString environment = makeEnvironment(TestSettings::pythonVersion.toUtf8().constData());
    EXPECT_EQ(enter(environment), "");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(Preferences::environment(), environment);
}

TEST_F(EnvironmentChoice, IsRefusedWhereScriptsCannotUseIt)
{
    const std::string problem = enter(makeEnvironment("3.7"));
    EXPECT_NE(problem.find("is a virtual environment of Python 3.7, but scripts run with Python 3."), std::string::npos)
        << problem;
    EXPECT_NE(enter(folder.path()).find("there is no pyvenv.cfg in it"), std::string::npos);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(Preferences::environment(), QString());
    EXPECT_EQ(enter(QString()), "");
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(ScriptsInViewer, AnErrorInAScriptThatAScriptRunsNamesThatScript)
{
    write("inner.py", "def work():\n    1/0\nwork()\n");
    run("import vantrel\nvantrel.run_script('inner.py')\nprint('outer')\nvantrel.undefined\n");
    runAll();
    ASSERT_EQ(results.size(), 1);
    const QString inner = QStringLiteral("ZeroDivisionError: division by zero\nThe error is in the script inner.py.\n");
    EXPECT_TRUE(results[0].contains(inner)) << results[0].toStdString();
    EXPECT_EQ(results[0].count(QStringLiteral("The error is in the script")), 1) << results[0].toStdString();
    EXPECT_TRUE(console().startsWith(QStringLiteral("outer\n")));
}

TEST_F(ScriptsInViewer, AScriptThatAScriptRunsIsSeenInListingsOfTheStack)
{
    write("inner.py", "import traceback\nprint(len(traceback.extract_stack()))\n");
    run("import vantrel\ndef work():\n    vantrel.run_script('inner.py')\nwork()\n");
    runAll();
    EXPECT_EQ(console().toStdString(), "3\n");
}

/// What a script leaves in the output and as its errors.
struct Exit {
    const char* name;
    const char* script;
    const char* output;
    const char* errors;
};

class ScriptsThatExit : public ViewerTest, public testing::WithParamInterface<Exit>
{
};

TEST_P(ScriptsThatExit, EndThemselvesAndNotTheViewer)
{
    write("inner.py", "import sys\nsys.exit(4)\n");
    run(QByteArray("import os, sys, threading, vantrel\n") + GetParam().script);
    run("print('next')\n");
    runAll();
    ASSERT_EQ(results.size(), 2);
    EXPECT_EQ(results[0].toStdString(), GetParam().errors);
    EXPECT_EQ(results[1].toStdString(), "");
    // The console shows errors behind the output of their run.
    const std::string shown = console().toStdString();
    EXPECT_EQ(shown, std::string(GetParam().output) + GetParam().errors + "next\n");
}

INSTANTIATE_TEST_SUITE_P(
    Exits, ScriptsThatExit,
    testing::Values(
        Exit{"nothing", "sys.exit()\nprint('never')\n", "The script has ended with exit status 0.\n", ""},
        Exit{"zero", "sys.exit(0)\n", "The script has ended with exit status 0.\n", ""},
        Exit{"status", "sys.exit(3)\n", "", "The script has ended with exit status 3.\n"},
        Exit{"text", "sys.exit('no camera')\n", "", "no camera\n"},
        Exit{"object", "sys.exit([1, 2])\n", "", "[1, 2]\n"},
        Exit{"builtin", "def work():\n    exit(2)\nwork()\n", "", "The script has ended with exit status 2.\n"},
        Exit{"raised", "print('a')\nraise SystemExit\n", "a\nThe script has ended with exit status 0.\n", ""},
        Exit{"finally", "try:\n    sys.exit(3)\nfinally:\n    print('left')\n", "left\n",
             "The script has ended with exit status 3.\n"},
        Exit{"inner", "vantrel.run_script('inner.py')\nprint('outer')\n", "outer\n",
             "The script has ended with exit status 4.\n"},
        Exit{"thread", "t = threading.Thread(target=sys.exit, args=(5,))\nt.start(); t.join()\nprint('end')\n", "end\n",
             ""},
        Exit{"child",
             "child = os.fork()\nif child == 0: sys.exit(6)\n"
             "print(os.waitpid(child, 0)[1] >> 8)\n",
             "6\n", ""},
        Exit{"child_at_its_end", "child = os.fork()\nif child: print(os.waitpid(child, 0)[1])\n", "0\n", ""}),
    [](const auto& exit) { return std::string(exit.param.name); });

} // namespace
