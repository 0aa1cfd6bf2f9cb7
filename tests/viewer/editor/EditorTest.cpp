// The editor in the window, used with keys and the mouse.

#include "../ViewerTest.h"

#include "editor/EditorDock.h"
#include "editor/EditorPage.h"
#include "editor/ScriptEditor.h"
#include "workshop/LinkedText.h"
#include "workshop/Preferences.h"

#include <QtCore/QDir>
#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QToolButton>

#include <gmock/gmock.h>

namespace {

class Editor : public ViewerTest
{
protected:
    void SetUp() override
    {
        ViewerTest::SetUp();
        viewer->window().show();
        activate();
    }

    /// Gives the window the focus, as a window manager does.
    void activate()
    {
        viewer->window().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&viewer->window()));
    }

    EditorDock& dock() { return *viewer->window().findChild<EditorDock*>(); }
    EditorTabs& tabs() { return dock().tabs(); }
    EditorPage& page() { return *tabs().current(); }
    ScriptEditor& editor() { return page().editor(); }

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        activate();
        QWidget* target = QApplication::focusWidget();
        QTest::keyClick(target ? target : &viewer->window(), Qt::Key(key), modifiers);
    }

    void type(const char* text)
    {
        activate();
        ASSERT_TRUE(QApplication::focusWidget());
        QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(text));
    }

    /// A new script with this text, and no changes by a user.
    void begin(const char* text)
    {
        press(Qt::Key_N, Qt::ControlModifier);
        editor().begin(QString::fromUtf8(text));
    }

    void open(const QString& path) { viewer->editFile(path); }

    /// Runs the script in front.
    void runFront()
    {
        press(Qt::Key_F5);
        runAll();
    }

    /// The text that is shown beside a line, counted from 1.
    QString noteAt(int line) { return editor().annotation(line - 1).trimmed(); }

    /// The dialog that is open, with its text; null if there is none.
    QMessageBox* question()
    {
        QCoreApplication::processEvents();
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* box = qobject_cast<QMessageBox*>(widget); box && box->isVisible())
                return box;
        return nullptr;
    }

    void answer(QMessageBox::StandardButton button)
    {
        QMessageBox* box = question();
        ASSERT_TRUE(box) << "no question";
        box->button(button)->click();
        QCoreApplication::processEvents();
    }

    QByteArray onDisk(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }

    QWidget& bar() { return *page().findChild<QWidget*>(QStringLiteral("changedOutside")); }

    void clickInBar(const char* text)
    {
        for (auto* button : bar().findChildren<QPushButton*>())
            if (button->text().remove(u'&') == QString::fromUtf8(text))
                return button->click();
        ADD_FAILURE() << "no button " << text;
    }
};

TEST_F(Editor, RunsWhatWasTyped)
{
    press(Qt::Key_N, Qt::ControlModifier);
    ASSERT_TRUE(dock().isVisible());
    EXPECT_TRUE(editor().text().startsWith(QStringLiteral("import vantrel\n")));
    press(Qt::Key_A, Qt::ControlModifier);
    type("for i in range(2):");
    press(Qt::Key_Return);
    type("print('line', i)"); // is indented already
    runFront();
    EXPECT_EQ(console().toStdString(), "line 0\nline 1\n");
    EXPECT_EQ(editor().text().toStdString(), "for i in range(2):\n    print('line', i)");
}

TEST_F(Editor, AFailureLeadsToItsLineUntilTheTextChanges)
{
    begin("def work():\n    return 1 / 0\n\nwork()\n");
    runFront();
    EXPECT_THAT(results.join(QString()).toStdString(),
                testing::AllOf(testing::HasSubstr("File \"Untitled 1\", line 4, in <module>\n    work()"),
                               testing::HasSubstr("File \"Untitled 1\", line 2, in work\n    return 1 / 0")));
    EXPECT_EQ(noteAt(2).toStdString(), "ZeroDivisionError: division by zero");
    EXPECT_NE(editor().markersAtLine(1), 0U);
    editor().setFocus();
    press(Qt::Key_End);
    type("1");
    EXPECT_EQ(noteAt(2).toStdString(), "");
    EXPECT_EQ(editor().markersAtLine(1), 0U);
    press(Qt::Key_Backspace);
    press(Qt::Key_Backspace);
    type("2");
    results.clear();
    runFront();
    EXPECT_EQ(results.join(QString()).toStdString(), "");
}

TEST_F(Editor, InvalidSyntaxLeadsToItsLine)
{
    begin("a = 1\nb = (\n");
    runFront();
    EXPECT_THAT(noteAt(2).toStdString(), testing::StartsWith("SyntaxError: "));
}

TEST_F(Editor, ALinkInTheOutputOpensTheFileAtTheLine)
{
    const QString module = write("helper.py", "\n\ndef fail():\n    raise KeyError('x')\n");
    open(write("main.py", "import helper\nhelper.fail()\n"));
    runFront();
    auto* output = viewer->window().findChild<LinkedText*>(QStringLiteral("scriptOutput"));
    const QTextCursor found = output->document()->find(QStringLiteral("helper.py"));
    ASSERT_FALSE(found.isNull());
    output->verticalScrollBar()->setValue(0);
    const QRect place = output->cursorRect(found);
    QTest::mouseClick(output->viewport(), Qt::LeftButton, {}, place.center() - QPoint(4, 0));
    EXPECT_EQ(page().path(), QFileInfo(module).canonicalFilePath());
    int line = 0;
    int column = 0;
    editor().getCursorPosition(&line, &column);
    EXPECT_EQ(line, 3);
    activate();
    EXPECT_EQ(QApplication::focusWidget(), &editor());
}

TEST_F(Editor, SavesAFileBeforeItRunsIt)
{
    const QString path = write("a.py", "print('old', __file__)\n");
    open(path);
    editor().setFocus();
    press(Qt::Key_A, Qt::ControlModifier);
    type("import sys; print('new', __file__, sys.path[0])");
    EXPECT_EQ(tabs().tabText(0).toStdString(), "a.py *");
    runFront();
    EXPECT_EQ(onDisk(path).toStdString(), "import sys; print('new', __file__, sys.path[0])");
    EXPECT_EQ(console().toStdString(), QStringLiteral("new %1 %2\n").arg(path, folder.path()).toStdString());
    EXPECT_EQ(tabs().tabText(0).toStdString(), "a.py");
}

TEST_F(Editor, RunsTheLastScriptAgain)
{
    open(write("a.py", "print('again')\n"));
    runFront();
    begin("print('not this')\n");
    press(Qt::Key_F9);
    runAll();
    EXPECT_EQ(console().toStdString(), "again\nagain\n");
}

TEST_F(Editor, TheTabShowsThatTheScriptRuns)
{
    open(write("a.py", "import vantrel\nprint('x')\nvantrel.wait(0.2)\n"));
    QString title;
    oncePrinted("x\n", [&] { title = tabs().tabText(0); });
    runFront();
    EXPECT_EQ(title.toStdString(), "\u25b6 a.py");
    EXPECT_EQ(tabs().tabText(0).toStdString(), "a.py");
}

TEST_F(Editor, UnsavedChangesAreNotLostWithTheirTab)
{
    const QString path = write("a.py", "old\n");
    open(path);
    editor().setFocus();
    type("x");
    press(Qt::Key_W, Qt::ControlModifier);
    ASSERT_TRUE(question());
    EXPECT_EQ(question()->text().toStdString(), "a.py has unsaved changes. Save them?");
    answer(QMessageBox::Cancel);
    EXPECT_EQ(tabs().count(), 1);
    tabs().closePage(&page());
    answer(QMessageBox::Save);
    EXPECT_EQ(tabs().count(), 0);
    EXPECT_EQ(onDisk(path).toStdString(), "xold\n");

    open(path);
    type("y");
    tabs().closePage(&page());
    answer(QMessageBox::Discard);
    EXPECT_EQ(tabs().count(), 0);
    EXPECT_EQ(onDisk(path).toStdString(), "xold\n");
}

TEST_F(Editor, UnsavedChangesAreNotLostWithTheWindow)
{
    const QString a = write("a.py", "a\n");
    const QString b = write("b.py", "b\n");
    open(a);
    type("1");
    open(b);
    type("2");
    viewer->window().close();
    answer(QMessageBox::Discard); // a.py
    answer(QMessageBox::Cancel);  // b.py
    EXPECT_TRUE(viewer->window().isVisible());
    EXPECT_EQ(tabs().tabText(0).toStdString(), "a.py *") << "the window stays, and so does the text";
    viewer->window().close();
    answer(QMessageBox::Discard);
    answer(QMessageBox::Save);
    EXPECT_FALSE(viewer->window().isVisible());
    EXPECT_EQ(onDisk(a).toStdString(), "a\n");
    EXPECT_EQ(onDisk(b).toStdString(), "2b\n");
}

TEST_F(Editor, OffersToReadAFileAgainThatHasChanged)
{
    const QString path = write("a.py", "one\n");
    open(path);
    EXPECT_FALSE(bar().isVisible());
    write("a.py", "two\n");
    QTRY_VERIFY(bar().isVisible()); // without being told
    EXPECT_EQ(bar().findChild<QLabel*>()->text().toStdString(), "a.py has changed on the disk.");
    clickInBar("Reload");
    EXPECT_EQ(editor().text().toStdString(), "two\n");
    EXPECT_FALSE(bar().isVisible());
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor().text().toStdString(), "one\n") << "can be undone";

    write("a.py", "three\n");
    tabs().lookForChanges();
    clickInBar("Keep This Text");
    tabs().lookForChanges();
    EXPECT_FALSE(bar().isVisible());
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_FALSE(question());
    EXPECT_EQ(onDisk(path).toStdString(), "one\n");
}

TEST_F(Editor, AFileThatWasRemovedCanBeSavedAgain)
{
    const QString path = write("a.py", "one\n");
    open(path);
    QFile::remove(path);
    tabs().lookForChanges();
    EXPECT_EQ(bar().findChild<QLabel*>()->text().toStdString(),
              "a.py is no longer on the disk. Saving writes it again.");
    clickInBar("Keep This Text");
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(onDisk(path).toStdString(), "one\n");
}

TEST_F(Editor, AsksBeforeItOverwritesChangesOfOthers)
{
    const QString path = write("a.py", "one\n");
    open(path);
    type("1");
    write("a.py", "two\n");
    press(Qt::Key_S, Qt::ControlModifier);
    ASSERT_TRUE(question());
    EXPECT_THAT(question()->text().toStdString(), testing::HasSubstr("a.py"));
    answer(QMessageBox::Cancel);
    EXPECT_EQ(onDisk(path).toStdString(), "two\n");
}

TEST_F(Editor, KeepsEncodingAndLineEnds)
{
    const QString path = write("a.py", "# coding: latin-1\r\ns = '\xe4'\r\n");
    open(path);
    press(Qt::Key_End, Qt::ControlModifier);
    type("t = 1");
    press(Qt::Key_Return);
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(onDisk(path).toStdString(), "# coding: latin-1\r\ns = '\xe4'\r\nt = 1\r\n");
}

TEST_F(Editor, SaysWhyItCannotOpenOrSave)
{
    open(write("latin.py", "s = '\xe4'\n"));
    ASSERT_TRUE(question());
    EXPECT_THAT(question()->text().toStdString(), testing::EndsWith("latin.py: it is not text in the encoding utf-8."));
    answer(QMessageBox::Ok);
    EXPECT_EQ(tabs().count(), 0);
    open(folder.filePath(QStringLiteral("none.py")));
    EXPECT_THAT(question()->text().toStdString(), testing::HasSubstr("none.py: "));
    answer(QMessageBox::Ok);

    const QString path = write("a.py", "# coding: latin-1\n");
    open(path);
    press(Qt::Key_End, Qt::ControlModifier);
    editor().insert(QStringLiteral("s = '\u20ac'"));
    press(Qt::Key_S, Qt::ControlModifier);
    ASSERT_TRUE(question());
    EXPECT_THAT(question()->text().toStdString(),
                testing::EndsWith("a.py: the text has characters that the encoding latin-1 lacks."));
    answer(QMessageBox::Ok);
    EXPECT_TRUE(page().isModified());
    EXPECT_EQ(onDisk(path).toStdString(), "# coding: latin-1\n");
}

TEST_F(Editor, FindsAndReplaces)
{
    begin("alpha beta\nAlpha gamma\nalpha\n");
    press(Qt::Key_F, Qt::ControlModifier);
    type("alpha");
    EXPECT_EQ(editor().selectedText().toStdString(), "alpha");
    const auto line = [this] {
        int first = 0;
        int column = 0;
        int last = 0;
        int end = 0;
        editor().getSelection(&first, &column, &last, &end);
        return first;
    };
    EXPECT_EQ(line(), 0);
    press(Qt::Key_F3);
    EXPECT_EQ(line(), 1);
    press(Qt::Key_Return);
    EXPECT_EQ(line(), 2);
    press(Qt::Key_Return);
    EXPECT_EQ(line(), 0) << "begins again at the top";
    press(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(line(), 2);

    press(Qt::Key_H, Qt::ControlModifier);
    auto* replacement = viewer->window().findChild<QLineEdit*>(QStringLiteral("replacementText"));
    ASSERT_TRUE(replacement->isVisible());
    replacement->setFocus();
    type("alphabet");
    press(Qt::Key_Return);
    EXPECT_EQ(editor().text().toStdString(), "alpha beta\nAlpha gamma\nalphabet\n");
    for (auto* button : viewer->window().findChildren<QToolButton*>())
        if (button->text() == QStringLiteral("Replace All"))
            button->click();
    EXPECT_EQ(editor().text().toStdString(), "alphabet beta\nalphabet gamma\nalphabetbet\n");
    EXPECT_EQ(viewer->window().findChild<QLabel*>(QStringLiteral("findNote"))->text().toStdString(), "3 replaced");
    press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), &editor());
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor().text().toStdString(), "alpha beta\nAlpha gamma\nalphabet\n") << "all at once";
}

TEST_F(Editor, SaysThatATextIsNotThere)
{
    begin("alpha\n");
    press(Qt::Key_F, Qt::ControlModifier);
    type("omega");
    EXPECT_EQ(viewer->window().findChild<QLabel*>(QStringLiteral("findNote"))->text().toStdString(), "Not found");
    // An expression that is not complete yet is no error.
    viewer->window().findChild<QLineEdit*>(QStringLiteral("findText"))->setText(QStringLiteral("("));
    press(Qt::Key_Return);
}

TEST_F(Editor, ReplacingAPlaceWithoutCharactersEnds)
{
    begin("alpha\nbeta\n");
    press(Qt::Key_H, Qt::ControlModifier);
    for (auto* box : viewer->window().findChildren<QCheckBox*>())
        if (box->text().contains(QStringLiteral("expression")))
            box->setChecked(true);
    for (const char* expression : {"^", "x*", "$"}) {
        viewer->window().findChild<QLineEdit*>(QStringLiteral("findText"))->setText(QString::fromUtf8(expression));
        viewer->window().findChild<QLineEdit*>(QStringLiteral("replacementText"))->setText(QStringLiteral("y"));
        for (auto* button : viewer->window().findChildren<QToolButton*>())
            if (button->text() == QStringLiteral("Replace All"))
                button->click();
    }
    EXPECT_EQ(editor().text().toStdString(), "alpha\nbeta\n");
}

TEST_F(Editor, CommentsLinesOutAndIn)
{
    begin("if a:\n    b\n\n    c\nd\n");
    editor().setSelection(1, 0, 4, 0);
    press(Qt::Key_Slash, Qt::ControlModifier);
    EXPECT_EQ(editor().text().toStdString(), "if a:\n    # b\n\n    # c\nd\n");
    press(Qt::Key_Slash, Qt::ControlModifier);
    EXPECT_EQ(editor().text().toStdString(), "if a:\n    b\n\n    c\nd\n");
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor().text().toStdString(), "if a:\n    # b\n\n    # c\nd\n");
}

TEST_F(Editor, KeysOfTheWindowWorkOutsideOfTheEditor)
{
    begin("a\n");
    editor().setModified(true);
    viewer->window().views().add(nullptr, QStringLiteral("view"));
    viewer->window().setFocus();
    QTest::keySequence(&viewer->window(), QKeySequence(QKeySequence::Close));
    QCoreApplication::processEvents();
    EXPECT_EQ(viewer->window().views().ids().size(), 0U) << "the view is closed";
    EXPECT_EQ(tabs().count(), 1) << "and not the script";
}

TEST_F(Editor, RemembersScripts)
{
    const QString a = write("a.py", "a\n");
    open(a);
    open(write("b.py", "b\n"));
    EXPECT_EQ(Preferences::recentScripts().size(), 2);
    EXPECT_EQ(QFileInfo(Preferences::recentScripts().first()).fileName().toStdString(), "b.py");
    tabs().closePage(&page());
    EXPECT_EQ(Preferences::openScripts(), QStringList{QFileInfo(a).canonicalFilePath()});
    while (tabs().count() > 0) {
        const QStringList kept = Preferences::openScripts();
        tabs().closePage(&page());
        Preferences::setOpenScripts(kept);
    }
    dock().restore();
    ASSERT_EQ(tabs().count(), 1);
    EXPECT_EQ(page().title().toStdString(), "a.py");
}

TEST_F(Editor, StartsWithPreferencesThatMakeNoSense)
{
    QDir(folder.path()).mkpath(QStringLiteral("config/vantrel"));
    QFile file(folder.filePath(QStringLiteral("config/vantrel/viewer.ini")));
    for (const QByteArray& content :
         {QByteArray(
              "[scripts]\nrecent=@Invalid()\nopen=7\n[editor]\nzoom=@Rect(1 2 3 4)\n[window]\ngeometry=x\nstate=9\n"),
          QByteArray("\x00\xff[[[\n=\n@ByteArray(", 17), QByteArray("[editor]\nzoom=999999999999\n")}) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        viewer->restoreWindow();
        begin("print(1)\n");
        EXPECT_LE(editor().zoom(), 20);
    }
}

TEST_F(Editor, ExamplesOpenAsCopies)
{
    QMenu* examples = nullptr;
    for (auto* menu : viewer->window().findChildren<QMenu*>())
        if (menu->title().remove(u'&') == QStringLiteral("Examples"))
            examples = menu;
    ASSERT_TRUE(examples);
    Q_EMIT examples->aboutToShow();
    QStringList titles;
    for (const QAction* action : examples->actions())
        titles += action->text();
    EXPECT_THAT(titles.join(QLatin1Char(',')).toStdString(), testing::HasSubstr("First light"));
    EXPECT_FALSE(titles.contains(QStringLiteral("Spots"))) << "a module that an example uses";
    examples->actions().at(titles.indexOf(QStringLiteral("Count spots")))->trigger();
    EXPECT_EQ(page().title().toStdString(), "count_spots.py");
    EXPECT_TRUE(page().path().isEmpty());
    runFront(); // imports the module that stands beside the original
    EXPECT_EQ(results.join(QString()).toStdString(), "");
    EXPECT_NE(console().toStdString(), "");
}

TEST_F(Editor, TakesALargeScript)
{
    const QByteArray line = "value = 'a line of a large script'  # with a comment\n";
    const QString path = write("large.py", line.repeated((1 << 20) / int(line.size())).constData());
    open(path);
    press(Qt::Key_End, Qt::ControlModifier);
    type("print(value)");
    runFront();
    EXPECT_EQ(console().toStdString(), "a line of a large script\n");
}

} // namespace
