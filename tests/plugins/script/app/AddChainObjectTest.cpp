// Stages that scripts insert into the chain of the active view.

#include "CxChain.h"
#include "CxChainManager.h"
#include "CxRTTI.h"
#include "plugins/support/WitnessStage.h"
#include "support/LogCapture.h"
#include "support/OtherThread.h"
#include "support/PluginHost.h"

#include <memory>
#include <utility>

namespace {

class AddChainObject : public PluginTest
{
protected:
    AddChainObject()
    {
        registry().registerClass(WitnessStage::staticMetaObject, QStringLiteral("The Witness"),
                                 [] { return new WitnessStage; });
        WitnessStage::alive = 0;
        WitnessStage::throws = false;
        WitnessStage::onConfigured = nullptr;
        WitnessStage::steps.clear();
        viewObject = new WitnessStage;
        CxChainManager::instance()->insertBefore(&chain, viewObject, nullptr);
        host.delegate.addView(makeTestImage(4, 3));
        view().chain = viewObject;
    }
    ~AddChainObject() override { registry().unregisterClass(WitnessStage::staticMetaObject); }

    static CxRTTI& registry() { return *CxRTTI::instance(); }
    FakeView& view() { return *host.delegate.views.begin()->second; }

    /// Runs the call and prints "None" or what is raised.
    std::string call(const QString& arguments)
    {
        EXPECT_CLEAN_RUN(QStringLiteral("try: print(vantrel.add_chain_object(%1))\n"
                                        "except BaseException as e: print(type(e).__name__, e)\n")
                             .arg(arguments));
        return host.printed().trimmed().toStdString();
    }
    std::string call(const char* arguments) { return call(QString::fromUtf8(arguments)); }

    /// True while nothing but the view's own object is in the chain, or left anywhere.
    bool untouched() const
    {
        return chain.objects() == QList<CxChainable*>({viewObject}) && !chain.stopped() && WitnessStage::alive == 1;
    }

    CxChain chain;
    WitnessStage* viewObject = nullptr;
};

TEST_F(AddChainObject, InsertsAnEnabledStageBeforeTheViewsObject)
{
    EXPECT_EQ(call("'The Witness'"), "None");
    ASSERT_EQ(chain.objects().size(), 2);
    EXPECT_EQ(chain.objects().last(), viewObject);
    EXPECT_TRUE(chain.objects().first()->isEnabled()); // it was not when it was made
    EXPECT_EQ(WitnessStage::elementName, QStringLiteral("conf"));
    EXPECT_TRUE(WitnessStage::elementIsRoot);
    EXPECT_TRUE(WitnessStage::attributes.isEmpty());

    EXPECT_EQ(call("'Gain', {}"), "None");
    ASSERT_EQ(chain.objects().size(), 3);
    EXPECT_STREQ(chain.objects().at(1)->metaObject()->className(), "GainStage");
}

TEST_F(AddChainObject, FindsTheNameInAnyLetterCase)
{
    EXPECT_EQ(call("'the wITNESS'"), "None");
    EXPECT_EQ(call("'gaussian blur'"), "None");
    EXPECT_EQ(chain.objects().size(), 3);
}

TEST_F(AddChainObject, TakesTheFirstClassOfANameAndNoOther)
{
    registry().registerClass(WitnessStage::staticMetaObject, QStringLiteral("GAIN"), [] { return new WitnessStage; });
    EXPECT_EQ(call("'Gain'"), "None");
    EXPECT_STREQ(chain.objects().first()->metaObject()->className(), "GainStage");

    registry().registerClass(WitnessStage::staticMetaObject, QStringLiteral("Twice"),
                             []() -> QObject* { return nullptr; });
    registry().registerClass(SecondStage::staticMetaObject, QStringLiteral("Twice"), [] { return new SecondStage; });
    EXPECT_EQ(call("'Twice'"), "Exception Cannot find chain object class");
    registry().unregisterClass(SecondStage::staticMetaObject);
}

TEST_F(AddChainObject, PassesOverClassesThatAreNoStagesAndThoseThatCannotBeMade)
{
    registry().registerClass(NoStage::staticMetaObject, QStringLiteral("Wanted"), [] { return new NoStage; });
    registry().registerClass(WitnessStage::staticMetaObject, QStringLiteral("Wanted"), {});
    EXPECT_EQ(call("'Wanted'"), "Exception Cannot find chain object class");
    registry().registerClass(SecondStage::staticMetaObject, QStringLiteral("Wanted"), [] { return new SecondStage; });
    EXPECT_EQ(call("'Wanted'"), "None");
    EXPECT_STREQ(chain.objects().first()->metaObject()->className(), "SecondStage");
    registry().unregisterClass(SecondStage::staticMetaObject);
    registry().unregisterClass(NoStage::staticMetaObject);
}

TEST_F(AddChainObject, StopsARunningChainWhileTheStageIsConfiguredSwitchedOnAndInserted)
{
    QObject::connect(&chain, &CxChain::changed, &chain, [this] {
        WitnessStage::steps.append(QStringLiteral("chain of %1 %2")
                                       .arg(chain.objects().size())
                                       .arg(chain.stopped() ? u"stopped" : u"running"));
    });
    EXPECT_EQ(call("'The Witness'"), "None");
    EXPECT_EQ(WitnessStage::steps.join(u'\n').toStdString(), "chain of 1 stopped\n"
                                                             "configured, off, outside\n"
                                                             "switched on\n"
                                                             "chain of 2 stopped\n"
                                                             "chain of 2 running");
}

TEST_F(AddChainObject, LeavesAStoppedChainStopped)
{
    chain.stop();
    EXPECT_EQ(call("'The Witness'"), "None");
    EXPECT_TRUE(chain.stopped());
    EXPECT_EQ(chain.objects().size(), 2);
}

// ---- the configuration ----

struct Entry {
    const char* name;
    const char* dictionary;
    const char* attributes; // sorted, separated by |
};

void PrintTo(const Entry& entry, std::ostream* out)
{
    *out << entry.dictionary;
}

class ChainConfiguration : public AddChainObject, public testing::WithParamInterface<Entry>
{
};

TEST_P(ChainConfiguration, BecomesAttributes)
{
    EXPECT_EQ(call(QStringLiteral("'The Witness', %1").arg(QString::fromUtf8(GetParam().dictionary))), "None");
    EXPECT_EQ(WitnessStage::attributes.join(u'|').toStdString(), GetParam().attributes);
}

INSTANTIATE_TEST_SUITE_P(
    All, ChainConfiguration,
    testing::Values(
        Entry{"EveryKind", "{'gain': 2, 'on': True, 'k': 0.5, 'label': 'text', 'skip': [1]}",
              "gain=2|k=0.5|label=text|on=1"},
        Entry{"False", "{'on': False}", "on=0"},
        Entry{"SubclassesOfInt", "{'a': type('I', (int,), {})(7), 'b': -2**31, 'c': 2**31 - 1}",
              "a=7|b=-2147483648|c=2147483647"},
        // The low 32 bits, of any integer, with the sign that they make.
        Entry{"IntegersBeyond32Bits", "{'a': 2**31, 'b': -2**31 - 1, 'c': 2**32 + 500, 'd': 2**63 + 7, 'e': -2**63}",
              "a=-2147483648|b=2147483647|c=500|d=7|e=0"},
        Entry{"IntegersBeyond64Bits", "{'a': 2**64 + 2**32 - 2, 'b': 10**100 + 3, 'c': -2**64 - 5, 'd': -10**100 - 1}",
              "a=-2|b=3|c=-5|d=-1"},
        Entry{"SubclassesOfIntBeyond64Bits",
              "{'a': type('I', (int,), {'__int__': lambda s: 1, '__index__': lambda s: 1})(2**70 + 9)}", "a=9"},
        Entry{"SubclassesOfFloatAndStr", "{'a': type('F', (float,), {})(1.25), 'b': type('S', (str,), {})('s')}",
              "a=1.25|b=s"},
        Entry{"TheLaterOfTwoKeysWithOneText",
              "{'a': 1, type('S', (str,), {'__hash__': lambda s: 1, '__eq__': lambda s, o: s is o})('a'): 2}", "a=2"},
        Entry{"SubclassOfDict", "__import__('collections').OrderedDict(a=1)", "a=1"},
        Entry{"OtherValues",
              "{'a': None, 'b': b'x', 'c': (1,), 'd': {}, 'e': 1j, 'f': object(), 'g': vantrel.Image(), 'h': 1}",
              "h=1"},
        Entry{"ExtremeFloats", "{'a': float('inf'), 'b': float('nan'), 'c': 1e22}", "a=inf|b=nan|c=1e+22"},
        Entry{"KeysThatAreNoText", "{1: 1, None: 2, (1,): 3, b'b': 4, 'ok': 5}", "ok=5"},
        Entry{"TextsWithoutUtf8", "{'\\ud800': 1, 'a': '\\udfff', 'ok': 5}", "ok=5"},
        Entry{"KeysThatAreNoXmlNames", "{'1 x<': 1, 'a b': 2, '\\u00e4': 3}", "1 x<=1|a b=2|\u00e4=3"},
        Entry{"MarkupInValues", "{'a': '<b attr=\"1\">&amp;'}", "a=<b attr=\"1\">&amp;"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(AddChainObject, AnEmptyKeyNamesNoSetting)
{
    EXPECT_EQ(call("'The Witness', {'': 1, 'ok': 2}"), "None");
    EXPECT_TRUE(WitnessStage::attributes.contains(QStringLiteral("ok=2")));
}

TEST_F(AddChainObject, NumbersReachTheStageExactly)
{
    EXPECT_EQ(call("'The Witness', {'k': 0.1, 'third': 1/3}"), "None");
    EXPECT_EQ(WitnessStage::attributes.at(0).mid(2).toDouble(), 0.1);
    EXPECT_EQ(WitnessStage::attributes.at(1).mid(6).toDouble(), 1.0 / 3);
}

// ---- failures, in the order in which they are found ----

TEST_F(AddChainObject, AConfigurationThatIsNoDictionaryComesFirst)
{
    host.delegate.active = -1;
    for (const char* config : {"None", "[('a', 1)]", "'a'", "1"})
        EXPECT_EQ(call(QStringLiteral("'No Such Stage', %1").arg(QString::fromUtf8(config))),
                  "Exception Config parameter is not of the dictionary type");
    EXPECT_TRUE(untouched());
}

TEST_F(AddChainObject, AnUnknownNameComesBeforeAMissingView)
{
    host.delegate.active = -1;
    EXPECT_EQ(call("'No Such Stage', {}"), "Exception Cannot find chain object class");
    EXPECT_EQ(call("''"), "Exception Cannot find chain object class");
    EXPECT_EQ(call("'WitnessStage'"), "Exception Cannot find chain object class"); // not the name of the user
}

TEST_F(AddChainObject, WithoutAViewTheStageIsReleased)
{
    host.delegate.active = -1;
    EXPECT_EQ(call("'The Witness'"), "Exception No active view");
    EXPECT_TRUE(untouched());
}

TEST_F(AddChainObject, AViewWithoutAChainObjectIsASystemError)
{
    view().chain = nullptr;
    EXPECT_EQ(call("'The Witness'").substr(0, 12), "SystemError ");
    EXPECT_TRUE(untouched());
    WitnessStage chainless;
    view().chain = &chainless;
    EXPECT_EQ(call("'The Witness'").substr(0, 12), "SystemError ");
}

TEST_F(AddChainObject, AClassThatMakesNoInstanceCannotBeFound)
{
    registry().registerClass(WitnessStage::staticMetaObject, QStringLiteral("The Witness"),
                             []() -> QObject* { return nullptr; });
    EXPECT_EQ(call("'The Witness'"), "Exception Cannot find chain object class");
}

TEST_F(AddChainObject, AnInstanceThatIsNoStageIsReleased)
{
    registry().registerClass(WitnessStage::staticMetaObject, QStringLiteral("The Witness"), [] { return new NoStage; });
    EXPECT_EQ(call("'The Witness'"), "Exception Cannot find chain object class");
    EXPECT_EQ(NoStage::alive, 0);
    EXPECT_TRUE(untouched());
}

TEST_F(AddChainObject, AStageThatTheChainDoesNotTakeIsReleasedAndTheScriptGoesOn)
{
    // The host closes the view while the stage reads its settings: there is nothing to insert it before any more.
    WitnessStage::onConfigured = [this](WitnessStage&) {
        view().chain = nullptr;
        delete std::exchange(viewObject, nullptr);
    };
    const LogCapture log;
    EXPECT_EQ(call("'The Witness'"), "None");
    EXPECT_TRUE(chain.objects().isEmpty());
    EXPECT_FALSE(chain.stopped());
    EXPECT_EQ(WitnessStage::alive, 0);
}

TEST_F(AddChainObject, AStageThatIsInAnotherChainAlreadyStaysThere)
{
    CxChain other;
    WitnessStage::onConfigured = [&other](WitnessStage& stage) {
        CxChainManager::instance()->insertBefore(&other, &stage, nullptr);
    };
    const LogCapture log;
    EXPECT_EQ(call("'The Witness'"), "None");
    EXPECT_EQ(other.objects().size(), 1);
    EXPECT_EQ(chain.objects(), QList<CxChainable*>({viewObject}));
    EXPECT_FALSE(chain.stopped());
    EXPECT_EQ(WitnessStage::alive, 2);
}

TEST_F(AddChainObject, AHostExceptionLeavesTheChainStopped)
{
    WitnessStage::throws = true;
    EXPECT_EQ(host.run("vantrel.add_chain_object('The Witness')").toStdString(), "Python rasied exception");
    EXPECT_TRUE(chain.stopped());
    EXPECT_EQ(chain.objects(), QList<CxChainable*>({viewObject}));
    EXPECT_EQ(WitnessStage::alive, 1);
}

TEST_F(AddChainObject, OtherThreadsAreRefusedBeforeTheArgumentsAreLookedAt)
{
    onOtherThread([this] { EXPECT_EQ(call("1, 2, 3"), "Exception running GUI function from non-main thread"); });
    EXPECT_TRUE(untouched());
}

TEST_F(AddChainObject, WrongArgumentsAreRefused)
{
    EXPECT_EQ(call("'a\\0b'"), "ValueError embedded null character");
    EXPECT_EQ(call("").substr(0, 10), "TypeError ");
    EXPECT_EQ(call("'Gain', {}, 1").substr(0, 10), "TypeError ");
    EXPECT_TRUE(untouched());
}

} // namespace
