#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// The formats of image files that the library reads and writes.
enum class ImageFileFormat { Unknown, Png, Tiff, Jpeg, Bmp, Anymap };

/// The format that the first bytes of a file tell.
ImageFileFormat formatOfContent(const QByteArray& file);

/// The format for a file extension in lower case, without the dot.
ImageFileFormat formatOfExtension(const QString& extension);

/// All extensions of the formats, in lower case, without the dot.
QStringList imageFileExtensions();
