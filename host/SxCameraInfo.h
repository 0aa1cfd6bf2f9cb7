#pragma once

#include <QtCore/QString>

#include <cstdint>

/// What a camera says about itself.
struct SxCameraInfo {
    QString deviceName;
    QString deviceType;
    std::int32_t modelId = 0;
    QString serialNumber;
    QString userId;       ///< given by the camera's owner; several cameras may have the same
    QString instancePath; ///< where the camera is attached
};
