// What becomes of the text that a script writes.

#include "support/PluginHost.h"
#include "support/TestSettings.h"

#include <unistd.h>

namespace {

class Output : public PluginTest
{
protected:
    /// Runs without an output callback.
    QString runSilently(const char* script)
    {
        return host.plugin->runScript(QString::fromUtf8(script), &host.environment, TestSettings::pythonHome, nullptr,
                                      nullptr, nullptr);
    }
};

TEST_F(Output, ComesPieceByPieceAsItIsWritten)
{
    EXPECT_CLEAN_RUN("print('a')\nimport sys\nsys.stdout.write('b\\nc\\n')\nsys.stdout.write('')\n"
                     "print('d', 'e', sep='-', end='f')");
    EXPECT_EQ(PluginHost::output,
              QStringList({QStringLiteral("a"), QStringLiteral("\n"), QStringLiteral("b\nc\n"), QString(),
                           QStringLiteral("d"), QStringLiteral("-"), QStringLiteral("e"), QStringLiteral("f")}))
        << host.printed().toStdString();
}

TEST_F(Output, ComesWithASecondArgumentThatIsFalse)
{
    QList<bool> flags;
    PluginHost::onOutput = [&flags](const QString&, bool flag) { flags.append(flag); };
    EXPECT_CLEAN_RUN("print('x')");
    EXPECT_EQ(flags, QList<bool>({false, false}));
}

TEST_F(Output, ComesWhileTheScriptRuns)
{
    bool waitedBefore = true;
    PluginHost::onOutput = [&](const QString&, bool) { waitedBefore = !host.environment.calls.isEmpty(); };
    EXPECT_CLEAN_RUN("print('x', end='')\nvantrel.wait(0)");
    EXPECT_FALSE(waitedBefore);
}

TEST_F(Output, WriteReturnsTheBytesOfTheUtf8TextNotItsCharacters)
{
    EXPECT_CLEAN_RUN("import sys\nn = sys.stdout.write('größe')\nm = sys.stderr.write('')\nk = sys.stdout.write('𝄞')\n"
                     "assert (n, m, k) == (7, 0, 4), (n, m, k)\n"
                     "assert sys.stdout.write('zwölf') == 6");
}

TEST_F(Output, WriteTakesExactlyOneText)
{
    EXPECT_CLEAN_RUN("import sys\n"
                     "for arguments in ((b'x',), (1,), (None,), (), ('a', 'b')):\n"
                     "    try:\n"
                     "        sys.stdout.write(*arguments)\n"
                     "    except TypeError:\n"
                     "        print('TypeError')\n");
    EXPECT_EQ(host.printed().count(QStringLiteral("TypeError")), 5);
}

TEST_F(Output, ArgumentsHaveNoNames)
{
    EXPECT_CLEAN_RUN("import sys, emb\n"
                     "for method in (sys.stdout.write, sys.stdout.flush, emb.stdout_object().write):\n"
                     "    try:\n"
                     "        method(text='x')\n"
                     "    except TypeError:\n"
                     "        print('TypeError')\n");
    EXPECT_EQ(host.printed().toStdString(), "TypeError\nTypeError\nTypeError\n");
}

TEST_F(Output, WriteRefusesNullCharactersAndLoneSurrogates)
{
    EXPECT_CLEAN_RUN("import sys\n"
                     "for text in ('a\\0b', '\\ud800'):\n"
                     "    try:\n"
                     "        sys.stdout.write(text)\n"
                     "    except ValueError as error:\n"
                     "        print(type(error).__name__)\n");
    EXPECT_EQ(host.printed().toStdString(), "ValueError\nUnicodeEncodeError\n");
}

TEST_F(Output, WriteToAnInstanceWithoutAFunctionReturnsZeroWhateverTheArguments)
{
    EXPECT_CLEAN_RUN("import emb\nw = emb.stdout_object().write\nprint(w('abc'), w(), w(1), w(b'x', 2))");
    EXPECT_EQ(host.printed().toStdString(), "0 0 0 0\n");
}

TEST_F(Output, FlushReturnsNoneAndAcceptsAnything)
{
    EXPECT_CLEAN_RUN("import sys\nprint(sys.stdout.flush(), sys.stdout.flush(1, 'x', None), sys.stderr.flush())\n"
                     "print('y', flush=True)");
    EXPECT_EQ(host.printed().toStdString(), "None None None\ny\n");
}

TEST_F(Output, StreamsHaveOnlyWriteAndFlush)
{
    EXPECT_CLEAN_RUN("import sys\n"
                     "print([n for n in dir(sys.stdout) if not n.startswith('_')])\n"
                     "for name in ('encoding', 'fileno', 'isatty', 'closed', 'writelines', '__dict__'):\n"
                     "    try:\n"
                     "        getattr(sys.stdout, name)\n"
                     "        print('has', name)\n"
                     "    except AttributeError:\n"
                     "        pass\n"
                     "print(type(sys.stdout) is type(sys.stderr), sys.stdout is sys.stderr)");
    EXPECT_EQ(host.printed().toStdString(), "['flush', 'write']\nTrue False\n");
}

TEST_F(Output, TypeIsNamedDocumentedAndCannotBeSubclassed)
{
    EXPECT_CLEAN_RUN("import emb, gc, sys\n"
                     "assert not gc.is_tracked(sys.stdout)\n"
                     "print(type(sys.stdout) is emb.stdout_object, emb.stdout_object.__module__,\n"
                     "      emb.stdout_object.__name__, emb.__doc__)\n"
                     "print(emb.stdout_object.write.__doc__, emb.stdout_object.flush.__doc__)\n"
                     "print([n for n in dir(emb) if not n.startswith('_')])\n"
                     "try:\n"
                     "    class Mine(emb.stdout_object): pass\n"
                     "except TypeError as error:\n"
                     "    print('no subclass')\n");
    EXPECT_EQ(host.printed().toStdString(), "True emb stdout_object None\n"
                                            "sys.stdout.write sys.stdout.flush\n['stdout_object']\nno subclass\n");
}

TEST_F(Output, WithoutACallbackStandardOutputIsNotTouchedButErrorsAreCollected)
{
    const QString result = runSilently("import sys\n"
                                       "assert sys.stdout is sys.__stdout__\n"
                                       "assert sys.stderr is not sys.__stderr__\n"
                                       "sys.stderr.write('collected')\n");
    EXPECT_EQ(result.toStdString(), "collected");
}

TEST_F(Output, WithoutACallbackTextGoesToTheProcess)
{
    testing::internal::CaptureStdout();
    const QString result = runSilently("print('to the process', flush=True)");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "to the process\n");
    EXPECT_EQ(result.toStdString(), "");
}

TEST_F(Output, WritesThroughTheProcessStreamsBypassTheRedirection)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_CLEAN_RUN("import sys\nprint('1', file=sys.__stdout__, flush=True)\n"
                     "print('2', file=sys.__stderr__, flush=True)\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "1\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "2\n");
    EXPECT_EQ(host.printed().toStdString(), "");
}

TEST_F(Output, StreamsAreBackAfterTheRun)
{
    EXPECT_CLEAN_RUN("import sys, builtins\nbuiltins.seen = (sys.stdout, sys.stderr)");
    EXPECT_EQ(runSilently("import sys, builtins\n"
                          "assert sys.stdout is sys.__stdout__\n"
                          "assert sys.stderr is not builtins.seen[1], 'a run gets a new object'\n")
                  .toStdString(),
              "");
    EXPECT_CLEAN_RUN("import sys, builtins\nassert sys.stdout is not builtins.seen[0]\ndel builtins.seen");
}

TEST_F(Output, AStreamThatTheScriptPutInPlaceIsThrownOutAfterTheRun)
{
    EXPECT_CLEAN_RUN("import sys, io\nsys.stdout = io.StringIO()\nprint('lost')\nsys.stderr = sys.stdout\n");
    EXPECT_EQ(host.printed().toStdString(), "");
    EXPECT_EQ(runSilently("import sys\nassert sys.stdout is sys.__stdout__").toStdString(), "");
    EXPECT_CLEAN_RUN("print('back')");
    EXPECT_EQ(host.printed().toStdString(), "back\n");
}

// Without a callback the script's own stream stays in place, and the next run is its only holder.
TEST_F(Output, AStreamThatOnlySysHoldsSurvivesTheNextRun)
{
    EXPECT_EQ(runSilently("import sys, io\nsys.stdout = io.StringIO()\nprint('kept')").toStdString(), "");
    EXPECT_CLEAN_RUN("import gc\nprint('seen')\nx = [bytearray(64) for i in range(20000)]\ngc.collect()");
    EXPECT_EQ(host.printed().toStdString(), "seen\n");
    EXPECT_EQ(
        runSilently("import sys\nassert sys.stdout.getvalue() == 'kept\\n'\nsys.stdout = sys.__stdout__").toStdString(),
        "");
}

TEST_F(Output, AScriptMayDropTheProcessStreams)
{
    EXPECT_CLEAN_RUN("import sys, gc, os\n"
                     "keep = sys.__stdout__.detach(), sys.__stderr__.detach()\n"
                     "import builtins\nbuiltins.keep = keep\n"
                     "sys.__stdout__ = sys.__stderr__ = None\ngc.collect()\n"
                     "x = [bytearray(64) for i in range(20000)]\nprint('here')");
    EXPECT_EQ(host.printed().toStdString(), "here\n");
    EXPECT_CLEAN_RUN("print('and here')");
    EXPECT_EQ(host.printed().toStdString(), "and here\n");
}

TEST_F(Output, AScriptMayDeleteTheStreams)
{
    EXPECT_EQ(host.run("import sys\ndel sys.stdout\ndel sys.stderr\n").toStdString(), "");
    EXPECT_EQ(host.run("import sys\ndel sys.stderr\nraise ValueError('unseen')").toStdString(), "");
    EXPECT_CLEAN_RUN("print('there')");
    EXPECT_EQ(host.printed().toStdString(), "there\n");
}

TEST_F(Output, AKeptStreamStaysUsableAfterTheRun)
{
    EXPECT_CLEAN_RUN("import sys, builtins\nbuiltins.kept = (sys.stdout, sys.stderr)");
    EXPECT_CLEAN_RUN("import builtins\nbuiltins.kept[0].write('late')\n"
                     "assert builtins.kept[1].write('late') == 4\ndel builtins.kept");
    EXPECT_EQ(host.printed().toStdString(), "late");
}

TEST_F(Output, ErrorsOfOneRunAreNotInTheNext)
{
    EXPECT_EQ(host.run("import sys\nsys.stderr.write('one')\nsys.stderr.write(' two')").toStdString(), "one two");
    EXPECT_CLEAN_RUN("pass");
}

TEST_F(Output, ErrorsAreCollectedInOrderWithTheTraceback)
{
    const QString result = host.run("import sys\nprint('first', file=sys.stderr)\nraise KeyError('k')\n");
    EXPECT_EQ(result.toStdString(), "first\nTraceback (most recent call last):\n"
                                    "  File \"<string>\", line 3, in <module>\nKeyError: 'k'\n");
}

TEST_F(Output, ErrorsKeepTheirUtf8)
{
    EXPECT_EQ(host.run("raise ValueError('größer ☃ 𝄞')").section(u'\n', -2).toStdString(), "ValueError: größer ☃ 𝄞\n");
}

TEST_F(Output, AtCleanUpErrorsAreStillCollectedAndOutputIsNot)
{
    testing::internal::CaptureStdout();
    const QString result = host.run("class Last:\n"
                                    "    def __del__(self):\n"
                                    "        import sys\n"
                                    "        sys.stderr.write('to the result')\n"
                                    "        print('to the process', flush=True)\n"
                                    "last = Last()\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "to the process\n");
    EXPECT_EQ(result.toStdString(), "to the result");
    EXPECT_EQ(host.printed().toStdString(), "");
}

} // namespace
