#pragma once

#include "SimulatedSensor.h"

#include <QtCore/QRect>

#include <cstdint>
#include <vector>

class CxImageData;

/// What a simulated camera looks at, and how its sensor turns that into pixel values.
///
/// The upper half holds a row of even patches that stand still, from dark to bright, in colours for a colour sensor; a
/// bright disc moves through the lower half. The light falls off towards the corners as behind a lens. A pixel's value
/// is (electrons, with shot noise) x gain + black level, clipped to full scale.
///
/// A frame is a function of the sensor, the frame number and the settings: the same again in every run.
class SimulatedScene
{
public:
    struct Settings {
        std::int32_t exposureUs = 10000;
        float gainDb = 0.0F;
        std::int32_t blackLevel = 0;
        QRect region; ///< within the sensor, not empty
    };

    explicit SimulatedScene(const SimulatedSensor& sensor);

    /// Fills a buffer of the region's size and the sensor's type.
    void render(SxPicBuf& buffer, std::int32_t frameNumber, const Settings& settings) const;

    /// Exposure in microseconds that brings the mean of the scene to half of full scale.
    double exposureForHalfScale(float gainDb) const;

private:
    struct Disc;

    Disc discAt(std::int32_t frameNumber) const;

    SimulatedSensor m_sensor;
    std::vector<std::uint16_t> m_light; ///< without the disc, in parts of 65535
    double m_meanLight = 0;             ///< the same unit
};
