// Message boxes, questions, notifications and the error log.

#include "support/DialogDriver.h"
#include "support/LogCapture.h"
#include "support/OtherThread.h"
#include "support/PluginHost.h"

#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QWidget>

#include <memory>

namespace {

class Dialogs : public PluginTest
{
protected:
    Dialogs() { host.delegate.window = window.get(); }

    /// Runs a script that prints; the printed text.
    std::string printed(const QString& script)
    {
        EXPECT_CLEAN_RUN(script);
        return host.printed().toStdString();
    }

    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    DialogDriver user;
};

QMessageBox& box(QDialog& dialog)
{
    return *qobject_cast<QMessageBox*>(&dialog);
}

QStringList labels(QDialog& dialog)
{
    QStringList texts;
    for (const QAbstractButton* button : box(dialog).buttons())
        texts.append(QString(button->text()).remove(u'&'));
    return texts;
}

DialogDriver::Step clickOn(const char* label)
{
    return [label](QDialog& dialog) { DialogDriver::click(dialog, QString::fromUtf8(label)); };
}

// ---- message_box ----

TEST_F(Dialogs, AMessageBoxOfTitleAndTextHasOneOkButton)
{
    user.then([this](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Title"));
        EXPECT_EQ(box(dialog).text(), QStringLiteral("Text \u00e4\u4e2d"));
        EXPECT_EQ(box(dialog).icon(), QMessageBox::NoIcon);
        EXPECT_EQ(dialog.parentWidget(), window.get());
        EXPECT_TRUE(dialog.isModal());
        EXPECT_EQ(labels(dialog), QStringList({QStringLiteral("OK")}));
        EXPECT_EQ(box(dialog).standardButtons(), QMessageBox::Ok);
        DialogDriver::click(dialog, QStringLiteral("OK"));
    });
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.message_box('Title', 'Text \\u00e4\\u4e2d'))")), "1\n");
}

struct Press {
    const char* name;
    const char* arguments;
    const char* labels; // separated by |
    const char* pressed;
    const char* result;
};

void PrintTo(const Press& press, std::ostream* out)
{
    *out << press.pressed << " of " << press.labels;
}

class MessageBoxButtons : public Dialogs, public testing::WithParamInterface<Press>
{
};

TEST_P(MessageBoxButtons, GiveTheirNumber)
{
    const Press& press = GetParam();
    user.then([&press](QDialog& dialog) {
        EXPECT_EQ(labels(dialog).join(u'|').toStdString(), press.labels);
        DialogDriver::click(dialog, QString::fromUtf8(press.pressed));
    });
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.message_box('t', 'x'%1))").arg(QString::fromUtf8(press.arguments))),
              std::string(press.result) + "\n");
}

// The first label counts only beside a second one.
INSTANTIATE_TEST_SUITE_P(All, MessageBoxButtons,
                         testing::Values(Press{"FirstOfThree", ", 'a', 'b', 'c'", "a|b|c", "a", "1"},
                                         Press{"SecondOfThree", ", 'a', 'b', 'c'", "a|b|c", "b", "2"},
                                         Press{"ThirdOfThree", ", 'a', 'b', 'c'", "a|b|c", "c", "3"},
                                         Press{"FirstOfTwo", ", 'a', 'b'", "a|b", "a", "1"},
                                         Press{"SecondOfTwo", ", 'a', 'b'", "a|b", "b", "2"},
                                         Press{"OneLabel", ", 'a'", "OK", "OK", "1"},
                                         Press{"EmptySecondLabel", ", 'a', ''", "OK", "OK", "1"},
                                         Press{"OkBesideTheThird", ", 'a', '', 'c'", "OK|c", "OK", "1"},
                                         Press{"ThirdBesideOk", ", 'a', '', 'c'", "OK|c", "c", "3"},
                                         Press{"EmptyFirstLabel", ", '', 'b'", "|b", "", "1"},
                                         Press{"BesideAnEmptyFirstLabel", ", '', 'b'", "|b", "b", "2"}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(Dialogs, OwnButtonsAreForActions)
{
    user.then([](QDialog& dialog) {
        for (QAbstractButton* button : box(dialog).buttons())
            EXPECT_EQ(box(dialog).buttonRole(button), QMessageBox::ActionRole);
        DialogDriver::click(dialog, QStringLiteral("a"));
    });
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.message_box('t', 'x', 'a', 'b', 'c'))")), "1\n");
}

TEST_F(Dialogs, EscapePressesTheOnlyButton)
{
    user.then([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.message_box('t', 'x'))")), "1\n");
}

TEST_F(Dialogs, ADismissalWithoutAButtonCountsAsTheFirstMissingOne)
{
    for (int i = 0; i < 4; ++i)
        user.then([](QDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.message_box('t', 'x'),"
                                     " vantrel.message_box('t', 'x', 'a', '', 'c'),"
                                     " vantrel.message_box('t', 'x', 'a', 'b'),"
                                     " vantrel.message_box('t', 'x', 'a', 'b', 'c'))")),
              "2 2 3 0\n");
}

TEST_F(Dialogs, AMessageBoxThatGoesWithItsWindowIsADismissal)
{
    user.then([this](QDialog&) { window.reset(); });
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.message_box('t', 'x'))")), "2\n");
    host.delegate.window = nullptr;
}

TEST_F(Dialogs, AMessageBoxWorksWithoutAMainWindow)
{
    host.delegate.window = nullptr;
    user.then(clickOn("OK"));
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.message_box('t', 'x'))")), "1\n");
}

TEST_F(Dialogs, LongTitlesAndTextsAreShown)
{
    static constexpr int length = 1 << 20;
    user.then([](QDialog& dialog) {
        EXPECT_EQ(box(dialog).text().size(), length);
        EXPECT_EQ(dialog.windowTitle().size(), length);
        DialogDriver::click(dialog, QStringLiteral("OK"));
    });
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.message_box('t' * 2**20, 'x' * 2**20))")), "1\n");
}

TEST_F(Dialogs, MarkupReachesTheBoxAsItIs)
{
    user.then([](QDialog& dialog) {
        EXPECT_EQ(box(dialog).text(), QStringLiteral("<b>a</b> & <"));
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("<i>t</i>"));
        DialogDriver::click(dialog, QStringLiteral("OK"));
    });
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.message_box('<i>t</i>', '<b>a</b> & <'))")), "1\n");
}

// ---- ask_user_for_string ----

TEST_F(Dialogs, TheTextTypedIsTheAnswer)
{
    user.then([this](QDialog& dialog) {
        auto* input = qobject_cast<QInputDialog*>(&dialog);
        ASSERT_NE(input, nullptr);
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Name"));
        EXPECT_EQ(input->labelText(), QStringLiteral("Which?"));
        EXPECT_EQ(input->textEchoMode(), QLineEdit::Normal);
        EXPECT_EQ(input->textValue(), QString());
        EXPECT_EQ(dialog.parentWidget(), window.get());
        EXPECT_EQ(dialog.windowFlags(), QInputDialog(window.get()).windowFlags());
        auto* edit = dialog.findChild<QLineEdit*>();
        EXPECT_EQ(edit->inputMethodHints(), Qt::ImhNone);
        QTest::keyClicks(edit, QStringLiteral("blue 7"));
        QTest::keyClick(edit, Qt::Key_Return);
    });
    EXPECT_EQ(printed(QStringLiteral("print(repr(vantrel.ask_user_for_string('Name', 'Which?')))")), "'blue 7'\n");
}

TEST_F(Dialogs, ACancelledQuestionGivesAnEmptyString)
{
    const auto type = [](QDialog& dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>(), QStringLiteral("typed"));
    };
    user.then([&](QDialog& dialog) {
        type(dialog);
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    user.then([&](QDialog& dialog) {
        type(dialog);
        DialogDriver::click(dialog, QStringLiteral("Cancel"));
    });
    user.then([&](QDialog& dialog) {
        type(dialog);
        dialog.close();
    });
    EXPECT_EQ(printed(QStringLiteral("for i in range(3): print(repr(vantrel.ask_user_for_string('a', 'b')))")),
              "''\n''\n''\n");
}

TEST_F(Dialogs, AnAnswerKeepsEveryCharacter)
{
    user.then([](QDialog& dialog) {
        dialog.findChild<QLineEdit*>()->setText(QStringLiteral("\u00e4 \u4e2d \U0001f600"));
        DialogDriver::click(dialog, QStringLiteral("OK"));
    });
    EXPECT_EQ(printed(QStringLiteral("print(ascii(vantrel.ask_user_for_string('a', 'b')))")),
              "'\\xe4 \\u4e2d \\U0001f600'\n");
}

TEST_F(Dialogs, AQuestionThatGoesWithItsWindowIsCancelled)
{
    user.then([this](QDialog&) { window.reset(); });
    EXPECT_EQ(printed(QStringLiteral("print(repr(vantrel.ask_user_for_string('a', 'b')))")), "''\n");
    host.delegate.window = nullptr;
}

// ---- show_notification and print_to_error_log ----

TEST_F(Dialogs, ANotificationReachesTheApplication)
{
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.show_notification('<b>done</b> \\u00e4'))")), "None\n");
    EXPECT_EQ(host.delegate.calls, QStringList({QStringLiteral("showNotification(<b>done</b> \u00e4)")}));
}

TEST_F(Dialogs, TheErrorLogGetsOneQuotedCriticalRecord)
{
    const LogCapture log;
    EXPECT_EQ(printed(QStringLiteral("print(vantrel.print_to_error_log('say \"no\"\\n\\u00e4'))")), "None\n");
    ASSERT_EQ(log.records().size(), 1);
    const LogCapture::Record record = log.records().constFirst();
    EXPECT_EQ(record.type, QtCriticalMsg);
    EXPECT_EQ(record.category, QStringLiteral("default"));
    EXPECT_FALSE(record.namesFile);
    EXPECT_EQ(record.line, 0);
    EXPECT_EQ(record.text.toStdString(), "\"say \\\"no\\\"\\n\u00e4\"");
}

TEST_F(Dialogs, TheErrorLogIsOpenToEveryThread)
{
    const LogCapture log;
    onOtherThread([this] { EXPECT_CLEAN_RUN("vantrel.print_to_error_log('from there')"); });
    EXPECT_EQ(log.texts(), QStringList({QStringLiteral("\"from there\"")}));
}

// ---- what all of them refuse ----

TEST_F(Dialogs, OtherThreadsAreRefusedBeforeTheArgumentsAreLookedAt)
{
    onOtherThread([this] {
        EXPECT_CLEAN_RUN("for f in (vantrel.message_box, vantrel.show_notification, vantrel.ask_user_for_string,\n"
                         "          vantrel.add_menu_item):\n"
                         "    try: f(1, 2, 3, 4, 5, 6)\n"
                         "    except Exception as e: print(type(e).__name__, e)\n");
    });
    const std::string line = "Exception running GUI function from non-main thread\n";
    EXPECT_EQ(host.printed().toStdString(), line + line + line + line);
    EXPECT_TRUE(host.delegate.calls.isEmpty());
}

TEST_F(Dialogs, TextsThatNoHostCanTakeAreRefused)
{
    EXPECT_EQ(
        printed(QStringLiteral("for f, n in ((vantrel.message_box, 2), (vantrel.show_notification, 1),\n"
                               "             (vantrel.ask_user_for_string, 2), (vantrel.print_to_error_log, 1)):\n"
                               "    for text in ('a\\0b', '\\ud800', 7):\n"
                               "        try: f(*[text] * n)\n"
                               "        except Exception as e: print(type(e).__name__, end=' ')\n")),
        "ValueError UnicodeEncodeError TypeError ValueError UnicodeEncodeError TypeError "
        "ValueError UnicodeEncodeError TypeError ValueError UnicodeEncodeError TypeError ");
}

} // namespace
