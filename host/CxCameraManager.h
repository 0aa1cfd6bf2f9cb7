#pragma once

#include "HostGlobal.h"

#include <QtCore/QList>

#include <memory>

class CxCameraParameters;

/// The cameras that the host has opened, one manager per process. Any thread.
///
/// Cameras are known by opaque handles. A handle that the host has taken back, and the null handle, are answered like
/// any unknown one.
class VANTREL_HOST_EXPORT CxCameraManager
{
public:
    /// Never null.
    static CxCameraManager* instance();

    /// The handles of the opened cameras in the host's order.
    QList<void*> openedCameras() const;

    /// Number of opened cameras.
    int openedCameraCount() const;

    /// The parameter store of a camera, or null for a handle that is not (or no longer) listed. To be asked for at
    /// every use, since the camera may be closed in between.
    ///
    /// A store that is listed with shared ownership stays alive, also when its camera is removed and its host lets it
    /// go, until the calling thread calls this again (for any camera) or ends. Any thread may be the one that then
    /// deletes it.
    CxCameraParameters* cameraParameters(void* camera) const;

    /// A handle that was never given out before in this process, so that outdated ones stay outdated.
    void* newHandle();

    /// Lists a camera and shares the ownership of its store. For the host.
    ///
    /// camera      its handle, from newHandle() or of the host's own making.
    /// parameters  its store. A host that deletes the device behind it calls CxCameraParameters::releaseDevice() first.
    /// position    place in the list; the end when negative or beyond it.
    void addCamera(void* camera, std::shared_ptr<CxCameraParameters> parameters, int position = -1);

    /// The same for a store that stays the host's alone, or for null while the camera has none. Only for a host that
    /// closes cameras on the thread that runs its scripts: such a store is not kept alive for anybody. The host removes
    /// the camera before it deletes the store.
    void addCamera(void* camera, CxCameraParameters* parameters, int position = -1);

    /// Takes a camera off the list, and gives up the manager's share in its store; does nothing for an unknown one.
    void removeCamera(void* camera);

private:
    CxCameraManager();
    ~CxCameraManager();
    Q_DISABLE_COPY_MOVE(CxCameraManager)

    struct Private;
    const std::unique_ptr<Private> d;
};
