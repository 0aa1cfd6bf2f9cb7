// vantrel.Camera: attaching, device information, acquisition.

#include "plugins/support/CameraScriptTest.h"

namespace {

class CameraObject : public CameraScriptTest
{
protected:
    QString acquisition(int start) const
    {
        return QStringLiteral("setCameraAcquisition(%1, %2)").arg(start).arg(quintptr(handle));
    }
};

TEST_F(CameraObject, AFreshOneIsDisconnected)
{
    EXPECT_EQ(value("str(vantrel.Camera())"), "'camera(disconnected)'");
    EXPECT_EQ(value("str(vantrel.Camera(1, 2, three=3))"), "'camera(disconnected)'");
}

TEST_F(CameraObject, ItsTextNamesDeviceAndSerialNumber)
{
    EXPECT_EQ(value("str(cam)"), "'camera(Fake, sn: FAKE01)'");
}

TEST_F(CameraObject, ItsTextTakesPercentSignsAsTheyAre)
{
    SxCameraInfo info;
    info.deviceName = QStringLiteral("50%2");
    info.serialNumber = QStringLiteral("%1ä");
    CxCameraParameters odd(info, {4, 4}, nullptr);
    add(&odd);
    EXPECT_EQ(value("(cam.open_device(1), str(cam))"), "(None, 'camera(50%2, sn: %1ä)')");
}

TEST_F(CameraObject, CannotBeSubclassed)
{
    EXPECT_EQ(value("type('Mine', (vantrel.Camera,), {})").substr(0, 9), "TypeError");
}

TEST_F(CameraObject, InitialisingAgainDetaches)
{
    EXPECT_EQ(value("(cam.__init__(), str(cam))"), "(None, 'camera(disconnected)')");
}

TEST_F(CameraObject, HasSixteenMethodsInTheirOrder)
{
    EXPECT_EQ(value("' '.join(n for n in vars(vantrel.Camera) if not n.startswith('_'))"),
              "'open_device open_device_by_user_id open_device_by_SN open_device_by_path close_device "
              "get_device_info_string set_param get_param set_roi get_roi start_acquisition stop_acquisition "
              "save_settings_to_file load_settings_from_file ask_user_capture_image restart_with_default_settings'");
}

TEST_F(CameraObject, IsAHandleAndNothingElse)
{
    EXPECT_EQ(value("vantrel.Camera"), "<class 'vantrel.Camera'>");
    EXPECT_EQ(value("(vantrel.Camera.__basicsize__ - object.__basicsize__, vantrel.Camera.__itemsize__)"), "(8, 0)");
    EXPECT_EQ(value("setattr(cam, 'note', 1)").substr(0, 15), "AttributeError:");
}

TEST_F(CameraObject, TakesItsHelpFromTheEnvironment)
{
    host.environment.help["cameraObj.get_roi"] = "where it looks";
    host.restart();
    EXPECT_EQ(value("vantrel.Camera.get_roi.__doc__"), "'where it looks'");
    EXPECT_EQ(value("vantrel.Camera.set_roi.__doc__"), "None");
}

TEST_F(CameraObject, OpensByIndex)
{
    FakeCameraDevice other;
    const auto second = makeFakeParameters(&other, QStringLiteral("SECOND"));
    add(second.get());
    EXPECT_EQ(value("(loose.open_device(), str(loose))"), "(None, 'camera(Fake, sn: FAKE01)')");
    EXPECT_EQ(value("(loose.open_device(1), str(loose))"), "(None, 'camera(Fake, sn: SECOND)')");
}

TEST_F(CameraObject, AnIndexOutsideTheListIsAnErrorAndChangesNothing)
{
    for (const char* index : {"1", "-1", "2147483647", "-2147483648"}) {
        EXPECT_EQ(value("loose.open_device(" + std::string(index) + ")"), "Exception: Camera not available") << index;
        EXPECT_EQ(value("[cam] and cam.open_device(" + std::string(index) + ")"), "Exception: Camera not available");
    }
    EXPECT_CLEAN_RUN("cam = vantrel.Camera()\n"
                     "cam.open_device()\n"
                     "try:\n    cam.open_device(7)\nexcept Exception:\n    print(cam, end='')\n");
    EXPECT_EQ(host.printed(), QStringLiteral("camera(Fake, sn: FAKE01)"));
    manager->removeCamera(handle);
    EXPECT_TRUE(
        host.run("vantrel.Camera().open_device()").endsWith(QStringLiteral("Exception: Camera not available\n")));
}

TEST_F(CameraObject, WrongArgumentsAreTypeErrors)
{
    for (const char* call : {"cam.open_device('a')",
                             "cam.open_device(1.5)",
                             "cam.open_device(0, 1)",
                             "cam.open_device(index=0)",
                             "cam.open_device_by_SN()",
                             "cam.open_device_by_SN(5)",
                             "cam.open_device_by_user_id(None)",
                             "cam.open_device_by_path(b'x')",
                             "cam.close_device(1)",
                             "cam.get_device_info_string()",
                             "cam.set_param('exposure')",
                             "cam.get_param(3)",
                             "cam.set_roi(1, 2, 3)",
                             "cam.set_roi(1, 2, 3, 'a')",
                             "cam.get_roi(1)",
                             "cam.save_settings_to_file(1)",
                             "cam.load_settings_from_file()",
                             "cam.ask_user_capture_image(1)",
                             "cam.ask_user_capture_image('a', 'b', 'c')",
                             "cam.restart_with_default_settings(1)",
                             "vantrel.get_number_devices(1)"})
        EXPECT_EQ(value(call).substr(0, 10), "TypeError:") << call;
    EXPECT_EQ(value("cam.open_device(2**40)").substr(0, 14), "OverflowError:");
    EXPECT_EQ(value("cam.open_device_by_SN('a\\0b')"), "ValueError: embedded null character");
    EXPECT_EQ(value("cam.get_param('exposure\\0')"), "ValueError: embedded null character");
}

TEST_F(CameraObject, OpensByTextWhateverTheLetterCase)
{
    expectValues({
        {"(loose.open_device_by_SN('fake01'), str(loose))", "(None, 'camera(Fake, sn: FAKE01)')"},
        {"(loose.open_device_by_user_id('BENCH'), str(loose))", "(None, 'camera(Fake, sn: FAKE01)')"},
        {"(loose.open_device_by_path('Fake://0'), str(loose))", "(None, 'camera(Fake, sn: FAKE01)')"},
    });
}

TEST_F(CameraObject, TextsBeyondAsciiAreFoundAndTold)
{
    SxCameraInfo info;
    info.userId = QStringLiteral("Küche Ж");
    info.deviceName = QStringLiteral("眼");
    info.modelId = -5;
    CxCameraParameters odd(info, {4, 4}, nullptr);
    add(&odd);
    EXPECT_EQ(value("(loose.open_device_by_user_id('KÜCHE ж'), loose.get_device_info_string('device_user_id'), "
                    "loose.get_device_info_string('device_name'), loose.get_device_info_string('device_model_id'))"),
              "(None, 'Küche Ж', '眼', '-5')");
}

TEST_F(CameraObject, EachTextMethodLooksAtItsOwnField)
{
    expectValues({
        {"loose.open_device_by_SN('bench')", "Exception: Camera not found"},
        {"loose.open_device_by_user_id('fake://0')", "Exception: Camera not found"},
        {"loose.open_device_by_path('FAKE01')", "Exception: Camera not found"},
        {"loose.open_device_by_SN('FAKE0')", "Exception: Camera not found"},
        {"loose.open_device_by_SN('')", "Exception: Camera not found"},
    });
}

TEST_F(CameraObject, ATextThatFitsNoCameraLeavesTheObjectAttached)
{
    EXPECT_CLEAN_RUN("cam = vantrel.Camera()\n"
                     "cam.open_device()\n"
                     "try:\n    cam.open_device_by_SN('x')\nexcept Exception:\n    print(cam, end='')\n");
    EXPECT_EQ(host.printed(), QStringLiteral("camera(Fake, sn: FAKE01)"));
}

TEST_F(CameraObject, OfTwoCamerasWithTheSameTextTheEarlierIsTaken)
{
    FakeCameraDevice other;
    const auto second = makeFakeParameters(&other, QStringLiteral("fake01"));
    add(second.get());
    EXPECT_EQ(value("(loose.open_device_by_SN('Fake01'), str(loose))"), "(None, 'camera(Fake, sn: FAKE01)')");
    EXPECT_EQ(value("(loose.open_device_by_user_id('bench'), str(loose))"), "(None, 'camera(Fake, sn: FAKE01)')");
}

TEST_F(CameraObject, CamerasWithoutParametersAndNullHandlesArePassedOver)
{
    manager->removeCamera(handle);
    add(nullptr);
    manager->addCamera(nullptr, parameters.get());
    EXPECT_EQ(value("loose.open_device_by_SN('FAKE01')"), "Exception: Camera not found");
    add(parameters.get());
    expectValues({
        {"(loose.open_device_by_SN('FAKE01'), str(loose))", "(None, 'camera(Fake, sn: FAKE01)')"},
        {"(loose.open_device(1), str(loose))", "(None, 'camera(disconnected)')"},
        {"vantrel.get_number_devices()", "3"},
    });
}

TEST_F(CameraObject, ClosingDetachesAndTouchesNoCamera)
{
    EXPECT_EQ(value("(cam.close_device(), str(cam), vantrel.get_number_devices())"),
              "(None, 'camera(disconnected)', 1)");
    EXPECT_TRUE(host.delegate.calls.isEmpty());
}

TEST_F(CameraObject, AStaleHandleIsLikeNone)
{
    EXPECT_CLEAN_RUN("import builtins\nbuiltins.kept = vantrel.Camera()\nbuiltins.kept.open_device()\n");
    manager->removeCamera(handle);
    add(parameters.get());
    expectValues({
        {"str(kept)", "'camera(disconnected)'"},
        {"kept.get_exposure()", "None"},
        {"kept.set_exposure(5)", "None"},
    });
    for (const char* call : {"kept.get_param('exposure')", "kept.set_param('exposure', 5)", "kept.get_roi()",
                             "kept.set_roi(0, 0, 1, 1)", "kept.get_device_info_string('device_sn')",
                             "kept.save_settings_to_file('x')", "kept.load_settings_from_file('x')"})
        EXPECT_EQ(value(call), "SystemError") << call;
    EXPECT_EQ(value("kept.restart_with_default_settings()"), "False");
    EXPECT_EQ(value("(kept.start_acquisition(), kept.stop_acquisition())"), "(-1, None)");
    EXPECT_EQ(host.delegate.calls, (QStringList{acquisition(1), acquisition(0)}));
}

TEST_F(CameraObject, TellsWhatTheCameraSaysAboutItself)
{
    EXPECT_EQ(value("[cam.get_device_info_string('device_' + k) for k in "
                    "['sn', 'inst_path', 'type', 'name', 'user_id', 'model_id']]"),
              "['FAKE01', 'fake://0', 'test', 'Fake', 'bench', '7']");
}

TEST_F(CameraObject, UnknownInformationKeysGiveAnEmptyText)
{
    for (const char* key : {"DEVICE_SN", "device_sn ", "sn", "", "exposure"})
        EXPECT_EQ(value("cam.get_device_info_string('" + std::string(key) + "')"), "''") << key;
}

TEST_F(CameraObject, WithoutACameraInformationIsASystemError)
{
    EXPECT_EQ(value("loose.get_device_info_string('device_sn')"), "SystemError");
    EXPECT_EQ(value("(cam.close_device(), cam.get_device_info_string('device_sn'))"), "SystemError");
}

TEST_F(CameraObject, StartingGivesTheActiveView)
{
    const int view = host.delegate.addView(nullptr);
    EXPECT_EQ(value("cam.start_acquisition()"), std::to_string(view));
    EXPECT_EQ(host.delegate.calls, QStringList{acquisition(1)});
}

TEST_F(CameraObject, AHostThatRefusesToStartGivesMinusOne)
{
    host.delegate.accepts = false;
    host.delegate.addView(nullptr);
    EXPECT_EQ(value("cam.start_acquisition()"), "-1");
}

TEST_F(CameraObject, StoppingIgnoresWhatTheHostSays)
{
    host.delegate.accepts = false;
    EXPECT_EQ(value("cam.stop_acquisition()"), "None");
    EXPECT_EQ(host.delegate.calls, QStringList{acquisition(0)});
}

TEST_F(CameraObject, AcquisitionWithoutACameraStillAsksTheHost)
{
    host.delegate.accepts = false;
    EXPECT_EQ(value("(loose.start_acquisition(), loose.stop_acquisition())"), "(-1, None)");
    EXPECT_EQ(host.delegate.calls, (QStringList{QStringLiteral("setCameraAcquisition(1, 0)"),
                                                QStringLiteral("setCameraAcquisition(0, 0)")}));
}

TEST_F(CameraObject, ItsMethodsAskForNoThread)
{
    host.environment.otherThread = true;
    host.environment.threadQuestions = 0;
    value("(cam.start_acquisition(), cam.get_exposure(), cam.set_param('exposure', 50), cam.get_roi(), "
          "cam.ask_user_capture_image(), vantrel.get_number_devices())");
    EXPECT_EQ(host.environment.threadQuestions, 0);
}

TEST_F(CameraObject, CountsTheViewerCameras)
{
    EXPECT_EQ(value("vantrel.get_number_devices()"), "1");
    add(nullptr);
    EXPECT_EQ(value("vantrel.get_number_devices()"), "2");
}

TEST_F(CameraObject, AHostExceptionEndsTheRunAndTheNextOneWorks)
{
    host.delegate.onCall = [] { throw std::runtime_error("broken"); };
    EXPECT_EQ(host.run("c = vantrel.Camera()\nc.open_device()\nc.start_acquisition()\n").toStdString(),
              "Python rasied exception");
    host.delegate.onCall = nullptr;
    EXPECT_EQ(value("str(cam)"), "'camera(Fake, sn: FAKE01)'");
}

} // namespace
