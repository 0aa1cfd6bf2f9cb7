#pragma once

#include "CxCameraManager.h"

#include <QtCore/QList>

/// Lists the cameras of a test. Its destructor empties the list of cameras, no matter who filled it.
class ListedCameras
{
public:
    ListedCameras() = default;
    ~ListedCameras()
    {
        const QList<void*> cameras = m_manager->openedCameras();
        for (void* camera : cameras)
            m_manager->removeCamera(camera);
    }
    Q_DISABLE_COPY_MOVE(ListedCameras)

    /// Lists a camera with a store that stays the caller's. Returns its handle.
    void* add(CxCameraParameters* store)
    {
        void* handle = m_manager->newHandle();
        m_manager->addCamera(handle, store);
        return handle;
    }

private:
    CxCameraManager* m_manager = CxCameraManager::instance();
};
