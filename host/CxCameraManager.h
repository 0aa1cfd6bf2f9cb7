#pragma once

#include "HostGlobal.h"

#include <QtCore/QList>

#include <memory>

class CxCameraParameters;

/// The cameras that the host has opened, one manager per process. Any thread.
///
/// Cameras are identified by opaque handles. The null handle and the handle of a closed camera are unknown handles.
class VANTREL_HOST_EXPORT CxCameraManager
{
public:
    /// Never null.
    static CxCameraManager* instance();

    /// The handles of the opened cameras in the host's order.
    QList<void*> openedCameras() const;

    /// Number of opened cameras.
    int openedCameraCount() const;

    /// The parameter store of a camera, or null for an unknown handle. Callers ask for it at every use, because the
    /// camera may be closed in between.
    ///
    /// A store with shared ownership stays alive until the calling thread calls this function again (for any camera) or
    /// ends, even if the camera is removed in the meantime. Any thread may delete the store then.
    CxCameraParameters* cameraParameters(void* camera) const;

    /// A handle that this process has not used before, so that outdated handles stay unknown.
    void* newHandle();

    /// Adds a camera to the list and shares the ownership of its store. For the host.
    ///
    /// camera      its handle, from newHandle() or chosen by the host.
    /// parameters  its store. Before the host deletes the device, it calls CxCameraParameters::releaseDevice().
    /// position    place in the list; at the end if negative or too large.
    void addCamera(void* camera, std::shared_ptr<CxCameraParameters> parameters, int position = -1);

    /// Adds a camera whose store the host alone owns, or null if the camera has no store. The manager does not keep
    /// such a store alive, so this is only for hosts that close cameras on the thread that runs scripts. The host
    /// removes the camera before it deletes the store.
    void addCamera(void* camera, CxCameraParameters* parameters, int position = -1);

    /// Removes a camera from the list and gives up the manager's share of its store. Does nothing for an unknown
    /// handle.
    void removeCamera(void* camera);

private:
    CxCameraManager();
    ~CxCameraManager();
    Q_DISABLE_COPY_MOVE(CxCameraManager)

    struct Private;
    const std::unique_ptr<Private> d;
};
