#pragma once

#include "CxValue.h"
#include "SxCameraInfo.h"

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QString>

#include <array>
#include <optional>

/// The contents of a camera settings file.
struct CameraSettings {
    QList<QPair<QString, CxValue>> values; ///< parameter names and values, in the order of the file
    /// Offset and size as in the file, unchecked: QRect cannot hold every four integers.
    std::optional<std::array<int, 4>> region;
};

/// Writes a settings file, with the camera's name for people who read the file. On failure returns false, logs one line
/// and leaves an existing file unchanged.
bool writeCameraSettings(const QString& path, const SxCameraInfo& camera, const CameraSettings& settings);

/// Reads a settings file. If the file cannot be read or is not a settings file, returns nothing and logs the reason.
/// Whole numbers become integers if they fit, other numbers floating values.
std::optional<CameraSettings> readCameraSettings(const QString& path);

/// True if a parameter of the given type can take a value from a file: any number for a numeric type, otherwise a value
/// of that type.
bool fitsType(const CxValue& fromFile, CxValue::ExType type);
