// The registration of vantrel.Camera when the interpreter cannot make the type.

#include "ScriptModule.h"
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
    return typesFail ? nullptr : real(spec);
}

namespace {

QStringList logged;

TEST(CameraType, IsNotAddedAndLogsOneLineWhenItCannotBeMade)
{
    qputenv("PYTHONHOME", TestSettings::pythonHome.toUtf8());
    Py_InitializeEx(0);
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
    EXPECT_EQ(fx_pycams_TypeAdd(nullptr), 0);
    Py_FinalizeEx();
}

} // namespace
