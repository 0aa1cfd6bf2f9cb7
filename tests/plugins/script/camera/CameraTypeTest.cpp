// The registration of vantrel.Camera, also when the interpreter cannot make the type.

#include "ScriptModule.h"
#include "camera/CameraObject.h"
#include "support/PyRef.h"
#include "support/TestSettings.h"

#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {
bool typesFail = false;
}

// Stands before the interpreter's own, which it needs for its start.
extern "C" PyObject* PyType_FromSpec(PyType_Spec* spec)
{
    using Function = PyObject* (*)(PyType_Spec*);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "PyType_FromSpec"));
    if (!typesFail)
        return real(spec);
    PyErr_SetString(PyExc_MemoryError, "no type");
    return nullptr;
}

namespace {

QStringList logged;

TEST(CameraType, IsNotAddedAndLogsOneLineWhenItCannotBeMade)
{
    qputenv("PYTHONHOME", TestSettings::pythonHome.toUtf8());
    Py_InitializeEx(0);
    logged.clear();
    typesFail = true;
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            logged.append((type == QtCriticalMsg ? QStringLiteral("critical ") : QStringLiteral("other ")) + text);
        });
    fx_pycams_TypeReady();
    qInstallMessageHandler(before);
    typesFail = false;
    ASSERT_EQ(logged.size(), 1) << logged.join(u'\n').toStdString();
    const std::string line = logged.first().toStdString();
    EXPECT_TRUE(logged.first().startsWith(QStringLiteral("critical "))) << line;
    EXPECT_TRUE(logged.first().contains(QStringLiteral("FuncCamera.cpp"))) << line;
    EXPECT_TRUE(logged.first().contains(QStringLiteral("fx_pycams_TypeReady(): Failed to register vantrel.CameraType")))
        << line;
    EXPECT_EQ(TxPyCameraType, nullptr);
    EXPECT_TRUE(PyErr_ExceptionMatches(PyExc_MemoryError)) << "left to whoever made the module";
    EXPECT_EQ(fx_pycams_TypeAdd(nullptr), 0);
    PyErr_Clear();
    Py_FinalizeEx();
}

TEST(CameraType, IsAddedAsCameraAndKeptByNobodyWhenAddingFails)
{
    qputenv("PYTHONHOME", TestSettings::pythonHome.toUtf8());
    Py_InitializeEx(0);
    fx_pycams_TypeReady();
    PyObject* type = reinterpret_cast<PyObject*>(TxPyCameraType);
    ASSERT_NE(type, nullptr);
    const Py_ssize_t before = Py_REFCNT(type);
    EXPECT_EQ(fx_pycams_TypeAdd(Py_None), 0);
    PyErr_Clear();
    EXPECT_EQ(Py_REFCNT(type), before);
    {
        const PyRef module = PyRef::take(PyModule_New("made"));
        EXPECT_EQ(fx_pycams_TypeAdd(module.get()), 1);
        EXPECT_EQ(Py_REFCNT(type), before + 1);
        EXPECT_EQ(PyRef::take(PyObject_GetAttrString(module.get(), "Camera")).get(), type);
    }
    Py_FinalizeEx();
}

} // namespace
