#pragma once

#include "HostGlobal.h"

#include <QtCore/QString>

class CxChainable;

/// A view of the host: one window that shows an image or a camera. Used on the GUI thread only.
class VANTREL_HOST_EXPORT CxMdiView
{
public:
    /// Starts recording what the view shows to a video file. False if the file cannot be written or the view is already
    /// recording.
    virtual bool startVideoRecording(const QString& path) = 0;

    /// Ends the recording and completes the file. Does nothing if the view is not recording.
    virtual void stopVideoRecording() = 0;

    /// The stage of the view's processing chain that stands for the view itself; new stages are inserted before it.
    /// Owned by the chain. Null if the view has no chain.
    virtual CxChainable* chainObject() = 0;

    /// Closes the view as the user would. Once this returns, IxAppDelegate::view() no longer finds the view.
    void closeMdiView();

protected:
    CxMdiView() = default;
    virtual ~CxMdiView();
    Q_DISABLE_COPY_MOVE(CxMdiView)

    /// Closes the view in the host. May delete this object.
    virtual void doClose() = 0;
};
