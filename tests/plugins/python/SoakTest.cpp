// A long day: 20,000 runs of all kinds in one process, after which nothing has grown.

#include "CxChain.h"
#include "CxChainManager.h"
#include "CxRTTI.h"
#include "plugins/support/CameraScriptTest.h"
#include "plugins/support/WitnessStage.h"
#include "support/Leftovers.h"
#include "support/LogCapture.h"
#include "support/OtherThread.h"
#include "support/TestSettings.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QMenu>

#include <random>

#include <malloc.h>
#include <unistd.h>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool sanitized = true; // the freed memory is kept aside, so the process grows whatever the plugin does
#else
constexpr bool sanitized = false;
#endif

/// A script of the day.
struct Chore {
    const char* script;
    const char* lastLine = ""; ///< of its result; null when it differs between Pythons
    bool anyThread = true;     ///< it asks nothing of the windows
};

const Chore chores[] = {
    {"pass"},
    {"for i in range(20): print(i, 'line', end=';')"},
    {"import math, json\nassert json.loads(json.dumps({'pi': math.pi}))['pi'] > 3"},
    {"def f(n): return n if n < 2 else f(n - 1) + f(n - 2)\nclass A: pass\na = A()\na.a = a\nassert f(8) == 21"},
    {"x = = 1", "SyntaxError: invalid syntax\n"},
    {"def fail(): raise ValueError('no light')\nfail()", "ValueError: no light\n"},
    {"import sys\nprint('to the log', file=sys.stderr)", "to the log\n"},
    {"image = vantrel.Image()\nimage.alloc(64, 48, 3, 8)\nimage.draw_pixel_line(9, 0, 0, 63, 47, 1)\n"
     "assert image.get_pixel_value(0, 0, 1) == 9\nassert len(image.measure_rect()) == 3\nassert len(bytes(image)) >= "
     "9216"},
    {"image = vantrel.Image()\nimage.from_array([[x + y for x in range(20)] for y in range(10)])\n"
     "small = image.resize(5, 5, 0, 0, 0, 0).convert_bpc(12).crop(1, 1, 3, 3)\nassert small.width == 3\n"
     "rows = image.measure_row_profiles_in_rect()\nassert len(rows) == 10\nimage.add(image)\nimage.to_rgb()"},
    {"vantrel.Image().from_array('a text')", nullptr},
    {"image = vantrel.Image()\nimage.from_file('none.png')\nassert 'empty' in str(image)"},
    {"graph = vantrel.Graph()\ns = graph.add_series()\nfor i in range(50): graph.series_add_point(s, i, i * i)\n"
     "image = vantrel.Image()\nimage.alloc(80, 60, 3, 8)\ngraph.draw_into_image(image)",
     "", false},
    {"image = vantrel.Image()\nimage.alloc(8, 6, 1, 8)\nid = vantrel.new_view_with_image(image, 'soak')\n"
     "seen = vantrel.get_view_image(id)\nvantrel.set_view_image(seen, id)\nvantrel.duplicate_view(id)\n"
     "vantrel.close_view()\nvantrel.close_view()",
     "", false},
    {"vantrel.get_view_image(7777)", nullptr, false},
    {"cam = vantrel.Camera()\ncam.open_device()\ncam.set_exposure(cam.get_exposure())\ncam.set_gain(2.0)\n"
     "assert cam.get_device_info_string('device_sn') == 'FAKE01'\ncam.close_device()"},
    {"vantrel.Camera().open_device(9)", nullptr},
    {"image = vantrel.Image()\nimage.alloc(16, 16, 1, 8)\nvantrel.set_global_variable_img('kept', image)\n"
     "again = vantrel.get_global_variable_img('kept')\nassert again.width == 16\n"
     "vantrel.set_global_variable_int('n', vantrel.get_global_variable_int('n') + 1)\n"
     "vantrel.set_global_variable_string('s', 'text' * 9)"},
    {"vantrel.run_script('part.py')\nassert part == 3"},
    {"vantrel.add_menu_item('Item', 'part.py', 'Submenu')", "", false},
    {"vantrel.wait(0.001)\nassert vantrel.wait_for_next_frame(0.1)", "", false},
    {"vantrel.add_chain_object('The Witness', {'gain': 1.5, 'name': 'n'})", "", false},
    {"help(vantrel.wait)"},
    {"import threading\nt = threading.Thread(target=len, args=('thread',))\nt.start()\nt.join()"},
    {"ordered = sorted(vars(vantrel))\nassert 'Image' in ordered\nprint(shared.width, shared)"},
};

class Soak : public CameraScriptTest
{
protected:
    Soak()
    {
        host.environment.directory = folder.path();
        host.environment.onWait = [](double) {};
        host.delegate.scriptMenu = &menu;
        host.delegate.addView(makeTestImage(8, 6));
        host.plugin->addImageVariable(QStringLiteral("shared"), shared.get());
        CxRTTI::instance()->registerClass(WitnessStage::staticMetaObject, QStringLiteral("The Witness"),
                                          [] { return new WitnessStage; });
        QFile part(folder.filePath(QStringLiteral("part.py")));
        EXPECT_TRUE(part.open(QIODevice::WriteOnly));
        part.write("part = 1 + 2\n");
    }
    ~Soak() override { CxRTTI::instance()->unregisterClass(WitnessStage::staticMetaObject); }

    void run(const Chore& chore, bool elsewhere)
    {
        QString result;
        CxChain chain;
        auto* object = new WitnessStage;
        CxChainManager::instance()->insertBefore(&chain, object, nullptr);
        host.delegate.views.begin()->second->chain = object;
        const auto work = [&] { result = host.run(chore.script); };
        if (elsewhere)
            onOtherThread(work);
        else
            work();
        if (chore.lastLine)
            ASSERT_EQ(result.isEmpty() ? "" : (result.section(u'\n', -2)).toStdString(), chore.lastLine)
                << chore.script;
        else
            ASSERT_NE(result.toStdString(), "") << chore.script;
        // What the fake application writes down of every call.
        host.delegate.calls.clear();
        host.delegate.lookups.clear();
        host.environment.calls.clear();
        host.environment.resolved.clear();
        host.environment.itemMenus.clear();
        log.clear();
        WitnessStage::steps.clear();
        device.written.clear();
        menu.clear();
    }

    /// Runs that many chores in an order that is the same in every test run.
    void runMany(int count)
    {
        std::uniform_int_distribution<std::size_t> which(0, std::size(chores) - 1);
        for (int i = 0; i < count && !HasFatalFailure(); ++i) {
            const Chore& chore = chores[which(random)];
            run(chore, chore.anyThread && i % 16 == 0);
        }
    }

    static qint64 residentBytes()
    {
        malloc_trim(0);
        QFile file(QStringLiteral("/proc/self/statm"));
        if (!file.open(QIODevice::ReadOnly))
            return 0;
        return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
    }
    static qsizetype count(const char* folderOfProcess)
    {
        return QDir(QString::fromUtf8(folderOfProcess)).entryList(QDir::AllEntries | QDir::System).size();
    }

    LogCapture log;
    std::mt19937 random{20000};
    QTemporaryDir folder;
    QMenu menu;
    std::unique_ptr<CxImageData> shared = makeTestImage(12, 9);
};

TEST_F(Soak, TwentyThousandMixedRunsLeaveMemoryFlat)
{
    expectLeftImages(1); // the one that scripts keep in the application
    runMany(2000);       // whatever is made once is made
    const int images = CxImageData::liveCount();
    const qsizetype files = count("/proc/self/fd");
    const qsizetype threads = count("/proc/self/task");
    const qint64 bytes = residentBytes();
    runMany(20000);
    const qint64 growth = residentBytes() - bytes;

    EXPECT_EQ(CxImageData::liveCount(), images);
    EXPECT_LE(count("/proc/self/fd"), files);
    EXPECT_LE(count("/proc/self/task"), threads);
    RecordProperty("growth_bytes", std::to_string(growth));
    std::printf("growth: %lld bytes\n", static_cast<long long>(growth));
    // Image and graph objects leave their headers on purpose, some 20 bytes a run here. The rest is room for the heap.
    if (!sanitized) {
        EXPECT_LT(growth, 20000 * 100);
    }
}

} // namespace
