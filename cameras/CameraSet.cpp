#include "CameraSet.h"

#include "ViewerCamera.h"
#include "simulated/SimulatedCamera.h"

#include <QtCore/QTimer>

#include <algorithm>

CameraSet::CameraSet(std::chrono::milliseconds restartTime)
    : m_restartTime(restartTime)
{
}

CameraSet::~CameraSet() = default;

void CameraSet::openSimulated(int count)
{
    for (int number = 0; number < std::min(count, simulatedSensorCount); ++number)
        open(std::make_unique<SimulatedCamera>(simulatedSensor(number)));
}

ViewerCamera* CameraSet::open(std::unique_ptr<CameraBackend> backend)
{
    auto camera = std::make_unique<ViewerCamera>(std::move(backend));
    if (!camera->open())
        return nullptr;
    return m_cameras.emplace_back(std::move(camera)).get();
}

ViewerCamera* CameraSet::camera(void* handle) const
{
    if (handle)
        for (const auto& camera : m_cameras)
            if (camera->handle() == handle)
                return camera.get();
    return nullptr;
}

std::vector<ViewerCamera*> CameraSet::cameras() const
{
    std::vector<ViewerCamera*> list;
    for (const auto& camera : m_cameras)
        list.push_back(camera.get());
    return list;
}

void CameraSet::restart(void* handle)
{
    ViewerCamera* restarted = camera(handle);
    if (!restarted)
        return;
    restarted->close();
    QTimer::singleShot(m_restartTime, restarted, [this, restarted] { reopen(restarted); });
}

void CameraSet::reopen(ViewerCamera* camera)
{
    // Only open cameras are in the list of the camera manager.
    int position = 0;
    for (const auto& other : m_cameras) {
        if (other.get() == camera)
            break;
        if (other->handle())
            ++position;
    }
    camera->open(position);
}
