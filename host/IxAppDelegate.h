#pragma once

#include "HostGlobal.h"

#include <QtCore/QString>

class CxImageData;
class CxMdiView;
class QMenu;
class QWidget;
struct SxPicBuf;

/// The host application, one object per process.
///
/// Unless an operation says otherwise it is called on the GUI thread only. Views are named by integer identifiers that
/// the host gives and never uses twice; cameras by opaque handles, as listed by CxCameraManager::openedCameras().
class VANTREL_HOST_EXPORT IxAppDelegate
{
public:
    /// The application object, or null when the host has set none. Asked for anew at every use, never stored.
    static IxAppDelegate* instance();

    /// Set by the host before its first script runs; null takes it back. The object stays owned by the host.
    static void setInstance(IxAppDelegate* delegate);

    /// The main window, parent of the dialogs that scripts open. May be null.
    virtual QWidget* mainWindow() = 0;

    /// The application menu of a kind, or null. Kind 3 is the menu that receives the items added by scripts.
    virtual QMenu* menu(int kind) = 0;

    /// Shows a text for a moment without asking for anything.
    virtual void showNotification(const QString& text) = 0;

    /// Identifier of the active view, negative when there is none. May be called on any thread that runs a script.
    virtual int activeViewId() = 0;

    /// Makes a view the active one. A negative identifier, and one that no view has, change nothing.
    virtual void activateView(int id) = 0;

    virtual void tileViews() = 0;

    virtual void setFullScreen(bool on) = 0;

    /// The view with that identifier, or null. Owned by the host.
    virtual CxMdiView* view(int id) = 0;

    /// Opens a second view with a copy of what a view shows, and makes it the active one. A negative identifier stands
    /// for the active view. False when there is nothing to duplicate.
    virtual bool duplicateView(int id) = 0;

    /// Starts or stops a camera's acquisition; on start the camera's live view becomes the active one. False on
    /// failure, also for a null or outdated handle.
    virtual bool setCameraAcquisition(bool start, void* camera) = 0;

    /// Restarts a camera with its default settings. The camera appears among the opened ones under a new handle, at
    /// once or after some time during which the event loop runs.
    virtual void restartCameraWithDefaults(void* camera) = 0;

    /// Shows the modal capture dialog of a camera.
    ///
    /// title, message  texts of the dialog.
    /// optionGiven     whether the caller chose an option.
    /// option          the chosen option; receives the user's choice.
    ///
    /// Returns a new record, which the caller deletes and whose pixels the caller owns, or null when the user cancels.
    /// Called on the thread that runs the script.
    virtual SxPicBuf* askUserCaptureImage(QWidget* parent, void* camera, QString* title, QString* message,
                                          bool optionGiven, int* option, int flags) = 0;

    /// Opens a file in a new view, which becomes the active one. False when the file cannot be shown.
    virtual bool openFile(const QString& path, bool activate) = 0;

    /// Opens a new view that takes over the image, and makes it the active one.
    ///
    /// On true the image is the host's. On failure (false) and when this throws the image stays the caller's, which
    /// deletes it: the host keeps no pointer to it. Called on the thread that runs the script for a captured image,
    /// and on the GUI thread otherwise.
    virtual bool newViewWithImage(CxImageData* image, const QString& title) = 0;

    /// Replaces what a view shows. The host takes over the image, also when no view has the identifier and when this
    /// throws.
    virtual void setViewImage(int id, CxImageData* image) = 0;

    /// The image that a view shows, or null. Stays owned by the view and is valid until the view gets another one or is
    /// closed. May be called on the thread that runs a script.
    virtual CxImageData* viewImage(int id) = 0;

    /// Plays a sound file. May be called on any thread that runs a script.
    virtual void playSound(const QString& path) = 0;

protected:
    IxAppDelegate() = default;
    ~IxAppDelegate() = default;
    Q_DISABLE_COPY_MOVE(IxAppDelegate)
};
