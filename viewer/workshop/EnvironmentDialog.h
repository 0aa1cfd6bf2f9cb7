#pragma once

#include <QtWidgets/QDialog>

#include <functional>

class QLabel;
class QLineEdit;

/// Asks for the virtual environment whose packages scripts use.
class EnvironmentDialog : public QDialog
{
    Q_OBJECT
public:
    /// Returns why a folder cannot be used, or an empty text.
    using Check = std::function<QString(const QString& folder)>;

    /// folder is the present choice, empty for none. A note is shown below it if it is not empty.
    EnvironmentDialog(const QString& folder, const QString& note, Check check, QWidget* parent);

    void accept() override;

Q_SIGNALS:
    /// The user has accepted a folder that can be used; empty: none.
    void environmentChosen(const QString& folder);

private:
    void chooseFolder();

    Check m_check;
    QLineEdit* m_folder;
    QLabel* m_problem;
};
