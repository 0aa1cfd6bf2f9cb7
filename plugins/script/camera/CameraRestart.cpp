#include "CameraRestart.h"

#include "CxCameraManager.h"
#include "CxCameraParameters.h"
#include "IxAppDelegate.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace {

constexpr int waitMilliseconds = 500;
constexpr int mostPolls = 60;

void waitInEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, SLOT(quit())); // connects by name, as "1quit()"
    loop.exec();
}

/// The first opened camera with this serial number, or null.
void* findCamera(const QString& serialNumber)
{
    const CxCameraManager& manager = *CxCameraManager::instance();
    const QList<void*> cameras = manager.openedCameras();
    for (void* camera : cameras) {
        const CxCameraParameters* parameters = manager.cameraParameters(camera);
        if (parameters && parameters->cameraInfo().serialNumber == serialNumber)
            return camera;
    }
    return nullptr;
}

} // namespace

void (*fx_script_waitForHost)(int milliseconds) = waitInEventLoop;

void* fx_script_restartCamera(void* camera)
{
    const CxCameraParameters* parameters = CxCameraManager::instance()->cameraParameters(camera);
    IxAppDelegate* delegate = IxAppDelegate::instance();
    if (!parameters || !delegate)
        return nullptr;
    const QString serialNumber = parameters->cameraInfo().serialNumber; // a copy: the restart may delete the store
    delegate->restartCameraWithDefaults(camera);

    fx_script_waitForHost(waitMilliseconds);
    for (int poll = 0; poll < mostPolls; ++poll) {
        fx_script_waitForHost(waitMilliseconds);
        if (void* restarted = findCamera(serialNumber))
            return restarted;
    }
    return nullptr;
}
