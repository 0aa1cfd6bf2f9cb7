#pragma once

#include <QtCore/QString>

#include <cstdint>

/// The description of a camera.
struct SxCameraInfo {
    QString deviceName;
    QString deviceType;
    std::int32_t modelId = 0;
    QString serialNumber;
    QString userId;       ///< chosen by the camera's owner; several cameras may share it
    QString instancePath; ///< where the camera is attached
};
