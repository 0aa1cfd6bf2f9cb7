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

    /// The parameter store of a camera, or null for a handle that is not (or no longer) listed. The store stays owned
    /// by the host; it is asked for anew at every use, since its camera may be closed in between.
    CxCameraParameters* cameraParameters(void* camera) const;

    /// A handle that was never given out before in this process, so that outdated ones stay outdated.
    void* newHandle();

    /// Lists a camera. For the host.
    ///
    /// camera      its handle, from newHandle() or of the host's own making.
    /// parameters  its store, or null while it has none; stays the host's, which removes the camera before it deletes
    ///             the store. Where scripts run on a thread of their own, a store outlives its removal by a moment.
    /// position    place in the list; the end when negative or beyond it.
    void addCamera(void* camera, CxCameraParameters* parameters, int position = -1);

    /// Takes a camera off the list; does nothing for an unknown one.
    void removeCamera(void* camera);

private:
    CxCameraManager();
    ~CxCameraManager();
    Q_DISABLE_COPY_MOVE(CxCameraManager)

    struct Private;
    const std::unique_ptr<Private> d;
};
