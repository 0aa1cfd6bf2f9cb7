#include "simulated/SimulatedCamera.h"

#include "CxCameraParameters.h"
#include "CxImageData.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace std::chrono_literals;

class SimulatedCameraTest : public testing::Test
{
protected:
    SimulatedCameraTest() { camera.open(); }

    std::unique_ptr<CxImageData> frame()
    {
        if (const auto wait = camera.timeToNextFrame())
            time += *wait;
        return camera.nextFrame();
    }

    int set(const char* name, const CxValue& value)
    {
        int status = 99;
        camera.parameters()->setParamDirect(QString::fromUtf8(name), value, &status,
                                            ExCommitRefreshGuiMode::CommitAndRefresh);
        return status;
    }

    CxValue get(const char* name)
    {
        return camera.parameters()->findParam(QString::fromUtf8(name), false)->paramValue();
    }

    std::chrono::microseconds time = 5s;
    SimulatedCamera camera{simulatedSensor(0), [this] { return time; }};
};

TEST(SimulatedSensors, AreTheFourModels)
{
    struct Row {
        const char* name;
        int modelId;
        const char* serialNumber;
        const char* userId;
        const char* path;
        QSize size;
        unsigned channels;
        unsigned bpc;
        ExImageDataType type;
    };
    const Row rows[] = {
        {"SimCam C8", 1001, "SIM0001A", "left", "sim://0", {640, 480}, 3, 8, ExImageDataType::UInt8},
        {"SimCam M12", 1002, "SIM0002B", "right", "sim://1", {1280, 960}, 1, 12, ExImageDataType::UInt16},
        {"SimCam M8", 1003, "SIM0003C", "Left", "sim://2", {320, 240}, 1, 8, ExImageDataType::UInt8},
        {"SimCam F32", 1004, "SIM0004D", "depth", "sim://3", {160, 120}, 1, 32, ExImageDataType::Float}};
    for (int i = 0; i < simulatedSensorCount; ++i) {
        const SimulatedSensor sensor = simulatedSensor(i);
        const Row& row = rows[i];
        EXPECT_EQ(sensor.info.deviceName, QString::fromUtf8(row.name));
        EXPECT_EQ(sensor.info.deviceType, QStringLiteral("simulated"));
        EXPECT_EQ(sensor.info.modelId, row.modelId);
        EXPECT_EQ(sensor.info.serialNumber, QString::fromUtf8(row.serialNumber));
        EXPECT_EQ(sensor.info.userId, QString::fromUtf8(row.userId));
        EXPECT_EQ(sensor.info.instancePath, QString::fromUtf8(row.path));

        auto now = std::chrono::microseconds(0);
        SimulatedCamera camera(sensor, [&now] { return now; });
        ASSERT_TRUE(camera.open());
        ASSERT_TRUE(camera.start());
        now = 1s;
        const auto frame = camera.nextFrame();
        ASSERT_NE(frame, nullptr);
        const SxPicBuf& buffer = *frame->picBuf();
        EXPECT_EQ(QSize(int(buffer.width), int(buffer.height)), row.size);
        EXPECT_EQ(buffer.channels, row.channels);
        EXPECT_EQ(buffer.bpc, row.bpc);
        EXPECT_EQ(buffer.dataType, row.type);
        EXPECT_EQ(buffer.isColor, row.channels == 3);
    }
}

TEST_F(SimulatedCameraTest, HasTheParametersWithTheirLimits)
{
    struct Row {
        const char* name;
        const char* value;
        const char* minimum;
        const char* maximum;
        const char* increment;
        CxValue::ExType type;
    };
    const Row rows[] = {{"exposure", "10000", "10", "1000000", "10", CxValue::Integer},
                        {"gain", "0", "0", "24", "0.1", CxValue::Floating},
                        {"black_level", "0", "0", "255", "1", CxValue::Integer},
                        {"framerate", "30", "1", "120", "0.5", CxValue::Floating},
                        {"auto_exposure", "false", "", "", "", CxValue::Boolean},
                        {"trigger_mode", "off", "", "", "", CxValue::String},
                        {"frame_count", "0", "", "", "", CxValue::Integer},
                        {"cooling", "false", "", "", "", CxValue::Boolean}};
    ASSERT_EQ(camera.parameters()->params().size(), qsizetype(std::size(rows)));
    for (const Row& row : rows) {
        const CxCameraParam* param = camera.parameters()->findParam(QString::fromUtf8(row.name), false);
        ASSERT_NE(param, nullptr) << row.name;
        EXPECT_EQ(param->paramValue().type(), row.type) << row.name;
        EXPECT_EQ(param->paramValue().toString().toStdString(), row.value);
        EXPECT_EQ(param->minimum.toString().toStdString(), row.minimum) << row.name;
        EXPECT_EQ(param->maximum.toString().toStdString(), row.maximum) << row.name;
        EXPECT_EQ(param->increment.toString().toStdString(), row.increment) << row.name;
        EXPECT_EQ(param->notSupported, std::strcmp(row.name, "cooling") == 0) << row.name;
        EXPECT_EQ(param->readOnly, std::strcmp(row.name, "frame_count") == 0) << row.name;
    }
}

TEST_F(SimulatedCameraTest, TellsTemperatureAndLinkSpeedDirectlyOnly)
{
    CxValue value;
    EXPECT_EQ(camera.parameters()->findParam(QStringLiteral("sensor_temperature"), false), nullptr);
    EXPECT_TRUE(camera.parameters()->getParamDirect(QStringLiteral("sensor_temperature"), value, nullptr));
    EXPECT_EQ(value, CxValue::fromFloat(35.5F));
    EXPECT_TRUE(camera.parameters()->getParamDirect(QStringLiteral("link_speed"), value, nullptr));
    EXPECT_EQ(value, CxValue::fromInt(5000));
    EXPECT_EQ(set("sensor_temperature", CxValue::fromFloat(1)), -3);
    EXPECT_EQ(set("link_speed", CxValue::fromInt(1)), -3);
}

TEST_F(SimulatedCameraTest, TakesOnlyTheThreeTriggerModes)
{
    for (const char* mode : {"software", "line0", "off"})
        EXPECT_EQ(set("trigger_mode", CxValue::fromString(QString::fromUtf8(mode))), 0) << mode;
    EXPECT_EQ(set("trigger_mode", CxValue::fromString(QStringLiteral("line1"))), -2);
    EXPECT_EQ(get("trigger_mode").toString(), QStringLiteral("off"));
}

TEST_F(SimulatedCameraTest, GivesNoFrameUntilItIsStartedAndAfterItIsStopped)
{
    EXPECT_EQ(camera.timeToNextFrame(), std::nullopt);
    EXPECT_EQ(camera.nextFrame(), nullptr);
    EXPECT_TRUE(camera.start());
    EXPECT_TRUE(camera.isRunning());
    EXPECT_NE(frame(), nullptr);
    camera.stop();
    EXPECT_EQ(camera.timeToNextFrame(), std::nullopt);
    time += 1s;
    EXPECT_EQ(camera.nextFrame(), nullptr);
}

TEST_F(SimulatedCameraTest, KeepsTheFrameRate)
{
    set("framerate", CxValue::fromFloat(100));
    camera.start();
    EXPECT_EQ(camera.timeToNextFrame(), 10ms);
    time += 9ms;
    EXPECT_EQ(camera.nextFrame(), nullptr);
    EXPECT_EQ(camera.timeToNextFrame(), 1ms);
    time += 1ms;
    EXPECT_NE(camera.nextFrame(), nullptr);
    EXPECT_EQ(camera.nextFrame(), nullptr);
    // A little late: the frame after comes in time again.
    time += 14ms;
    EXPECT_NE(camera.nextFrame(), nullptr);
    EXPECT_EQ(camera.timeToNextFrame(), 6ms);
    // Very late: eight frames have been kept, and no longer burst follows.
    time += 10s;
    for (int i = 0; i < 1 + 8; ++i)
        EXPECT_NE(camera.nextFrame(), nullptr) << i;
    EXPECT_EQ(camera.nextFrame(), nullptr);
    EXPECT_EQ(camera.timeToNextFrame(), 10ms);
}

TEST_F(SimulatedCameraTest, ANewFrameRateHoldsAtOnce)
{
    set("framerate", CxValue::fromFloat(1));
    camera.start();
    EXPECT_EQ(camera.timeToNextFrame(), 1s);
    set("framerate", CxValue::fromFloat(50));
    EXPECT_EQ(camera.timeToNextFrame(), 20ms);
}

TEST_F(SimulatedCameraTest, WaitsForATriggerThatNeverComes)
{
    camera.start();
    set("trigger_mode", CxValue::fromString(QStringLiteral("software")));
    EXPECT_EQ(camera.timeToNextFrame(), std::nullopt);
    time += 1s;
    EXPECT_EQ(camera.nextFrame(), nullptr);
    EXPECT_TRUE(camera.isRunning());
    set("trigger_mode", CxValue::fromString(QStringLiteral("off")));
    EXPECT_NE(frame(), nullptr);
}

TEST_F(SimulatedCameraTest, NumbersItsFrames)
{
    set("framerate", CxValue::fromFloat(50));
    camera.start();
    for (int number = 1; number <= 3; ++number) {
        const auto taken = frame();
        ASSERT_NE(taken, nullptr);
        EXPECT_EQ(taken->picBuf()->frameNumber, number);
        EXPECT_EQ(taken->picBuf()->acqFrameNumber, number);
        EXPECT_EQ(taken->picBuf()->timeStamp, 20000U * unsigned(number));
        EXPECT_EQ(get("frame_count").toInt(), number);
    }
    camera.stop();
    EXPECT_EQ(get("frame_count").toInt(), 3);
    camera.start();
    const auto again = frame();
    EXPECT_EQ(again->picBuf()->frameNumber, 1);
    EXPECT_EQ(again->picBuf()->acqFrameNumber, 4);
}

TEST_F(SimulatedCameraTest, TellsHowAFrameWasTaken)
{
    set("exposure", CxValue::fromInt(2500));
    set("gain", CxValue::fromFloat(3.5F));
    set("black_level", CxValue::fromInt(12));
    camera.start();
    const auto taken = frame();
    ASSERT_NE(taken->imageMetadata(), nullptr);
    EXPECT_EQ(taken->imageMetadata()->exposureTimeUs, 2500);
    EXPECT_EQ(taken->imageMetadata()->gainDb, 3.5F);
    EXPECT_EQ(taken->imageMetadata()->transportFormat, 4);
    EXPECT_EQ(taken->imageMetadata()->tofPhasesCount, 0);
    EXPECT_EQ(taken->picBuf()->blackLevel, 12U);
}

TEST_F(SimulatedCameraTest, FramesHaveTheRegionsSize)
{
    camera.parameters()->setROIRectParams(100, 50, 64, 32, true, true);
    camera.start();
    const auto taken = frame();
    EXPECT_EQ(taken->picBuf()->width, 64U);
    EXPECT_EQ(taken->picBuf()->height, 32U);
}

TEST_F(SimulatedCameraTest, TheNextFrameFollowsASetting)
{
    camera.start();
    const auto bright = frame();
    set("exposure", CxValue::fromInt(10));
    const auto dark = frame();
    EXPECT_GT(bright->picBuf()->row(10)[300], 30);
    EXPECT_EQ(dark->picBuf()->row(10)[300], 0);
}

TEST_F(SimulatedCameraTest, AutoExposureFindsTheExposureAndFollowsTheGain)
{
    set("auto_exposure", CxValue::fromBool(true));
    camera.start();
    const auto first = frame();
    const int exposure = get("exposure").toInt();
    EXPECT_NE(exposure, 10000);
    EXPECT_EQ(exposure % 10, 0);
    EXPECT_EQ(first->imageMetadata()->exposureTimeUs, exposure);
    set("gain", CxValue::fromFloat(20));
    const auto second = frame();
    EXPECT_NEAR(get("exposure").toInt(), exposure / 10.0, 10);
}

TEST_F(SimulatedCameraTest, TwoRunsGiveIdenticalFrames)
{
    SimulatedCamera other(simulatedSensor(0), [this] { return time; });
    other.open();
    camera.start();
    other.start();
    for (int i = 0; i < 3; ++i) {
        time += 1s;
        const auto a = camera.nextFrame();
        const auto b = other.nextFrame();
        ASSERT_NE(a, nullptr);
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(std::memcmp(a->picBuf()->data, b->picBuf()->data, a->picBuf()->dataSize()), 0);
    }
}

TEST_F(SimulatedCameraTest, IsOpenedAgainWithDefaultSettings)
{
    const std::shared_ptr<CxCameraParameters> before = camera.parameters();
    set("exposure", CxValue::fromInt(77));
    camera.parameters()->setROIRectParams(0, 0, 10, 10, true, true);
    camera.start();
    frame();
    camera.close();
    EXPECT_EQ(camera.parameters(), nullptr);
    EXPECT_FALSE(camera.isRunning());
    EXPECT_FALSE(camera.start());
    EXPECT_EQ(camera.nextFrame(), nullptr);
    // A script on another thread may still hold the store.
    EXPECT_EQ(before->findParam(QStringLiteral("exposure"), false)->paramValue().toInt(), 77);
    ASSERT_TRUE(camera.open());
    EXPECT_NE(camera.parameters(), before);
    EXPECT_EQ(get("exposure").toInt(), 10000);
    EXPECT_EQ(camera.parameters()->currentROIRectParams().constFirst(), QRect(0, 0, 640, 480));
    camera.start();
    EXPECT_EQ(frame()->picBuf()->acqFrameNumber, 1);
}

} // namespace
