#include "ViewStore.h"

#include "CxImageData.h"

#include <QtCore/QMutexLocker>

void ViewStore::setImage(int id, std::shared_ptr<CxImageData> image)
{
    // The old image is freed after the lock is released: freeing a large image takes time.
    const QMutexLocker lock(&m_lock);
    m_images[id].swap(image);
}

void ViewStore::remove(int id)
{
    const QMutexLocker lock(&m_lock);
    m_images.erase(id);
}

void ViewStore::setActiveId(int id)
{
    const QMutexLocker lock(&m_lock);
    m_activeId = id;
}

std::shared_ptr<CxImageData> ViewStore::image(int id) const
{
    const QMutexLocker lock(&m_lock);
    const auto found = m_images.find(id);
    return found == m_images.end() ? nullptr : found->second;
}

int ViewStore::activeId() const
{
    const QMutexLocker lock(&m_lock);
    return m_activeId;
}
