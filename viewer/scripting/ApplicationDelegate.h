#pragma once

#include "CameraSet.h"
#include "IxAppDelegate.h"
#include "cameras/LiveViews.h"
#include "process/GuiCalls.h"
#include "process/SoundPlayer.h"

class MainWindow;

/// The application as scripts see it. Registers itself as the delegate of the process; its destructor removes it.
class ApplicationDelegate : public IxAppDelegate
{
public:
    /// The window must outlive the delegate.
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

    /// The image stays valid until the same thread asks for another one, or until releaseImage().
    CxImageData* viewImage(int id) override;

    /// Releases the image that viewImage() keeps for the GUI thread. Called there when no script runs.
    void releaseImage() { m_lent.reset(); }

    void playSound(const QString& path) override;

    /// The cameras that are open in the application.
    CameraSet& cameras() { return m_cameras; }

    /// Called when the event loop does not run any more. Calls from scripts on another thread fail from then on.
    void endCalls() { m_gui.end(); }

private:
    MainWindow& m_window;
    SoundPlayer m_sounds;
    CameraSet m_cameras;
    LiveViews m_liveViews;
    GuiCalls m_gui;
    std::shared_ptr<CxImageData> m_lent;
};
