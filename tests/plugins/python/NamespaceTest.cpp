// What a run finds in __main__, and what it leaves there.

#include "support/PluginHost.h"

namespace {

class Namespace : public PluginTest
{
};

TEST_F(Namespace, LosesEveryNameThatARunMade)
{
    EXPECT_CLEAN_RUN("before = set(globals())\nimport builtins\nbuiltins.before = before");
    EXPECT_CLEAN_RUN("variable = 1\ndef function(): pass\nclass Class: pass\nimport json, os.path as path\n"
                     "_hidden = __dunder__ = 2\nfor loop in (1,): pass\nGröße = 3\n");
    EXPECT_CLEAN_RUN("import builtins\nnow = set(globals()) - {'builtins', 'now'}\n"
                     "old = builtins.before - {'before'}\ndel builtins.before\n"
                     "assert now <= old, now - old");
}

TEST_F(Namespace, KeepsTheNewValuesOfNamesThatWereThere)
{
    host.environment.defs = {{QStringLiteral("NAME"), QStringLiteral("old")}};
    EXPECT_CLEAN_RUN("NAME = 'new'\nvantrel = vantrel");
    EXPECT_CLEAN_RUN("print(NAME)");
    EXPECT_EQ(host.printed().toStdString(), "new\n");
}

TEST_F(Namespace, DoesNotGetBackNamesThatARunDeleted)
{
    host.environment.defs = {{QStringLiteral("NAME"), QStringLiteral("old")}};
    EXPECT_CLEAN_RUN("del NAME");
    EXPECT_CLEAN_RUN("print('NAME' in globals())\nNAME = 1");
    EXPECT_EQ(host.printed().toStdString(), "False\n");
    EXPECT_CLEAN_RUN("print('NAME' in globals())");
    EXPECT_EQ(host.printed().toStdString(), "False\n");
}

TEST_F(Namespace, LosesTheNameOfAModuleThatStaysImported)
{
    EXPECT_CLEAN_RUN("import json\njson.mark = 5");
    EXPECT_CLEAN_RUN("import sys\nprint('json' in globals(), 'json' in sys.modules)\nimport json\nprint(json.mark)");
    EXPECT_EQ(host.printed().toStdString(), "False True\n5\n");
}

TEST_F(Namespace, KeepsKeysThatAreNoText)
{
    EXPECT_CLEAN_RUN("globals()[1] = 'one'\nglobals()[None] = 'none'\nglobals()[b'x'] = 'bytes'");
    EXPECT_CLEAN_RUN("print(globals()[1], globals()[None], globals()[b'x'])\n"
                     "for key in (1, None, b'x'): del globals()[key]\n");
    EXPECT_EQ(host.printed().toStdString(), "one none bytes\n");
}

TEST_F(Namespace, KeepsNamesThatUtf8CannotHold)
{
    EXPECT_CLEAN_RUN("globals()['\\ud800'] = 'kept'\nafter = 1");
    EXPECT_CLEAN_RUN("print(globals()['\\ud800'], 'after' in globals())\ndel globals()['\\ud800']");
    EXPECT_EQ(host.printed().toStdString(), "kept False\n");
}

TEST_F(Namespace, LosesNamesOfATextSubclassAndTheEmptyName)
{
    EXPECT_CLEAN_RUN("class Text(str): pass\nglobals()[Text('mine')] = 1\nglobals()[''] = 2");
    EXPECT_CLEAN_RUN("print('mine' in globals(), '' in globals())");
    EXPECT_EQ(host.printed().toStdString(), "False False\n");
}

TEST_F(Namespace, TellsNamesApartByAllTheirBytes)
{
    host.environment.defs = {{QStringLiteral("name"), QStringLiteral("x")}};
    EXPECT_CLEAN_RUN("name2 = nam = Name = namé = 1");
    EXPECT_CLEAN_RUN("print([n for n in globals() if n.lower().startswith('nam')])");
    EXPECT_EQ(host.printed().toStdString(), "['name']\n");
}

TEST_F(Namespace, IsCleanedInTheOrderInWhichTheNamesCame)
{
    const QString result = host.run("class Last:\n"
                                    "    def __init__(self, name): self.name = name\n"
                                    "    def __del__(self):\n"
                                    "        import sys\n"
                                    "        sys.stderr.write(self.name)\n"
                                    "b, a, c = Last('b'), Last('a'), Last('c')\n");
    EXPECT_EQ(result.toStdString(), "bac");
}

TEST_F(Namespace, IsCleanedAfterAScriptThatFailed)
{
    EXPECT_NE(host.run("made = 1\nraise ValueError").toStdString(), "");
    EXPECT_CLEAN_RUN("print('made' in globals())");
    EXPECT_EQ(host.printed().toStdString(), "False\n");
}

TEST_F(Namespace, SurvivesAFinaliserThatRaises)
{
    const QString result = host.run("class Bad:\n    def __del__(self): raise ValueError('late')\n"
                                    "bad = Bad()\nafter = 1\n");
    EXPECT_TRUE(result.contains(QStringLiteral("ValueError: late"))) << result.toStdString();
    EXPECT_CLEAN_RUN("print('bad' in globals(), 'after' in globals())");
    EXPECT_EQ(host.printed().toStdString(), "False False\n");
}

TEST_F(Namespace, SurvivesFinalisersThatMakeAndDeleteNames)
{
    EXPECT_CLEAN_RUN("class Busy:\n"
                     "    def __del__(self):\n"
                     "        globals()['new'] = 1\n"
                     "        globals().pop('zzz', None)\n"
                     "busy = Busy()\nzzz = 1\n");
    // A name made during the clean-up belongs to what the next run finds.
    EXPECT_CLEAN_RUN("print('new' in globals(), 'zzz' in globals())\ndel new");
    EXPECT_EQ(host.printed().toStdString(), "True False\n");
}

// Nothing brings names back that a script deleted, not even the one under which some versions of the interpreter look
// for the built-in functions. Code still runs.
TEST_F(Namespace, SurvivesBeingEmptied)
{
    host.run("globals().clear()");
    EXPECT_CLEAN_RUN("x = 1\nif x + 1 != 2: raise\n");
    EXPECT_NE(host.run("undefined_name").toStdString(), "");
}

TEST_F(Namespace, SurvivesLosingItsModule)
{
    host.run("import sys\ndel sys.modules['__main__']");
    EXPECT_CLEAN_RUN("x = 1\nif x + 1 != 2: raise\n");
    EXPECT_NE(host.run("undefined_name").toStdString(), "");
}

TEST_F(Namespace, OfManyNamesIsCleaned)
{
    EXPECT_CLEAN_RUN("for i in range(20000): globals()['n%d' % i] = i");
    EXPECT_CLEAN_RUN("print(len([n for n in globals() if n.startswith('n')]))");
    EXPECT_EQ(host.printed().toStdString(), "0\n");
}

} // namespace
