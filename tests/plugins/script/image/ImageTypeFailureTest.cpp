// What is left of the module when the interpreter cannot make or add the type vantrel.Image, or one of its objects.

#include "CxPythonScriptPlugin.h"
#include "ScriptModule.h"
#include "image/ImageObject.h"
#include "support/FakeHost.h"
#include "support/InterpreterThread.h"
#include "support/NativeGuard.h"
#include "support/TestSettings.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstring>

// Stand before the interpreter's own functions of these names, for the plugin's objects in this program.
static bool typeFails = false;
static bool addingFails = false;

static PyObject* failed()
{
    PyErr_SetString(PyExc_MemoryError, "injected");
    return nullptr;
}

extern "C" PyObject* PyType_FromSpec(PyType_Spec* spec)
{
    static const auto original = reinterpret_cast<PyObject* (*)(PyType_Spec*)>(dlsym(RTLD_NEXT, "PyType_FromSpec"));
    return typeFails && std::strcmp(spec->name, "vantrel.Image") == 0 ? failed() : original(spec);
}

extern "C" int PyModule_AddObject(PyObject* module, const char* name, PyObject* object)
{
    static const auto original =
        reinterpret_cast<int (*)(PyObject*, const char*, PyObject*)>(dlsym(RTLD_NEXT, "PyModule_AddObject"));
    if (addingFails && std::strcmp(name, "Image") == 0) {
        failed();
        return -1;
    }
    return original(module, name, object);
}

namespace {

QStringList logged;

void keepRecord(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    if (type == QtCriticalMsg)
        logged.append(message);
}

QString printed;

class ImageTypeFailure : public testing::Test
{
protected:
    ImageTypeFailure()
    {
        logged.clear();
        m_handler = qInstallMessageHandler(keepRecord);
        m_plugin.init();
    }
    ~ImageTypeFailure() override
    {
        qInstallMessageHandler(m_handler);
        typeFails = addingFails = false;
    }

    QString run(const char* script)
    {
        printed.clear();
        return m_plugin.runScript(QString::fromUtf8(script), &m_environment, TestSettings::pythonHome, nullptr, nullptr,
                                  [](const QString& text, bool) { printed += text; });
    }

    FakeEnvironment m_environment;
    FakeDelegate m_delegate;
    CxPythonScriptPlugin m_plugin;

private:
    QtMessageHandler m_handler = nullptr;
};

TEST_F(ImageTypeFailure, ATypeThatCannotBeMadeIsLoggedAndOnlyTheTypeIsMissing)
{
    typeFails = true;
    EXPECT_EQ(run("print(hasattr(vantrel, 'Image'), vantrel.get_active_view_id())").toStdString(), "");
    EXPECT_EQ(printed.toStdString(), "False -1\n");
    EXPECT_EQ(TxPyImageType, nullptr);
    ASSERT_EQ(logged.size(), 1);
    EXPECT_TRUE(logged.first().contains(
        QStringLiteral("fx_pyimages_TypeReady(): Failed to register vantrel.ImageType with limited API")))
        << logged.first().toStdString();
}

TEST_F(ImageTypeFailure, WithoutTheTypeImagesForScriptsFailWithAnErrorAndNothingIsLost)
{
    typeFails = true;
    run("");
    auto image = makeTestImage(4, 3);
    const int before = CxImageData::liveCount();
    m_plugin.addImageVariable(QStringLiteral("img"), image.get());
    m_delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(run("print('img' in globals())\n"
                  "try:\n"
                  "    vantrel.get_view_image()\n"
                  "except Exception as error:\n"
                  "    print('refused')\n")
                  .toStdString(),
              "");
    EXPECT_EQ(printed.toStdString(), "False\nrefused\n");
    EXPECT_EQ(CxImageData::liveCount(), before + 1); // the view's
    EXPECT_EQ(fx_pyimg_getImageObjectData(Py_None), nullptr);
}

TEST_F(ImageTypeFailure, ATypeThatCannotBeAddedIsMissingAndNothingElse)
{
    addingFails = true;
    EXPECT_EQ(run("print(hasattr(vantrel, 'Image'), vantrel.get_active_view_id())").toStdString(), "");
    EXPECT_EQ(printed.toStdString(), "False -1\n");
    EXPECT_NE(TxPyImageType, nullptr);
}

TEST_F(ImageTypeFailure, TypeAddReturnsWhetherTheTypeWasAddedAndKeepsItsReferencesInBalance)
{
    run("");
    const InterpreterThread thread;
    auto* type = reinterpret_cast<PyObject*>(TxPyImageType);
    PyObject* module = PyImport_AddModule("vantrel");
    const Py_ssize_t before = Py_REFCNT(type);
    EXPECT_EQ(fx_pyimages_TypeAdd(module), 1);
    EXPECT_EQ(Py_REFCNT(type), before); // takes the place of the one that was there
    addingFails = true;
    EXPECT_EQ(fx_pyimages_TypeAdd(module), 0);
    EXPECT_EQ(Py_REFCNT(type), before);
    EXPECT_FALSE(PyErr_Occurred());
    TxPyImageType = nullptr;
    EXPECT_EQ(fx_pyimages_TypeAdd(module), 0);
    TxPyImageType = reinterpret_cast<PyTypeObject*>(type);
}

TEST_F(ImageTypeFailure, TheHelpTextsAreAskedForUnderTheObjectsWord)
{
    m_environment.help["imgObj.get_width"] = "the width";
    EXPECT_EQ(run("print(vantrel.Image.get_width.__doc__, vantrel.Image.get_height.__doc__)").toStdString(), "");
    EXPECT_EQ(printed.toStdString(), "the width None\n");
}

} // namespace
