// Every single allocation of the interpreter fails once: nothing crashes, and what follows works.

#include "OutputRedirection.h"
#include "plugins/support/AllocationFault.h"
#include "plugins/support/InsideTest.h"
#include "support/LogCapture.h"
#include "support/PyRef.h"

#include <list>
#include <new>
#include <optional>
#include <string>

namespace {

constexpr long tooMany = 100'000;

class Fault : public InsideTest
{
protected:
    Fault() { run("import sys"); }

    void expectWorkingRun()
    {
        ASSERT_EQ(run("img = vantrel.Image()\nimg.alloc(3, 2, 1, 8)\nprint(img.width)").toStdString(), "");
        ASSERT_EQ(output.toStdString(), "3\n");
    }
};

TEST_F(Fault, WhileTheModuleIsMadeLogsTheTypesThatAreMissing)
{
    int modulesWithoutType = 0;
    int typesMissing = 0;
    long n = 1;
    for (bool happened = true; happened && n < tooMany; ++n) {
        const LogCapture log;
        PyRef module;
        {
            const AllocationFault fault(n);
            module = PyRef::take(py_app_moduleInit());
            happened = fault.happened();
        }
        // The interpreter itself does not set an error for each of these failures.
        EXPECT_FALSE(module && PyErr_Occurred()) << "allocation " << n;
        PyErr_Clear();
        for (const QString& line : log.criticals()) {
            ++typesMissing;
            EXPECT_TRUE(line.endsWith(QStringLiteral(
                            "\"fx_pyimages_TypeReady(): Failed to register vantrel.ImageType with limited API\"")) ||
                        line.endsWith(QStringLiteral("\"fx_pygraphs_TypeReady(): Failed to register "
                                                     "vantrel.GraphType\"")) ||
                        line.endsWith(QStringLiteral("\"fx_pycams_TypeReady(): Failed to register "
                                                     "vantrel.CameraType\"")))
                << line.toStdString();
        }
        modulesWithoutType += module && !log.criticals().isEmpty() ? 1 : 0;
    }
    EXPECT_LT(n, tooMany);
    EXPECT_GT(typesMissing, 10);
    EXPECT_EQ(modulesWithoutType, typesMissing) << "a missing type does not stop the module";
}

TEST_F(Fault, WhileTheRedirectionModuleIsMadeLogsAMissingTypeAndDoesWithoutItsName)
{
    int typesMissing = 0;
    int namesMissing = 0;
    long n = 1;
    for (bool happened = true; happened && n < tooMany; ++n) {
        const LogCapture log;
        PyRef module;
        {
            const AllocationFault fault(n);
            module = PyRef::take(PyInit_emb());
            happened = fault.happened();
        }
        // The interpreter itself does not set an error for each of these failures.
        EXPECT_FALSE(module && PyErr_Occurred()) << "allocation " << n;
        PyErr_Clear();
        for (const QString& line : log.criticals()) {
            ++typesMissing;
            EXPECT_EQ(module.get(), nullptr);
            EXPECT_TRUE(line.endsWith(QStringLiteral("\"PyInit_emb(): Failed to register emb.StdOutType\"")))
                << line.toStdString();
        }
        const PyRef name = PyRef::take(PyUnicode_FromString("stdout_object"));
        namesMissing += module && PyDict_Contains(PyModule_GetDict(module.get()), name.get()) == 0 ? 1 : 0;
    }
    EXPECT_LT(n, tooMany);
    EXPECT_GT(typesMissing, 5);
    EXPECT_GT(namesMissing, 0) << "a module without the name of its type is a module all the same";
    expectWorkingRun();
}

TEST_F(Fault, WhileAnImageObjectIsMadeLeavesTheImageToTheCaller)
{
    long n = 1;
    for (bool happened = true; happened && n < tooMany; ++n) {
        auto image = makeTestImage(4, 3);
        PyRef object;
        {
            const AllocationFault fault(n);
            object = PyRef::take(fx_pyimg_createNewImageObject(image.get(), true));
            happened = fault.happened();
        }
        EXPECT_NE(object.get() != nullptr, PyErr_Occurred() != nullptr) << "allocation " << n;
        PyErr_Clear();
        if (object)
            static_cast<void>(image.release());
    }
    EXPECT_LT(n, tooMany);
    EXPECT_GT(n, 2);
}

TEST_F(Fault, WhileAnImageIsPublishedLeavesNoErrorBehind)
{
    const auto image = makeTestImage(4, 3);
    long n = 1;
    for (bool happened = true; happened && n < tooMany; ++n) {
        const AllocationFault fault(n);
        plugin->addImageVariable(QStringLiteral("shot"), image.get());
        happened = fault.happened();
        EXPECT_EQ(PyErr_Occurred(), nullptr);
    }
    EXPECT_LT(n, tooMany);
    EXPECT_GT(n, 2);
    expectWorkingRun();
}

TEST_F(Fault, WhileAStreamIsReplacedLeavesNoErrorBehind)
{
    long n = 1;
    for (bool happened = true; happened && n < tooMany; ++n) {
        const AllocationFault fault(n);
        emb::set_stdout([](const std::string&) {});
        emb::reset_stdout();
        happened = fault.happened();
        EXPECT_EQ(PyErr_Occurred(), nullptr) << "allocation " << n;
    }
    EXPECT_LT(n, tooMany);
    EXPECT_GT(n, 2);
    expectWorkingRun();
}

TEST_F(Fault, WhileAStreamIsReplacedKeepsNothingOfAStreamThatStays)
{
    const PyRef before = PyRef::retain(PySys_GetObject("stdout"));
    int stayed = 0;
    long n = 1;
    for (bool happened = true; happened && n < tooMany; ++n) {
        // Held by `sys` alone, so that it goes when another one takes its place.
        PySys_SetObject("stdout", PyRef::take(PyList_New(0)).get());
        PyObject* stream = PySys_GetObject("stdout");
        {
            const AllocationFault fault(n);
            emb::set_stdout([](const std::string&) {});
            happened = fault.happened();
        }
        if (PySys_GetObject("stdout") == stream && Py_REFCNT(stream) == 1) {
            ++stayed;
            const PyRef other = PyRef::take(PyList_New(0));
            PySys_SetObject("stdout", other.get());
            emb::reset_stdout();
            EXPECT_EQ(PySys_GetObject("stdout"), other.get()) << "allocation " << n;
        } else {
            emb::reset_stdout();
        }
        PySys_SetObject("stdout", before.get());
    }
    EXPECT_LT(n, tooMany);
    EXPECT_GT(stayed, 0);
    expectWorkingRun();
}

// From the first line of the script to the end of the clean-up; the interpreter's own compiler is not part of it.
TEST_F(Fault, WhileAScriptRunsIsItsOwnAffair)
{
    const char* script = "def f(n):\n"
                         "    img = vantrel.Image()\n"
                         "    img.alloc(4, 4, 3, 8)\n"
                         "    return [img.width, bytes(img), str(img), img.get_image_data_numpy(), n]\n"
                         "try:\n"
                         "    vantrel.wait(0)\n"
                         "    made = f(1)\n"
                         "    print(made[0], vantrel.get_active_view_id())\n"
                         "except MemoryError: pass\n";
    int raised = 0;
    long n = 1;
    for (bool happened = true; happened && n < tooMany; ++n) {
        const LogCapture log;
        {
            std::optional<AllocationFault> fault;
            environment.onWait = [&fault, n](double) { fault.emplace(n); };
            if (run(script) == QStringLiteral("Python rasied exception"))
                ++raised;
            ASSERT_TRUE(fault);
            happened = fault->happened();
        }
        expectWorkingRun();
        if (HasFatalFailure())
            FAIL() << "after allocation " << n << " had failed";
    }
    EXPECT_LT(n, tooMany);
    EXPECT_GT(n, 15);
    EXPECT_GT(raised, 0) << "names that cannot be listed end the run";
}

TEST_F(Fault, WhileNamesAreListedIsNotTakenForMissingNames)
{
    const std::list<std::string> all = plugin->listLocalVariables();
    int thrown = 0;
    long n = 1;
    for (bool happened = true; happened && n < tooMany; ++n) {
        const AllocationFault fault(n);
        try {
            EXPECT_EQ(plugin->listLocalVariables(), all);
        } catch (const std::bad_alloc&) {
            ++thrown;
        }
        happened = fault.happened();
        EXPECT_EQ(PyErr_Occurred(), nullptr);
    }
    EXPECT_GT(thrown, int(all.size()));
}

TEST_F(Fault, WhileNamesAreDeletedLeavesTheOldOnes)
{
    const std::list<std::string> all = plugin->listLocalVariables();
    long n = 1;
    for (bool happened = true; happened && n < tooMany; ++n) {
        fx_pyapp_RunPythonString("a = b = c = 1");
        {
            const AllocationFault fault(n);
            try {
                plugin->deleteNewLocalVariables(all);
            } catch (const std::bad_alloc&) {
            }
            happened = fault.happened();
        }
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        plugin->deleteNewLocalVariables(all);
        EXPECT_EQ(plugin->listLocalVariables(), all);
    }
    EXPECT_GT(n, 5);
}

} // namespace
