#pragma once

#include <QtCore/QString>

#include <memory>

class CxImageData;

/// Reads an image file. 16-bit values count as 12 or 14 bits deep when all of them fit in so many. Null with a log line
/// when its extension is unknown or it cannot be read.
std::shared_ptr<CxImageData> loadImageFile(const QString& path);

/// Writes an image file; false with a log line when its extension is unknown or it cannot be written.
bool saveImageFile(CxImageData& image, const QString& path);
