#pragma once

#include <QtCore/QLatin1String>

#include <algorithm>
#include <array>

/// The names of camera parameters, as parameter stores, settings files and scripts use them.
namespace CameraParamNames {

// Units are those of the parameter's value.
inline constexpr QLatin1String exposure("exposure"); ///< microseconds
inline constexpr QLatin1String gain("gain");         ///< decibels
inline constexpr QLatin1String blackLevel("black_level");
inline constexpr QLatin1String frameRate("framerate"); ///< frames per second
inline constexpr QLatin1String autoExposure("auto_exposure");
inline constexpr QLatin1String triggerMode("trigger_mode");
inline constexpr QLatin1String frameCount("frame_count");
inline constexpr QLatin1String cooling("cooling");
inline constexpr QLatin1String linkSpeed("link_speed");
inline constexpr QLatin1String sensorTemperature("sensor_temperature");

/// All parameters.
inline constexpr std::array parameters = {exposure,    gain,       blackLevel, frameRate, autoExposure,
                                          triggerMode, frameCount, cooling,    linkSpeed, sensorTemperature};

// Keys of a camera's description (SxCameraInfo), which scripts read like parameters.
inline constexpr QLatin1String deviceName("device_name");
inline constexpr QLatin1String deviceType("device_type");
inline constexpr QLatin1String deviceModelId("device_model_id");
inline constexpr QLatin1String deviceSerialNumber("device_sn");
inline constexpr QLatin1String deviceUserId("device_user_id");
inline constexpr QLatin1String deviceInstancePath("device_inst_path");

/// All keys of the description.
inline constexpr std::array descriptionKeys = {deviceName,         deviceType,   deviceModelId,
                                               deviceSerialNumber, deviceUserId, deviceInstancePath};

inline bool isParameter(const QString& name)
{
    return std::find(parameters.begin(), parameters.end(), name) != parameters.end();
}

inline bool isDescriptionKey(const QString& name)
{
    return std::find(descriptionKeys.begin(), descriptionKeys.end(), name) != descriptionKeys.end();
}

} // namespace CameraParamNames
