#pragma once

#include "CxImageFileSaver.h"

#include <QtCore/QString>

/// Writes one still image in the format that the file's extension names.
///
/// | format    | channels                 | values                                                               |
/// |-----------|--------------------------|----------------------------------------------------------------------|
/// | PNG       | 1, 3, 4                  | unsigned 8 and 16 bits                                               |
/// | TIFF      | 1, 3, 4                  | the same and 32-bit float; with one channel also signed 8, 16 and 32 |
/// |           |                          | bits and 64-bit float                                                |
/// | PGM, PPM  | 1, 3 (by the image, not by the extension); alpha is dropped | unsigned 8 and 16 bits            |
/// | BMP, JPEG | 1, 3; alpha is dropped   | unsigned 8 bits                                                      |
///
/// Values of other types are stored in one of these that holds every single one unchanged, and refused where there is
/// none: a save never changes a value. Two exceptions are for pictures that are looked at: BMP and JPEG take deeper
/// unsigned values with their full scale as 255, and packed colours become 8-bit colours. The bits in use of 16-bit
/// values are noted in the file (see ImageFileDepth.h).
class ImageFileWriter final : public CxImageFileSaver
{
public:
    /// extension  in lower case, without the point.
    ImageFileWriter(const QString& path, const QString& extension);

    /// Encodes in memory, writes to a temporary file beside the target and renames that, so that a failure leaves an
    /// older file as it was. False with one log line on any failure. Takes the option "quality" (JPEG, 0 to 100,
    /// default 95). Never throws.
    bool saveImage(CxImageData* image, const QVariantMap* options) override;

private:
    /// Saves or returns what is wrong.
    QString save(CxImageData* image, const QVariantMap& options) const;

    QString m_path;
    QString m_extension;
};
