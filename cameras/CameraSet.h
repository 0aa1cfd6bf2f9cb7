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
    /// restartTime is how long a camera stays away when it is restarted.
    explicit CameraSet(std::chrono::milliseconds restartTime = std::chrono::seconds(1));
    ~CameraSet() override;

    /// Opens simulated cameras, from the first model on.
    void openSimulated(int count);

    /// Opens one more camera; null, with a log line, when it cannot be reached.
    ViewerCamera* open(std::unique_ptr<CameraBackend> backend);

    /// The camera with that handle, or null for a handle that is not in use (any more).
    ViewerCamera* camera(void* handle) const;

    /// All cameras, also one that is away for its restart.
    std::vector<ViewerCamera*> cameras() const;

    /// Closes a camera and, while the event loop runs, opens it again with default settings, at its old place and
    /// under a new handle. An unknown handle does nothing.
    void restart(void* handle);

private:
    void reopen(ViewerCamera* camera);

    std::chrono::milliseconds m_restartTime;
    std::vector<std::unique_ptr<ViewerCamera>> m_cameras;
};
