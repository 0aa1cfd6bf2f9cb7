#include "ViewerCamera.h"

#include "CameraParamNames.h"
#include "CxCameraManager.h"
#include "CxCameraParameters.h"
#include "CxImageData.h"

#include <QtCore/QLoggingCategory>

ViewerCamera::ViewerCamera(std::unique_ptr<CameraBackend> backend)
    : m_backend(std::move(backend))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &ViewerCamera::takeFrame);
}

ViewerCamera::~ViewerCamera()
{
    close();
}

bool ViewerCamera::open(int position)
{
    if (m_handle)
        return true;
    if (!m_backend->open()) {
        qWarning("A camera cannot be opened");
        return false;
    }
    // Scripts on other threads write parameters too. The slot runs on this thread.
    connect(parameters(), &CxCameraParameters::paramChanged, this, &ViewerCamera::noteParam);
    m_handle = CxCameraManager::instance()->newHandle();
    CxCameraManager::instance()->addCamera(m_handle, m_backend->parameters(), position);
    return true;
}

void ViewerCamera::close()
{
    if (!m_handle)
        return;
    stop();
    CxCameraManager::instance()->removeCamera(std::exchange(m_handle, nullptr));
    // A script on another thread may still use the store. It must not reach this object or the back end any more.
    parameters()->disconnect(this);
    parameters()->releaseDevice();
    m_backend->close();
}

bool ViewerCamera::start()
{
    const bool running = m_handle && m_backend->start();
    schedule();
    return running;
}

void ViewerCamera::stop()
{
    m_backend->stop();
    schedule();
}

double ViewerCamera::frameRate() const
{
    const CxCameraParam* rate = parameters() ? parameters()->findParam(CameraParamNames::frameRate, false) : nullptr;
    return rate ? double(rate->paramValue().toFloat()) : 0.0;
}

void ViewerCamera::schedule()
{
    const auto wait = m_backend->timeToNextFrame();
    if (wait)
        m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(*wait));
    else
        m_timer.stop();
    if (wait.has_value() != m_isLive) {
        m_isLive = wait.has_value();
        Q_EMIT liveChanged(m_isLive);
    }
}

void ViewerCamera::takeFrame()
{
    std::shared_ptr<CxImageData> frame = m_backend->nextFrame();
    // Before the signal, because a receiver may stop or close the camera.
    schedule();
    if (frame)
        Q_EMIT frameArrived(std::move(frame));
}

void ViewerCamera::noteParam(const QString& name)
{
    if (name == CameraParamNames::triggerMode || name == CameraParamNames::frameRate)
        schedule();
    if (name == CameraParamNames::frameRate)
        Q_EMIT frameRateChanged(frameRate());
}
