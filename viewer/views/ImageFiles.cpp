#include "ImageFiles.h"

#include "CxImageData.h"
#include "CxImageFormatManager.h"
#include "TakeAs.h"
#include "storage/FileProblem.h"

#include <QtCore/QDebug>

namespace {

QString unknownType()
{
    const QStringList known = CxImageFormatManager::instance()->extensions();
    return FileProblem(FileProblem::UnknownType, known.join(QStringLiteral(", "))).text();
}

/// The reason that a loader or saver keeps.
template<typename LoaderOrSaver>
QString problemOf(const LoaderOrSaver& failed)
{
    const auto* source = dynamic_cast<const FileProblemSource*>(&failed);
    return source ? source->problem().text() : QStringLiteral("the log says why");
}

} // namespace

std::shared_ptr<CxImageData> loadImageFile(const QString& path, QString& problem)
{
    const std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(path));
    if (!loader) {
        problem = unknownType();
        qCritical().noquote() << QStringLiteral("Cannot read image file %1: %2").arg(path, problem);
        return nullptr;
    }
    if (!loader->readFile()) {
        problem = problemOf(*loader);
        return nullptr;
    }
    auto* frame = qobject_cast<CxImageData*>(loader->frameAt(0));
    std::shared_ptr<CxImageData> image = takeAs<CxImageData>(frame ? frame->clone(nullptr, nullptr) : nullptr);
    if (!image) {
        problem = FileProblem(FileProblem::OutOfMemory).text();
        qCritical().noquote() << QStringLiteral("Cannot show image file %1: %2").arg(path, problem);
    }
    return image;
}

bool saveImageFile(CxImageData& image, const QString& path, QString& problem)
{
    const std::unique_ptr<CxImageFileSaver> saver(CxImageFormatManager::instance()->saverForFile(path));
    if (!saver) {
        problem = unknownType();
        qCritical().noquote() << QStringLiteral("Cannot save image file %1: %2").arg(path, problem);
        return false;
    }
    if (saver->saveImage(&image, nullptr))
        return true;
    problem = problemOf(*saver);
    return false;
}
