// Camera parameters as attributes and by name.

#include "plugins/support/CameraScriptTest.h"

#include <stdexcept>

namespace {

class CameraParametersOfScripts : public CameraScriptTest
{
};

TEST_F(CameraParametersOfScripts, ReadThroughBothReadingPrefixes)
{
    expectValues({
        {"cam.get_exposure()", "10000"},
        {"cam.is_exposure()", "10000"},
        {"cam.get_gain()", "0.0"},
        {"cam.is_auto_exposure()", "False"},
        {"cam.get_trigger_mode()", "'off'"},
    });
}

TEST_F(CameraParametersOfScripts, WriteAndGiveTheStatus)
{
    EXPECT_EQ(value("cam.set_exposure(5000)"), "0");
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(5000));
    expectValues({
        {"cam.set_exposure(5)", "1"},
        {"cam.set_trigger_mode('nonsense')", "-2"},
        {"cam.set_cooling(True)", "-2"},
        {"cam.set_frame_count(3)", "-3"},
        {"cam.set_sensor_temperature(3)", "-3"},
        {"cam.set_nothing(3)", "-1"},
        {"cam.set_param('nothing', 3)", "-1"},
        {"cam.set_param('gain', 3.5)", "0"},
    });
    EXPECT_EQ(stored("gain"), CxValue::fromFloat(3.5F));
}

TEST_F(CameraParametersOfScripts, SwitchOnAndOff)
{
    EXPECT_EQ(value("cam.enable_auto_exposure()"), "0");
    EXPECT_EQ(stored("auto_exposure"), CxValue::fromBool(true));
    EXPECT_EQ(value("cam.disable_auto_exposure()"), "0");
    EXPECT_EQ(stored("auto_exposure"), CxValue::fromBool(false));
    EXPECT_EQ(value("cam.enable_gain()"), "0");
    EXPECT_EQ(stored("gain"), CxValue::fromFloat(1.0F));
}

TEST_F(CameraParametersOfScripts, RangeWordsSelectTheLimits)
{
    expectValues({
        {"(cam.get_exposure_minimum(), cam.get_exposure_maximum(), cam.get_exposure_increment())", "(10, 1000000, 10)"},
        {"cam.is_gain_maximum()", "24.0"},
        {"cam.get_auto_exposure_maximum()", "None"},
        {"cam.set_exposure_minimum(3)", "-3"},
    });
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(10000));
}

TEST_F(CameraParametersOfScripts, SuffixesSelectTheLimitsByName)
{
    expectValues({
        {"[cam.get_param('exposure' + s) for s in (':min', ':max', ':inc', ':info', '')]",
         "[10, 1000000, 10, 10000, 10000]"},
        {"cam.get_param('exposure:abc')", "Exception: Parameter not supported by the camera."},
        {"cam.get_param('exposure:min:max')", "Exception: Parameter not supported by the camera."},
        {"cam.get_param('exposure_increment')", "Exception: Parameter not supported by the camera."},
        {"cam.get_param(':min')", "Exception: Parameter not supported by the camera."},
        {"cam.set_param('exposure:min', 5)", "-3"},
    });
}

TEST_F(CameraParametersOfScripts, AreReadDirectlyWhenTheStoreDoesNotListThem)
{
    expectValues({
        {"cam.get_sensor_temperature()", "35.5"},
        {"cam.get_param('sensor_temperature')", "35.5"},
        {"cam.get_param('sensor_temperature:min')", "Exception: Parameter not supported by the camera."},
    });
}

TEST_F(CameraParametersOfScripts, DeviceKeysAreReadFromTheDescription)
{
    expectValues({
        {"[cam.get_param('device_' + k) for k in "
         "['sn', 'inst_path', 'type', 'name', 'user_id', 'model_id']]",
         "['FAKE01', 'fake://0', 'test', 'Fake', 'bench', 7]"},
        {"cam.get_device_sn()", "'FAKE01'"},
        {"cam.get_device_model_id()", "7"},
        {"cam.get_param('DEVICE_SN')", "Exception: Parameter not supported by the camera."},
        {"cam.get_param('device_sn:info')", "Exception: Parameter not supported by the camera."},
    });
}

TEST_F(CameraParametersOfScripts, AParameterNamedLikeADeviceKeyComesFirst)
{
    parameters->addParam(QStringLiteral("device_sn"), CxValue::fromInt(5));
    EXPECT_EQ(value("cam.get_param('device_sn')"), "5");
}

TEST_F(CameraParametersOfScripts, FlaggedNotSupportedAreRefused)
{
    EXPECT_EQ(value("cam.get_param('cooling')"), "Exception: Parameter not supported by the camera.");
    EXPECT_EQ(value("cam.get_param('cooling:min')"), "Exception: Parameter not supported by the camera.");
}

TEST_F(CameraParametersOfScripts, AnExceptionOfABoundCallIsTheCauseOfASystemError)
{
    const std::string unsupported = "SystemError <- Exception: Parameter not supported by the camera.";
    const std::string wrongType = "SystemError <- Exception: Unsupported camera parameter value type.";
    expectValues({
        {"cam.get_cooling()", unsupported},
        {"cam.get_nothing()", unsupported},
        {"cam.is_cooling_maximum()", unsupported},
    });
    for (const char* argument : {"[1]", "None", "b'5'", "(1,)", "{}", "object()", "1j", "cam", "vantrel"})
        EXPECT_EQ(value("cam.set_exposure(" + std::string(argument) + ")"), wrongType) << argument;
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(10000));
}

TEST_F(CameraParametersOfScripts, TheSystemErrorComesAtTheCallItselfAlsoInHotLoops)
{
    EXPECT_CLEAN_RUN("import traceback\n"
                     "cam = vantrel.Camera()\n"
                     "cam.open_device()\n"
                     "def wrong():\n"
                     "    cam.set_exposure([1])\n"
                     "    return 'missed'\n"
                     "def unsupported():\n"
                     "    cam.get_cooling()\n"
                     "    return 'missed'\n"
                     "def wide():\n"
                     "    cam.set_exposure(2**100)\n"
                     "    return 'missed'\n"
                     "def widebyname():\n"
                     "    cam.set_param('exposure', 2**100)\n"
                     "    return 'missed'\n"
                     "def switched(value):\n"
                     "    return cam.set_exposure(value)\n"
                     "seen = set()\n"
                     "for i in range(500):\n"
                     "    switched(20)\n"
                     "    for call in (wrong, unsupported, wide, widebyname, lambda: switched([1])):\n"
                     "        try:\n"
                     "            seen.add(call())\n"
                     "        except SystemError as error:\n"
                     "            last = traceback.extract_tb(error.__traceback__)[-1]\n"
                     "            seen.add((last.name, last.lineno, type(error.__cause__).__name__, "
                     "str(error.__cause__)))\n"
                     "for row in sorted(seen):\n"
                     "    print(*row)\n");
    EXPECT_EQ(host.printed().toStdString(), "switched 17 Exception Unsupported camera parameter value type.\n"
                                            "unsupported 8 Exception Parameter not supported by the camera.\n"
                                            "wide 11 OverflowError Python int too large to convert to C long\n"
                                            "widebyname 14 OverflowError Python int too large to convert to C long\n"
                                            "wrong 5 Exception Unsupported camera parameter value type.\n");
}

TEST_F(CameraParametersOfScripts, NullResultsAreSystemErrorsAtTheCallAlsoInHotLoops)
{
    EXPECT_CLEAN_RUN("import traceback\n"
                     "loose = vantrel.Camera()\n"
                     "def roi():\n"
                     "    loose.get_roi()\n"
                     "    return 'missed'\n"
                     "def read():\n"
                     "    loose.get_param('exposure')\n"
                     "    return 'missed'\n"
                     "seen = set()\n"
                     "for i in range(500):\n"
                     "    for call in (roi, read):\n"
                     "        try:\n"
                     "            seen.add(call())\n"
                     "        except SystemError as error:\n"
                     "            seen.add(traceback.extract_tb(error.__traceback__)[-1].lineno)\n"
                     "print(*sorted(seen), end='')\n");
    EXPECT_EQ(host.printed().toStdString(), "4 7");
}

TEST_F(CameraParametersOfScripts, ByNameTheExceptionIsRaisedAsItIs)
{
    expectValues({
        {"cam.set_param('exposure', [1])", "Exception: Unsupported camera parameter value type."},
        {"cam.set_param('nothing', None)", "Exception: Unsupported camera parameter value type."},
        {"cam.get_param('nothing')", "Exception: Parameter not supported by the camera."},
    });
}

TEST_F(CameraParametersOfScripts, WithoutACameraAttributesGiveNoneAndNamesASystemError)
{
    expectValues({
        {"(loose.get_exposure(), loose.set_exposure(5), loose.enable_auto_exposure(), "
         "loose.set_exposure([1]))",
         "(None, None, None, None)"},
        {"loose.get_param('exposure')", "SystemError"},
        {"loose.set_param('exposure', 1)", "SystemError"},
    });
}

TEST_F(CameraParametersOfScripts, UnknownNamesAreOrdinaryAttributes)
{
    for (const char* name : {"get_unknown", "set_unknown", "enable_", "get_", "is_exposure_", "get__exposure",
                             "Get_exposure", "exposure", "get_exposure_Maximum", "get_exposure_maximum_maximum",
                             "set_EXPOSURE", "getexposure", "disable_nothing_else"})
        EXPECT_EQ(value("cam." + std::string(name)).substr(0, 15), "AttributeError:") << name;
    expectValues({
        {"callable(cam.get_roi) and callable(cam.set_roi) and callable(cam.get_device_info_string)", "True"},
        {"getattr(cam, '\\ud800', 'none')", "'none'"},
        {"object.__getattribute__(cam, 'get_roi') is not None", "True"},
    });
    EXPECT_EQ(value("vantrel.Camera.__getattribute__(cam, 5)").substr(0, 10), "TypeError:");
}

TEST_F(CameraParametersOfScripts, AParameterHidesAMethodOfThatName)
{
    host.environment.cameraParameters.append(QStringLiteral("roi"));
    EXPECT_EQ(value("cam.get_roi()"), "SystemError <- Exception: Parameter not supported by the camera.");
}

TEST_F(CameraParametersOfScripts, TheEnvironmentIsAskedWithoutPrefixAndRangeWord)
{
    struct Asking : FakeEnvironment {
        bool isCameraParameter(const QString& name) override
        {
            asked.append(name);
            return false;
        }
        QStringList asked;
    } asking;
    host.plugin->runScript(QStringLiteral("c = vantrel.Camera()\n"
                                          "for n in ['get_level_maximum', 'set_level', 'is_a_b_minimum', 'enable_x',"
                                          " 'get__maximum', 'get_maximum', 'get_level_other', 'tile']:\n"
                                          "    getattr(c, n, None)\n"),
                           &asking, QString(), nullptr, nullptr, nullptr);
    EXPECT_EQ(asking.asked.join(u' ').toStdString(), "level level a_b x _maximum maximum level_other");
    host.run("");
}

TEST_F(CameraParametersOfScripts, ACameraMayGoBetweenLookupAndCall)
{
    host.onOutput = [this](const QString&, bool) { manager->removeCamera(handle); };
    EXPECT_CLEAN_RUN("cam = vantrel.Camera()\ncam.open_device()\nread = cam.get_exposure\nprint()\nprint(read())\n");
    EXPECT_TRUE(host.printed().contains(QStringLiteral("None")));
}

TEST_F(CameraParametersOfScripts, ACallReleasesWhatTheLookupHandedOver)
{
    EXPECT_CLEAN_RUN("import sys\n"
                     "cam = vantrel.Camera()\n"
                     "cam.open_device()\n"
                     "before = sys.getrefcount(cam)\n"
                     "for i in range(100):\n"
                     "    cam.get_exposure()\n"
                     "    cam.set_exposure(20)\n"
                     "    cam.enable_auto_exposure()\n"
                     "    try:\n        cam.get_cooling()\n    except SystemError:\n        pass\n"
                     "print(sys.getrefcount(cam) - before)\n"
                     "for i in range(10):\n"
                     "    cam.get_exposure\n"
                     "print(sys.getrefcount(cam) - before)\n");
    EXPECT_EQ(host.printed().toStdString(), "0\n10\n");
}

TEST_F(CameraParametersOfScripts, AHostExceptionInAWriteEndsTheRunAndLeavesNothingBehind)
{
    struct Throwing : FakeCameraDevice {
        bool writeParam(const QString&, const CxValue&) override { throw std::runtime_error("broken"); }
    } throwing;
    const auto store = makeFakeParameters(&throwing, QStringLiteral("THROWS"));
    add(store.get());
    EXPECT_EQ(host.run("c = vantrel.Camera()\nc.open_device(1)\nc.set_exposure(50)\n").toStdString(),
              "Python rasied exception");
    EXPECT_EQ(value("cam.set_exposure(50)"), "0");
}

} // namespace
