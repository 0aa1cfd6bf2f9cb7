#pragma once

#include "ViewList.h"

#include <QtCore/QPointer>
#include <QtWidgets/QMainWindow>

#include <functional>
#include <map>
#include <utility>

class ImageView;
class ImageWidget;
class NotificationArea;
class QDialog;
class QLabel;
class QMessageBox;
class ScriptBar;

/// The main window: menus, the views and a status line.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// The kinds of menus, with the numbers that scripts and the delegate use.
    enum MenuKind { FileMenu = 1, ViewMenu = 2, ScriptMenu = 3, HelpMenu = 4 };

    MainWindow();

    /// The open views.
    ViewList& views() { return m_views; }
    const ViewList& views() const { return m_views; }

    /// A hidden window keeps the setting until it is shown.
    void setFullScreen(bool on);

    /// The menu of a kind, or null.
    QMenu* menu(int kind) const;

    void setVisible(bool visible) override;

    /// Shows a text for a few seconds in a corner and in the status line, after the texts that wait already.
    void showNotification(const QString& text);

    /// The bar that shows what the script does.
    ScriptBar& scriptBar() const { return *m_scriptBar; }

    /// Opens a dialog for the user, which answers by its signals and is deleted when it closes. Returns at once: a
    /// script goes on meanwhile.
    void openDialog(QDialog* dialog);

    /// True for a dialog that the user has opened from the menus; false for one of a script.
    static bool isOwnDialog(const QDialog& dialog);

    /// Sets what to ask before the window closes: false keeps it open.
    void setCloseQuestion(std::function<bool()> mayClose) { m_mayClose = std::move(mayClose); }

    /// Enables Stop while a script runs, and Run Script otherwise.
    void setScriptRunning(bool running);

    /// Sets the name of the script language that the About box shows.
    void setScriptLanguage(const QString& language) { m_scriptLanguage = language; }

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
    bool eventFilter(QObject* object, QEvent* event) override;
    bool nativeEvent(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    void createFileMenu();
    void createViewMenu();
    void createScriptMenu();
    void createHelpMenu();
    void createStatusLine();

    void warn(const QString& title, const QString& text);
    void askToStopAndClose();
    void askForFilesToOpen();
    void askForFileToSave();
    void askForScript();
    void showAbout();

    void showPixel(const ImageView& view, const QPoint& pixel);
    void updateStatusLine();
    ImageWidget* activeImageWidget() const;

    ViewList m_views; // goes before the widgets that the base class deletes
    std::map<int, QMenu*> m_menus;
    NotificationArea* m_notifications = nullptr;
    QAction* m_fullScreen = nullptr;
    QAction* m_runScript = nullptr;
    QAction* m_stopScript = nullptr;
    ScriptBar* m_scriptBar = nullptr;
    QPointer<QMessageBox> m_closeQuestion;
    bool m_scriptRuns = false;
    std::function<bool()> m_mayClose;
    QLabel* m_format = nullptr;
    QLabel* m_zoom = nullptr;
    QLabel* m_pixel = nullptr;
    QString m_scriptLanguage;
};
