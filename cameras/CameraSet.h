#pragma once

#include <QtCore/QObject>

#include <chrono>
#include <memory>
#include <vector>

class CameraBackend;
class ViewerCamera;

/// The cameras of the application, in the order in which scripts count them. GUI thread only.
class CameraSet : public QObject
{
    Q_OBJECT
public:
    /// restartTime is the time for which a camera stays closed when it is restarted.
    explicit CameraSet(std::chrono::milliseconds restartTime = std::chrono::seconds(1));
    ~CameraSet() override;

    /// Opens that many simulated cameras, beginning with the first model; at most one of each model.
    void openSimulated(int count);

    /// Opens one more camera. Null, with a log line, if the camera cannot be reached.
    ViewerCamera* open(std::unique_ptr<CameraBackend> backend);

    /// The camera with that handle, or null if no open camera has it.
    ViewerCamera* camera(void* handle) const;

    /// All cameras, including those that are closed for a restart.
    std::vector<ViewerCamera*> cameras() const;

    /// Closes a camera and later, from the event loop, opens it again with default settings, at its old place and under
    /// a new handle. Does nothing for an unknown handle.
    void restart(void* handle);

private:
    void reopen(ViewerCamera* camera);

    std::chrono::milliseconds m_restartTime;
    std::vector<std::unique_ptr<ViewerCamera>> m_cameras;
};
