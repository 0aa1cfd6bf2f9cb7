// Nothing that a run makes stays, but for the headers of image and graph objects.

#include "support/PluginHost.h"

#include <malloc.h>

#include <string>

namespace {

class References : public PluginTest
{
};

// A dropped image gives back its picture and keeps its header, and with it one reference to the type.
TEST_F(References, OfTheImageTypeGrowByOneForEveryImageMade)
{
    EXPECT_CLEAN_RUN("import sys\n"
                     "vantrel.Image()\n"
                     "before = sys.getrefcount(vantrel.Image)\n"
                     "for i in range(100):\n"
                     "    img = vantrel.Image()\n"
                     "    img.alloc(4, 4, 1, 8)\n"
                     "del img\n"
                     "print(sys.getrefcount(vantrel.Image) - before)");
    EXPECT_EQ(host.printed().toStdString(), "100\n");
    EXPECT_EQ(CxImageData::liveCount(), 0);
}

// Graphs are kept in the same way.
TEST_F(References, OfTheGraphTypeGrowByOneForEveryGraphMade)
{
    EXPECT_CLEAN_RUN("import sys\n"
                     "vantrel.Graph()\n"
                     "before = sys.getrefcount(vantrel.Graph)\n"
                     "for i in range(100):\n"
                     "    graph = vantrel.Graph()\n"
                     "    graph.add_series()\n"
                     "del graph\n"
                     "print(sys.getrefcount(vantrel.Graph) - before)");
    EXPECT_EQ(host.printed().toStdString(), "100\n");
}

TEST_F(References, LeaveNoSeriesOfAGraphThatGoesOrStartsAnew)
{
    const auto bytesAfter = [this](int graphs) {
        const std::string script = "for i in range(" + std::to_string(graphs) + R"():
    graph = vantrel.Graph()
    for fill in range(2):
        graph.__init__()
        series = graph.add_series()
        for x in range(50000):   # 16 bytes a point
            graph.series_add_point(series, x, x)
del graph
)";
        EXPECT_CLEAN_RUN(script.c_str());
        const auto memory = mallinfo2();
        return memory.uordblks + memory.hblkhd;
    };
    const std::size_t before = bytesAfter(1);
    EXPECT_LT(bytesAfter(10), before + 2'000'000);
}

TEST_F(References, OfOtherTypesComeBack)
{
    const char* script = "import sys, builtins, emb\n"
                         "names = ('int', 'str', 'bytes', 'tuple', 'list', 'dict', 'float', 'type', 'NoneType')\n"
                         "kinds = [type(None) if n == 'NoneType' else getattr(builtins, n) for n in names]\n"
                         "kinds += [emb.stdout_object, type(vantrel.wait), Exception]\n"
                         "counts = [sys.getrefcount(k) for k in kinds]\n"
                         "for i in range(200):\n"
                         "    img = vantrel.Image()\n"
                         "    img.alloc(4, 4, 3, 8)\n"
                         "    bytes(img), str(img), img.width, img.tobytes, img.__array_interface__\n"
                         "    img.get_image_data_numpy(), getattr(img, 'nothing', None)\n"
                         "    sys.stdout.write(''), sys.stdout.flush(), emb.stdout_object()\n"
                         "    try: vantrel.wait()\n"
                         "    except TypeError: pass\n"
                         "    vantrel.wait(0), vantrel.get_active_view_id(), vantrel.tile_views()\n"
                         "del img\n"
                         "after = [sys.getrefcount(k) for k in kinds]\n"
                         "grown = [(k.__name__, b - a) for k, a, b in zip(kinds, counts, after) if abs(b - a) > 20]\n"
                         "assert not grown, grown\n";
    EXPECT_CLEAN_RUN(script);
    EXPECT_CLEAN_RUN(script);
}

TEST_F(References, OfNoneTrueAndSmallNumbersComeBack)
{
    EXPECT_CLEAN_RUN("import sys\n"
                     "img = vantrel.Image()\nimg.alloc(4, 4, 3, 8)\n"
                     "things = (None, True, False, 4, '', vantrel, vantrel.wait)\n"
                     "counts = [sys.getrefcount(t) for t in things]\n"
                     "for i in range(500):\n"
                     "    vantrel.wait(0); vantrel.tile_views(); vantrel.close_view(); str(img); img.width\n"
                     "    img.alloc(4, 4, 3, 8)\n"
                     "    vantrel.record_video_to_file('x'); vantrel.activate_view(4); sys.stdout.flush()\n"
                     "after = [sys.getrefcount(t) for t in things]\n"
                     "grown = [(t, b - a) for t, a, b in zip(things, counts, after) if abs(b - a) > 50]\n"
                     "assert not grown, grown\n");
}

TEST_F(References, OfTheStreamTypeComeBackAfterEveryRun)
{
    EXPECT_CLEAN_RUN("import sys, emb, builtins\nbuiltins.count = sys.getrefcount(emb.stdout_object)");
    for (int i = 0; i < 50; ++i)
        EXPECT_CLEAN_RUN("print('x')");
    EXPECT_CLEAN_RUN("import sys, emb, builtins\nassert sys.getrefcount(emb.stdout_object) == builtins.count");
}

TEST_F(References, OfTheProcessStreamsComeBackAfterEveryRun)
{
    EXPECT_CLEAN_RUN("import sys, builtins\n"
                     "builtins.counts = [sys.getrefcount(s) for s in (sys.__stdout__, sys.__stderr__)]");
    for (int i = 0; i < 50; ++i)
        EXPECT_CLEAN_RUN("print('x')");
    EXPECT_CLEAN_RUN("import sys, builtins\n"
                     "assert [sys.getrefcount(s) for s in (sys.__stdout__, sys.__stderr__)] == builtins.counts");
}

TEST_F(References, OfPublishedImagesEndWithTheirNames)
{
    EXPECT_CLEAN_RUN("pass");
    const auto image = makeTestImage(4, 3);
    for (int i = 0; i < 10; ++i)
        host.plugin->addImageVariable(QStringLiteral("shot"), image.get());
    EXPECT_CLEAN_RUN("import sys\nassert sys.getrefcount(shot) == 2, sys.getrefcount(shot)");
}

TEST_F(References, ToMemoryDoNotGrowFromRunToRun)
{
    const char* script = "def f(n): return [str(i) for i in range(n)]\nx = f(100)\nprint('x')\n";
    EXPECT_CLEAN_RUN("import sys, builtins");
    for (int i = 0; i < 50; ++i)
        EXPECT_CLEAN_RUN(script);
    EXPECT_CLEAN_RUN("import sys, builtins\nbuiltins.blocks = sys.getallocatedblocks()");
    for (int i = 0; i < 1000; ++i)
        EXPECT_CLEAN_RUN(script);
    EXPECT_CLEAN_RUN("import sys, builtins\ngrown = sys.getallocatedblocks() - builtins.blocks\n"
                     "assert grown < 500, grown");
}

} // namespace
