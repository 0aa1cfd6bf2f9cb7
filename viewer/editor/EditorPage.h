#pragma once

#include <QtCore/QDateTime>
#include <QtWidgets/QWidget>

#include <optional>

class QFrame;
class QLabel;
class QPushButton;
class ScriptEditor;

/// One script that is being edited, with its file if it has one.
class EditorPage : public QWidget
{
    Q_OBJECT
public:
    /// A script without a file. Its text counts as saved. `origin` is the file that it is a copy of; empty: none.
    EditorPage(const QString& title, const QString& text, const QString& origin = {});

    /// Opens a file. Returns null if that fails; problem is then the reason, as the end of a sentence.
    static EditorPage* opened(const QString& path, QString& problem);

    ScriptEditor& editor() const { return *m_editor; }

    /// The absolute path of the file, without links; empty if there is none.
    const QString& path() const { return m_path; }

    /// The file that a script without a file is a copy of; empty: none.
    const QString& origin() const { return m_origin; }

    /// The name for the user: that of the file, if there is one.
    QString title() const;

    /// Whether the text has changes that are not in the file.
    bool isModified() const;

    /// Whether the script has neither a file nor changes.
    bool isFresh() const;

    /// Writes the text to a file, which is the script's from then on. Returns the reason why that fails, as the end of
    /// a sentence; empty on success.
    QString save(const QString& path);

    /// Whether somebody else has changed the file since it was read or written.
    bool hasChangedOutside() const;

    /// Looks whether somebody else has changed the file, and offers to read it again.
    void lookForChange();

    bool isRunning() const { return m_isRunning; }
    void setRunning(bool running);

Q_SIGNALS:
    /// The title, or what it says beside the name, has changed.
    void titleChanged();

private:
    /// What is on the disk; nothing if there is no file.
    static std::optional<QByteArray> bytesOf(const QString& path);

    QString read(const QString& path);
    void reload();
    void keep();
    void showBar(const QString& text, bool canReload);

    QString m_title;
    QString m_origin;
    QString m_path;
    bool m_hasMark = false;
    std::optional<QByteArray> m_known; ///< the file as it was read or written, or as the user has seen it changed
    bool m_isRunning = false;
    bool m_isKept = false; ///< whether the text is kept although the file has changed
    ScriptEditor* m_editor;
    QFrame* m_bar;
    QLabel* m_barText;
    QPushButton* m_reload;
};
