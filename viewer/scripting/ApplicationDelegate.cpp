#include "ApplicationDelegate.h"

#include "CxImageData.h"
#include "OwnedPicBuf.h"
#include "ViewerCamera.h"
#include "views/ImageView.h"
#include "window/CaptureDialog.h"
#include "window/MainWindow.h"

#include <QtCore/QThread>
#include <QtCore/QThreadStorage>

namespace {

/// A new record with a copy of the image's pixels, or null.
std::unique_ptr<SxPicBuf> copyOf(CxImageData& image)
{
    auto record = std::make_unique<SxPicBuf>();
    const SxPicBuf* buffer = image.picBuf();
    OwnedPicBuf copy;
    if (!buffer || !CxPicBufAPI::AllocPicBufFromHeap(copy.buffer, *buffer, true, 0))
        return nullptr;
    CxPicBufAPI::CopyPicBuf(copy.buffer, *buffer, true);
    *record = copy.release();
    return record;
}

/// Deletes a shared image only after the view has taken it over. Until then the caller owns it.
struct DeleteOnceTaken {
    void operator()(CxImageData* image) const
    {
        if (taken)
            delete image;
    }
    bool taken = false;
};

} // namespace

ApplicationDelegate::ApplicationDelegate(MainWindow& window)
    : m_window(window)
    , m_liveViews(window, m_cameras)
{
    IxAppDelegate::setInstance(this);
}

ApplicationDelegate::~ApplicationDelegate()
{
    IxAppDelegate::setInstance(nullptr);
}

QWidget* ApplicationDelegate::mainWindow()
{
    return &m_window;
}

QMenu* ApplicationDelegate::menu(int kind)
{
    return m_window.menu(kind);
}

void ApplicationDelegate::showNotification(const QString& text)
{
    m_window.showNotification(text);
}

int ApplicationDelegate::activeViewId()
{
    return m_window.views().store().activeId();
}

void ApplicationDelegate::activateView(int id)
{
    m_window.views().activate(id);
}

void ApplicationDelegate::tileViews()
{
    m_window.views().tile();
}

void ApplicationDelegate::setFullScreen(bool on)
{
    m_window.setFullScreen(on);
}

CxMdiView* ApplicationDelegate::view(int id)
{
    return m_window.views().view(id);
}

bool ApplicationDelegate::duplicateView(int id)
{
    return m_window.views().duplicate(id);
}

bool ApplicationDelegate::setCameraAcquisition(bool start, void* camera)
{
    bool done = false;
    m_gui.run([&] { done = start ? m_liveViews.start(camera) : m_liveViews.stop(camera); });
    return done;
}

void ApplicationDelegate::restartCameraWithDefaults(void* camera)
{
    m_gui.run([&] { m_cameras.restart(camera); });
}

SxPicBuf* ApplicationDelegate::askUserCaptureImage(QWidget* parent, void* camera, QString* title, QString* message,
                                                   bool optionGiven, int* option, int /*flags*/)
{
    std::shared_ptr<CxImageData> captured;
    m_gui.run([&] {
        ViewerCamera* opened = m_cameras.camera(camera);
        if (!opened) {
            qWarning() << "Cannot capture: the camera is not open";
            return;
        }
        CaptureDialog dialog(*opened, *title, *message, optionGiven ? *option : -1, parent ? parent : &m_window);
        const bool accepted = dialog.exec() == QDialog::Accepted;
        if (optionGiven)
            *option = dialog.delay();
        if (accepted)
            captured = dialog.captured();
    });
    return captured ? copyOf(*captured).release() : nullptr;
}

bool ApplicationDelegate::openFile(const QString& path, bool activate)
{
    return m_window.views().openFile(path, activate);
}

bool ApplicationDelegate::newViewWithImage(CxImageData* image, const QString& title)
{
    if (!image)
        return false;
    // This may be the script's thread.
    image->moveToThread(m_window.thread());
    return m_gui.run([&] {
        const std::shared_ptr<CxImageData> shown(image, DeleteOnceTaken());
        m_window.views().add(shown, title);
        std::get_deleter<DeleteOnceTaken>(shown)->taken = true;
    });
}

void ApplicationDelegate::setViewImage(int id, CxImageData* image)
{
    std::shared_ptr<CxImageData> owned(image);
    if (ImageView* view = m_window.views().view(id))
        view->setImage(std::move(owned));
}

CxImageData* ApplicationDelegate::viewImage(int id)
{
    std::shared_ptr<CxImageData> image = m_window.views().store().image(id);
    // Keeps the image alive while the script copies it: the view may get another image or be closed at any time, by the
    // GUI thread or in events that are processed while a script works there.
    if (m_window.thread() == QThread::currentThread()) {
        m_lent = std::move(image);
        return m_lent.get();
    }
    // Not thread_local: the image must be gone when QThread::wait returns.
    static QThreadStorage<std::shared_ptr<CxImageData>> lent;
    lent.setLocalData(std::move(image));
    return lent.localData().get();
}

void ApplicationDelegate::playSound(const QString& path)
{
    m_sounds.play(path);
}
