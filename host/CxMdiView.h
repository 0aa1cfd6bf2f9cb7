#pragma once

#include "HostGlobal.h"

#include <QtCore/QString>

class CxChainable;

/// A view of the host: one window that shows an image or a camera. Used on the GUI thread only.
class VANTREL_HOST_EXPORT CxMdiView
{
public:
    /// Starts recording what the view shows to a video file. False when the file cannot be written, or when a recording
    /// is under way.
    virtual bool startVideoRecording(const QString& path) = 0;

    /// Ends the recording and completes the file. Does nothing when nothing is recorded.
    virtual void stopVideoRecording() = 0;

    /// The stage of the view's processing chain that stands for the view itself; new stages are inserted before it.
    /// Null when the view has no chain.
    virtual CxChainable* chainObject() = 0;

    /// Closes the view, as its user would. The view is gone for IxAppDelegate::view() when this returns.
    void closeMdiView();

protected:
    CxMdiView() = default;
    virtual ~CxMdiView();
    Q_DISABLE_COPY_MOVE(CxMdiView)

    /// Does the host's work of closing; the object may be deleted by it.
    virtual void doClose() = 0;
};
