#include "CxCameraParameters.h"

#include "support/FakeCameraDevice.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace {

class CameraParameters : public testing::Test
{
protected:
    int set(const char* name, const CxValue& value)
    {
        int status = 99;
        const bool written =
            store->setParamDirect(QString::fromUtf8(name), value, &status, ExCommitRefreshGuiMode::CommitAndRefresh);
        EXPECT_EQ(written, status >= 0) << name;
        return status;
    }

    CxValue get(const char* name)
    {
        const CxCameraParam* param = store->findParam(QString::fromUtf8(name), false);
        return param ? param->paramValue() : CxValue();
    }

    QRect region() { return store->currentROIRectParams().constFirst(); }

    FakeCameraDevice device;
    std::unique_ptr<CxCameraParameters> store = makeFakeParameters(&device);
};

CxValue text(const char* value)
{
    return CxValue::fromString(QString::fromUtf8(value));
}

TEST_F(CameraParameters, FindsByTheExactNameUnlessAskedOtherwise)
{
    EXPECT_NE(store->findParam(QStringLiteral("gain"), false), nullptr);
    EXPECT_EQ(store->findParam(QStringLiteral("GAIN"), false), nullptr);
    EXPECT_EQ(store->findParam(QStringLiteral("GAIN"), true), store->findParam(QStringLiteral("gain"), false));
    EXPECT_EQ(store->findParam(QStringLiteral("exposure:min"), false), nullptr);
}

TEST_F(CameraParameters, RefusesASecondParameterOfTheSameName)
{
    EXPECT_EQ(store->addParam(QStringLiteral("gain"), CxValue::fromInt(1)), nullptr);
    EXPECT_EQ(store->params().size(), 6);
}

TEST_F(CameraParameters, WritesToTheDeviceAndStores)
{
    EXPECT_EQ(set("exposure", CxValue::fromInt(12345)), CxCameraParameters::Written);
    EXPECT_EQ(get("exposure"), CxValue::fromInt(12345));
    ASSERT_EQ(device.written.size(), 1);
    EXPECT_EQ(device.written[0].first, QStringLiteral("exposure"));
    EXPECT_EQ(device.written[0].second, CxValue::fromInt(12345));
}

TEST_F(CameraParameters, ConvertsToTheParametersType)
{
    EXPECT_EQ(set("exposure", CxValue::fromFloat(99.6F)), CxCameraParameters::Written);
    EXPECT_EQ(get("exposure"), CxValue::fromInt(100));
    EXPECT_EQ(set("gain", text("1.5")), CxCameraParameters::Written);
    EXPECT_EQ(get("gain"), CxValue::fromFloat(1.5F));
    EXPECT_EQ(set("auto_exposure", CxValue::fromInt(1)), CxCameraParameters::Written);
    EXPECT_EQ(get("auto_exposure"), CxValue::fromBool(true));
}

TEST_F(CameraParameters, ClipsToTheLimits)
{
    EXPECT_EQ(set("exposure", CxValue::fromInt(5)), CxCameraParameters::Clipped);
    EXPECT_EQ(get("exposure"), CxValue::fromInt(10));
    EXPECT_EQ(set("exposure", CxValue::fromInt(2000000)), CxCameraParameters::Clipped);
    EXPECT_EQ(get("exposure"), CxValue::fromInt(1000000));
    EXPECT_EQ(set("gain", CxValue::fromFloat(std::numeric_limits<float>::infinity())), CxCameraParameters::Clipped);
    EXPECT_EQ(get("gain"), CxValue::fromFloat(24.0F));
    EXPECT_EQ(set("gain", CxValue::fromFloat(-0.1F)), CxCameraParameters::Clipped);
    EXPECT_EQ(get("gain"), CxValue::fromFloat(0.0F));
}

TEST_F(CameraParameters, ValuesAtTheLimitsAreNotClipped)
{
    EXPECT_EQ(set("exposure", CxValue::fromInt(10)), CxCameraParameters::Written);
    EXPECT_EQ(set("exposure", CxValue::fromInt(1000000)), CxCameraParameters::Written);
}

TEST_F(CameraParameters, UnknownNamesAreMinusOne)
{
    EXPECT_EQ(set("nothing", CxValue::fromInt(1)), -1);
    EXPECT_EQ(set("", CxValue::fromInt(1)), -1);
    EXPECT_EQ(set("EXPOSURE", CxValue::fromInt(100)), -1);
    EXPECT_EQ(set("nothing:min", CxValue::fromInt(1)), -1);
    EXPECT_EQ(set("exposure:abc", CxValue::fromInt(1)), -1);
    EXPECT_EQ(set("exposure:min:max", CxValue::fromInt(1)), -1);
    EXPECT_TRUE(device.written.isEmpty());
}

TEST_F(CameraParameters, RefusedValuesAreMinusTwoAndLeaveTheOldOne)
{
    EXPECT_EQ(set("gain", CxValue::fromFloat(std::numeric_limits<float>::quiet_NaN())), -2);
    EXPECT_EQ(set("trigger_mode", text("line7")), -2);
    EXPECT_EQ(set("trigger_mode", text("Off")), -2);
    EXPECT_EQ(set("cooling", CxValue::fromBool(true)), -2);
    device.refusing = true;
    EXPECT_EQ(set("exposure", CxValue::fromInt(50)), -2);
    EXPECT_EQ(get("gain"), CxValue::fromFloat(0.0F));
    EXPECT_EQ(get("trigger_mode"), text("off"));
    EXPECT_EQ(get("exposure"), CxValue::fromInt(10000));
    EXPECT_TRUE(device.written.isEmpty());
}

TEST_F(CameraParameters, WhatCannotBeWrittenIsMinusThree)
{
    for (const char* name : {"frame_count", "sensor_temperature", "exposure:min", "exposure:max", "gain:inc",
                             "exposure:info", "sensor_temperature:min", "device_sn", "device_model_id"})
        EXPECT_EQ(set(name, CxValue::fromInt(1)), -3) << name;
    EXPECT_EQ(get("exposure"), CxValue::fromInt(10000));
}

TEST_F(CameraParameters, WithoutTheDeviceNothingIsWrittenAndWhatIsStoredCanBeRead)
{
    ASSERT_EQ(set("exposure", CxValue::fromInt(500)), CxCameraParameters::Written);
    device.written.clear();
    store->releaseDevice();
    store->releaseDevice();
    EXPECT_EQ(set("exposure", CxValue::fromInt(600)), CxCameraParameters::Refused);
    EXPECT_EQ(get("exposure"), CxValue::fromInt(500));
    EXPECT_FALSE(store->setROIRectParams(0, 0, 8, 8, true, true));
    EXPECT_EQ(region(), QRect(0, 0, 640, 480));
    CxValue value;
    EXPECT_FALSE(store->getParamDirect(QStringLiteral("sensor_temperature"), value, nullptr));
    EXPECT_TRUE(store->getParamDirect(QStringLiteral("exposure"), value, nullptr));
    EXPECT_EQ(set("sensor_temperature", CxValue::fromInt(1)), CxCameraParameters::Unknown);
    EXPECT_TRUE(device.written.isEmpty());
    EXPECT_TRUE(device.regions.isEmpty());
}

TEST_F(CameraParameters, AStatusIsNotNeeded)
{
    EXPECT_TRUE(store->setParamDirect(QStringLiteral("exposure"), CxValue::fromInt(20), nullptr,
                                      ExCommitRefreshGuiMode::Commit));
    EXPECT_FALSE(store->setParamDirect(QStringLiteral("nothing"), CxValue::fromInt(20), nullptr,
                                       ExCommitRefreshGuiMode::Commit));
}

TEST_F(CameraParameters, ReadsDirectlyWhatTheStoreDoesNotList)
{
    CxValue value = CxValue::fromInt(-1);
    int status = 99;
    EXPECT_FALSE(store->getParamDirect(QStringLiteral("nothing"), value, &status));
    EXPECT_EQ(status, -1);
    EXPECT_EQ(value, CxValue::fromInt(-1));
    EXPECT_TRUE(store->getParamDirect(QStringLiteral("sensor_temperature"), value, &status));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(value, CxValue::fromFloat(35.5F));
    EXPECT_TRUE(store->getParamDirect(QStringLiteral("exposure"), value, nullptr));
    EXPECT_EQ(value, CxValue::fromInt(10000));
    EXPECT_FALSE(store->getParamDirect(QStringLiteral("cooling"), value, nullptr));
    EXPECT_FALSE(store->getParamDirect(QStringLiteral("exposure:abc"), value, nullptr));
}

TEST_F(CameraParameters, TellsListenersWhenAskedTo)
{
    QStringList changed;
    QObject::connect(store.get(), &CxCameraParameters::paramChanged,
                     [&changed](const QString& name) { changed.append(name); });
    set("gain", CxValue::fromFloat(2.0F));
    set("nothing", CxValue::fromFloat(2.0F));
    store->setParamDirect(QStringLiteral("gain"), CxValue::fromFloat(3.0F), nullptr, ExCommitRefreshGuiMode::Commit);
    store->reportParam(QStringLiteral("frame_count"), CxValue::fromInt(12));
    store->reportParam(QStringLiteral("nothing"), CxValue::fromInt(12));
    EXPECT_EQ(changed, (QStringList{QStringLiteral("gain"), QStringLiteral("frame_count")}));
    EXPECT_EQ(get("frame_count"), CxValue::fromInt(12));
}

TEST_F(CameraParameters, TheRegionIsTheSensorAtFirst)
{
    EXPECT_EQ(region(), QRect(0, 0, 640, 480));
}

TEST_F(CameraParameters, TakesARegionWithinTheSensor)
{
    EXPECT_TRUE(store->setROIRectParams(16, 8, 320, 240, true, true));
    EXPECT_EQ(region(), QRect(16, 8, 320, 240));
    EXPECT_EQ(device.regions, QList<QRect>{QRect(16, 8, 320, 240)});
    EXPECT_TRUE(store->setROIRectParams(639, 479, 1, 1, true, true));
    EXPECT_EQ(region(), QRect(639, 479, 1, 1));
}

TEST_F(CameraParameters, ClipsARegionThatReachesBeyondTheSensor)
{
    EXPECT_TRUE(store->setROIRectParams(-10, -20, 100, 100, true, true));
    EXPECT_EQ(region(), QRect(0, 0, 90, 80));
    EXPECT_TRUE(store->setROIRectParams(600, 400, 1000, 1000, true, true));
    EXPECT_EQ(region(), QRect(600, 400, 40, 80));
    constexpr int most = std::numeric_limits<int>::max();
    EXPECT_TRUE(store->setROIRectParams(1, 1, most, most, true, true));
    EXPECT_EQ(region(), QRect(1, 1, 639, 479));
}

TEST_F(CameraParameters, KeepsTheOldRegionForOneOutsideOrEmpty)
{
    constexpr int least = std::numeric_limits<int>::min();
    store->setROIRectParams(16, 8, 320, 240, true, true);
    const std::array<int, 4> refused[] = {{640, 0, 10, 10}, {0, 480, 10, 10}, {-10, 0, 10, 10}, {0, 0, 0, 10},
                                          {0, 0, 10, 0},    {0, 0, -5, 10},   {0, 0, 10, -5},   {least, 0, 5, 5},
                                          {0, least, 5, 5}, {0, 0, least, 10}};
    for (const auto& [x, y, width, height] : refused)
        EXPECT_FALSE(store->setROIRectParams(x, y, width, height, true, true)) << x << ' ' << y;
    EXPECT_FALSE(store->setROIRectParams(least, least, least, least, true, true));
    device.refusing = true;
    EXPECT_FALSE(store->setROIRectParams(0, 0, 10, 10, true, true));
    EXPECT_EQ(region(), QRect(16, 8, 320, 240));
}

TEST_F(CameraParameters, APresetKeepsExposureGainAndRegion)
{
    set("exposure", CxValue::fromInt(500));
    set("gain", CxValue::fromFloat(6.0F));
    store->setROIRectParams(10, 20, 30, 40, true, true);
    CxShadingPreset preset;
    preset.saveCurrentValuesFrom(store.get());
    preset.saveCurrentValuesFrom(store.get());
    ASSERT_EQ(preset.values.size(), 2);

    set("exposure", CxValue::fromInt(900));
    set("gain", CxValue::fromFloat(1.0F));
    store->setROIRectParams(0, 0, 640, 480, true, true);
    preset.activateValuesTo(store.get());
    EXPECT_EQ(get("exposure"), CxValue::fromInt(500));
    EXPECT_EQ(get("gain"), CxValue::fromFloat(6.0F));
    EXPECT_EQ(region(), QRect(10, 20, 30, 40));
}

TEST_F(CameraParameters, AnEmptyPresetAndANullStoreAreHarmless)
{
    CxShadingPreset preset;
    preset.activateValuesTo(store.get());
    preset.saveCurrentValuesFrom(nullptr);
    preset.activateValuesTo(nullptr);
    EXPECT_TRUE(preset.values.isEmpty());
    EXPECT_TRUE(device.written.isEmpty());
}

TEST_F(CameraParameters, TellsListenersThatPresetsChanged)
{
    int notified = 0;
    QObject::connect(store.get(), &CxCameraParameters::shadingChanged, [&notified] { ++notified; });
    store->notifyShadingChanged();
    EXPECT_EQ(notified, 1);
}

} // namespace
