#pragma once

#include <QtCore/QString>

#include <memory>

class CxImageData;

/// Reads the first image of a file. If the extension is unknown or the file cannot be read, returns null, logs why and
/// gives the reason as a clause: "it is truncated".
std::shared_ptr<CxImageData> loadImageFile(const QString& path, QString& problem);

/// Writes an image file. If the extension is unknown or the file cannot be written, returns false, logs why and gives
/// the reason as a clause.
bool saveImageFile(CxImageData& image, const QString& path, QString& problem);
