#include "scripting/DialogAnswers.h"

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <gtest/gtest.h>

namespace {

QStringList texts(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* text : list)
        result += QString::fromUtf8(text);
    return result;
}

/// Shows a message box with buttons of these labels and tells which one was pressed.
QString pressed(const QStringList& labels)
{
    QMessageBox box;
    for (const QString& label : labels)
        box.addButton(label, QMessageBox::ActionRole);
    box.exec();
    return box.clickedButton() ? box.clickedButton()->text() : QString();
}

QString entered()
{
    return QInputDialog::getText(nullptr, QStringLiteral("title"), QStringLiteral("label"), QLineEdit::Normal,
                                 QString());
}

TEST(DialogAnswers, PressTheButtonsInTurn)
{
    const DialogAnswers answers(texts({"Second", "First"}), false);
    const QStringList labels = texts({"First", "Second", "Third"});
    EXPECT_EQ(pressed(labels), QStringLiteral("Second"));
    EXPECT_EQ(pressed(labels), QStringLiteral("First"));
}

TEST(DialogAnswers, LetterCaseAndMnemonicsDoNotCount)
{
    const DialogAnswers answers(texts({"go ON", "s&top", "this && that"}), false);
    EXPECT_EQ(pressed(texts({"&Stop", "Go &on"})), QStringLiteral("Go &on"));
    EXPECT_EQ(pressed(texts({"&Stop", "Go &on"})), QStringLiteral("&Stop"));
    EXPECT_EQ(pressed(texts({"This && That"})), QStringLiteral("This && That"));
}

TEST(DialogAnswers, PressTheStandardButton)
{
    for (const char* label : {"OK", "Ok"}) {
        const DialogAnswers answers(texts({label}), false);
        QMessageBox box;
        QAbstractButton* button = box.addButton(QMessageBox::Ok);
        box.exec();
        EXPECT_EQ(box.clickedButton(), button) << label;
    }
}

TEST(DialogAnswers, EnterTexts)
{
    const DialogAnswers answers(texts({"häl & lo", "", "<cancel>", "Cancel"}), false);
    EXPECT_EQ(entered(), QStringLiteral("häl & lo"));
    EXPECT_EQ(entered(), QString());
    EXPECT_TRUE(entered().isNull()) << "a dialog that is cancelled gives nothing";
    EXPECT_EQ(entered(), QStringLiteral("Cancel"));
}

TEST(DialogAnswers, CancelClosesABoxThatHasNoButtonForIt)
{
    const DialogAnswers answers(texts({"<cancel>"}), false);
    EXPECT_EQ(pressed(texts({"First", "Second"})), QString());
}

TEST(DialogAnswers, AnUnknownButtonDismissesTheDialog)
{
    const DialogAnswers answers(texts({"Fourth", "First"}), true);
    EXPECT_EQ(pressed(texts({"First", "Second"})), QString());
    EXPECT_EQ(pressed(texts({"First", "Second"})), QStringLiteral("First"));
}

TEST(DialogAnswers, WithoutAnAnswerADialogThatNobodySeesIsDismissed)
{
    const DialogAnswers answers({}, false);
    EXPECT_EQ(pressed(texts({"First", "Second"})), QString());
    EXPECT_TRUE(entered().isNull());
}

TEST(DialogAnswers, WithoutAnAnswerADialogThatIsSeenIsLeftToTheUser)
{
    const DialogAnswers answers({}, true);
    // Time enough to answer the dialog, which nothing must do.
    QTimer::singleShot(200, qApp, [] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        box->buttons().first()->click();
    });
    EXPECT_EQ(pressed(texts({"First"})), QStringLiteral("First"));
}

} // namespace
