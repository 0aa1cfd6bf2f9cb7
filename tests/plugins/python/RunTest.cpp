// Running scripts.

#include "support/PluginHost.h"
#include "support/TestSettings.h"

namespace {

class Run : public PluginTest
{
};

TEST_F(Run, PrintsIntoTheOutputCallback)
{
    EXPECT_CLEAN_RUN("print('hello')");
    EXPECT_EQ(PluginHost::output, QStringList({QStringLiteral("hello"), QStringLiteral("\n")}));
}

TEST_F(Run, ReturnsTheTracebackOfAnUncaughtException)
{
    const QString result = host.run("def f():\n    raise ValueError('no')\nf()\n");
    EXPECT_EQ(result.toStdString(), "Traceback (most recent call last):\n"
                                    "  File \"<string>\", line 3, in <module>\n"
                                    "  File \"<string>\", line 2, in f\n"
                                    "ValueError: no\n");
}

TEST_F(Run, ReturnsNothingWhenNothingWentToStandardError)
{
    EXPECT_CLEAN_RUN("");
    EXPECT_CLEAN_RUN("# nothing\n");
    EXPECT_CLEAN_RUN("print('only output')");
}

TEST_F(Run, OffersTheModuleAndTheImageType)
{
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "img.alloc(4, 2, 1, 12)\n"
                     "print(img, img.width, img.data_saturation)\n");
    EXPECT_EQ(host.printed().toStdString(), "Vantrel image, width: 4, height: 2, channels: 1, bit per channel (bpc): "
                                            "12, type: unsigned int 4 4095.0\n");
}

TEST_F(Run, IsTheMainModule)
{
    EXPECT_CLEAN_RUN("import sys\n"
                     "assert __name__ == '__main__'\n"
                     "assert globals() is locals() is vars(sys.modules['__main__'])\n"
                     "def f(): pass\n"
                     "assert f.__code__.co_filename == '<string>'\n");
}

// ---- the start notification ----

struct Notification {
    int calls = 0;
    void* first = nullptr;
    bool outputBefore = false;
};

void noteStart(void* first, void* data)
{
    auto& seen = *static_cast<Notification*>(data);
    ++seen.calls;
    seen.first = first;
    seen.outputBefore = !PluginHost::output.isEmpty();
}

TEST_F(Run, NotifiesTheStartOnceBeforeAnyCodeRunsWithNullAndTheUserData)
{
    Notification seen;
    seen.first = &seen;
    PluginHost::output.clear();
    const QString result =
        host.plugin->runScript(QStringLiteral("print('code')"), &host.environment, TestSettings::pythonHome, noteStart,
                               &seen, [](const QString& text, bool) { PluginHost::output.append(text); });
    EXPECT_EQ(result.toStdString(), "");
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.first, nullptr);
    EXPECT_FALSE(seen.outputBefore);
    EXPECT_EQ(host.printed().toStdString(), "code\n");
}

TEST_F(Run, NotifiesTheStartOfAScriptThatDoesNotCompile)
{
    Notification seen;
    const QString result = host.plugin->runScript(QStringLiteral("def"), &host.environment, TestSettings::pythonHome,
                                                  noteStart, &seen, nullptr);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_TRUE(result.contains(QStringLiteral("SyntaxError"))) << result.toStdString();
}

class HelpSeeing : public FakeEnvironment
{
public:
    const char* functionHelp(const char* moduleName, const char* functionName) override
    {
        asked = true;
        return FakeEnvironment::functionHelp(moduleName, functionName);
    }
    bool asked = false;
    bool askedBeforeStart = false;
};

TEST_F(Run, NotifiesTheStartAfterTheInterpreterHasStarted)
{
    HelpSeeing environment;
    host.plugin->runScript(
        QString(), &environment, TestSettings::pythonHome,
        [](void*, void* data) {
            auto& seen = *static_cast<HelpSeeing*>(data);
            seen.askedBeforeStart = seen.asked;
        },
        &environment, nullptr);
    EXPECT_TRUE(environment.askedBeforeStart);
}

// ---- what the host may ask meanwhile ----

TEST_F(Run, DoesNotHoldUpWhatNeedsNoInterpreter)
{
    host.environment.defs = {{QStringLiteral("NAME"), QStringLiteral("value")}};
    QString version;
    PluginHost::onOutput = [&](const QString&, bool) {
        version = host.plugin->languageVersion();
        EXPECT_TRUE(host.plugin->init());
    };
    EXPECT_CLEAN_RUN("NAME = 'changed'\nprint('x', end='')\nif NAME != 'changed': raise ValueError");
    PluginHost::onOutput = nullptr;
    EXPECT_TRUE(version.startsWith(QStringLiteral("Python "))) << version.toStdString();
    EXPECT_CLEAN_RUN("print(NAME)");
    EXPECT_EQ(host.printed().toStdString(), "value\n") << "the next run starts anew";
}

// ---- environments and applications ----

TEST_F(Run, TalksToTheEnvironmentOfItsOwnRun)
{
    EXPECT_CLEAN_RUN("vantrel.wait(1)");
    FakeEnvironment other;
    host.plugin->runScript(QStringLiteral("vantrel.wait(2)"), &other, QString(), nullptr, nullptr, nullptr);
    EXPECT_EQ(host.environment.calls, QStringList(QStringLiteral("wait(1)")));
    EXPECT_EQ(other.calls, QStringList(QStringLiteral("wait(2)")));
}

TEST_F(Run, TalksToTheApplicationThatIsSetAtTheMoment)
{
    FakeDelegate other; // takes the first one's place
    host.environment.onWait = [&](double) { IxAppDelegate::setInstance(&host.delegate); };
    EXPECT_CLEAN_RUN("tile = vantrel.tile_views\ntile()\nvantrel.switch_full_screen(True)\nvantrel.wait(0)\ntile()");
    EXPECT_EQ(other.calls, QStringList({QStringLiteral("tileViews()"), QStringLiteral("setFullScreen(true)")}));
    EXPECT_EQ(host.delegate.calls, QStringList(QStringLiteral("tileViews()")));
}

TEST_F(Run, IgnoresThePythonHomeOfLaterRuns)
{
    EXPECT_CLEAN_RUN("pass");
    const QString result =
        host.plugin->runScript(QStringLiteral("import sys, json\nsys.stderr.write(sys.prefix)"), &host.environment,
                               QStringLiteral("/nowhere"), nullptr, nullptr, nullptr);
    EXPECT_EQ(result, TestSettings::pythonHome);
}

// ---- images published by the host ----

TEST_F(Run, SeesAPublishedImageWithoutOwningIt)
{
    EXPECT_CLEAN_RUN("pass");
    const auto image = makeTestImage(5, 3);
    host.plugin->addImageVariable(QStringLiteral("shot"), image.get());
    EXPECT_CLEAN_RUN("print(shot.width, shot.height, type(shot).__name__)");
    EXPECT_EQ(host.printed().toStdString(), "5 3 Image\n");
    EXPECT_CLEAN_RUN("print(shot.width > 0)");
    EXPECT_EQ(host.printed().toStdString(), "True\n");
    EXPECT_CLEAN_RUN("del shot");
    EXPECT_EQ(image->picBuf()->width, 5U) << "still the host's";
    EXPECT_CLEAN_RUN("print('shot' in globals())");
    EXPECT_EQ(host.printed().toStdString(), "False\n");
}

TEST_F(Run, SeesTheLatestImageOfAName)
{
    EXPECT_CLEAN_RUN("größe = 1");
    const auto first = makeTestImage(5, 3);
    const auto second = makeTestImage(6, 3);
    host.plugin->addImageVariable(QStringLiteral("größe"), first.get());
    host.plugin->addImageVariable(QStringLiteral("größe"), second.get());
    EXPECT_CLEAN_RUN("print(größe.width)\ngröße = 'rebound'");
    EXPECT_EQ(host.printed().toStdString(), "6\n");
    EXPECT_CLEAN_RUN("print(größe)");
    EXPECT_EQ(host.printed().toStdString(), "rebound\n");
}

} // namespace
