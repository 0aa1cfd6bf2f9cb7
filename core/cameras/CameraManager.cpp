#include "CxCameraManager.h"

#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>

#include <cstdint>

struct CxCameraManager::Private {
    struct Entry {
        void* camera = nullptr;
        CxCameraParameters* parameters = nullptr;
    };

    mutable QMutex mutex;
    QList<Entry> entries;
    std::uintptr_t lastHandle = 0;
};

CxCameraManager::CxCameraManager()
    : d(std::make_unique<Private>())
{
}

CxCameraManager::~CxCameraManager() = default;

CxCameraManager* CxCameraManager::instance()
{
    static CxCameraManager manager;
    return &manager;
}

QList<void*> CxCameraManager::openedCameras() const
{
    const QMutexLocker lock(&d->mutex);
    QList<void*> cameras;
    cameras.reserve(d->entries.size());
    for (const Private::Entry& entry : d->entries)
        cameras.append(entry.camera);
    return cameras;
}

int CxCameraManager::openedCameraCount() const
{
    const QMutexLocker lock(&d->mutex);
    return int(d->entries.size());
}

CxCameraParameters* CxCameraManager::cameraParameters(void* camera) const
{
    if (!camera)
        return nullptr;
    const QMutexLocker lock(&d->mutex);
    for (const Private::Entry& entry : d->entries)
        if (entry.camera == camera)
            return entry.parameters;
    return nullptr;
}

void* CxCameraManager::newHandle()
{
    // A number and no address: memory is used again, and an outdated handle would then name another camera.
    const QMutexLocker lock(&d->mutex);
    return reinterpret_cast<void*>(++d->lastHandle);
}

void CxCameraManager::addCamera(void* camera, CxCameraParameters* parameters, int position)
{
    const QMutexLocker lock(&d->mutex);
    const qsizetype end = d->entries.size();
    d->entries.insert(position < 0 || position > end ? end : position, {camera, parameters});
}

void CxCameraManager::removeCamera(void* camera)
{
    const QMutexLocker lock(&d->mutex);
    for (qsizetype i = 0; i < d->entries.size(); ++i) {
        if (d->entries[i].camera == camera) {
            d->entries.removeAt(i);
            return;
        }
    }
}
