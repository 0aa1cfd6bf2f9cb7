#include "ImageFileReader.h"

#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "ImageFileCheck.h"
#include "ImageFileDepth.h"
#include "OwnedPicBuf.h"
#include "buffers/PicBufMat.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <opencv2/imgcodecs.hpp>

#include <limits>
#include <new>

namespace {

cv::Mat decode(const QByteArray& file)
{
    const cv::Mat bytes(1, int(file.size()), CV_8UC1, const_cast<char*>(file.constData()));
    return cv::imdecode(bytes, cv::IMREAD_UNCHANGED);
}

} // namespace

ImageFileReader::ImageFileReader(const QString& path)
    : m_path(path)
{
}

ImageFileReader::~ImageFileReader() = default;

bool ImageFileReader::readFile()
{
    m_image.reset();
    QString problem;
    try {
        problem = read();
    } catch (const std::bad_alloc&) {
        problem = QStringLiteral("is too large for the available memory");
    } catch (...) { // OpenCV's own exceptions, and those of the libraries that it decodes with
        problem = QStringLiteral("is damaged");
    }
    if (!problem.isEmpty())
        qCritical().noquote() << QStringLiteral("Cannot read image file %1: it %2").arg(m_path, problem);
    return m_image != nullptr;
}

QObject* ImageFileReader::frameAt(int index)
{
    return index == 0 ? m_image.get() : nullptr;
}

QString ImageFileReader::read()
{
    QFile file(m_path);
    if (!file.exists())
        return QStringLiteral("does not exist");
    if (!QFileInfo(m_path).isFile()) // a pipe or a device may never end
        return QStringLiteral("is not a regular file");
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot be opened (%1)").arg(file.errorString());
    if (file.size() > std::numeric_limits<int>::max())
        return QStringLiteral("is larger than 2 GB");
    const QByteArray bytes = file.readAll();
    const QString problem = imageFileProblem(bytes);
    if (!problem.isEmpty())
        return problem;
    const cv::Mat pixels = decode(bytes);
    if (pixels.empty())
        return QStringLiteral("is damaged");
    if (dataTypeOfDepth(pixels.depth()) == ExImageDataType::None)
        return QStringLiteral("has pixel values of an unsupported type");
    OwnedPicBuf owned(picBufFromMat(pixels));
    SxPicBuf& buffer = owned.buffer;
    if (!buffer.data)
        return QStringLiteral("is too large for the available memory");
    const unsigned recorded = recordedDepth(bytes);
    if (buffer.dataType == ExImageDataType::UInt16 && recorded > 0 && recorded < buffer.bpc) {
        buffer.bpc = recorded;
        if (!CxPicBufAPI::CheckPicValidData(buffer)) // the file records too few bits
            buffer.bpc = 16;
    }
    m_image = std::make_unique<CxImageData>();
    m_image->setPicBuf(owned.release());
    return QString();
}
