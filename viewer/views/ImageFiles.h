#pragma once

#include <QtCore/QString>

#include <memory>

class CxImageData;

/// Reads the first image of a file. Returns null and logs why if the extension is unknown or the file cannot be read.
std::shared_ptr<CxImageData> loadImageFile(const QString& path);

/// Writes an image file. Returns false and logs why if the extension is unknown or the file cannot be written.
bool saveImageFile(CxImageData& image, const QString& path);
