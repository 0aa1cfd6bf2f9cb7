#include "DialogAnswers.h"

#include "window/MainWindow.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtCore/QEvent>
#include <QtCore/QTimer>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QInputDialog>

namespace {

const QString cancelAnswer = QStringLiteral("<cancel>");

/// The label as a user reads it: without the "&" that marks the mnemonic, and with "&" for "&&".
QString shownLabel(QString label)
{
    const QChar placeholder(u'\0');
    label.replace(QStringLiteral("&&"), QString(placeholder));
    label.remove(u'&');
    return label.replace(placeholder, u'&');
}

bool press(const QDialog& dialog, const QString& label)
{
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
        if (button->isEnabled() && shownLabel(button->text()).compare(shownLabel(label), Qt::CaseInsensitive) == 0) {
            button->click();
            return true;
        }
    }
    return false;
}

void dismiss(QDialog* dialog)
{
    // Same as closing the window. A message box without a cancel button ignores that, so it is rejected.
    if (!dialog->close())
        dialog->reject();
}

} // namespace

DialogAnswers::DialogAnswers(const QStringList& answers, bool dialogsAreVisible)
    : m_answers(answers)
    , m_dialogsAreVisible(dialogsAreVisible)
{
    QCoreApplication::instance()->installEventFilter(this);
}

void DialogAnswers::stop()
{
    m_stopped = true;
}

bool DialogAnswers::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Show && !m_stopped) {
        if (auto* dialog = qobject_cast<QDialog*>(object);
            dialog && dialog->isModal() && !MainWindow::isOwnDialog(*dialog))
            QTimer::singleShot(0, dialog, [this, dialog] { answer(dialog); });
    }
    return QObject::eventFilter(object, event);
}

void DialogAnswers::answer(QDialog* dialog)
{
    if (!dialog->isVisible())
        return;
    if (m_answers.isEmpty()) {
        if (m_dialogsAreVisible)
            return;
        qWarning().noquote()
            << QStringLiteral("No answer is left for the dialog \"%1\"; it was dismissed").arg(dialog->windowTitle());
        dismiss(dialog);
        return;
    }
    const QString text = m_answers.takeFirst();
    if (text == cancelAnswer) {
        dismiss(dialog);
    } else if (auto* input = qobject_cast<QInputDialog*>(dialog)) {
        input->setTextValue(text);
        input->accept();
    } else if (!press(*dialog, text)) {
        qWarning().noquote() << QStringLiteral("The dialog \"%1\" has no enabled button \"%2\"; it was dismissed")
                                    .arg(dialog->windowTitle(), text);
        dismiss(dialog);
    }
}
