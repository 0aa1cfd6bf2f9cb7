#include "ApplicationDelegate.h"

#include "CxImageData.h"
#include "ImageView.h"
#include "MainWindow.h"

#include <QtCore/QThread>

ApplicationDelegate::ApplicationDelegate(MainWindow& window)
    : m_window(window)
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
    return m_window.viewStore().activeId();
}

void ApplicationDelegate::activateView(int id)
{
    m_window.activateView(id);
}

void ApplicationDelegate::tileViews()
{
    m_window.tileViews();
}

void ApplicationDelegate::setFullScreen(bool on)
{
    m_window.setFullScreen(on);
}

CxMdiView* ApplicationDelegate::view(int id)
{
    return m_window.view(id);
}

bool ApplicationDelegate::duplicateView(int id)
{
    return m_window.duplicateView(id);
}

bool ApplicationDelegate::setCameraAcquisition(bool /*start*/, void* /*camera*/)
{
    return false; // no camera is open
}

void ApplicationDelegate::restartCameraWithDefaults(void* /*camera*/)
{
    // No camera is open.
}

SxPicBuf* ApplicationDelegate::askUserCaptureImage(QWidget* /*parent*/, void* /*camera*/, QString* /*title*/,
                                                   QString* /*message*/, bool /*optionGiven*/, int* /*option*/,
                                                   int /*flags*/)
{
    return nullptr; // no camera is open
}

bool ApplicationDelegate::openFile(const QString& path, bool activate)
{
    return m_window.openFile(path, activate);
}

bool ApplicationDelegate::newViewWithImage(CxImageData* image, const QString& title)
{
    if (!image)
        return false;
    m_window.addView(std::shared_ptr<CxImageData>(image), title);
    return true;
}

void ApplicationDelegate::setViewImage(int id, CxImageData* image)
{
    std::shared_ptr<CxImageData> owned(image);
    if (ImageView* view = m_window.view(id))
        view->setImage(std::move(owned));
}

CxImageData* ApplicationDelegate::viewImage(int id)
{
    std::shared_ptr<CxImageData> image = m_window.viewStore().image(id);
    if (m_window.thread() == QThread::currentThread())
        return image.get();
    // The GUI thread may replace the image or close the view at any moment, while the script still copies it.
    thread_local std::shared_ptr<CxImageData> lent;
    lent = std::move(image);
    return lent.get();
}

void ApplicationDelegate::playSound(const QString& path)
{
    m_sounds.play(path);
}
