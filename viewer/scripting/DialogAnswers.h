#pragma once

#include <QtCore/QObject>
#include <QtCore/QStringList>

class QDialog;

/// Answers the dialogs that scripts open as a user would: presses the button, or enters the text and presses OK.
class DialogAnswers : public QObject
{
    Q_OBJECT
public:
    /// Uses the answers in order. When none is left, a dialog waits for the user if dialogs are visible; otherwise it
    /// is dismissed, with a log line. Needs the application object.
    DialogAnswers(const QStringList& answers, bool dialogsAreVisible);

    /// Leaves all later dialogs to the user.
    void stop();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void answer(QDialog* dialog);

    QStringList m_answers;
    bool m_dialogsAreVisible;
    bool m_stopped = false;
};
