#pragma once

#include "views/ViewStore.h"

#include <QtWidgets/QMainWindow>

#include <map>
#include <memory>
#include <vector>

class CxImageData;
class ImageView;
class ImageWidget;
class NotificationArea;
class QLabel;
class QMdiArea;
class QMdiSubWindow;

/// The main window: menus, the views and a status line.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// The kinds of menus, with the numbers that scripts and the delegate use.
    enum MenuKind { FileMenu = 1, ViewMenu = 2, ScriptMenu = 3, HelpMenu = 4 };

    MainWindow();
    ~MainWindow() override;

    /// Opens a view for the image; null opens an empty view. The view becomes the active one if activate is true or no
    /// view is active.
    ImageView* addView(std::shared_ptr<CxImageData> image, const QString& title, bool activate = true);

    /// Opens an image file in a new view; activate works as in addView(). Returns false and logs why if the file cannot
    /// be shown.
    bool openFile(const QString& path, bool activate = true);

    /// Copies what a view shows into a new view and makes that the active one. A negative id stands for the active
    /// view. Returns false if there is no such view and, with a log line, if there is no memory for the copy.
    bool duplicateView(int id);

    /// The view with that identifier, or null.
    ImageView* view(int id) const;

    /// The active view, or null.
    ImageView* activeView() const;

    /// Identifiers of all views, oldest first.
    std::vector<int> viewIds() const;

    /// Makes a view the active one. An unknown identifier changes nothing.
    void activateView(int id);

    void tileViews();

    /// A hidden window keeps the setting until it is shown.
    void setFullScreen(bool on);

    /// The menu of a kind, or null.
    QMenu* menu(int kind) const;

    /// Shows a text for a few seconds in a corner and in the status line, after the texts that wait already.
    void showNotification(const QString& text);

    /// Enables Stop Script while a script runs, and Run Script otherwise.
    void setScriptRunning(bool running);

    /// Sets the name of the script language that the About box shows.
    void setScriptLanguage(const QString& language) { m_scriptLanguage = language; }

    /// May be read on any thread.
    const ViewStore& viewStore() const { return m_store; }

Q_SIGNALS:
    /// The user has chosen a script file to run.
    void scriptChosen(const QString& path);

    /// The user wants the running script to stop.
    void scriptStopRequested();

    /// The window has been closed.
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void createFileMenu();
    void createViewMenu();
    void createScriptMenu();
    void createHelpMenu();
    void createStatusLine();

    void askForFilesToOpen();
    void askForFileToSave();
    void askForScript();
    void showAbout();

    void noteActivation(QMdiSubWindow* window);
    void noteClosing(int id);
    void showPixel(const ImageView& view, const QPoint& pixel);
    void updateStatusLine();
    ImageWidget* activeImageWidget() const;

    ViewStore m_store;
    QMdiArea* m_area;
    std::map<int, ImageView*> m_views;
    std::vector<int> m_activations; ///< identifiers of the open views, the active one last
    int m_lastId = 0;
    std::map<int, QMenu*> m_menus;
    NotificationArea* m_notifications = nullptr;
    QAction* m_fullScreen = nullptr;
    QAction* m_runScript = nullptr;
    QAction* m_stopScript = nullptr;
    QLabel* m_format = nullptr;
    QLabel* m_zoom = nullptr;
    QLabel* m_pixel = nullptr;
    QString m_scriptLanguage;
};
