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
/// Operations are called on the GUI thread only, unless they say otherwise. Views have integer identifiers, which the
/// host assigns and never uses twice. Cameras have opaque handles, which CxCameraManager::openedCameras() lists.
class VANTREL_HOST_EXPORT IxAppDelegate
{
public:
    /// The application object, or null if the host has not set one. Callers ask for it at every use and never store it.
    static IxAppDelegate* instance();

    /// Called by the host before the first script runs; null removes the object. The host keeps owning the object.
    static void setInstance(IxAppDelegate* delegate);

    /// The main window, parent of the dialogs that scripts open. May be null.
    virtual QWidget* mainWindow() = 0;

    /// The application menu of a kind, or null. Kind 3 is the menu that receives the items added by scripts.
    virtual QMenu* menu(int kind) = 0;

    /// Shows a text briefly, without waiting for the user.
    virtual void showNotification(const QString& text) = 0;

    /// Identifier of the active view; negative if there is none. May be called on any thread that runs a script.
    virtual int activeViewId() = 0;

    /// Makes a view the active one. Does nothing for a negative or unknown identifier.
    virtual void activateView(int id) = 0;

    virtual void tileViews() = 0;

    virtual void setFullScreen(bool on) = 0;

    /// The view with that identifier, or null. Owned by the host.
    virtual CxMdiView* view(int id) = 0;

    /// Opens a new view with a copy of the image that a view shows, and makes the new view the active one. A negative
    /// identifier stands for the active view. False if there is nothing to duplicate.
    virtual bool duplicateView(int id) = 0;

    /// Starts or stops a camera's acquisition. On start, the camera's live view becomes the active view. False on
    /// failure, including a null or outdated handle. Called on the thread that runs the script.
    virtual bool setCameraAcquisition(bool start, void* camera) = 0;

    /// Restarts a camera with its default settings. The camera reappears among the opened cameras under a new handle,
    /// at once or later, from the event loop. Called on the thread that runs the script.
    virtual void restartCameraWithDefaults(void* camera) = 0;

    /// Shows the modal capture dialog of a camera.
    ///
    /// title, message  texts of the dialog.
    /// optionGiven     whether the caller chose an option.
    /// option          the chosen option; receives the user's choice.
    ///
    /// Returns a new record, or null if the user cancels. The caller deletes the record and owns its pixels.
    /// Called on the thread that runs the script.
    virtual SxPicBuf* askUserCaptureImage(QWidget* parent, void* camera, QString* title, QString* message,
                                          bool optionGiven, int* option, int flags) = 0;

    /// Opens a file in a new view. The view becomes the active one if activate is true. False if the file cannot be
    /// shown.
    virtual bool openFile(const QString& path, bool activate) = 0;

    /// Opens a new view that takes over the image, and makes it the active one.
    ///
    /// After true the host owns the image. After false or an exception the caller still owns the image and deletes it;
    /// the host keeps no pointer to it. Called on the thread that runs the script for a captured image, otherwise on
    /// the GUI thread.
    virtual bool newViewWithImage(CxImageData* image, const QString& title) = 0;

    /// Replaces the image that a view shows. The host takes over the image, even if no view has the identifier or the
    /// call throws.
    virtual void setViewImage(int id, CxImageData* image) = 0;

    /// The image that a view shows, or null. Owned by the view; valid until the view gets another image or is closed.
    /// May be called on the thread that runs a script.
    virtual CxImageData* viewImage(int id) = 0;

    /// Plays a sound file. May be called on any thread that runs a script.
    virtual void playSound(const QString& path) = 0;

protected:
    IxAppDelegate() = default;
    ~IxAppDelegate() = default;
    Q_DISABLE_COPY_MOVE(IxAppDelegate)
};
