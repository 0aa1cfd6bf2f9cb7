#pragma once

#include "CxImageFileLoader.h"
#include "storage/FileProblem.h"

#include <QtCore/QString>

#include <memory>

class CxImageData;

/// Reads one still image: PNG, TIFF (first page), JPEG, BMP, PGM or PPM. The content decides the format, not the
/// extension.
///
/// Pixels have the type that the file stores, with colours blue first. bpc is what the file records (see
/// ImageFileDepth.h), otherwise the width of the type.
class ImageFileReader final : public CxImageFileLoader, public FileProblemSource
{
public:
    explicit ImageFileReader(const QString& path);
    ~ImageFileReader() override;

    /// Returns false and logs one line if the file is missing, empty, truncated, damaged or too large. An image of
    /// which some pixels may be lost is available, with a line in the log. Never throws.
    bool readFile() override;

    QObject* frameAt(int index) override;

private:
    FileProblem read();

    QString m_path;
    std::unique_ptr<CxImageData> m_image;
};
