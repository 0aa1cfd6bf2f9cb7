#include "ImageFileWriter.h"

#include "CxImageData.h"
#include "ImageFileDepth.h"
#include "ImageFileFormat.h"
#include "PlainImageFile.h"
#include "StorablePixels.h"
#include "buffers/PicBufMat.h"
#include "codecs/ImageCodecs.h"
#include "storage/FileReplacement.h"

#include <QtCore/QDebug>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <exception>
#include <vector>

namespace {

using Format = ImageFileFormat;

bool keepsAlpha(Format format)
{
    return format == Format::Png || format == Format::Tiff;
}

StorableTypes storableTypes(Format format, std::uint32_t channels)
{
    using Type = ExImageDataType;
    switch (format) {
    case Format::Bmp:
    case Format::Jpeg:
        return {{Type::UInt8}, true};
    case Format::Tiff: // the encoder accepts the other types only with one channel
        if (channels == 1)
            return {{Type::UInt8, Type::UInt16, Type::Int8, Type::Int16, Type::Int32, Type::Float, Type::Double}};
        return {{Type::UInt8, Type::UInt16, Type::Float}};
    default:
        return {{Type::UInt8, Type::UInt16}};
    }
}

std::string encoderName(Format format, int channels)
{
    switch (format) {
    case Format::Png:
        return ".png";
    case Format::Tiff:
        return ".tiff";
    case Format::Bmp:
        return ".bmp";
    case Format::Jpeg:
        return ".jpg";
    default:
        return channels == 1 ? ".pgm" : ".ppm";
    }
}

/// A record of a matrix's own pixels.
SxPicBuf pixelsOf(const cv::Mat& mat)
{
    SxPicBuf pixels;
    pixels.width = std::uint32_t(mat.cols);
    pixels.height = std::uint32_t(mat.rows);
    pixels.channels = std::uint32_t(mat.channels());
    pixels.dataType = dataTypeOfDepth(mat.depth());
    pixels.lineStride = std::uint32_t(mat.step);
    pixels.data = mat.data;
    return pixels;
}

/// True if the values have fewer than 16 bits, and bpc says so correctly.
bool hasDepthToRecord(const SxPicBuf& pixels)
{
    return pixels.dataType == ExImageDataType::UInt16 && pixels.bpc > 0 && pixels.bpc < 16 &&
           CxPicBufAPI::CheckPicValidData(pixels);
}

} // namespace

ImageFileWriter::ImageFileWriter(const QString& path, const QString& extension)
    : m_path(path)
    , m_extension(extension)
{
}

bool ImageFileWriter::saveImage(CxImageData* image, const QVariantMap* options)
{
    try {
        m_problem = save(image, options ? *options : QVariantMap());
    } catch (const cv::Exception& error) {
        m_problem = {FileProblem::NotEncoded, QString::fromStdString(error.err)};
    } catch (const std::bad_alloc&) {
        m_problem = FileProblem::OutOfMemory;
    } catch (const std::exception& error) {
        m_problem = {FileProblem::NotEncoded, QString::fromUtf8(error.what())};
    } catch (...) {
        m_problem = {FileProblem::NotEncoded, QStringLiteral("unknown error")};
    }
    if (m_problem)
        qCritical().noquote() << QStringLiteral("Cannot save image file %1: %2").arg(m_path, m_problem.text());
    return !m_problem;
}

FileProblem ImageFileWriter::save(CxImageData* image, const QVariantMap& options) const
{
    const SxPicBuf* buffer = image ? image->picBuf() : nullptr;
    if (!buffer || !buffer->data)
        return FileProblem::NoPixels;
    const Format format = formatOfExtension(m_extension);
    if (buffer->channels != 1 && !SxPicBufInfo::isColorChannelCount(buffer->channels))
        return {FileProblem::Channels, QString::number(buffer->channels)};
    OwnedPicBuf converted;
    const SxPicBuf storable = storablePixels(*buffer, storableTypes(format, buffer->channels), converted);
    if (!storable.data)
        return FileProblem::LostDepth;

    cv::Mat pixels = readMat(storable, matDepth(storable.dataType));
    if (pixels.channels() == 4 && !keepsAlpha(format)) {
        cv::Mat opaque;
        cv::cvtColor(pixels, opaque, cv::COLOR_BGRA2BGR);
        pixels = opaque;
    }
    const bool recordsDepth = hasDepthToRecord(storable);
    const unsigned bits = recordsDepth ? storable.bpc : SxPicBufInfo::bytesPerValue(storable.dataType) * 8;
    if (isPlainImageFile(format, pixelsOf(pixels)))
        return writePlainImageFile(m_path, format, pixelsOf(pixels), (1U << bits) - 1);

    QString missing;
    const ImageCodecs* codecs = ImageCodecs::load(missing);
    if (!codecs)
        return {FileProblem::MissingCodecs, missing};
    std::vector<uchar> encoded;
    const int quality = std::clamp(options.value(QStringLiteral("quality"), 95).toInt(), 0, 100);
    if (!codecs->encode(encoderName(format, pixels.channels()), pixels, quality, encoded))
        return {FileProblem::NotEncoded, QStringLiteral("unknown error")};
    const auto bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(encoded.data()), qsizetype(encoded.size()));
    return replaceFile(m_path, recordsDepth ? withRecordedDepth(bytes, storable.bpc) : bytes);
}
