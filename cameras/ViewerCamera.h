#pragma once

#include "CameraBackend.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

/// A camera of the application: its back end, the handle that scripts know it by, and its frames as they arrive.
///
/// One object for each camera, which stays the same over restarts. GUI thread only.
class ViewerCamera : public QObject
{
    Q_OBJECT
public:
    explicit ViewerCamera(std::unique_ptr<CameraBackend> backend);
    ~ViewerCamera() override;

    /// Opens the camera with default settings and lists it among the opened ones under a new handle, before the camera
    /// that stands at the given place (negative: at the end). False, with a log line, when it cannot be reached.
    bool open(int position = -1);

    /// Ends the acquisition, takes the handle back and closes the camera.
    void close();

    /// The handle, null while closed.
    void* handle() const { return m_handle; }

    /// Null while closed.
    CxCameraParameters* parameters() const { return m_backend->parameters().get(); }

    /// Starts the acquisition; true when it runs.
    bool start();
    void stop();
    bool isRunning() const { return m_backend->isRunning(); }

    /// True while frames arrive by themselves: the acquisition runs and waits for no trigger.
    bool isLive() const { return m_isLive; }

    /// Frames per second as set.
    double frameRate() const;

Q_SIGNALS:
    /// A frame has arrived.
    void frameArrived(std::shared_ptr<CxImageData> frame);

    /// Frames began or ceased to arrive by themselves.
    void liveChanged(bool live);

    void frameRateChanged(double framesPerSecond);

private:
    void schedule();
    void takeFrame();
    void noteParam(const QString& name);

    std::unique_ptr<CameraBackend> m_backend;
    void* m_handle = nullptr;
    QTimer m_timer;
    bool m_isLive = false;
};
