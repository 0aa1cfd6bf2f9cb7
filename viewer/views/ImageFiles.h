#pragma once

#include <QtCore/QString>

#include <memory>

class CxImageData;

/// Reads an image file; null with a log line
/// when its extension is unknown or it cannot be read.
std::shared_ptr<CxImageData> loadImageFile(const QString& path);

/// Writes an image file; false with a log line when its extension is unknown or it cannot be written.
bool saveImageFile(CxImageData& image, const QString& path);
