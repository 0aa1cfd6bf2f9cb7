#pragma once

#include <QtCore/QObject>
#include <QtWidgets/QDialog>

#include <deque>
#include <functional>

/// Plays the user of modal dialogs: each step meets the next dialog that opens.
class DialogDriver : public QObject
{
public:
    using Step = std::function<void(QDialog& dialog)>;

    DialogDriver();

    /// A step that met no dialog fails the test.
    ~DialogDriver() override;

    /// What to do when the next dialog is open.
    void then(Step step) { m_steps.push_back(std::move(step)); }

    /// Clicks the button with that label, wherever the dialog has it.
    static void click(QDialog& dialog, const QString& label);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    std::deque<Step> m_steps;
};
