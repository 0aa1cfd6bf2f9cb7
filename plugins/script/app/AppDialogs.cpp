// Messages and questions from scripts to the user.

#include "AppFunctions.h"
#include "IxAppDelegate.h"

#include <QtCore/QDebug>
#include <QtCore/QMessageLogger>
#include <QtCore/QPointer>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

namespace {

QString textOf(const char* utf8)
{
    return utf8 ? QString::fromUtf8(utf8) : QString();
}

QAbstractButton* addButton(QMessageBox& box, const QString& label)
{
    // Newer versions of Qt take no button without a label, but a label may be taken away afterwards.
    QAbstractButton* button = box.addButton(label.isEmpty() ? QStringLiteral(" ") : label, QMessageBox::ActionRole);
    button->setText(label);
    return button;
}

QAbstractButton* addButtonIfNamed(QMessageBox& box, const QString& label)
{
    return label.isEmpty() ? nullptr : addButton(box, label);
}

/// Shows the box and returns the clicked button. Null if no button was clicked or if the parent deleted the box.
QAbstractButton* askUser(const QPointer<QMessageBox>& box)
{
    box->exec();
    return box ? box->clickedButton() : nullptr;
}

} // namespace

PyObject* fx_pyapp_MessageBox(PyObject* /*module*/, PyObject* args)
{
    const char* title = nullptr;
    const char* text = nullptr;
    const char* label1 = nullptr;
    const char* label2 = nullptr;
    const char* label3 = nullptr;
    IxAppDelegate* delegate = fx_enter(args, "ss|sss", &title, &text, &label1, &label2, &label3);
    if (!delegate)
        return nullptr;
    const QString secondLabel = textOf(label2);

    const QPointer<QMessageBox> box = new QMessageBox(delegate->mainWindow());
    box->setWindowTitle(textOf(title));
    box->setText(textOf(text));
    // The first button uses its label only if there is a second button.
    const QAbstractButton* first =
        secondLabel.isEmpty() ? box->addButton(QMessageBox::Ok) : addButton(*box, textOf(label1));
    const QAbstractButton* second = addButtonIfNamed(*box, secondLabel);
    const QAbstractButton* third = addButtonIfNamed(*box, textOf(label3));

    // If no button was clicked, clicked is null and matches the first button that is missing.
    const QAbstractButton* clicked = askUser(box);
    const int result = clicked == first ? 1 : clicked == second ? 2 : clicked == third ? 3 : 0;
    delete box;
    return PyLong_FromLong(result);
}

PyObject* fx_pyapp_ShowNotification(PyObject* /*module*/, PyObject* args)
{
    const char* text = nullptr;
    IxAppDelegate* delegate = fx_enter(args, "s", &text);
    if (!delegate)
        return nullptr;
    delegate->showNotification(textOf(text));
    return fx_none();
}

PyObject* fx_pyapp_PrintToErrorLog(PyObject* /*module*/, PyObject* args)
{
    const char* text = nullptr;
    if (!PyArg_ParseTuple(args, "s", &text))
        return nullptr;
    QMessageLogger(nullptr, 0, nullptr, "default").critical() << textOf(text);
    return fx_none();
}

PyObject* fx_pyapp_AskUserForString(PyObject* /*module*/, PyObject* args)
{
    const char* title = nullptr;
    const char* label = nullptr;
    IxAppDelegate* delegate = fx_enter(args, "ss", &title, &label);
    if (!delegate)
        return nullptr;
    return fx_text(
        QInputDialog::getText(delegate->mainWindow(), textOf(title), textOf(label), QLineEdit::Normal, QString()));
}
