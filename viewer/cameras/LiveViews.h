#pragma once

#include <QtCore/QObject>

#include <map>

class CameraSet;
class ImageView;
class MainWindow;
class ViewerCamera;
class QMenu;

/// The views that show what cameras see, one for each camera that has acquired. GUI thread only.
///
/// A live view stays when its camera stops, with the last frame, and serves the camera again when it is started anew.
/// Closing it stops the camera.
class LiveViews : public QObject
{
    Q_OBJECT
public:
    /// Both outlive this.
    LiveViews(MainWindow& window, CameraSet& cameras);

    /// Starts a camera and makes its live view the active one. False, with a log line, for a handle that is not in use
    /// and when the camera does not start.
    bool start(void* handle);

    /// Stops a camera; false for a handle that is not in use.
    bool stop(void* handle);

private:
    ImageView* viewOf(ViewerCamera& camera);
    void listCameras(QMenu* menu);

    MainWindow& m_window;
    CameraSet& m_cameras;
    std::map<ViewerCamera*, ImageView*> m_views;
};
