#pragma once

#include <QtCore/QObject>
#include <QtWidgets/QDialog>

#include <deque>
#include <functional>

/// Plays the user of modal dialogs. Each step handles the next dialog that opens.
class DialogDriver : public QObject
{
public:
    using Step = std::function<void(QDialog& dialog)>;

    DialogDriver();

    /// Fails the test if a step is left without a dialog.
    ~DialogDriver() override;

    /// Adds a step for the next dialog that no step handles yet.
    void then(Step step) { m_steps.push_back(std::move(step)); }

    /// Clicks the button with the given label, ignoring mnemonics. Without such a button, fails the test and rejects
    /// the dialog.
    static void click(QDialog& dialog, const QString& label);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    std::deque<Step> m_steps;
};
