#pragma once

#include "CxImageFileSaver.h"
#include "storage/FileProblem.h"

#include <QtCore/QString>

/// Writes one still image. The file's extension decides the format.
///
/// | format    | channels                 | values                                                               |
/// |-----------|--------------------------|----------------------------------------------------------------------|
/// | PNG       | 1, 3, 4                  | unsigned 8 and 16 bits                                               |
/// | TIFF      | 1, 3, 4                  | the same and 32-bit float; with one channel also signed 8, 16 and 32 |
/// |           |                          | bits and 64-bit float                                                |
/// | PGM, PPM  | 1 (PGM), 3 (PPM), whatever the extension; alpha is dropped | unsigned 8 and 16 bits             |
/// | BMP, JPEG | 1, 3; alpha is dropped   | unsigned 8 bits                                                      |
///
/// Values of other types are stored in one of these types if it can hold all of them unchanged; otherwise saving fails.
/// There are two exceptions, for pictures to look at: in BMP and JPEG the full scale of deeper unsigned values becomes
/// 255, and packed colours become 8-bit colours. JPEG compression loses detail. The file records how many bits of
/// 16-bit values are in use (see ImageFileDepth.h).
class ImageFileWriter final : public CxImageFileSaver, public FileProblemSource
{
public:
    /// extension  in lower case, without the dot.
    ImageFileWriter(const QString& path, const QString& extension);

    /// Encodes the image in memory and replaces the file as a whole. On failure returns false, logs one line and leaves
    /// an existing file unchanged. The option "quality" is for JPEG: 0 to 100, default 95. Never throws.
    bool saveImage(CxImageData* image, const QVariantMap* options) override;

private:
    FileProblem save(CxImageData* image, const QVariantMap& options) const;

    QString m_path;
    QString m_extension;
};
