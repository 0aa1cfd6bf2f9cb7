#include "EnvironmentDialog.h"

#include "ErrorColor.h"

#include <QtCore/QDir>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <utility>

EnvironmentDialog::EnvironmentDialog(const QString& folder, const QString& note, Check check, QWidget* parent)
    : QDialog(parent)
    , m_check(std::move(check))
    , m_folder(new QLineEdit(folder))
    , m_problem(new QLabel)
{
    setWindowTitle(tr("Python Environment"));
    setMinimumWidth(520);
    m_folder->setObjectName(QStringLiteral("environmentFolder"));
    m_folder->setClearButtonEnabled(true);
    m_folder->setPlaceholderText(tr("None"));
    m_problem->setObjectName(QStringLiteral("environmentProblem"));
    m_problem->setWordWrap(true);
    QPalette colors = m_problem->palette();
    colors.setColor(QPalette::WindowText, errorColor(colors));
    m_problem->setPalette(colors);
    m_problem->hide();

    auto* text = new QLabel(tr("Scripts use the packages of this virtual environment before those of the system."));
    text->setWordWrap(true);
    auto* label = new QLabel(tr("&Folder:"));
    label->setBuddy(m_folder);
    auto* choose = new QPushButton(tr("&Choose..."));
    choose->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, &EnvironmentDialog::chooseFolder);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(m_folder, 1);
    row->addWidget(choose);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &EnvironmentDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &EnvironmentDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addLayout(row);
    layout->addWidget(m_problem);
    auto* later = new QLabel(note.isEmpty() ? tr("The viewer uses a change when it starts next.") : note);
    later->setWordWrap(true);
    layout->addWidget(later);
    layout->addStretch(1);
    layout->addWidget(buttons);
}

void EnvironmentDialog::accept()
{
    const QString text = m_folder->text().trimmed();
    const QString folder = text.isEmpty() ? text : QDir(text).absolutePath();
    const QString problem = m_check(folder);
    m_problem->setText(problem);
    m_problem->setVisible(!problem.isEmpty());
    if (!problem.isEmpty())
        return;
    Q_EMIT environmentChosen(folder);
    QDialog::accept();
}

void EnvironmentDialog::chooseFolder()
{
    auto* dialog = new QFileDialog(this, tr("Python Environment"), m_folder->text());
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QFileDialog::fileSelected, m_folder, &QLineEdit::setText);
    dialog->open();
}
