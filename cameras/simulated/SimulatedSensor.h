#pragma once

#include "SxCameraInfo.h"
#include "SxPicBuf.h"

#include <QtCore/QSize>

/// The sensor of one model of simulated camera.
struct SimulatedSensor {
    SxCameraInfo info;
    QSize size;
    std::uint32_t channels = 1;
    ExImageDataType dataType = ExImageDataType::UInt8;
    std::uint32_t bpc = 8;
    float fullScale = 255.0F; ///< largest value
    float fullWell = 2550.0F; ///< electrons for the largest value at a gain of 0 dB
    std::uint64_t seed = 0;   ///< seed of the noise
};

/// Number of models.
constexpr int simulatedSensorCount = 4;

/// The model with that number, from 0 to simulatedSensorCount - 1.
SimulatedSensor simulatedSensor(int number);
