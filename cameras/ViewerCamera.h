#pragma once

#include "CameraBackend.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

/// A camera of the application: its back end, the handle by which scripts know it, and its frames as they arrive.
///
/// The object stays the same when its camera is restarted. GUI thread only.
class ViewerCamera : public QObject
{
    Q_OBJECT
public:
    explicit ViewerCamera(std::unique_ptr<CameraBackend> backend);
    ~ViewerCamera() override;

    /// Opens the camera with default settings and adds it to the opened cameras under a new handle, at the given place
    /// of the list (negative: at the end). Returns false and logs a line if the camera cannot be reached.
    bool open(int position = -1);

    /// Ends the acquisition, invalidates the handle and closes the camera.
    void close();

    /// The handle; null while closed.
    void* handle() const { return m_handle; }

    /// Null while closed.
    CxCameraParameters* parameters() const { return m_backend->parameters().get(); }

    /// Starts the acquisition. True if it is running afterwards.
    bool start();
    void stop();
    bool isRunning() const { return m_backend->isRunning(); }

    /// True while frames arrive by themselves: the acquisition is running and does not wait for triggers.
    bool isLive() const { return m_isLive; }

    /// The set number of frames per second; 0 while closed.
    double frameRate() const;

Q_SIGNALS:
    void frameArrived(std::shared_ptr<CxImageData> frame);

    /// isLive() has changed.
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
