#pragma once

#include <QtWidgets/QWidget>

#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;
class ScriptEditor;

/// Finds and replaces text in the current editor.
class FindBar : public QWidget
{
    Q_OBJECT
public:
    using Current = std::function<ScriptEditor*()>;

    /// A place in the text, both counted from 0.
    struct Place {
        int line = 0;
        int column = 0;
        bool operator==(const Place&) const = default;
    };

    /// `current` returns the editor to search, or null.
    explicit FindBar(Current current);

    /// Appears with the selected word as the text to find.
    void openToFind();
    void openToReplace();

    void findNext() { find(true); }
    void findPrevious() { find(false); }

    /// Replaces the found text and finds the next one.
    void replaceOne();

    /// Replaces all, as one step that the user can undo.
    void replaceAll();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void open(bool withReplacement);
    void find(bool forward);
    bool findFrom(ScriptEditor& editor, Place from, bool forward, bool wraps);
    void findWhileTyping();
    void leave();

    Current m_current;
    QLineEdit* m_text;
    QLineEdit* m_replacement;
    QWidget* m_replaceRow;
    QCheckBox* m_case;
    QCheckBox* m_words;
    QCheckBox* m_expression;
    QLabel* m_note;
};
