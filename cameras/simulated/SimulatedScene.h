#pragma once

#include "SimulatedSensor.h"

#include <QtCore/QRect>

#include <cstdint>
#include <vector>

class CxImageData;

/// The scene that a simulated camera sees, and the sensor that turns it into pixel values.
///
/// The upper half has a row of uniform, still patches from dark to bright, in colours for a colour sensor. A bright
/// disc moves through the lower half. The light falls off towards the corners as it does behind a lens. A pixel's value
/// is (electrons, with shot noise) x gain + black level, clipped to full scale.
///
/// A frame depends only on the sensor, the frame number and the settings, so it is the same in every run.
class SimulatedScene
{
public:
    struct Settings {
        std::int32_t exposureUs = 10000;
        float gainDb = 0.0F;
        std::int32_t blackLevel = 0;
        QRect region; ///< within the sensor, not empty
    };

    /// Throws std::length_error for a sensor with rows of more than 4096 values, the length of its noise table.
    explicit SimulatedScene(const SimulatedSensor& sensor);

    /// Renders a frame into a buffer, which must have the region's size and the sensor's type and channels.
    void render(SxPicBuf& buffer, std::int32_t frameNumber, const Settings& settings) const;

    /// The exposure in microseconds that brings the mean of the scene to half of full scale.
    double exposureForHalfScale(float gainDb) const;

private:
    struct Disc;

    Disc discAt(std::int32_t frameNumber) const;

    SimulatedSensor m_sensor;
    std::vector<std::uint16_t> m_light; ///< of the scene without the disc; 65535 is full light
    double m_meanLight = 0;             ///< in the same unit
};
