#pragma once

#include "CxValue.h"
#include "SxCameraInfo.h"

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QString>

#include <array>
#include <optional>

/// What a camera settings file holds.
struct CameraSettings {
    QList<QPair<QString, CxValue>> values; ///< in the order of the file
    /// Offset and size as they stand in the file: any four integers, which QRect could not hold.
    std::optional<std::array<int, 4>> region;
};

/// Writes a settings file; the description is for people who read it. The file is complete or, on failure (false, and
/// a log line), what it was before.
bool writeCameraSettings(const QString& path, const SxCameraInfo& camera, const CameraSettings& settings);

/// Reads a settings file. Nothing, and a log line that says why, for one that cannot be read or is not such a file.
/// Integral numbers come as integers where they fit, others as floating values.
std::optional<CameraSettings> readCameraSettings(const QString& path);

/// True when a value read from a file can stand for a parameter of that type.
bool fitsType(const CxValue& fromFile, CxValue::ExType type);
