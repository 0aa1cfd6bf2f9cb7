// Scripts that do what they should not. Every one leaves an interpreter that runs the next script.

#include "support/PluginHost.h"

namespace {

class BadInput : public PluginTest
{
protected:
    void TearDown() override
    {
        EXPECT_CLEAN_RUN("print('still here', str(vantrel.Image())[-5:])");
        EXPECT_EQ(host.printed().toStdString(), "still here empty\n");
    }

    /// The last line of a run's result.
    std::string error(const QString& script) { return host.run(script).section(u'\n', -2, -2).toStdString(); }
    std::string error(const char* script) { return error(QString::fromUtf8(script)); }
};

TEST_F(BadInput, SyntaxErrorIsReported)
{
    const QString result = host.run("print('never')\nif x\n");
    EXPECT_TRUE(result.contains(QStringLiteral("File \"<string>\", line 2"))) << result.toStdString();
    EXPECT_TRUE(result.contains(QStringLiteral("SyntaxError: "))) << result.toStdString();
    EXPECT_EQ(host.printed().toStdString(), "");
}

TEST_F(BadInput, IndentationErrorIsReported)
{
    EXPECT_TRUE(host.run("if 1:\nx = 1").contains(QStringLiteral("IndentationError: ")));
}

TEST_F(BadInput, RaiseIsReported)
{
    EXPECT_EQ(error("raise RuntimeError('no')"), "RuntimeError: no");
    EXPECT_EQ(error("raise BaseException('no')"), "BaseException: no");
    EXPECT_EQ(error("raise KeyboardInterrupt"), "KeyboardInterrupt");
    EXPECT_EQ(error("raise"), "RuntimeError: No active exception to reraise");
}

TEST_F(BadInput, ChainedExceptionsAreReportedWhole)
{
    const QString result = host.run("try:\n    1 / 0\nexcept ZeroDivisionError as e:\n    raise ValueError from e");
    EXPECT_TRUE(result.contains(QStringLiteral("ZeroDivisionError: division by zero"))) << result.toStdString();
    EXPECT_TRUE(result.endsWith(QStringLiteral("ValueError\n"))) << result.toStdString();
}

TEST_F(BadInput, ExceptionWithoutATextFormIsReported)
{
    EXPECT_NE(host.run("class E(Exception):\n    def __str__(self): raise ValueError\nraise E").toStdString(), "");
    EXPECT_NE(host.run("raise ValueError('\\ud800')").toStdString(), "");
    EXPECT_NE(host.run("raise ValueError('a\\0b')").toStdString(), "");
}

TEST_F(BadInput, EndlessRecursionIsReported)
{
    EXPECT_EQ(error("def f(): f()\nf()").substr(0, 16), "RecursionError: ");
    EXPECT_EQ(error("class A:\n    def __repr__(self): return repr(self)\nrepr(A())").substr(0, 16),
              "RecursionError: ");
}

TEST_F(BadInput, EndlessRecursionInAnOutputStreamIsReported)
{
    host.run("import sys\nclass S:\n    def write(self, t): print(t)\nsys.stdout = S()\nprint(1)");
}

TEST_F(BadInput, NullCharacterIsReportedAndNothingRuns)
{
    EXPECT_EQ(error(QStringLiteral("print('half')\n") + QChar(0) + QStringLiteral("\nprint('other half')")),
              "ValueError: source code string cannot contain null bytes");
    EXPECT_EQ(host.printed().toStdString(), "");
}

TEST_F(BadInput, LoneSurrogateInTheTextIsNoDisaster)
{
    EXPECT_CLEAN_RUN(QStringLiteral("text = '") + QChar(0xd800) + QStringLiteral("'\nprint(len(text))"));
}

TEST_F(BadInput, WindowsLineEndsAndAByteOrderMarkAreFine)
{
    EXPECT_CLEAN_RUN("print(1)\r\nif 1:\r\n    print(2)\r\n");
    EXPECT_EQ(host.printed().toStdString(), "1\n2\n");
    EXPECT_CLEAN_RUN(QString(QChar(0xfeff)) + QStringLiteral("print(3)"));
    EXPECT_EQ(host.printed().toStdString(), "3\n");
}

TEST_F(BadInput, DeclaredEncodingIsNotTakenForTheTexts)
{
    EXPECT_CLEAN_RUN("# -*- coding: latin-1 -*-\nprint(len('ö'))");
    EXPECT_EQ(host.printed().toStdString().back(), '\n');
}

TEST_F(BadInput, TenMegabytesOfTextRun)
{
    QString script = QStringLiteral("x = 0\n");
    const QString line = QStringLiteral("# ") + QString(1022, u'ä') + u'\n';
    while (script.size() < 10'000'000)
        script += line;
    script += QStringLiteral("print('end')");
    EXPECT_EQ(host.run(script).toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "end\n");
}

TEST_F(BadInput, TenMegabytesOnOneLineRun)
{
    EXPECT_EQ(host.run(QStringLiteral("x = '") + QString(10'000'000, u'x') + QStringLiteral("'; print(len(x))"))
                  .toStdString(),
              "");
    EXPECT_EQ(host.printed().toStdString(), "10000000\n");
}

TEST_F(BadInput, DeeplyNestedTextIsReported)
{
    EXPECT_NE(host.run(QString(100'000, u'(')).toStdString(), "");
    EXPECT_NE(host.run(QStringLiteral("x = ") + QString(100'000, u'[') + QString(100'000, u']')).toStdString(), "");
}

TEST_F(BadInput, TenMegabytesOfOutputArriveWhole)
{
    qsizetype written = 0;
    PluginHost::onOutput = [&written](const QString& text, bool) {
        written += text.size();
        PluginHost::output.clear();
    };
    EXPECT_CLEAN_RUN("print('x' * 10_000_000, end='')");
    EXPECT_EQ(written, 10'000'000);
    written = 0;
    EXPECT_CLEAN_RUN("for i in range(10_000): print('y' * 999)");
    EXPECT_EQ(written, 10'000'000);
    PluginHost::onOutput = nullptr;
}

TEST_F(BadInput, TenMegabytesOfErrorsArriveWhole)
{
    EXPECT_EQ(host.run("import sys\nfor i in range(10_000): sys.stderr.write('z' * 1000)").size(), 10'000'000);
}

TEST_F(BadInput, OutputThatIsNotAsciiArrivesUnchanged)
{
    EXPECT_CLEAN_RUN("print('größe ☃ 𝄞 \\u200b', end='')");
    EXPECT_EQ(host.printed().toStdString(), "größe ☃ 𝄞 \u200b");
}

TEST_F(BadInput, ViewClosedByTheScriptThatWorksOnIt)
{
    host.delegate.addView(makeTestImage(4, 3));
    const std::string last = error("image = vantrel.get_view_image()\nvantrel.close_view()\n"
                                   "print(image.width, vantrel.get_active_view_id())\n"
                                   "vantrel.close_view()\nvantrel.set_view_image(image)\n"
                                   "vantrel.get_view_image()\n");
    EXPECT_EQ(last, "Exception: no view or view contains no image");
    EXPECT_EQ(host.printed().toStdString(), "4 -1\n");
}

TEST_F(BadInput, ArgumentsOfWrongTypesAreReported)
{
    EXPECT_EQ(error("vantrel.wait('long')").substr(0, 10), "TypeError:");
    EXPECT_EQ(error("vantrel.open_file(b'x')").substr(0, 10), "TypeError:");
    EXPECT_EQ(error("vantrel.open_file('a\\0b')").substr(0, 11), "ValueError:");
    EXPECT_EQ(error("vantrel.get_view_image(2 ** 40)").substr(0, 14), "OverflowError:");
    EXPECT_EQ(error("vantrel.set_view_image(42)").substr(0, 12), "SystemError:");
}

TEST_F(BadInput, SettingsOfTheInterpreterAreTheScriptsOwnAffair)
{
    EXPECT_EQ(host.run("import sys\nsys.excepthook = None\nraise ValueError('seen')")
                  .contains(QStringLiteral("ValueError: seen")),
              true);
    EXPECT_CLEAN_RUN("import sys\nsys.excepthook = sys.__excepthook__");
    EXPECT_NE(host.run("import sys\nsys.modules['vantrel'] = None\nimport vantrel").toStdString(), "");
}

TEST_F(BadInput, EmbInternalsInScriptsHandsDoNoHarm)
{
    EXPECT_CLEAN_RUN("import sys, emb\nsys.stdout = emb.stdout_object()\nprint('nowhere')\n"
                     "for n in range(1000): emb.stdout_object()\n"
                     "emb.stdout_object.__call__\ndel emb.stdout_object\n");
    EXPECT_EQ(host.printed().toStdString(), "");
}

TEST_F(BadInput, ThreadsThatOutliveTheScriptAreHarmless)
{
    // They sleep so that they live on; only while a script runs are they let on.
    EXPECT_CLEAN_RUN("import builtins, threading\n"
                     "builtins.rounds = 0\n"
                     "def work():\n"
                     "    import builtins, time\n"
                     "    for i in range(200):\n"
                     "        time.sleep(0.001)\n"
                     "        builtins.rounds += 1\n"
                     "for i in range(4): threading.Thread(target=work, daemon=i % 2 == 0).start()\n");
    EXPECT_CLEAN_RUN("import builtins, time\n"
                     "enough = builtins.rounds + 40\n"
                     "for i in range(10000):\n"
                     "    if builtins.rounds >= enough: break\n"
                     "    time.sleep(0.001)\n"
                     "else:\n"
                     "    raise AssertionError('the threads have ended')\n");
}

} // namespace
