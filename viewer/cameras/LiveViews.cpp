#include "LiveViews.h"

#include "CameraSet.h"
#include "CxCameraParameters.h"
#include "CxImageData.h"
#include "ViewerCamera.h"
#include "views/ImageView.h"
#include "window/MainWindow.h"

#include <QtCore/QDebug>
#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <utility>

namespace {

QString titleOf(const ViewerCamera& camera)
{
    const SxCameraInfo& info = camera.parameters()->cameraInfo();
    return QStringLiteral("%1 (%2)").arg(info.deviceName, info.serialNumber);
}

/// Finds gaps in the frame numbers of a camera.
class LostFrames
{
public:
    /// Number of frames between the previous one and this one.
    int before(CxImageData& frame)
    {
        const SxPicBuf* buffer = frame.picBuf();
        const int number = buffer ? buffer->acqFrameNumber : 0;
        const int previous = std::exchange(m_previous, number);
        // A camera that was opened again counts from the beginning.
        return previous > 0 && number > previous ? number - previous - 1 : 0;
    }

private:
    int m_previous = 0;
};

} // namespace

LiveViews::LiveViews(MainWindow& window, CameraSet& cameras)
    : m_window(window)
    , m_cameras(cameras)
{
    auto* menu = new QMenu(MainWindow::tr("&Camera"), &window);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { listCameras(menu); });
    const QMenu* scripts = window.menu(MainWindow::ScriptMenu);
    window.menuBar()->insertMenu(scripts ? scripts->menuAction() : nullptr, menu);
}

bool LiveViews::start(void* handle)
{
    ViewerCamera* camera = m_cameras.camera(handle);
    if (!camera) {
        qWarning() << "Cannot start the camera: it is not open";
        return false;
    }
    ImageView* view = viewOf(*camera);
    if (!camera->start()) {
        qWarning().noquote() << QStringLiteral("The camera %1 did not start").arg(titleOf(*camera));
        return false;
    }
    m_window.views().activate(view->id());
    return true;
}

bool LiveViews::stop(void* handle)
{
    ViewerCamera* camera = m_cameras.camera(handle);
    if (!camera)
        return false;
    camera->stop();
    return true;
}

ImageView* LiveViews::viewOf(ViewerCamera& camera)
{
    if (const auto found = m_views.find(&camera); found != m_views.end())
        return found->second;
    ImageView* view = m_window.views().add(nullptr, titleOf(camera));
    m_views[&camera] = view;
    view->setFrameRate(camera.frameRate());
    view->setLive(camera.isLive());
    connect(&camera, &ViewerCamera::frameArrived, view,
            [view, lost = LostFrames()](std::shared_ptr<CxImageData> frame) mutable {
                view->noteLostFrames(lost.before(*frame));
                view->setImage(std::move(frame));
            });
    connect(&camera, &ViewerCamera::liveChanged, view, [view](bool live) { view->setLive(live); });
    connect(&camera, &ViewerCamera::frameRateChanged, view, [view](double rate) { view->setFrameRate(rate); });
    connect(view, &ImageView::closed, this, [this, view, camera = &camera] {
        // The view is deleted later and must get no more frames until then.
        camera->disconnect(view);
        m_views.erase(camera);
        camera->stop();
    });
    return view;
}

void LiveViews::listCameras(QMenu* menu)
{
    menu->clear();
    for (ViewerCamera* camera : m_cameras.cameras()) {
        if (!camera->handle())
            continue;
        QAction* action = menu->addAction(titleOf(*camera));
        action->setCheckable(true);
        action->setChecked(camera->isRunning());
        connect(action, &QAction::triggered, this, [this, handle = camera->handle()](bool on) {
            if (on)
                start(handle);
            else
                stop(handle);
        });
    }
    if (menu->isEmpty())
        menu->addAction(MainWindow::tr("No camera is open"))->setEnabled(false);
}
