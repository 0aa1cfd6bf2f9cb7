#pragma once

#include "EditorTabs.h"

#include <QtCore/QStringList>
#include <QtWidgets/QDockWidget>

class EditorPage;
class FindBar;
class QAction;
class QMenu;
class QMenuBar;

/// The editor of scripts: its tabs, and its commands in the menus.
class EditorDock : public QDockWidget
{
    Q_OBJECT
public:
    EditorDock(EditorTabs::OpenDialog openDialog, QWidget* parent);

    /// Adds the editor's commands to the window's menu of scripts, and a menu for editing to the bar.
    void addTo(QMenuBar& bar, QMenu& scriptMenu);

    EditorTabs& tabs() const { return *m_tabs; }

    /// Opens a script and shows a line of it, counted from 1.
    void showLine(const QString& path, int line);

    /// Shows which script runs: the absolute path of its file, or its title. Empty: none.
    void showRunning(const QString& pathOrTitle);

    /// Marks the lines that the errors of a run name.
    void showErrors(const QString& errors);

    /// Opens the scripts that were open when the viewer ended last.
    void restore();

Q_SIGNALS:
    /// Run a file.
    void runFileRequested(const QString& path);

    /// Run a text under a title. `origin` is the file that it is a copy of; empty: none.
    void runTextRequested(const QString& text, const QString& title, const QString& origin);
    void runAgainRequested();

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void createActions();
    void newScript();
    void run();
    void fillRecent();
    void fillExamples();
    void noteUse(const QString& path);
    void rememberOpen();
    void changeZoom(int steps);
    void adopt(); ///< connects to the editors of new scripts
    void enableActions();
    void goToLine();
    QAction* add(const QString& text, const QKeySequence& key, void (EditorDock::*slot)());
    QAction* addForEditor(const QString& text, const QKeySequence& key, void (*act)(EditorDock& dock));

    EditorTabs::OpenDialog m_openDialog;
    EditorTabs* m_tabs;
    FindBar* m_findBar;
    QMenu* m_recent;
    QMenu* m_examples;
    QList<QAction*> m_scriptActions;  ///< in the order of the menu; null: a separator
    QList<QAction*> m_editingActions; ///< the same
    QList<QAction*> m_needPage;       ///< useful only while a script is open
    bool m_restoring = false;
    bool m_wasShown = false;
};
