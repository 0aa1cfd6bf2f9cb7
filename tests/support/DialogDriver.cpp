#include "DialogDriver.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>

#include <gtest/gtest.h>

#include <utility>

DialogDriver::DialogDriver()
{
    QCoreApplication::instance()->installEventFilter(this);
}

DialogDriver::~DialogDriver()
{
    EXPECT_TRUE(m_steps.empty()) << m_steps.size() << " dialogs did not open";
}

void DialogDriver::click(QDialog& dialog, const QString& label)
{
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
        if (QString(button->text()).remove(u'&') == label)
            return QTest::mouseClick(button, Qt::LeftButton);
    }
    ADD_FAILURE() << "no button " << label.toStdString();
    dialog.reject();
}

bool DialogDriver::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Show) {
        if (auto* dialog = qobject_cast<QDialog*>(object); dialog && dialog->isModal()) {
            // Act once the dialog's own event loop runs, as a user does.
            QTimer::singleShot(0, dialog, [this, dialog] {
                if (m_steps.empty()) {
                    ADD_FAILURE() << "unexpected dialog " << dialog->windowTitle().toStdString();
                    return dialog->reject();
                }
                const Step step = std::move(m_steps.front());
                m_steps.pop_front();
                step(*dialog);
            });
        }
    }
    return QObject::eventFilter(object, event);
}
