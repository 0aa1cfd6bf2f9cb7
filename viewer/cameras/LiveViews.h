#pragma once

#include <QtCore/QObject>

#include <map>

class CameraSet;
class ImageView;
class MainWindow;
class ViewerCamera;
class QMenu;

/// The views that show what cameras see, one for each camera started here. GUI thread only.
///
/// When its camera stops, a live view keeps the last frame; it shows the camera's frames again after the next start.
/// Closing the view stops the camera.
class LiveViews : public QObject
{
    Q_OBJECT
public:
    /// The window and the cameras must outlive this object.
    LiveViews(MainWindow& window, CameraSet& cameras);

    /// Starts a camera and makes its live view the active one. Returns false and logs why if the handle is not in use
    /// or the camera does not start; in the second case its live view is open all the same.
    bool start(void* handle);

    /// Stops a camera. Returns false if the handle is not in use.
    bool stop(void* handle);

private:
    ImageView* viewOf(ViewerCamera& camera);
    void listCameras(QMenu* menu);

    MainWindow& m_window;
    CameraSet& m_cameras;
    std::map<ViewerCamera*, ImageView*> m_views;
};
