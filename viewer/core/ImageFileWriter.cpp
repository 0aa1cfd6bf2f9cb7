#include "ImageFileWriter.h"

#include "CxImageData.h"
#include "PicBufMat.h"

#include <QtCore/QDebug>
#include <QtCore/QSaveFile>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <vector>

namespace {

enum class Format { Png, Tiff, Anymap, Bmp, Jpeg };

Format formatOf(const QString& extension)
{
    if (extension == QLatin1String("png"))
        return Format::Png;
    if (extension == QLatin1String("tif") || extension == QLatin1String("tiff"))
        return Format::Tiff;
    if (extension == QLatin1String("bmp"))
        return Format::Bmp;
    if (extension == QLatin1String("jpg") || extension == QLatin1String("jpeg"))
        return Format::Jpeg;
    return Format::Anymap;
}

bool keepsAlpha(Format format)
{
    return format == Format::Png || format == Format::Tiff;
}

bool stores(Format format, int channels, int depth)
{
    switch (format) {
    case Format::Bmp:
    case Format::Jpeg:
        return depth == CV_8U;
    case Format::Tiff: // the encoder takes the others with one channel only
        return depth == CV_8U || depth == CV_16U || depth == CV_32F || channels == 1;
    default:
        return depth == CV_8U || depth == CV_16U;
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

std::vector<int> encoderParameters(Format format, const QVariantMap& options)
{
    if (format == Format::Jpeg) {
        const int quality = options.value(QStringLiteral("quality"), 95).toInt();
        return {cv::IMWRITE_JPEG_QUALITY, std::clamp(quality, 0, 100)};
    }
    constexpr int lzw = 5; // said outright: by default colour floats would go through a lossy one
    if (format == Format::Tiff)
        return {cv::IMWRITE_TIFF_COMPRESSION, lzw};
    return {};
}

QString writeFile(const QString& path, const std::vector<uchar>& bytes)
{
    QSaveFile file(path);
    const auto size = qint64(bytes.size());
    if (!file.open(QIODevice::WriteOnly) || file.write(reinterpret_cast<const char*>(bytes.data()), size) != size ||
        !file.commit())
        return QStringLiteral("cannot be written (%1)").arg(file.errorString());
    return QString();
}

} // namespace

ImageFileWriter::ImageFileWriter(const QString& path, const QString& extension)
    : m_path(path)
    , m_extension(extension)
{
}

bool ImageFileWriter::saveImage(CxImageData* image, const QVariantMap* options)
{
    QString problem;
    try {
        problem = save(image, options ? *options : QVariantMap());
    } catch (const cv::Exception& error) {
        problem = QStringLiteral("cannot be encoded (%1)").arg(QString::fromStdString(error.err));
    } catch (const std::bad_alloc&) {
        problem = QStringLiteral("is too large for the memory");
    }
    if (!problem.isEmpty())
        qCritical().noquote() << QStringLiteral("Cannot save image file %1: it %2").arg(m_path, problem);
    return problem.isEmpty();
}

QString ImageFileWriter::save(CxImageData* image, const QVariantMap& options) const
{
    const SxPicBuf* buffer = image ? image->picBuf() : nullptr;
    if (!buffer || !buffer->data)
        return QStringLiteral("has no pixels");
    const Format format = formatOf(m_extension);
    const int depth = matDepth(buffer->dataType);
    if (buffer->channels != 1 && buffer->channels != 3 && buffer->channels != 4)
        return QStringLiteral("has %1 channels, which no file format holds").arg(buffer->channels);
    if (depth < 0 || !stores(format, int(buffer->channels), depth))
        return QStringLiteral("has values of a type that the format does not hold");

    cv::Mat pixels = readMat(*buffer, depth);
    if (buffer->channels == 4 && !keepsAlpha(format)) {
        cv::Mat opaque;
        cv::cvtColor(pixels, opaque, cv::COLOR_BGRA2BGR);
        pixels = opaque;
    }
    std::vector<uchar> bytes;
    if (!cv::imencode(encoderName(format, pixels.channels()), pixels, bytes, encoderParameters(format, options)))
        return QStringLiteral("cannot be encoded");
    return writeFile(m_path, bytes);
}
