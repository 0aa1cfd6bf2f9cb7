#pragma once

#include <QtCore/QObject>
#include <QtCore/QStringList>

class QDialog;

/// Answers the dialogs that scripts open, as a person would: presses the button, or enters the text and presses OK.
class DialogAnswers : public QObject
{
    Q_OBJECT
public:
    /// The answers are used one after another. Where nobody sees the dialogs, one that comes after the last answer is
    /// dismissed, with a log line.
    DialogAnswers(const QStringList& answers, bool dialogsAreSeen);

    /// Leaves all further dialogs to the user.
    void stop();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void answer(QDialog* dialog);

    QStringList m_answers;
    bool m_dialogsAreSeen;
    bool m_stopped = false;
};
