#pragma once

#include "CameraSet.h"
#include "IxAppDelegate.h"
#include "cameras/LiveViews.h"
#include "process/GuiCalls.h"
#include "process/SoundPlayer.h"

class MainWindow;

/// What scripts reach of the application. Registers itself as the process's delegate for as long as it lives.
class ApplicationDelegate : public IxAppDelegate
{
public:
    /// The window outlives the delegate.
    explicit ApplicationDelegate(MainWindow& window);
    ~ApplicationDelegate();

    QWidget* mainWindow() override;
    QMenu* menu(int kind) override;
    void showNotification(const QString& text) override;
    int activeViewId() override;
    void activateView(int id) override;
    void tileViews() override;
    void setFullScreen(bool on) override;
    CxMdiView* view(int id) override;
    bool duplicateView(int id) override;
    bool setCameraAcquisition(bool start, void* camera) override;
    void restartCameraWithDefaults(void* camera) override;
    SxPicBuf* askUserCaptureImage(QWidget* parent, void* camera, QString* title, QString* message, bool optionGiven,
                                  int* option, int flags) override;
    bool openFile(const QString& path, bool activate) override;
    bool newViewWithImage(CxImageData* image, const QString& title) override;
    void setViewImage(int id, CxImageData* image) override;

    /// Off the GUI thread the image stays valid until the same thread asks for another one.
    CxImageData* viewImage(int id) override;

    void playSound(const QString& path) override;

    /// The cameras that are open in the application.
    CameraSet& cameras() { return m_cameras; }

    /// Called when the event loop will not run any more: scripts on another thread wait for nothing from then on.
    void endCalls() { m_gui.end(); }

private:
    MainWindow& m_window;
    SoundPlayer m_sounds;
    CameraSet m_cameras;
    LiveViews m_liveViews;
    GuiCalls m_gui;
};
