// Menu items, script files run by scripts, the working directory and sounds.

#include "support/OtherThread.h"
#include "support/PluginHost.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QMenu>

namespace {

class ScriptFiles : public PluginTest
{
protected:
    ScriptFiles() { host.environment.directory = folder.path(); }

    void write(const char* name, const QByteArray& text)
    {
        QFile file(folder.filePath(QString::fromUtf8(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    std::string printed() const { return host.printed().toStdString(); }

    QTemporaryDir folder;
};

// ---- run_script ----

TEST_F(ScriptFiles, AScriptRunsInTheNamespaceOfItsCaller)
{
    write("part.py", "value = start + 1\nprint(__name__)\n");
    EXPECT_CLEAN_RUN("start = 1\n"
                     "print(vantrel.run_script('part.py'))\n"
                     "print(value)\n");
    EXPECT_EQ(printed(), "__main__\nNone\n2\n");
}

TEST_F(ScriptFiles, WhatAScriptDefinesGoesWithTheRun)
{
    write("part.py", "value = 1\n");
    EXPECT_CLEAN_RUN("vantrel.run_script('part.py')");
    EXPECT_CLEAN_RUN("print('value' in globals())");
    EXPECT_EQ(printed(), "False\n");
}

TEST_F(ScriptFiles, AMissingFileIsAnException)
{
    EXPECT_CLEAN_RUN("for path in ('missing.py', '.', ''):\n"
                     "    try: vantrel.run_script(path)\n"
                     "    except Exception as e: print(type(e).__name__, e)\n");
    const std::string line = "Exception given script file can't be opened.\n";
    EXPECT_EQ(printed(), line + line + line);
}

TEST_F(ScriptFiles, ASyntaxErrorIsPrintedAndTheCallerGoesOn)
{
    write("wrong.py", "x = = 1\n");
    const QString errors = host.run("print(vantrel.run_script('wrong.py'))");
    EXPECT_EQ(printed(), "None\n");
    EXPECT_TRUE(errors.contains(QStringLiteral("SyntaxError: invalid syntax"))) << errors.toStdString();
}

TEST_F(ScriptFiles, AnUncaughtExceptionIsPrintedAndTheCallerGoesOn)
{
    write("wrong.py", "print('before')\nraise ValueError('no')\n");
    const QString errors = host.run("print(vantrel.run_script('wrong.py'))");
    EXPECT_EQ(printed(), "before\nNone\n");
    EXPECT_TRUE(errors.startsWith(QStringLiteral("Traceback (most recent call last):\n"))) << errors.toStdString();
    EXPECT_TRUE(errors.endsWith(QStringLiteral("ValueError: no\n"))) << errors.toStdString();
}

TEST_F(ScriptFiles, ScriptsRunOnTheThreadOfTheirCaller)
{
    write("part.py", "import _thread; print(_thread.get_ident() == here)\n");
    onOtherThread(
        [this] { EXPECT_CLEAN_RUN("import _thread; here = _thread.get_ident(); vantrel.run_script('part.py')"); });
    EXPECT_EQ(printed(), "True\n");
}

TEST_F(ScriptFiles, WindowsLineEndsAndAByteOrderMarkAreUnderstood)
{
    write("windows.py", "\xEF\xBB\xBFif True:\r\n    text = '''a\r\nb'''\r\nprint(repr(text))\r\n");
    EXPECT_CLEAN_RUN("vantrel.run_script('windows.py')");
    EXPECT_EQ(printed(), "'a\\nb'\n");
}

TEST_F(ScriptFiles, Latin1NeedsADeclaration)
{
    write("declared.py", "# -*- coding: latin-1 -*-\nprint(ascii('\xE4'))\n");
    EXPECT_CLEAN_RUN("vantrel.run_script('declared.py')");
    EXPECT_EQ(printed(), "'\\xe4'\n");

    write("undeclared.py", "print(ascii('\xE4'))\n");
    const QString errors = host.run("print(vantrel.run_script('undeclared.py'))");
    EXPECT_EQ(printed(), "None\n");
    EXPECT_TRUE(errors.contains(QStringLiteral("SyntaxError"))) << errors.toStdString();
}

TEST_F(ScriptFiles, AFileWithANullCharacterIsNotRunByHalf)
{
    write("half.py", QByteArray("print('first')\n\0print('second')\n", 31));
    const QString errors = host.run("print(vantrel.run_script('half.py'))");
    EXPECT_EQ(printed(), "None\n");
    EXPECT_EQ(errors.toStdString(), "ValueError: source code string cannot contain null bytes\n");
}

TEST_F(ScriptFiles, AnEmptyFileDoesNothing)
{
    write("empty.py", "");
    EXPECT_CLEAN_RUN("print(vantrel.run_script('empty.py'))");
    EXPECT_EQ(printed(), "None\n");
}

TEST_F(ScriptFiles, AScriptThatRunsItselfEndsWithARecursionError)
{
    write("self.py", "depth += 1\nvantrel.run_script('self.py')\n");
    const QString errors = host.run("depth = 0\nvantrel.run_script('self.py')\nprint(depth)\n");
    EXPECT_EQ(printed(), "200\n");
    EXPECT_EQ(errors.toStdString(), "RecursionError: too many scripts run within scripts\n");
    EXPECT_EQ(host.run("depth = 0\nvantrel.run_script('self.py')"), errors); // and again
    write("good.py", "print('still here')");
    EXPECT_CLEAN_RUN("vantrel.run_script('good.py')");
    EXPECT_EQ(printed(), "still here\n");
}

TEST_F(ScriptFiles, AnEndlessRecursionOnAnotherThreadEndsToo)
{
    write("self.py", "vantrel.run_script('self.py')\n");
    onOtherThread(
        [this] { EXPECT_TRUE(host.run("vantrel.run_script('self.py')").contains(QStringLiteral("RecursionError"))); });
}

// ---- get_working_directory and play_sound ----

TEST_F(ScriptFiles, TheWorkingDirectoryIsTheEnvironments)
{
    host.environment.directory = QStringLiteral("/some/f\u00f6lder");
    onOtherThread([this] { EXPECT_CLEAN_RUN("print(ascii(vantrel.get_working_directory()))"); });
    EXPECT_EQ(printed(), "'/some/f\\xf6lder'\n");
}

TEST_F(ScriptFiles, WithoutAnEnvironmentPathsStayAsTheyAreAndTheDirectoryIsUnknown)
{
    EXPECT_CLEAN_RUN("pass"); // starts the interpreter
    EXPECT_EQ(host.plugin
                  ->runScript(QStringLiteral("vantrel.play_sound('bell.wav')\n"
                                             "assert vantrel.get_working_directory() == ''\n"),
                              nullptr, QString(), nullptr, nullptr, nullptr)
                  .toStdString(),
              "");
    EXPECT_EQ(host.delegate.calls, QStringList({QStringLiteral("playSound(bell.wav)")}));
}

TEST_F(ScriptFiles, ASoundIsPlayedFromItsResolvedPath)
{
    onOtherThread([this] { EXPECT_CLEAN_RUN("print(vantrel.play_sound('bell.wav'))"); });
    EXPECT_EQ(printed(), "None\n");
    EXPECT_EQ(host.delegate.calls,
              QStringList({QStringLiteral("playSound(%1)").arg(folder.filePath(QStringLiteral("bell.wav")))}));
}

// ---- add_menu_item ----

class MenuItems : public ScriptFiles
{
protected:
    MenuItems() { host.delegate.scriptMenu = &menu; }

    QMenu menu;
};

TEST_F(MenuItems, WithoutAMenuNothingIsAdded)
{
    host.delegate.scriptMenu = nullptr;
    EXPECT_CLEAN_RUN("try: vantrel.add_menu_item('a', 'b.py')\n"
                     "except SystemError: print('SystemError')\n");
    EXPECT_EQ(printed(), "SystemError\n");
    EXPECT_TRUE(host.environment.calls.isEmpty());
}

TEST_F(MenuItems, GoToTheScriptMenuUnlessASubmenuIsNamed)
{
    EXPECT_CLEAN_RUN("print(vantrel.add_menu_item('Item \\u00e4', 'b.py'), vantrel.add_menu_item('Two', 'c.py', ''))");
    EXPECT_EQ(printed(), "None None\n");
    EXPECT_EQ(host.environment.itemMenus, QList<QMenu*>({&menu, &menu}));
    EXPECT_EQ(host.environment.calls, QStringList({QStringLiteral("addMenuItem(Item \u00e4, b.py, )"),
                                                   QStringLiteral("addMenuItem(Two, c.py, )")}));
    EXPECT_TRUE(menu.findChildren<QMenu*>().isEmpty());
}

TEST_F(MenuItems, ThatNameTheSameSubmenuShareIt)
{
    EXPECT_CLEAN_RUN("vantrel.add_menu_item('a', 'a.py', 'Tools', 'what a does')\n"
                     "vantrel.add_menu_item('b', 'b.py', 'Tools')\n"
                     "vantrel.add_menu_item('c', 'c.py', 'tools')\n");
    const QList<QMenu*> submenus = menu.findChildren<QMenu*>();
    ASSERT_EQ(submenus.size(), 2);
    EXPECT_EQ(submenus.at(0)->title(), QStringLiteral("Tools"));
    EXPECT_EQ(submenus.at(1)->title(), QStringLiteral("tools"));
    EXPECT_EQ(host.environment.itemMenus, QList<QMenu*>({submenus.at(0), submenus.at(0), submenus.at(1)}));
    EXPECT_EQ(host.environment.calls.first(), QStringLiteral("addMenuItem(a, a.py, what a does)"));
}

TEST_F(MenuItems, FindASubmenuAtAnyDepth)
{
    QMenu* inner = menu.addMenu(QStringLiteral("Outer"))->addMenu(QStringLiteral("Inner"));
    EXPECT_CLEAN_RUN("vantrel.add_menu_item('a', 'a.py', 'Inner')");
    EXPECT_EQ(host.environment.itemMenus, QList<QMenu*>({inner}));
    EXPECT_EQ(menu.actions().size(), 1);
}

TEST_F(MenuItems, TakeTheFirstOfNestedMenusOfOneName)
{
    QMenu* outer = menu.addMenu(QStringLiteral("Same"));
    outer->addMenu(QStringLiteral("Same"));
    EXPECT_CLEAN_RUN("vantrel.add_menu_item('a', 'a.py', 'Same')");
    EXPECT_EQ(host.environment.itemMenus, QList<QMenu*>({outer}));
}

TEST_F(MenuItems, CanBeAddedWhileTheMenuIsOpen)
{
    menu.addAction(QStringLiteral("there already"));
    menu.popup(QPoint(0, 0));
    ASSERT_TRUE(menu.isVisible());
    EXPECT_CLEAN_RUN("vantrel.add_menu_item('a', 'a.py', 'New')");
    EXPECT_TRUE(menu.isVisible());
    EXPECT_EQ(menu.findChildren<QMenu*>().size(), 1);
    menu.hide();
}

TEST_F(MenuItems, RefuseNullCharactersInEveryText)
{
    EXPECT_CLEAN_RUN("for i in range(4):\n"
                     "    texts = ['a', 'b', 'c', 'd']\n"
                     "    texts[i] = 'x\\0y'\n"
                     "    try: vantrel.add_menu_item(*texts)\n"
                     "    except ValueError as e: print(e)\n");
    EXPECT_EQ(printed(), "embedded null character\nembedded null character\nembedded null character\n"
                         "embedded null character\n");
    EXPECT_TRUE(menu.isEmpty());
}

} // namespace
