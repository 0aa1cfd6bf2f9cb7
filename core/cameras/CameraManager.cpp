#include "CxCameraManager.h"

#include "CxCameraParameters.h"

#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>

#include <atomic>
#include <cstdint>
#include <utility>

struct CxCameraManager::Private {
    struct Entry {
        void* camera = nullptr;
        std::shared_ptr<CxCameraParameters> parameters;
    };

    mutable QMutex mutex;
    QList<Entry> entries;
    std::uintptr_t lastHandle = 0;
    std::atomic<std::uint64_t> state = newState(); ///< changes with every change of the entries

    /// A number that no manager has had before.
    static std::uint64_t newState()
    {
        static std::atomic<std::uint64_t> last = 0;
        return ++last;
    }
    std::shared_ptr<CxCameraParameters> find(void* camera) const
    {
        const QMutexLocker lock(&mutex);
        for (const Entry& entry : entries)
            if (entry.camera == camera)
                return entry.parameters;
        return nullptr;
    }
};

namespace {

thread_local bool threadIsEnding = false;

/// Keeps the store alive that the thread asked for last.
struct Lease {
    ~Lease() { threadIsEnding = true; }
    std::shared_ptr<CxCameraParameters> store;
    void* camera = nullptr;
    std::uint64_t state = 0; ///< of the manager that the store comes from
};

} // namespace

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
    // Code that runs after the thread's lease is destroyed must not use it.
    if (threadIsEnding)
        return camera ? d->find(camera).get() : nullptr;
    thread_local Lease lease;
    // Scripts ask for the same camera again and again. While no camera comes or goes, the answer stays.
    const std::uint64_t state = d->state;
    if (lease.state == state && lease.camera == camera)
        return lease.store.get();
    std::shared_ptr<CxCameraParameters> store = camera ? d->find(camera) : nullptr;
    CxCameraParameters* found = store.get();
    lease.camera = camera;
    lease.state = state;
    lease.store.swap(store); // the destruction of the old store may run any code
    return found;
}

void* CxCameraManager::newHandle()
{
    // Handles are numbers, not addresses: memory is reused, and an outdated handle would then name another camera.
    const QMutexLocker lock(&d->mutex);
    return reinterpret_cast<void*>(++d->lastHandle);
}

void CxCameraManager::addCamera(void* camera, std::shared_ptr<CxCameraParameters> parameters, int position)
{
    const QMutexLocker lock(&d->mutex);
    const qsizetype end = d->entries.size();
    d->entries.insert(position < 0 || position > end ? end : position, {camera, std::move(parameters)});
    d->state = Private::newState();
}

void CxCameraManager::addCamera(void* camera, CxCameraParameters* parameters, int position)
{
    // Points to the store without owning it.
    addCamera(camera, std::shared_ptr<CxCameraParameters>(std::shared_ptr<void>(), parameters), position);
}

void CxCameraManager::removeCamera(void* camera)
{
    Private::Entry removed; // destroyed after the lock: a store notifies its listeners when it is deleted
    const QMutexLocker lock(&d->mutex);
    for (qsizetype i = 0; i < d->entries.size(); ++i) {
        if (d->entries[i].camera == camera) {
            removed = d->entries.takeAt(i);
            d->state = Private::newState();
            return;
        }
    }
}
