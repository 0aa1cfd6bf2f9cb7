// The program on a display with a window manager, used with real keys.

#include "Program.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QStandardPaths>
#include <QtCore/QThread>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace {

constexpr int patience = 30000;

class RealKeys : public ProgramTest
{
protected:
    void SetUp() override
    {
        for (const char* tool : {"Xvfb", "openbox", "xdotool"})
            if (QStandardPaths::findExecutable(QString::fromUtf8(tool)).isEmpty())
                GTEST_SKIP() << tool << " is not installed";
        server.start(QStringLiteral("Xvfb"),
                     list({"-displayfd", "1", "-screen", "0", "1280x900x24", "-nolisten", "tcp"}));
        ASSERT_TRUE(server.waitForReadyRead(patience));
        display = ":" + server.readAllStandardOutput().trimmed();
        environment.insert(QStringLiteral("DISPLAY"), QString::fromUtf8(display));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        manager.setProcessEnvironment(environment);
        manager.start(QStringLiteral("openbox"), {});
        ASSERT_TRUE(manager.waitForStarted(patience));
    }

    void TearDown() override
    {
        for (QProcess* process : {&manager, &server}) {
            process->terminate();
            process->waitForFinished(patience);
        }
    }

    /// Runs xdotool and returns what it prints.
    QByteArray hand(std::initializer_list<const char*> words)
    {
        QProcess tool;
        tool.setProcessEnvironment(environment);
        tool.start(QStringLiteral("xdotool"), list(words));
        EXPECT_TRUE(tool.waitForFinished(patience));
        return tool.readAllStandardOutput();
    }

    void press(const char* key) { hand({"key", key}); }

    /// The visible window with that title; 0 if there is none.
    xcb_window_t find(const QByteArray& title)
    {
        const QByteArray found = hand({"search", "--onlyvisible", "--name", ("^" + title + "$").constData()});
        return xcb_window_t(found.split('\n').first().toUInt());
    }

    /// Waits until the window is there and has the keyboard. Returns 0 if it does not come. On a busy machine the
    /// window manager may leave the keyboard with another window; a person then clicks on the one that they want.
    xcb_window_t waitFor(const char* title)
    {
        QElapsedTimer clock;
        clock.start();
        QElapsedTimer seen;
        while (clock.elapsed() < patience) {
            const xcb_window_t window = find(title);
            if (window && hand({"getactivewindow"}).trimmed().toUInt() == window) {
                QThread::msleep(300); // nobody presses a key sooner; the program must have heard of the focus
                return window;
            }
            if (window && !seen.isValid())
                seen.start();
            if (window && seen.isValid() && seen.elapsed() > 3000) {
                hand({"windowactivate", QByteArray::number(window).constData()});
                seen.restart();
            }
            QThread::msleep(50);
        }
        ADD_FAILURE() << "no window " << title;
        return 0;
    }

    void waitUntilGone(const char* title)
    {
        QElapsedTimer clock;
        clock.start();
        while (find(title)) {
            ASSERT_LT(clock.elapsed(), patience) << title << " stays";
            QThread::msleep(50);
        }
    }

    /// Lets the window manager close a window, as a click on the cross of its frame does.
    void close(xcb_window_t window)
    {
        const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> owned(
            xcb_connect(display.constData(), nullptr), &xcb_disconnect);
        xcb_connection_t* connection = owned.get();
        const char* const name = "_NET_CLOSE_WINDOW";
        const auto cookie = xcb_intern_atom(connection, 0, std::uint16_t(std::strlen(name)), name);
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
            xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
        ASSERT_TRUE(atom);
        xcb_client_message_event_t message = {};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atom->atom;
        message.data.data32[1] = 2; // as a pager: at the user's wish
        xcb_send_event(connection, 0, xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        // The answer shows that the server has taken the message.
        std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }

    static void expectOneTraceback(const Outcome& outcome)
    {
        const QString errors = QString::fromStdString(outcome.errors);
        EXPECT_EQ(errors.count(QStringLiteral("Traceback")), 1) << outcome.errors;
        EXPECT_TRUE(errors.endsWith(QStringLiteral("\nKeyboardInterrupt\n"))) << outcome.errors;
        EXPECT_EQ(outcome.status, 130);
    }

    QByteArray display;
    QProcess server;
    QProcess manager;
};

TEST_F(RealKeys, CtrlPeriodStopsAScriptWhoseDialogHasTheFocus)
{
    const Outcome outcome = run("import vantrel\n"
                                "print('begun', flush=True)\n"
                                "while True: vantrel.ask_user_for_string('Name', 'Which?')\n",
                                list({"--show"}), [this](QProcess& /*process*/) {
                                    waitFor("Name");
                                    press("a"); // the dialog has the keyboard
                                    press("ctrl+period");
                                    waitUntilGone("Name");
                                    waitFor("Vantrel");
                                    press("alt+F4");
                                });
    expectOneTraceback(outcome);
}

TEST_F(RealKeys, TheWindowManagerClosesTheWindowWhileADialogOfTheScriptIsOpen)
{
    const Outcome outcome = run("import vantrel\n"
                                "print('begun', flush=True)\n"
                                "while True: vantrel.message_box('Box', 'text', 'OK', 'Not OK')\n",
                                list({"--show"}), [this](QProcess& /*process*/) {
                                    waitFor("Box");
                                    close(find("Vantrel"));
                                    waitFor("Close");
                                    press("Escape");
                                    waitUntilGone("Close");
                                    waitFor("Box"); // the script goes on
                                    close(find("Vantrel"));
                                    waitFor("Close");
                                    press("alt+s"); // Stop and Close
                                });
    expectOneTraceback(outcome);
}

TEST_F(RealKeys, TheWindowIsClosedWhileAScriptWorks)
{
    const Outcome outcome =
        run("print('begun', flush=True)\nwhile True: pass\n", list({"--show"}), [this](QProcess& /*process*/) {
            waitFor("Vantrel");
            press("alt+F4");
            waitFor("Close");
            press("Return"); // a thoughtless key must not end the script
            waitUntilGone("Close");
            waitFor("Vantrel");
            press("ctrl+q");
            waitFor("Close");
            press("alt+s");
        });
    expectOneTraceback(outcome);
}

TEST_F(RealKeys, MenusOpenWhileAScriptWorks)
{
    const Outcome outcome =
        run("print('begun', flush=True)\nwhile True: pass\n", list({"--show"}), [this](QProcess& /*process*/) {
            waitFor("Vantrel");
            press("alt+h"); // Help
            press("a");     // About
            waitFor("About Vantrel");
            press("ctrl+period"); // also from this dialog
            press("Escape");
            waitUntilGone("About Vantrel");
            waitFor("Vantrel");
            press("alt+F4");
        });
    expectOneTraceback(outcome);
}

} // namespace
