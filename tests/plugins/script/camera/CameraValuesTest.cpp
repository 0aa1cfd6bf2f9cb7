// What becomes of the values that scripts give to camera parameters.

#include "plugins/support/CameraScriptTest.h"

namespace {

class CameraParameterValues : public CameraScriptTest
{
};

TEST_F(CameraParameterValues, AreConvertedToTheirOwnType)
{
    value("cam.set_gain(True)");
    EXPECT_EQ(stored("gain"), CxValue::fromFloat(1.0F));
    value("cam.set_exposure(99.6)");
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(100));
    value("cam.set_exposure('250')");
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(250));
    EXPECT_EQ(value("cam.set_exposure('abc')"), "1");
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(10));
    value("cam.set_auto_exposure(5)");
    EXPECT_EQ(stored("auto_exposure"), CxValue::fromBool(true));
    EXPECT_EQ(value("cam.set_trigger_mode(1)"), "-2");
}

TEST_F(CameraParameterValues, TrueIsTheNumberOneAlsoForATextParameter)
{
    parameters->addParam(QStringLiteral("label"), CxValue::fromString(QString()));
    expectValues({
        {"(cam.set_param('label', True), cam.get_param('label'))", "(0, '1')"},
        {"(cam.set_param('label', False), cam.get_param('label'))", "(0, '0')"},
        {"(cam.set_param('label', 0.1), cam.get_param('label'))", "(0, '0.1')"},
    });
}

TEST_F(CameraParameterValues, IntegersBeyondTheirRange)
{
    // Cut to 32 bits, then clipped.
    EXPECT_EQ(value("(cam.set_exposure(2**40 + 500), cam.get_exposure())"), "(0, 500)");
    EXPECT_EQ(value("(cam.set_exposure(2**31), cam.get_exposure())"), "(1, 10)");
    value("cam.set_exposure(4444)");
    // Beyond 64 bits it is -1 that is written, and the interpreter's error shows afterwards.
    const std::string error = "SystemError <- OverflowError: Python int too large to convert to C long";
    EXPECT_EQ(value("cam.set_exposure(2**100)"), error);
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(10));
    value("cam.set_exposure(4444)");
    EXPECT_EQ(value("cam.set_param('exposure', -2**100)"), error);
    EXPECT_EQ(stored("exposure"), CxValue::fromInt(10));
}

TEST_F(CameraParameterValues, OddNumbers)
{
    expectValues({
        {"cam.set_gain(float('nan'))", "-2"},
        {"(cam.set_gain(float('inf')), cam.get_gain())", "(1, 24.0)"},
        {"(cam.set_gain(-1e300), cam.get_gain())", "(1, 0.0)"},
        {"(cam.set_gain(0.1), cam.get_gain())", "(0, 0.10000000149011612)"},
        {"(cam.set_exposure(float('nan')), cam.get_exposure())", "(1, 10)"},
    });
}

TEST_F(CameraParameterValues, OddTexts)
{
    expectValues({
        {"cam.set_trigger_mode('off\\0')", "-2"},
        {"cam.set_trigger_mode('\\ud800')", "-2"},
        {"cam.set_trigger_mode('')", "-2"},
    });
    parameters->addParam(QStringLiteral("label"), CxValue::fromString(QString()));
    expectValues({
        {"(cam.set_param('label', 'a\\0b'), cam.get_param('label'))", "(0, 'a\\x00b')"},
        {"(cam.set_param('label', 'Grün'), cam.get_param('label'))", "(0, 'Grün')"},
        {"(cam.set_param('label', '\\ud800'), cam.get_param('label'))", "(0, '')"},
    });
}

TEST_F(CameraParameterValues, TypesDerivedFromTheFourCount)
{
    expectValues({
        {"(cam.set_exposure(type('I', (int,), {})(70)), cam.get_exposure())", "(0, 70)"},
        {"(cam.set_gain(type('F', (float,), {})(2.5)), cam.get_gain())", "(0, 2.5)"},
        {"(cam.set_trigger_mode(type('S', (str,), {})('software')), cam.get_trigger_mode())", "(0, 'software')"},
    });
}

} // namespace
