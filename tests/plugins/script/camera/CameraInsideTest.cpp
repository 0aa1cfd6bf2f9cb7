// What the parameter store is given by a write, and callables with carriers that no script can make.

#include "CxCameraManager.h"
#include "CxPythonScriptPlugin.h"
#include "ScriptModule.h"
#include "camera/CameraObject.h"
#include "support/FakeCameraDevice.h"
#include "support/FakeHost.h"
#include "support/HostContext.h"
#include "support/InterpreterThread.h"
#include "support/PyRef.h"
#include "support/TestSettings.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

struct Write {
    QString name;
    CxValue value;
    int statusBefore;
    ExCommitRefreshGuiMode mode;
};

QList<Write> writes;
int statusToGive = 0;

} // namespace

// Stands before the store's own, which converts once more and turns away what it does not list.
bool CxCameraParameters::setParamDirect(const QString& name, const CxValue& value, int* status,
                                        ExCommitRefreshGuiMode mode)
{
    writes.append({name, value, *status, mode});
    *status = statusToGive;
    return true;
}

namespace {

class CameraInside : public testing::Test
{
protected:
    CameraInside()
    {
        environment.cameraParameters = {QStringLiteral("level"), QStringLiteral("gain")};
        manager->addCamera(handle, parameters.get());
        plugin->init();
        run("");
        thread = std::make_unique<InterpreterThread>();
        writes.clear();
        statusToGive = 0;
    }
    ~CameraInside() override
    {
        plugin.reset();
        thread.reset();
        g_pScriptPlugin = nullptr;
        manager->removeCamera(handle);
    }

    /// Runs an expression with `cam` attached; returns what it gives, or the error.
    std::string run(const std::string& expression)
    {
        output.clear();
        const QString script = QStringLiteral("cam = vantrel.Camera()\ncam.open_device()\nprint(%1, end='')\n");
        const QString result =
            plugin->runScript(script.arg(QString::fromStdString(expression)), &environment, TestSettings::pythonHome,
                              nullptr, nullptr, [](const QString& text, bool) { output += text; });
        return (output + result).toStdString();
    }

    /// The one value that an expression writes.
    CxValue written(const std::string& expression)
    {
        writes.clear();
        run(expression);
        EXPECT_EQ(writes.size(), 1) << expression;
        return writes.isEmpty() ? CxValue() : writes.first().value;
    }

    static inline QString output;
    CxCameraManager* manager = CxCameraManager::instance();
    std::unique_ptr<CxCameraParameters> parameters = makeFakeParameters(nullptr);
    void* handle = manager->newHandle();
    FakeEnvironment environment;
    FakeDelegate delegate;
    std::unique_ptr<InterpreterThread> thread; ///< lets the test itself use the interpreter
    std::unique_ptr<CxPythonScriptPlugin> plugin = std::make_unique<CxPythonScriptPlugin>();
};

TEST_F(CameraInside, AnUnlistedParameterIsGivenThePythonValuesOwnType)
{
    EXPECT_EQ(written("cam.set_level(7)"), CxValue::fromInt(7));
    EXPECT_EQ(written("cam.set_level(True)"), CxValue::fromInt(1));
    EXPECT_EQ(written("cam.enable_level()"), CxValue::fromInt(1));
    EXPECT_EQ(written("cam.disable_level()"), CxValue::fromInt(0));
    EXPECT_EQ(written("cam.set_level(0.1)"), CxValue::fromFloat(0.1F));
    EXPECT_EQ(written("cam.set_level('grün')"), CxValue::fromString(QStringLiteral("grün")));
    EXPECT_EQ(written("cam.set_level(2**33 + 7)"), CxValue::fromInt(7));
    EXPECT_EQ(written("cam.set_level(2**31)"), CxValue::fromInt(std::numeric_limits<qint32>::min()));
}

TEST_F(CameraInside, AListedParameterIsGivenItsOwnType)
{
    EXPECT_EQ(written("cam.set_param('exposure', '250')"), CxValue::fromInt(250));
    EXPECT_EQ(written("cam.set_gain(True)"), CxValue::fromFloat(1.0F));
    EXPECT_EQ(written("cam.disable_gain()"), CxValue::fromFloat(0.0F));
    EXPECT_EQ(written("cam.set_param('auto_exposure', 2.5)"), CxValue::fromBool(true));
    EXPECT_EQ(written("cam.set_param('trigger_mode', 5)"), CxValue::fromString(QStringLiteral("5")));
    // A suffix names another thing, which no store lists.
    EXPECT_EQ(written("cam.set_gain_minimum(True)"), CxValue::fromInt(1));
    EXPECT_EQ(writes.first().name, QStringLiteral("gain:min"));
}

TEST_F(CameraInside, WritesGoToTheCameraAndToUserInterfacesAndGiveTheStoresStatus)
{
    statusToGive = -4711;
    EXPECT_EQ(run("(cam.set_level(1), cam.enable_level(), cam.set_param('exposure', 20))"), "(-4711, -4711, -4711)");
    ASSERT_EQ(writes.size(), 3);
    for (const Write& write : std::as_const(writes)) {
        EXPECT_EQ(write.statusBefore, 0);
        EXPECT_EQ(int(write.mode), 1);
    }
}

/// Calls a callable's function with a carrier, and expects None. How many references to the carrier it released.
Py_ssize_t released(const PyMethodDef& method, const PyRef& carrier)
{
    PyObject* handedOver = PyRef::retain(carrier.get()).release();
    const Py_ssize_t before = Py_REFCNT(handedOver);
    const PyRef result = PyRef::take(method.ml_meth(handedOver, nullptr));
    EXPECT_EQ(result.get(), Py_None);
    EXPECT_EQ(PyErr_Occurred(), nullptr);
    const Py_ssize_t count = before - Py_REFCNT(carrier.get());
    if (count == 0)
        Py_DECREF(handedOver);
    return count;
}

TEST_F(CameraInside, ACallableGivesNoneForACarrierThatIsNoTupleAndReleasesNothing)
{
    for (PyMethodDef* method : {&px_cam_param_getter, &px_cam_param_setter, &px_cam_param_setter_bool}) {
        EXPECT_EQ(released(*method, PyRef::take(PyList_New(0))), 0);
        EXPECT_EQ(released(*method, PyRef::take(PyUnicode_FromString("get_level"))), 0);
    }
}

TEST_F(CameraInside, ACallableGivesNoneForAnIncompleteCarrierAndReleasesIt)
{
    const PyRef camera = PyRef::take(PyObject_CallObject(reinterpret_cast<PyObject*>(TxPyCameraType), nullptr));
    ASSERT_TRUE(camera);
    for (PyMethodDef* method : {&px_cam_param_getter, &px_cam_param_setter, &px_cam_param_setter_bool}) {
        EXPECT_EQ(released(*method, PyRef::take(Py_BuildValue("(O)", camera.get()))), 1);
        EXPECT_EQ(released(*method, PyRef::take(Py_BuildValue("(Oi)", camera.get(), 5))), 1);
        EXPECT_EQ(released(*method, PyRef::take(Py_BuildValue("(Os)", camera.get(), "level"))), 1);
    }
    EXPECT_TRUE(writes.isEmpty());
}

} // namespace
