#include "ImageFileReader.h"

#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "ImageFileCheck.h"
#include "ImageFileDepth.h"
#include "ImageFileFormat.h"
#include "OwnedPicBuf.h"
#include "PlainImageFile.h"
#include "buffers/PicBufMat.h"
#include "codecs/ImageCodecs.h"
#include "codecs/QuietLibraries.h"
#include "storage/FileReading.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>

#include <limits>
#include <new>
#include <optional>

namespace {

/// What is read of a file before its kind is known. Longer than the headers of files without compression.
constexpr qint64 headBytes = 4096;

/// Decodes the pixels of a file. messages are what the libraries complain of.
FileProblem decode(const QByteArray& file, OwnedPicBuf& owned, QByteArray& messages)
{
    QString missing;
    const ImageCodecs* codecs = ImageCodecs::load(missing);
    if (!codecs)
        return {FileProblem::MissingCodecs, missing};
    const cv::Mat bytes(1, int(file.size()), CV_8UC1, const_cast<char*>(file.constData()));
    cv::Mat pixels;
    messages = withoutMessages([&] { pixels = codecs->decode(bytes); });
    if (pixels.empty())
        return FileProblem::Damaged;
    if (dataTypeOfDepth(pixels.depth()) == ExImageDataType::None)
        return FileProblem::UnknownPixels;
    owned = OwnedPicBuf(picBufFromMat(pixels));
    return owned.buffer.data ? FileProblem() : FileProblem::OutOfMemory;
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
    try {
        m_problem = read();
    } catch (const std::bad_alloc&) {
        m_problem = FileProblem::OutOfMemory;
    } catch (...) { // OpenCV's own exceptions, and those of the libraries that it decodes with
        m_problem = FileProblem::Damaged;
    }
    if (m_problem)
        qCritical().noquote() << QStringLiteral("Cannot read image file %1: %2").arg(m_path, m_problem.text());
    return m_image != nullptr;
}

QObject* ImageFileReader::frameAt(int index)
{
    return index == 0 ? m_image.get() : nullptr;
}

FileProblem ImageFileReader::read()
{
    QFile file;
    if (FileProblem problem = openRegularFile(m_path, std::numeric_limits<int>::max(), file))
        return problem;
    const qint64 size = file.size();
    QByteArray bytes = file.read(headBytes);
    const std::optional<PlainImageLayout> plain = plainImageLayout(bytes);
    FileProblem problem = plain ? FileProblem() : readOn(file, bytes);
    if (!problem)
        problem = imageFileProblem(bytes, plain ? size : bytes.size());
    OwnedPicBuf owned;
    QByteArray messages;
    if (!problem)
        problem = plain ? readPlainImageFile(file, *plain, owned) : decode(bytes, owned, messages);
    if (problem)
        return problem;
    SxPicBuf& buffer = owned.buffer;
    const unsigned recorded = recordedDepth(bytes);
    if (buffer.dataType == ExImageDataType::UInt16 && recorded > 0 && recorded < buffer.bpc) {
        buffer.bpc = recorded;
        if (!CxPicBufAPI::CheckPicValidData(buffer)) // the file records too few bits
            buffer.bpc = 16;
    }
    m_image = std::make_unique<CxImageData>();
    m_image->setPicBuf(owned.release());
    // The decoder fills lost parts with grey. Messages about other formats concern what is beside the pixels.
    if (!messages.isEmpty() && formatOfContent(bytes) == ImageFileFormat::Jpeg)
        qWarning().noquote() << QStringLiteral("Image file %1 is damaged: some of its pixels may be wrong").arg(m_path);
    return {};
}
