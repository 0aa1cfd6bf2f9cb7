#pragma once

#include "CxImageFileLoader.h"

#include <QtCore/QString>

#include <memory>

class CxImageData;

/// Reads one still image: PNG, TIFF (its first page), JPEG, BMP, PGM, PPM. The content decides, not the extension.
///
/// Pixels come as the file stores them, colours blue first. bpc is what the file says (see ImageFileDepth.h), else the
/// width of the type.
class ImageFileReader final : public CxImageFileLoader
{
public:
    explicit ImageFileReader(const QString& path);
    ~ImageFileReader() override;

    /// False with one log line for a file that is missing, empty, truncated, damaged or too large. Never throws.
    bool readFile() override;

    QObject* frameAt(int index) override;

private:
    /// Reads the file or returns what is wrong.
    QString read();

    QString m_path;
    std::unique_ptr<CxImageData> m_image;
};
