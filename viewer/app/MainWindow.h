#pragma once

#include "ViewStore.h"

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
    /// Kinds of menus, as scripts and the delegate number them.
    enum MenuKind { FileMenu = 1, ViewMenu = 2, ScriptMenu = 3, HelpMenu = 4 };

    MainWindow();
    ~MainWindow() override;

    /// Opens a view for the image (null: a view without one) and makes it the active one if told to. When this throws
    /// no view is left, and nothing here holds the image any more.
    ImageView* addView(std::shared_ptr<CxImageData> image, const QString& title, bool activate = true);

    /// Opens an image file in a new view; false with a log line when it cannot be shown.
    bool openFile(const QString& path, bool activate = true);

    /// Opens a second view with a copy of what a view shows and makes it the active one; false when there is none.
    bool duplicateView(int id);

    /// The view with that identifier, or null.
    ImageView* view(int id) const;

    ImageView* activeView() const;

    /// Identifiers of all views, oldest first.
    std::vector<int> viewIds() const;

    /// Makes a view the active one; an identifier that no view has changes nothing.
    void activateView(int id);

    void tileViews();

    /// Also of effect while the window is hidden: it is then shown so.
    void setFullScreen(bool on);

    /// The menu of a kind, or null.
    QMenu* menu(int kind) const;

    /// Shows a text for a few seconds in a corner and in the status line, after those that wait already.
    void showNotification(const QString& text);

    /// Allows to stop a script, or to start one.
    void setScriptRunning(bool running);

    /// The language that scripts are written in, for the user to read.
    void setScriptLanguage(const QString& language) { m_scriptLanguage = language; }

    /// Readable on any thread.
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
