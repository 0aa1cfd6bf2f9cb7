// The values that scripts share: what the six functions promise.

#include "support/OtherThread.h"
#include "support/PluginHost.h"

namespace {

class GlobalVariables : public PluginTest
{
protected:
    // The store outlives the interpreter.
    void TearDown() override
    {
        const std::string result =
            host.run("for name in ('', 'copy', 'fail', 'gone', 'id', 'k', 'new', 'other', 'r', 'same', 'side', 't'):\n"
                     "    vantrel.set_global_variable_img(name, None)\n")
                .toStdString();
        EXPECT_EQ(result, "");
    }

    std::string printed() const { return host.printed().toStdString(); }
};

/// An image that cannot be copied, as when memory runs out.
class UncopyableImage : public CxImageData
{
public:
    QObject* copy(bool /*infoOnly*/) override { return nullptr; }
};

const char* const images = "def image(value):\n"
                           "    img = vantrel.Image()\n"
                           "    img.alloc(1, 1, 1, 8)\n"
                           "    import ctypes\n"
                           "    ctypes.memset(img.bp, value, 1)\n"
                           "    return img\n"
                           "def pixel(img): return img.get_image_data_raw()[0]\n";

QString withImages(const char* script)
{
    return QString::fromUtf8(images) + QString::fromUtf8(script);
}

TEST_F(GlobalVariables, UnknownNamesHaveFixedValues)
{
    EXPECT_CLEAN_RUN(
        "print(vantrel.get_global_variable_int('none'), repr(vantrel.get_global_variable_string('none')),\n"
        "      vantrel.get_global_variable_img('none'))\n");
    EXPECT_EQ(printed(), "-1 '' None\n");
}

TEST_F(GlobalVariables, KeepIntegersAndStringsBetweenRuns)
{
    EXPECT_CLEAN_RUN("print(vantrel.set_global_variable_int('n', -2147483648),\n"
                     "      vantrel.set_global_variable_string('n', '\\u00e4\\U0001f600'))\n");
    EXPECT_EQ(printed(), "None None\n");
    EXPECT_CLEAN_RUN("print(vantrel.get_global_variable_int('n'), ascii(vantrel.get_global_variable_string('n')))");
    EXPECT_EQ(printed(), "-2147483648 '\\xe4\\U0001f600'\n");
}

TEST_F(GlobalVariables, AreOverwritten)
{
    EXPECT_CLEAN_RUN("for i in range(3):\n"
                     "    vantrel.set_global_variable_int('o', i)\n"
                     "    vantrel.set_global_variable_string('o', str(i))\n"
                     "print(vantrel.get_global_variable_int('o'), vantrel.get_global_variable_string('o'))\n");
    EXPECT_EQ(printed(), "2 2\n");
}

TEST_F(GlobalVariables, SurviveARestartOfTheInterpreter)
{
    EXPECT_CLEAN_RUN(withImages("vantrel.set_global_variable_int('r', 7)\n"
                                "vantrel.set_global_variable_img('r', image(9))\n"));
    host.restart();
    EXPECT_CLEAN_RUN(withImages("print(vantrel.get_global_variable_int('r'),\n"
                                "      pixel(vantrel.get_global_variable_img('r')))\n"));
    EXPECT_EQ(printed(), "7 9\n");
}

TEST_F(GlobalVariables, DifferInTheCaseOfLetters)
{
    EXPECT_CLEAN_RUN("vantrel.set_global_variable_int('case', 1)\n"
                     "vantrel.set_global_variable_int('Case', 2)\n"
                     "vantrel.set_global_variable_string('case', 'a')\n"
                     "print(vantrel.get_global_variable_int('case'), vantrel.get_global_variable_int('Case'),\n"
                     "      repr(vantrel.get_global_variable_string('Case')))\n");
    EXPECT_EQ(printed(), "1 2 ''\n");
}

TEST_F(GlobalVariables, OfThreeKindsMayShareAName)
{
    EXPECT_CLEAN_RUN(withImages("vantrel.set_global_variable_int('k', 1)\n"
                                "vantrel.set_global_variable_string('k', 's')\n"
                                "vantrel.set_global_variable_img('k', image(3))\n"
                                "print(vantrel.get_global_variable_int('k'), vantrel.get_global_variable_string('k'),\n"
                                "      pixel(vantrel.get_global_variable_img('k')))\n"));
    EXPECT_EQ(printed(), "1 s 3\n");
}

TEST_F(GlobalVariables, IgnoreAnEmptyNameExceptForImages)
{
    EXPECT_CLEAN_RUN(withImages("vantrel.set_global_variable_int('', 1)\n"
                                "vantrel.set_global_variable_string('', 's')\n"
                                "vantrel.set_global_variable_img('', image(5))\n"
                                "print(vantrel.get_global_variable_int(''),\n"
                                "      repr(vantrel.get_global_variable_string('')),\n"
                                "      pixel(vantrel.get_global_variable_img('')))\n"));
    EXPECT_EQ(printed(), "-1 '' 5\n");
}

TEST_F(GlobalVariables, RefuseWhatTheirKindCannotHold)
{
    EXPECT_CLEAN_RUN("for f, args in ((vantrel.set_global_variable_int, ('a', 2**31)),\n"
                     "                (vantrel.set_global_variable_int, ('a', 1.5)),\n"
                     "                (vantrel.set_global_variable_int, ('a\\0', 1)),\n"
                     "                (vantrel.set_global_variable_string, ('a', 'b\\0')),\n"
                     "                (vantrel.set_global_variable_string, ('a', '\\udfff')),\n"
                     "                (vantrel.set_global_variable_img, ('a',)),\n"
                     "                (vantrel.get_global_variable_img, (1,))):\n"
                     "    try: f(*args)\n"
                     "    except Exception as e: print(type(e).__name__, end=' ')\n");
    EXPECT_EQ(printed(), "OverflowError TypeError ValueError ValueError UnicodeEncodeError TypeError TypeError ");
}

TEST_F(GlobalVariables, AreOpenToEveryThread)
{
    onOtherThread([this] {
        EXPECT_CLEAN_RUN(withImages("vantrel.set_global_variable_int('t', 4)\n"
                                    "vantrel.set_global_variable_string('t', 's')\n"
                                    "vantrel.set_global_variable_img('t', image(6))\n"
                                    "print(vantrel.get_global_variable_int('t'),\n"
                                    "      vantrel.get_global_variable_string('t'),\n"
                                    "      pixel(vantrel.get_global_variable_img('t')))\n"));
    });
    EXPECT_EQ(printed(), "4 s 6\n");
}

// ---- images ----

TEST_F(GlobalVariables, AnImageIsKeptAsACopy)
{
    EXPECT_CLEAN_RUN(withImages("import ctypes\n"
                                "img = image(1)\n"
                                "print(vantrel.set_global_variable_img('copy', img))\n"
                                "ctypes.memset(img.bp, 2, 1)\n"
                                "print(pixel(vantrel.get_global_variable_img('copy')))\n"));
    EXPECT_EQ(printed(), "None\n1\n");
}

TEST_F(GlobalVariables, AnImageReadIsTheStoredOneItself)
{
    EXPECT_CLEAN_RUN(withImages("import ctypes\n"
                                "vantrel.set_global_variable_img('same', image(1))\n"
                                "a = vantrel.get_global_variable_img('same')\n"
                                "b = vantrel.get_global_variable_img('same')\n"
                                "ctypes.memset(a.bp, 8, 1)\n"
                                "print(a is b, a.bp == b.bp, pixel(b))\n"
                                "del a, b\n" // they own nothing
                                "print(pixel(vantrel.get_global_variable_img('same')))\n"));
    EXPECT_EQ(printed(), "False True 8\n8\n");
}

TEST_F(GlobalVariables, SettingTheImageJustReadChangesNothing)
{
    EXPECT_CLEAN_RUN(withImages("vantrel.set_global_variable_img('id', image(3))\n"
                                "img = vantrel.get_global_variable_img('id')\n"
                                "address = img.bp\n"
                                "vantrel.set_global_variable_img('id', img)\n"
                                "print(vantrel.get_global_variable_img('id').bp == address, pixel(img))\n"));
    EXPECT_EQ(printed(), "True 3\n");
}

TEST_F(GlobalVariables, ANewImageReplacesTheOldOne)
{
    const int before = CxImageData::liveCount();
    EXPECT_CLEAN_RUN(withImages("vantrel.set_global_variable_img('new', image(1))\n"
                                "vantrel.set_global_variable_img('new', image(2))\n"
                                "vantrel.set_global_variable_img('other', vantrel.get_global_variable_img('new'))\n"
                                "print(pixel(vantrel.get_global_variable_img('new')),\n"
                                "      pixel(vantrel.get_global_variable_img('other')))\n"));
    EXPECT_EQ(printed(), "2 2\n");
    EXPECT_EQ(CxImageData::liveCount(), before + 2);
}

TEST_F(GlobalVariables, AnObjectThatStillBorrowsAReplacedImageDeletesNothing)
{
    EXPECT_CLEAN_RUN(withImages("vantrel.set_global_variable_img('gone', image(1))\n"
                                "borrowed = vantrel.get_global_variable_img('gone')\n"
                                "vantrel.set_global_variable_img('gone', image(2))\n"
                                "del borrowed\n"
                                "print(pixel(vantrel.get_global_variable_img('gone')))\n"));
    EXPECT_EQ(printed(), "2\n");
}

TEST_F(GlobalVariables, AnObjectWithoutAnImageEmptiesAnEntryAndMakesNone)
{
    EXPECT_CLEAN_RUN(withImages("for nothing in (vantrel.Image(), None, 5, 'text'):\n"
                                "    vantrel.set_global_variable_img('empty', image(1))\n"
                                "    vantrel.set_global_variable_img('empty', nothing)\n"
                                "    vantrel.set_global_variable_img('never', nothing)\n"
                                "    print(vantrel.get_global_variable_img('empty'),\n"
                                "          vantrel.get_global_variable_img('never'))\n"));
    EXPECT_EQ(printed(), "None None\nNone None\nNone None\nNone None\n");
}

TEST_F(GlobalVariables, ACopyThatFailsLeavesAnEmptyEntry)
{
    UncopyableImage image;
    EXPECT_CLEAN_RUN("");
    host.plugin->addImageVariable(QStringLiteral("uncopyable"), &image);
    EXPECT_CLEAN_RUN(withImages("vantrel.set_global_variable_img('fail', image(1))\n"
                                "print(vantrel.set_global_variable_img('fail', uncopyable),\n"
                                "      vantrel.get_global_variable_img('fail'))\n"
                                "vantrel.set_global_variable_img('fail', image(4))\n"
                                "print(pixel(vantrel.get_global_variable_img('fail')))\n"
                                "vantrel.set_global_variable_img('fail', None)\n"));
    EXPECT_EQ(printed(), "None None\n4\n");
}

TEST_F(GlobalVariables, ServeScriptThreadsSideBySide)
{
    EXPECT_CLEAN_RUN(withImages("import gc, threading\n"
                                "gc.set_threshold(1)\n" // collections wherever one can start
                                "class Cycle:\n"
                                "    def __init__(self): self.self = self\n"
                                "    def __del__(self): vantrel.set_global_variable_int('cycles', 1)\n"
                                "def work(number):\n"
                                "    for i in range(200):\n"
                                "        Cycle()\n"
                                "        vantrel.set_global_variable_int('side', i)\n"
                                "        vantrel.set_global_variable_string('side', str(i))\n"
                                "        vantrel.set_global_variable_img('side', image(number))\n"
                                "        vantrel.get_global_variable_int('side')\n"
                                "        vantrel.get_global_variable_string('side')\n"
                                "        vantrel.get_global_variable_img('side')\n"
                                "threads = [threading.Thread(target=work, args=(i,)) for i in (1, 2)]\n"
                                "for t in threads: t.start()\n"
                                "for t in threads: t.join()\n"
                                "print(vantrel.get_global_variable_int('side'), "
                                "vantrel.get_global_variable_int('cycles'))\n"));
    EXPECT_EQ(printed(), "199 1\n");
}

} // namespace
