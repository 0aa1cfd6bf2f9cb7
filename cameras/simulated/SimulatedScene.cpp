#include "SimulatedScene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace {

constexpr float fullLight = 65535.0F;

/// The exposure in microseconds at which full light fills the well.
constexpr double exposureOfFullWell = 12500.0;

/// The light of a colour in memory order: blue, green, red.
using Colour = std::array<float, 3>;

constexpr std::array<Colour, 8> colourPatches = {{{0.05F, 0.05F, 0.05F},
                                                  {0.60F, 0.15F, 0.08F},
                                                  {0.15F, 0.50F, 0.12F},
                                                  {0.12F, 0.12F, 0.65F},
                                                  {0.08F, 0.62F, 0.72F},
                                                  {0.62F, 0.18F, 0.62F},
                                                  {0.70F, 0.58F, 0.12F},
                                                  {0.90F, 0.90F, 0.90F}}};
constexpr Colour backdrop = {0.42F, 0.34F, 0.28F};
constexpr Colour discColour = {0.20F, 0.55F, 1.00F};

/// The light of a patch. A grey sensor sees the eight patches as even steps.
Colour patch(std::size_t index, bool isColor)
{
    const float grey = 0.05F + 0.85F * float(index) / float(colourPatches.size() - 1);
    return isColor ? colourPatches[index] : Colour{grey, grey, grey};
}

std::uint64_t mixed(std::uint64_t value)
{
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

/// Normally distributed numbers in steps of noiseStep, drawn once: drawing one for every pixel would take most of a
/// processor's time. Each row of each frame reads the table from its own random place.
constexpr float noiseStep = 1.0F / 32.0F;
constexpr std::size_t noiseStarts = std::size_t(1) << 17;
constexpr std::size_t longestRow = 4096; // values, all channels together

const std::vector<std::int8_t>& noiseTable()
{
    static const std::vector<std::int8_t> table = [] {
        std::vector<std::int8_t> numbers(noiseStarts + longestRow);
        std::uint64_t state = 0;
        const auto uniform = [&state] { return (double(mixed(++state) >> 11) + 0.5) / 9007199254740992.0; };
        for (std::size_t i = 0; i < numbers.size(); i += 2) {
            const double radius = std::sqrt(-2.0 * std::log(uniform()));
            const double angle = 2.0 * std::numbers::pi * uniform();
            const auto stored = [](double value) {
                return std::int8_t(std::clamp(std::lround(value / double(noiseStep)), -127L, 127L));
            };
            numbers[i] = stored(radius * std::cos(angle));
            numbers[i + 1] = stored(radius * std::sin(angle));
        }
        return numbers;
    }();
    return table;
}

/// How the sensor turns light into a pixel value.
struct Response {
    float electronsPerLight;
    float valuePerElectron;
    float offset;
    float fullScale;
};

template<typename T>
void exposeRow(T* values, const std::uint16_t* light, const std::int8_t* noise, std::size_t count,
               const Response& response)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float electrons = float(light[i]) * response.electronsPerLight;
        const float seen = electrons + std::sqrt(electrons) * (float(noise[i]) * noiseStep);
        float value = seen * response.valuePerElectron + response.offset;
        value = value < 0.0F ? 0.0F : value;
        value = value > response.fullScale ? response.fullScale : value;
        // Through int, since there are vector instructions for that conversion.
        if constexpr (std::is_integral_v<T>)
            values[i] = T(std::int32_t(value));
        else
            values[i] = value;
    }
}

} // namespace

/// The part of the scene that moves, in sensor pixels.
struct SimulatedScene::Disc {
    double x;
    double y;
    double radius;

    /// First and last column of the disc in a row; the last is below the first if the disc does not reach the row.
    std::pair<int, int> span(int row) const
    {
        const double height = row - y;
        const double square = radius * radius - height * height;
        if (square < 0)
            return {0, -1};
        const double half = std::sqrt(square);
        return {int(std::ceil(x - half)), int(std::floor(x + half))};
    }
};

SimulatedScene::SimulatedScene(const SimulatedSensor& sensor)
    : m_sensor(sensor)
{
    const int width = sensor.size.width();
    const int height = sensor.size.height();
    if (std::size_t(width) * sensor.channels > longestRow)
        throw std::length_error("the sensor has longer rows than the noise table");
    m_light.reserve(std::size_t(width) * std::size_t(height) * sensor.channels);
    for (int y = 0; y < height; ++y) {
        const double fromMiddleY = 2.0 * y / height - 1.0;
        const bool inPatches = y >= height / 8 && y < height * 3 / 8;
        for (int x = 0; x < width; ++x) {
            const double fromMiddleX = 2.0 * x / width - 1.0;
            const double fallOff = 1.0 - 0.15 * (fromMiddleX * fromMiddleX + fromMiddleY * fromMiddleY);
            const Colour& colour =
                inPatches ? patch(std::size_t(x) * colourPatches.size() / std::size_t(width), sensor.channels > 1)
                          : backdrop;
            for (std::size_t c = 0; c < sensor.channels; ++c)
                m_light.push_back(std::uint16_t(double(fullLight) * fallOff * double(colour[c])));
        }
    }
    m_meanLight = std::accumulate(m_light.begin(), m_light.end(), 0.0) / double(m_light.size());
}

SimulatedScene::Disc SimulatedScene::discAt(std::int32_t frameNumber) const
{
    const double turn = 2.0 * std::numbers::pi * double(frameNumber);
    return {m_sensor.size.width() * (0.5 + 0.38 * std::sin(turn / 150.0)),
            m_sensor.size.height() * (0.74 + 0.10 * std::cos(turn / 110.0)), m_sensor.size.height() * 0.11};
}

void SimulatedScene::render(SxPicBuf& buffer, std::int32_t frameNumber, const Settings& settings) const
{
    const std::size_t channels = m_sensor.channels;
    const QRect& region = settings.region;
    const std::size_t count = std::size_t(region.width()) * channels;
    const double gain = std::pow(10.0, double(settings.gainDb) / 20.0);
    const bool isFloat = m_sensor.dataType == ExImageDataType::Float;
    const Response response = {
        float(double(m_sensor.fullWell) * settings.exposureUs / exposureOfFullWell / double(fullLight)),
        float(gain * double(m_sensor.fullScale) / double(m_sensor.fullWell)),
        float(settings.blackLevel) + (isFloat ? 0.0F : 0.5F), m_sensor.fullScale};
    const Disc disc = discAt(frameNumber);
    const std::uint64_t frameSeed = mixed(m_sensor.seed ^ mixed(std::uint32_t(frameNumber)));

    std::vector<std::uint16_t> rowWithDisc;
    for (int y = region.top(); y <= region.bottom(); ++y) {
        const std::uint16_t* light =
            m_light.data() +
            (std::size_t(y) * std::size_t(m_sensor.size.width()) + std::size_t(region.left())) * channels;
        auto [first, last] = disc.span(y);
        first = std::max(first, region.left());
        last = std::min(last, region.right());
        if (first <= last) {
            rowWithDisc.assign(light, light + count);
            for (std::size_t x = std::size_t(first - region.left()); x <= std::size_t(last - region.left()); ++x)
                for (std::size_t c = 0; c < channels; ++c)
                    rowWithDisc[x * channels + c] =
                        std::uint16_t(fullLight * (channels > 1 ? discColour[c] : discColour.back()));
            light = rowWithDisc.data();
        }
        // Counted from the sensor's edge, so that a region shows the same pixels as the whole frame.
        const std::int8_t* noise = noiseTable().data() + mixed(frameSeed + std::uint64_t(y)) % noiseStarts +
                                   std::size_t(region.left()) * channels;
        std::uint8_t* row = buffer.row(std::uint32_t(y - region.top()));
        if (isFloat)
            exposeRow(reinterpret_cast<float*>(row), light, noise, count, response);
        else if (m_sensor.dataType == ExImageDataType::UInt16)
            exposeRow(reinterpret_cast<std::uint16_t*>(row), light, noise, count, response);
        else
            exposeRow(row, light, noise, count, response);
    }
}

double SimulatedScene::exposureForHalfScale(float gainDb) const
{
    return 0.5 * exposureOfFullWell * double(fullLight) / m_meanLight / std::pow(10.0, double(gainDb) / 20.0);
}
