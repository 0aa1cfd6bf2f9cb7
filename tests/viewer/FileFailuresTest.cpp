// What the window says about image files that cannot be opened or saved by hand.

#include "Pictures.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "views/ImageFiles.h"
#include "views/ImageView.h"
#include "window/MainWindow.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>

#include <sys/fsuid.h>
#include <unistd.h>

namespace {

class FileFailures : public testing::Test
{
protected:
    FileFailures() { window.show(); }

    QString path(const char* name) const { return folder.filePath(QString::fromUtf8(name)); }

    void write(const char* name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QByteArray healthy(const char* name) const
    {
        QString problem;
        EXPECT_TRUE(saveImageFile(*greyPicture(40, 30, 77), path(name), problem));
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// Chooses an item of the file menu, and types a path into the dialog.
    void choose(const QString& item, const QString& file)
    {
        for (QAction* action : window.menu(MainWindow::FileMenu)->actions())
            if (action->text() == item)
                action->trigger();
        auto* dialog = window.findChild<QFileDialog*>();
        ASSERT_NE(dialog, nullptr);
        auto* line = dialog->findChild<QLineEdit*>();
        line->setFocus();
        line->setText(file);
        QTest::keyClick(line, Qt::Key_Return);
    }

    /// The text of the message box, which is closed. Empty if there is none.
    QString said()
    {
        QString text;
        QTest::qWait(1); // the dialog for the file is deleted
        for (auto* box : window.findChildren<QMessageBox*>()) {
            text += box->text();
            box->reject();
        }
        QTest::qWait(1);
        return text;
    }

    QString saidAfterOpening(const char* name)
    {
        choose(QStringLiteral("&Open..."), path(name));
        return said();
    }

    QString saidAfterSaving(const char* name)
    {
        choose(QStringLiteral("Save &As..."), path(name));
        return said();
    }

    QTemporaryDir folder;
    MainWindow window;
    LogCapture log; // keeps the lines away from the output of the tests
};

TEST_F(FileFailures, OfOpeningHaveAReasonInTheWindow)
{
    const QByteArray png = healthy("healthy.png");
    QByteArray damaged = png;
    damaged[damaged.size() - 20] = char(damaged[damaged.size() - 20] ^ 0x55);
    write("truncated.png", png.left(png.size() - 5));
    write("damaged.png", damaged);
    write("empty.png", "");
    write("text.png", "no image");
    write("movie.xyz", "no image");
    const auto sentence = [&](const char* name, const char* reason) {
        return QStringLiteral("Cannot open %1: %2.").arg(path(name), QString::fromUtf8(reason)).toStdString();
    };
    const std::pair<const char*, const char*> reasons[] = {
        {"truncated.png", "it is truncated"},
        {"damaged.png", "it is damaged"},
        {"empty.png", "it is empty"},
        {"text.png", "it is not an image or is damaged"},
        {"movie.xyz", "its type is not supported; these are: png, tif, tiff, jpg, jpeg, bmp, pgm, ppm"},
    };
    for (const auto& [name, reason] : reasons) {
        log.clear();
        EXPECT_EQ(saidAfterOpening(name).toStdString(), sentence(name, reason));
        ASSERT_EQ(log.criticals().size(), 1);
        EXPECT_TRUE(log.criticals()[0].endsWith(QString::fromUtf8(reason))) << log.criticals()[0].toStdString();
    }
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("folder.png")));
    const QStringList failures =
        window.views().openFiles({path("missing.png"), path("healthy.png"), path("folder.png")});
    ASSERT_EQ(failures.size(), 2);
    EXPECT_EQ(failures[0].toStdString(), sentence("missing.png", "it does not exist"));
    EXPECT_EQ(failures[1].toStdString(), sentence("folder.png", "it is a folder"));
    EXPECT_EQ(window.views().ids().size(), 1U);
    EXPECT_EQ(saidAfterOpening("healthy.png"), QString());
}

TEST_F(FileFailures, OfMissingPermissionsSaySo)
{
    healthy("a.png");
    QFile(path("a.png")).setPermissions({});
    if (geteuid() == 0)
        setfsuid(65534); // permissions do not count for an administrator
    const QStringList failures = window.views().openFiles({path("a.png")});
    if (geteuid() == 0)
        setfsuid(0);
    ASSERT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures[0].endsWith(QStringLiteral(": permission denied."))) << failures[0].toStdString();
}

TEST_F(FileFailures, OfSavingHaveAReasonInTheWindow)
{
    write("old.png", "old");
    std::vector<float> values(60 * 40);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = 1.0F / float(i + 1);
    window.views().add(picture(ExImageDataType::Float, 32, 60, 1, values), QStringLiteral("view"));
    EXPECT_TRUE(saidAfterSaving("new.png").endsWith(
        QStringLiteral("new.png: depth would be lost: the file format cannot hold the values of the image.")));
    EXPECT_TRUE(saidAfterSaving("new.xyz").contains(QStringLiteral("new.xyz: its type is not supported")));
    EXPECT_TRUE(saidAfterSaving("no/such/new.tif").contains(QStringLiteral("its folder does not exist")));
    {
        const FileSizeLimit limit(1000);
        EXPECT_TRUE(saidAfterSaving("new.tif").contains(QStringLiteral("it would be larger than files may be")));
    }
    EXPECT_EQ(saidAfterSaving("new.tif"), QString());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).join(u' '), QStringLiteral("new.tif old.png"));
}

} // namespace
