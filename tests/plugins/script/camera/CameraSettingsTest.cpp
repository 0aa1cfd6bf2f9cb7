// The camera as a whole: region, settings files, restart, capture dialog, shading presets.

#include "plugins/support/CameraScriptTest.h"
#include "support/TestSettings.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>

namespace {

class CameraAsAWhole : public CameraScriptTest
{
protected:
    /// What calling an exported function gives: it stands in no table, so the library is opened for it. 'null' stands
    /// for null without an exception.
    std::string exported(const std::string& function, const std::string& camera, const std::string& arguments)
    {
        // The result as an address, since ctypes cannot take a null object.
        return value("(lambda c: (lambda f: (setattr(f, 'argtypes', [c.py_object] * 2), "
                     "setattr(f, 'restype', c.c_void_p), {id(None): None}.get(f(" +
                     camera + ", " + arguments + "), 'null'))[2])(c.PyDLL('" + TestSettings::pluginFile.toStdString() +
                     "')." + function + "))(__import__('ctypes'))");
    }

    std::string create(const std::string& arguments)
    {
        return exported("fx_pycam_CreateShadingPreset", "cam", arguments);
    }

    std::string activate(const std::string& arguments)
    {
        return exported("fx_pycam_ActivateShadingPreset", "cam", arguments);
    }
};

TEST_F(CameraAsAWhole, TheRegionComesBackAsItWasSet)
{
    expectValues({
        {"cam.get_roi()", "(0, 0, 640, 480)"},
        {"(cam.set_roi(16, 8, 320, 240), cam.get_roi())", "(None, (16, 8, 320, 240))"},
        {"(cam.set_roi(5, 6, 1, 1), cam.get_roi())", "(None, (5, 6, 1, 1))"},
    });
}

TEST_F(CameraAsAWhole, ARegionReachesTheCameraAndUserInterfaces)
{
    int told = 0;
    QObject::connect(parameters.get(), &CxCameraParameters::regionChanged, [&told] { ++told; });
    value("cam.set_roi(16, 8, 320, 240)");
    EXPECT_EQ(device.regions, QList<QRect>{QRect(16, 8, 320, 240)});
    EXPECT_EQ(told, 1);
}

TEST_F(CameraAsAWhole, ARegionOutsideTheSensorNegativeOrZero)
{
    EXPECT_EQ(value("(cam.set_roi(600, 400, 640, 480), cam.get_roi())"), "(None, (600, 400, 40, 80))");
    for (const char* region : {"640, 480, 10, 10", "0, 0, 0, 0", "0, 0, -5, 5", "-2147483648, 0, 10, 10",
                               "2147483647, 2147483647, 2147483647, 2147483647"})
        EXPECT_EQ(value("(cam.set_roi(" + std::string(region) + "), cam.get_roi())"), "(None, (600, 400, 40, 80))")
            << region;
    EXPECT_EQ(value("cam.set_roi(2**31, 0, 1, 1)").substr(0, 14), "OverflowError:");
}

TEST_F(CameraAsAWhole, WithoutACameraTheRegionIsASystemErrorBeforeTheArgumentsAreLookedAt)
{
    expectValues({
        {"loose.set_roi(0, 0, 10, 10)", "SystemError"},
        {"loose.set_roi('wrong')", "SystemError"},
        {"loose.get_roi()", "SystemError"},
    });
}

TEST_F(CameraAsAWhole, SettingsGoToAFileAndComeBack)
{
    const QTemporaryDir folder;
    host.environment.directory = folder.path();
    EXPECT_EQ(value("(cam.set_exposure(777), cam.set_gain(1.5), cam.save_settings_to_file('camera.json'))"),
              "(0, 0, None)");
    EXPECT_TRUE(QFile::exists(folder.filePath(QStringLiteral("camera.json"))));
    EXPECT_EQ(value("(cam.set_exposure(20), cam.set_gain(0), cam.load_settings_from_file('camera.json'), "
                    "cam.get_exposure(), cam.get_gain())"),
              "(0, 0, None, 777, 1.5)");
    EXPECT_EQ(host.environment.resolved, (QStringList{QStringLiteral("camera.json"), QStringLiteral("camera.json")}));
}

TEST_F(CameraAsAWhole, SettingsOfEveryVisibilityAreKeptAndGivenToTheCamera)
{
    const QTemporaryDir folder;
    host.environment.directory = folder.path();
    CxCameraParam* hidden = parameters->addParam(QStringLiteral("hidden"), CxValue::fromInt(1));
    hidden->visibility = CxCameraParam::All;
    hidden->setParamValue(CxValue::fromInt(2));
    value("cam.save_settings_to_file('camera.json')");
    hidden->setParamValue(CxValue::fromInt(3));
    device.written.clear();
    value("cam.load_settings_from_file('camera.json')");
    EXPECT_EQ(stored("hidden"), CxValue::fromInt(2));
    EXPECT_TRUE(device.written.contains({QStringLiteral("hidden"), CxValue::fromInt(2)}));
}

TEST_F(CameraAsAWhole, FilesThatCannotBeWrittenOrReadAreNotReported)
{
    const QTemporaryDir folder;
    host.environment.directory = folder.path();
    QFile foreign(folder.filePath(QStringLiteral("foreign.json")));
    ASSERT_TRUE(foreign.open(QIODevice::WriteOnly));
    foreign.write("{\"exposure\": 5}");
    foreign.close();
    EXPECT_EQ(value("cam.save_settings_to_file('no/such/folder.json')"), "None");
    for (const char* file : {"missing.json", "foreign.json", ".", ""})
        EXPECT_EQ(value("cam.load_settings_from_file('" + std::string(file) + "')"), "None") << file;
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(10000));
}

TEST_F(CameraAsAWhole, WithoutACameraSettingsFilesAreSystemErrorsAfterTheArguments)
{
    EXPECT_EQ(value("loose.save_settings_to_file('x')"), "SystemError");
    EXPECT_EQ(value("loose.load_settings_from_file('x')"), "SystemError");
    EXPECT_EQ(value("loose.save_settings_to_file(5)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("loose.load_settings_from_file(5)").substr(0, 10), "TypeError:");
    EXPECT_TRUE(host.environment.resolved.isEmpty());
}

TEST_F(CameraAsAWhole, ARestartAttachesTheNewHandleWhileEventsAreProcessed)
{
    host.delegate.onCall = [this] {
        manager->removeCamera(handle);
        QTimer::singleShot(600, QCoreApplication::instance(), [this] { handle = add(parameters.get()); });
    };
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(value("(cam.restart_with_default_settings(), str(cam))"), "(True, 'camera(Fake, sn: FAKE01)')");
    EXPECT_GE(timer.elapsed(), 950);
    ASSERT_EQ(host.delegate.calls.size(), 1);
    EXPECT_TRUE(host.delegate.calls[0].startsWith(QStringLiteral("restartCameraWithDefaults(")));
}

TEST_F(CameraAsAWhole, ARestartWithoutACameraGivesFalseWithoutAskingTheHost)
{
    EXPECT_EQ(value("(loose.restart_with_default_settings(), str(loose))"), "(False, 'camera(disconnected)')");
    EXPECT_TRUE(host.delegate.calls.isEmpty());
}

TEST_F(CameraAsAWhole, ACapturedImageOpensInAView)
{
    const std::string viewId = value("cam.ask_user_capture_image()");
    ASSERT_EQ(host.delegate.views.size(), 1U);
    EXPECT_EQ(viewId, std::to_string(host.delegate.active));
    const FakeView& view = *host.delegate.views.begin()->second;
    ASSERT_NE(view.image, nullptr);
    EXPECT_EQ(view.image->picBuf()->width, 4U);
    EXPECT_EQ(host.delegate.calls,
              (QStringList{QStringLiteral("askUserCaptureImage(%1, Capture Image, Get the image right and press "
                                          "Capture button., 0, -1, 0)")
                               .arg(quintptr(handle)),
                           QStringLiteral("newViewWithImage(Capture Image)")}));
}

TEST_F(CameraAsAWhole, TheCaptureDialogGetsTitleMessageAndOption)
{
    const struct {
        const char* arguments;
        const char* title;
        const char* message;
        const char* option;
    } rows[] = {
        {"'Dark', 'Close the lid', 0", "Dark", "Close the lid", "1, 0"},
        {"'', 'Hold still'", "Capture Image", "Hold still", "0, -1"},
        {"'A', ''", "A", "Get the image right and press Capture button.", "0, -1"},
        {"'A', 'B', 7", "A", "B", "1, 7"},
        {"'A', 'B', -3", "A", "B", "0, -3"},
    };
    for (const auto& row : rows) {
        host.delegate.calls.clear();
        value("cam.ask_user_capture_image(" + std::string(row.arguments) + ")");
        ASSERT_EQ(host.delegate.calls.size(), 2) << row.arguments;
        EXPECT_EQ(host.delegate.calls[0], QStringLiteral("askUserCaptureImage(%1, %2, %3, %4, 0)")
                                              .arg(quintptr(handle))
                                              .arg(QString::fromUtf8(row.title), QString::fromUtf8(row.message),
                                                   QString::fromUtf8(row.option)));
        EXPECT_EQ(host.delegate.calls[1], QStringLiteral("newViewWithImage(%1)").arg(QString::fromUtf8(row.title)));
    }
}

TEST_F(CameraAsAWhole, ACancelledCaptureGivesMinusOne)
{
    host.delegate.accepts = false;
    EXPECT_EQ(value("cam.ask_user_capture_image()"), "-1");
    EXPECT_EQ(host.delegate.calls.size(), 1);
}

TEST_F(CameraAsAWhole, ACaptureThatNoViewTakesGivesMinusOneAndFreesTheImage)
{
    host.delegate.onCall = [this] { host.delegate.accepts = host.delegate.calls.size() < 2; };
    EXPECT_EQ(value("cam.ask_user_capture_image()"), "-1");
    EXPECT_TRUE(host.delegate.views.empty());
}

TEST_F(CameraAsAWhole, CapturingWithoutACameraStillAsksTheHost)
{
    host.delegate.accepts = false;
    EXPECT_EQ(value("loose.ask_user_capture_image()"), "-1");
    ASSERT_EQ(host.delegate.calls.size(), 1);
    EXPECT_TRUE(host.delegate.calls[0].startsWith(QStringLiteral("askUserCaptureImage(0, ")));
}

TEST_F(CameraAsAWhole, ANewPresetIsAppendedWithTheCamerasValues)
{
    int notified = 0;
    QObject::connect(parameters.get(), &CxCameraParameters::shadingChanged, [&notified] { ++notified; });
    EXPECT_EQ(create("('bright', 'flat.tif')"), "None");
    EXPECT_EQ(create("('Bright', 'flat2.tif', 'by hand')"), "None");
    ASSERT_EQ(parameters->shadingPresets.size(), 2);
    EXPECT_EQ(parameters->shadingPresets[0].name, QStringLiteral("bright"));
    EXPECT_EQ(parameters->shadingPresets[0].reference, QStringLiteral("flat.tif"));
    EXPECT_TRUE(parameters->shadingPresets[0].note.isEmpty());
    EXPECT_EQ(parameters->shadingPresets[1].note, QStringLiteral("by hand"));
    EXPECT_FALSE(parameters->shadingPresets[0].values.isEmpty());
    EXPECT_EQ(notified, 2);
}

TEST_F(CameraAsAWhole, AnExistingPresetIsOverwritten)
{
    create("('bright', 'flat.tif', 'first')");
    create("('other', 'x')");
    value("cam.set_exposure(90)");
    EXPECT_EQ(create("('bright', 'new.tif')"), "None");
    ASSERT_EQ(parameters->shadingPresets.size(), 2);
    EXPECT_EQ(parameters->shadingPresets[0].reference, QStringLiteral("new.tif"));
    EXPECT_TRUE(parameters->shadingPresets[0].note.isEmpty());
    value("cam.set_exposure(5000)");
    EXPECT_EQ(activate("('bright',)"), "None");
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(90));
}

TEST_F(CameraAsAWhole, OfTwoPresetsWithTheSameNameTheFirstIsUsed)
{
    for (const int exposure : {70, 80}) {
        CxShadingPreset preset;
        preset.name = QStringLiteral("bright");
        preset.values = {{QStringLiteral("exposure"), CxValue::fromInt(exposure)}};
        parameters->shadingPresets.append(preset);
    }
    EXPECT_EQ(activate("('bright',)"), "None");
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(70));
    EXPECT_EQ(create("('bright', 'flat.tif')"), "None");
    EXPECT_EQ(parameters->shadingPresets[0].reference, QStringLiteral("flat.tif"));
    EXPECT_TRUE(parameters->shadingPresets[1].reference.isEmpty());
}

TEST_F(CameraAsAWhole, AnUnknownOrEmptyPresetNameChangesNothing)
{
    create("('bright', 'flat.tif')");
    create("('', 'flat.tif')");
    value("cam.set_exposure(90)");
    for (const char* arguments : {"('Bright',)", "('',)", "()", "('brigh',)"})
        EXPECT_EQ(activate(arguments), "None") << arguments;
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(90));
}

TEST_F(CameraAsAWhole, PresetFunctionsCheckTheirArgumentsAndTheCamera)
{
    EXPECT_EQ(create("('a',)").substr(0, 10), "TypeError:");
    EXPECT_EQ(create("(1, 2)").substr(0, 10), "TypeError:");
    EXPECT_EQ(activate("(5,)").substr(0, 10), "TypeError:");
    EXPECT_TRUE(parameters->shadingPresets.isEmpty());
    EXPECT_EQ(exported("fx_pycam_CreateShadingPreset", "loose", "('a', 'b')"), "'null'");
    EXPECT_EQ(exported("fx_pycam_CreateShadingPreset", "loose", "(1,)").substr(0, 10), "TypeError:");
    EXPECT_EQ(exported("fx_pycam_ActivateShadingPreset", "loose", "('a',)"), "'null'");
    EXPECT_EQ(exported("fx_pycam_ActivateShadingPreset", "loose", "(1,)"), "'null'");
}

} // namespace
