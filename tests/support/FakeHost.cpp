#include "FakeHost.h"

#include "CxPicBufAPI.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

void FakeDelegate::note(const char* operation, const QString& arguments)
{
    calls.append(QStringLiteral("%1(%2)").arg(QString::fromLatin1(operation), arguments));
    if (onCall)
        onCall();
}

int FakeDelegate::addView(std::unique_ptr<CxImageData> image, const QString& title)
{
    static int lastId = 0;
    const int id = ++lastId;
    auto view = std::make_unique<FakeView>(std::move(image), title);
    view->closed = [this, id] {
        note("closeMdiView", QString::number(id));
        views.erase(id);
        if (active == id)
            active = views.empty() ? -1 : views.rbegin()->first;
    };
    views[id] = std::move(view);
    active = id;
    return id;
}

int FakeDelegate::activeViewId()
{
    lookups.append(QStringLiteral("activeViewId()"));
    return active;
}

CxMdiView* FakeDelegate::view(int id)
{
    lookups.append(QStringLiteral("view(%1)").arg(id));
    const auto found = views.find(id);
    return found == views.end() ? nullptr : found->second.get();
}

bool FakeDelegate::duplicateView(int id)
{
    note("duplicateView", QString::number(id));
    CxImageData* shown = viewImage(id < 0 ? active : id);
    if (!accepts || !shown)
        return false;
    addView(std::unique_ptr<CxImageData>(qobject_cast<CxImageData*>(shown->clone(nullptr, nullptr))));
    return true;
}

bool FakeDelegate::setCameraAcquisition(bool start, void* camera)
{
    note("setCameraAcquisition", QStringLiteral("%1, %2").arg(start ? 1 : 0).arg(quintptr(camera)));
    return accepts;
}

void FakeDelegate::restartCameraWithDefaults(void* camera)
{
    note("restartCameraWithDefaults", QString::number(quintptr(camera)));
}

SxPicBuf* FakeDelegate::askUserCaptureImage(QWidget* /*parent*/, void* camera, QString* title, QString* message,
                                            bool optionGiven, int* option, int flags)
{
    note("askUserCaptureImage", QStringLiteral("%1, %2, %3, %4, %5, %6")
                                    .arg(quintptr(camera))
                                    .arg(*title, *message)
                                    .arg(optionGiven ? 1 : 0)
                                    .arg(*option)
                                    .arg(flags));
    if (!accepts)
        return nullptr;
    auto* buffer = new SxPicBuf;
    CxPicBufAPI::AllocPicBufFromHeap(*buffer, 4, 3, 1, ExImageDataType::UInt8, 0, 0, 8,
                                     ExDataStorageFormat::Interleaved, ExColorFilterArray::None, false, true, 0);
    return buffer;
}

bool FakeDelegate::openFile(const QString& path, bool activate)
{
    note("openFile", QStringLiteral("%1, %2").arg(path).arg(activate ? 1 : 0));
    if (accepts)
        addView(makeTestImage(4, 3), path);
    return accepts;
}

bool FakeDelegate::newViewWithImage(CxImageData* image, const QString& title)
{
    note("newViewWithImage", title);
    if (accepts)
        addView(std::unique_ptr<CxImageData>(image), title);
    return accepts;
}

void FakeDelegate::setViewImage(int id, CxImageData* image)
{
    note("setViewImage", QString::number(id));
    std::unique_ptr<CxImageData> taken(image);
    const auto found = views.find(id);
    if (found != views.end())
        found->second->image = std::move(taken);
}

CxImageData* FakeDelegate::viewImage(int id)
{
    lookups.append(QStringLiteral("viewImage(%1)").arg(id));
    const auto found = views.find(id);
    return found == views.end() ? nullptr : found->second->image.get();
}

QString FakeEnvironment::resolveFilePath(const QString& path)
{
    resolved.append(path);
    return QDir(directory).absoluteFilePath(path);
}

bool FakeEnvironment::isMainThread()
{
    ++threadQuestions;
    return !otherThread && QThread::currentThread() == QCoreApplication::instance()->thread();
}

void FakeEnvironment::addMenuItem(QMenu* menu, const QString& name, const QString& script, const QString& extra)
{
    itemMenus.append(menu);
    calls.append(QStringLiteral("addMenuItem(%1, %2, %3)").arg(name, script, extra));
}

bool FakeEnvironment::waitForNextFrame(CxMdiView* view, double timeout)
{
    waitedFor = view;
    calls.append(QStringLiteral("waitForNextFrame(%1)").arg(timeout));
    return frameComes;
}

void FakeEnvironment::wait(double time)
{
    calls.append(QStringLiteral("wait(%1)").arg(time));
    if (onWait)
        onWait(time);
}

const char* FakeEnvironment::functionHelp(const char* moduleName, const char* functionName)
{
    const auto found = help.find(QByteArray(moduleName) + '.' + functionName);
    return found == help.end() ? nullptr : found->second.constData();
}

const char* FakeEnvironment::methodHelp(const char* objectName, const char* methodName)
{
    return functionHelp(objectName, methodName);
}

std::unique_ptr<CxImageData> makeTestImage(unsigned width, unsigned height, unsigned channels, ExImageDataType type,
                                           unsigned bpc, unsigned lineStride)
{
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, width, height, channels, type, lineStride, 0, bpc,
                                     ExDataStorageFormat::Interleaved, ExColorFilterArray::None, channels >= 3, true,
                                     0);
    const unsigned valueBytes = SxPicBufInfo::bytesPerValue(type);
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned i = 0; i < width * channels; ++i) {
            const unsigned value = y * width * channels + i;
            buffer.row(y)[i * valueBytes] = std::uint8_t(value);
            if (valueBytes > 1)
                buffer.row(y)[i * valueBytes + 1] = std::uint8_t(value >> 8);
        }
    }
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(buffer);
    return image;
}
