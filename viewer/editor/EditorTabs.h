#pragma once

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QList>
#include <QtCore/QTimer>
#include <QtWidgets/QTabWidget>

#include <functional>

class EditorPage;
class QDialog;

/// The open scripts, one tab each.
class EditorTabs : public QTabWidget
{
    Q_OBJECT
public:
    /// Opens a dialog, which answers by its signals, and returns at once.
    using OpenDialog = std::function<void(QDialog* dialog)>;

    /// What to do when the user has agreed; is not called otherwise.
    using Then = std::function<void()>;

    explicit EditorTabs(OpenDialog openDialog);

    /// The script in front, or null.
    EditorPage* current() const;

    /// The script of a file, by its path, or of a title without a file; null if it is not open.
    EditorPage* find(const QString& pathOrTitle) const;

    QList<EditorPage*> pages() const;

    /// Opens a script without a file. An empty title makes one up. `origin` is the file that it is a copy of.
    EditorPage* addNew(const QString& title, const QString& text, const QString& origin = {});

    /// Shows the script of a file, and opens it if it is not open yet. Returns null if that fails, after telling the
    /// user why.
    EditorPage* open(const QString& path);

    /// Asks for files to open.
    void askToOpen();

    /// Writes a script to its file; asks for one if it has none, and before it overwrites somebody else's changes.
    void save(EditorPage* page, const Then& then = {});
    void saveAs(EditorPage* page, const Then& then = {});

    /// Saves all scripts that have changed.
    void saveAll(const Then& then = {});

    /// Closes a script, after asking what to do with unsaved changes.
    void closePage(EditorPage* page, const Then& then = {});

    /// Asks what to do with the unsaved changes of all scripts. Returns true if there are none.
    bool mayClose(const Then& then) { return mayClose(then, {}); }

    /// Looks whether somebody else has changed files.
    void lookForChanges();

Q_SIGNALS:
    /// A file has been opened or saved.
    void fileUsed(const QString& path);

    /// Which scripts are open has changed, or which one is in front.
    void pagesChanged();

private:
    void add(EditorPage* page);
    void showTitle(EditorPage* page);
    void write(EditorPage* page, const QString& path, const Then& then);
    void watch(const QString& path);
    void warn(const QString& text);
    void remove(EditorPage* page);
    void askToSave(EditorPage* page, const Then& saved, const Then& discarded);
    bool mayClose(const Then& then, const QList<EditorPage*>& discarded);
    QString folderForDialogs() const;

    OpenDialog m_openDialog;
    QFileSystemWatcher m_watcher;
    QTimer m_lookTimer;
    int m_untitled = 0;
};
