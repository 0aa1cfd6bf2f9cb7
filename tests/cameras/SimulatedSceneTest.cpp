#include "simulated/SimulatedScene.h"

#include "CxPicBufAPI.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace {

/// A rendered frame, as numbers.
class Frame
{
public:
    Frame(const SimulatedSensor& sensor, int frameNumber, SimulatedScene::Settings settings)
        : m_channels(sensor.channels)
    {
        if (settings.region.isNull())
            settings.region = QRect(QPoint(0, 0), sensor.size);
        SxPicBufInfo info;
        info.width = std::uint32_t(settings.region.width());
        info.height = std::uint32_t(settings.region.height());
        info.channels = sensor.channels;
        info.dataType = sensor.dataType;
        CxPicBufAPI::AllocPicBufFromHeap(m_buffer, info, false, 0);
        SimulatedScene(sensor).render(m_buffer, frameNumber, settings);
    }
    ~Frame() { CxPicBufAPI::FreePicBuf(m_buffer, true); }
    Q_DISABLE_COPY_MOVE(Frame)

    double at(int x, int y, int channel = 0) const
    {
        const std::uint8_t* row = m_buffer.row(std::uint32_t(y));
        const auto index = std::size_t(x) * m_channels + std::size_t(channel);
        switch (m_buffer.dataType) {
        case ExImageDataType::Float:
            return double(reinterpret_cast<const float*>(row)[index]);
        case ExImageDataType::UInt16:
            return reinterpret_cast<const std::uint16_t*>(row)[index];
        default:
            return row[index];
        }
    }

    double mean(const QRect& rect) const
    {
        double sum = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            for (int x = rect.left(); x <= rect.right(); ++x)
                sum += at(x, y);
        return sum / rect.width() / rect.height();
    }

    bool operator==(const Frame& other) const
    {
        return m_buffer.dataSize() == other.m_buffer.dataSize() &&
               std::memcmp(m_buffer.data, other.m_buffer.data, m_buffer.dataSize()) == 0;
    }

private:
    std::uint32_t m_channels;
    SxPicBuf m_buffer;
};

SimulatedScene::Settings exposed(int microseconds, float gain = 0.0F, int blackLevel = 0)
{
    SimulatedScene::Settings settings;
    settings.exposureUs = microseconds;
    settings.gainDb = gain;
    settings.blackLevel = blackLevel;
    return settings;
}

/// A part of the brightest patch, which stands still.
QRect brightest(const SimulatedSensor& sensor)
{
    const int width = sensor.size.width();
    const int height = sensor.size.height();
    return {width * 15 / 16, height * 3 / 16, width / 24, height / 8};
}

class SimulatedSceneOf : public testing::TestWithParam<int>
{
protected:
    const SimulatedSensor sensor = simulatedSensor(GetParam());
};

TEST_P(SimulatedSceneOf, IsTheSameAgainForTheSameFrame)
{
    EXPECT_TRUE(Frame(sensor, 7, exposed(10000)) == Frame(sensor, 7, exposed(10000)));
}

TEST_P(SimulatedSceneOf, DiffersFromFrameToFrameAndFromSeedToSeed)
{
    EXPECT_FALSE(Frame(sensor, 7, exposed(10000)) == Frame(sensor, 8, exposed(10000)));
    SimulatedSensor other = sensor;
    other.seed += 100;
    EXPECT_FALSE(Frame(sensor, 7, exposed(10000)) == Frame(other, 7, exposed(10000)));
}

TEST_P(SimulatedSceneOf, GrowsLinearlyWithTheExposure)
{
    const QRect rect = brightest(sensor);
    const double reference = Frame(sensor, 1, exposed(8000)).mean(rect);
    EXPECT_NEAR(Frame(sensor, 1, exposed(2000)).mean(rect), reference / 4, reference * 0.005);
    EXPECT_NEAR(Frame(sensor, 1, exposed(4000)).mean(rect), reference / 2, reference * 0.005);
}

TEST_P(SimulatedSceneOf, GrowsWithTheGainAsDecibelsSay)
{
    const QRect rect = brightest(sensor);
    const double reference = Frame(sensor, 1, exposed(4000)).mean(rect);
    EXPECT_NEAR(Frame(sensor, 1, exposed(4000, 6.0206F)).mean(rect), reference * 2, reference * 0.01);
    EXPECT_NEAR(Frame(sensor, 1, exposed(400, 20.0F)).mean(rect), reference, reference * 0.02);
}

TEST_P(SimulatedSceneOf, StopsAtFullScale)
{
    const Frame frame(sensor, 1, exposed(1000000, 24.0F));
    for (int channel = 0; channel < int(sensor.channels); ++channel)
        EXPECT_EQ(frame.at(sensor.size.width() - 1, sensor.size.height() / 4, channel), double(sensor.fullScale));
}

TEST_P(SimulatedSceneOf, AddsTheBlackLevel)
{
    const QRect rect = brightest(sensor);
    EXPECT_NEAR(Frame(sensor, 1, exposed(10, 0.0F, 40)).mean(rect), 40.0, double(sensor.fullScale) / 1000 + 0.1);
    EXPECT_NEAR(Frame(sensor, 1, exposed(4000, 0.0F, 40)).mean(rect) - Frame(sensor, 1, exposed(4000)).mean(rect), 40.0,
                0.1);
}

TEST_P(SimulatedSceneOf, ShowsInARegionWhatTheWholeFrameShowsThere)
{
    const QRect region(sensor.size.width() / 5, sensor.size.height() / 2, sensor.size.width() / 2,
                       sensor.size.height() / 3);
    SimulatedScene::Settings settings = exposed(5000);
    settings.region = region;
    const Frame part(sensor, 3, settings);
    const Frame whole(sensor, 3, exposed(5000));
    for (int y = 0; y < region.height(); ++y)
        for (int x = 0; x < region.width(); ++x)
            for (int c = 0; c < int(sensor.channels); ++c)
                ASSERT_EQ(part.at(x, y, c), whole.at(region.x() + x, region.y() + y, c)) << x << ' ' << y;
}

TEST_P(SimulatedSceneOf, HasShotNoiseWhoseVarianceGrowsWithTheMean)
{
    // Half the variance of the difference of two frames, in units of (value per electron) x value: 1 for shot noise.
    const QRect rect = brightest(sensor);
    const double valuePerElectron = double(sensor.fullScale) / double(sensor.fullWell);
    for (const int exposure : {2000, 4000, 8000}) {
        const Frame a(sensor, 1, exposed(exposure));
        const Frame b(sensor, 2, exposed(exposure));
        double sum = 0;
        double squares = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                const double difference = a.at(x, y) - b.at(x, y);
                sum += difference;
                squares += difference * difference;
            }
        }
        const double count = double(rect.width()) * rect.height();
        const double rounding = sensor.dataType == ExImageDataType::Float ? 0.0 : 1.0 / 12;
        const double variance = (squares / count - (sum / count) * (sum / count)) / 2 - rounding;
        const double tolerance = 6 / std::sqrt(count);
        EXPECT_NEAR(variance / (a.mean(rect) * valuePerElectron), 1.0, tolerance) << "exposure " << exposure;
    }
}

TEST_P(SimulatedSceneOf, ReachesHalfOfFullScaleWithTheExposureThatItTells)
{
    for (const float gain : {0.0F, 12.0F}) {
        const double exposure = SimulatedScene(sensor).exposureForHalfScale(gain);
        const Frame frame(sensor, 1, exposed(int(exposure), gain));
        double sum = 0;
        for (int y = 0; y < sensor.size.height(); ++y)
            for (int x = 0; x < sensor.size.width(); ++x)
                for (int c = 0; c < int(sensor.channels); ++c)
                    sum += frame.at(x, y, c);
        const double mean = sum / sensor.size.width() / sensor.size.height() / sensor.channels;
        EXPECT_NEAR(mean / double(sensor.fullScale), 0.5, 0.05);
    }
}

INSTANTIATE_TEST_SUITE_P(EverySensor, SimulatedSceneOf, testing::Range(0, simulatedSensorCount));

TEST(SimulatedScene, RefusesRowsThatAreLongerThanItsNoise)
{
    SimulatedSensor sensor = simulatedSensor(2);
    sensor.size = QSize(4096, 2);
    EXPECT_NO_THROW(SimulatedScene{sensor});
    sensor.size = QSize(4097, 2);
    EXPECT_THROW(SimulatedScene{sensor}, std::length_error);
}

} // namespace
