#include "storage/FileReplacement.h"

#include "storage/FileReading.h"
#include "support/FileSizeLimit.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// The user id "nobody": for an administrator's thread, permissions count only with another one.
constexpr uid_t nobody = 65534;

class Replacement : public testing::Test
{
protected:
    Replacement() { write("a.png", "old"); }

    QString path(const char* name = "a.png") const { return folder.filePath(QString::fromUtf8(name)); }

    void write(const char* name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QByteArray read(const char* name = "a.png") const
    {
        QByteArray bytes;
        EXPECT_EQ(readWholeFile(path(name), 1 << 24, bytes).text(), QString());
        return bytes;
    }

    unsigned mode(const char* name = "a.png") const
    {
        struct stat status = {};
        EXPECT_EQ(stat(QFile::encodeName(path(name)).constData(), &status), 0);
        return status.st_mode & 07777;
    }

    QStringList names() const
    {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    void expectRefused(const char* name, FileProblem::Kind kind)
    {
        const QStringList before = names();
        const FileProblem problem = replaceFile(path(name), "new");
        EXPECT_EQ(problem.kind(), kind) << name << ": " << problem.text().toStdString();
        EXPECT_FALSE(problem.text().isEmpty());
        EXPECT_EQ(names(), before);
    }

    QTemporaryDir folder;
};

TEST_F(Replacement, PutsTheNewContentIntoThePlaceOfTheOld)
{
    EXPECT_FALSE(replaceFile(path(), "new"));
    EXPECT_EQ(read(), "new");
    EXPECT_FALSE(replaceFile(path("b.png"), QByteArray(3 << 20, 'x')));
    EXPECT_EQ(read("b.png").size(), 3 << 20);
    EXPECT_EQ(names().size(), 2);
}

TEST_F(Replacement, LeavesTheOldFileUntilItIsComplete)
{
    {
        FileReplacement file(path());
        ASSERT_FALSE(file.begin());
        ASSERT_FALSE(file.append("half"));
        EXPECT_EQ(read(), "old");
        EXPECT_TRUE(QFile::exists(file.temporaryPath()));
        EXPECT_EQ(QFileInfo(file.temporaryPath()).path(), folder.path());
        EXPECT_EQ(QFileInfo(file.temporaryPath()).suffix(), QStringLiteral("png"));
        EXPECT_TRUE(QFileInfo(file.temporaryPath()).isHidden());
        EXPECT_EQ(QDir(folder.path()).entryList({QStringLiteral("*.png")}).size(), 1);
    }
    EXPECT_EQ(read(), "old");
    EXPECT_EQ(names().size(), 1);
}

TEST_F(Replacement, KeepsThePermissionsAndTheLink)
{
    for (const unsigned permissions : {0600U, 0640U, 0666U, 0755U}) {
        ASSERT_EQ(chmod(QFile::encodeName(path()).constData(), permissions), 0);
        EXPECT_FALSE(replaceFile(path(), "new"));
        EXPECT_EQ(mode(), permissions);
    }
    const mode_t mask = umask(027);
    EXPECT_FALSE(replaceFile(path("b.png"), "new"));
    umask(mask);
    EXPECT_EQ(mode("b.png"), 0640U);

    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("data")));
    ASSERT_EQ(symlink("data/real.bin", QFile::encodeName(path("first.png")).constData()), 0);
    ASSERT_EQ(symlink("first.png", QFile::encodeName(path("second.png")).constData()), 0);
    EXPECT_FALSE(replaceFile(path("second.png"), "through a link to nothing"));
    EXPECT_FALSE(replaceFile(path("first.png"), "through a link"));
    EXPECT_EQ(read("data/real.bin"), "through a link");
    EXPECT_TRUE(QFileInfo(path("second.png")).isSymLink());
    EXPECT_TRUE(QFileInfo(path("first.png")).isSymLink());
    ASSERT_EQ(symlink("circle.png", QFile::encodeName(path("circle.png")).constData()), 0);
    expectRefused("circle.png", FileProblem::System);
}

TEST_F(Replacement, KeepsTheOwner)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only an administrator can give a file away";
    ASSERT_EQ(chown(QFile::encodeName(path()).constData(), nobody, nobody), 0);
    EXPECT_FALSE(replaceFile(path(), "new"));
    struct stat status = {};
    ASSERT_EQ(stat(QFile::encodeName(path()).constData(), &status), 0);
    EXPECT_EQ(status.st_uid, nobody);
    EXPECT_EQ(status.st_gid, nobody);
}

TEST_F(Replacement, RefusesWhatIsNoFile)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("folder.png")));
    ASSERT_EQ(mkfifo(QFile::encodeName(path("pipe.png")).constData(), 0600), 0);
    ASSERT_EQ(symlink("pipe.png", QFile::encodeName(path("link.png")).constData()), 0);
    expectRefused("folder.png", FileProblem::Folder);
    expectRefused("pipe.png", FileProblem::NotRegular);
    expectRefused("link.png", FileProblem::NotRegular);
    expectRefused("no/such/a.png", FileProblem::MissingFolder);
    expectRefused("a.png/b.png", FileProblem::MissingFolder);
    expectRefused(QByteArray(300, 'x').constData(), FileProblem::LongName);
    EXPECT_EQ(replaceFile(QString(), "new").kind(), FileProblem::EmptyName);
}

TEST_F(Replacement, TakesNamesOfAnyLength)
{
    QByteArray longest(255, 'x');
    longest.replace(251, 4, ".png");
    EXPECT_FALSE(replaceFile(path(longest.constData()), "new"));
    const QByteArray wide = QByteArray("\xF0\x9F\x93\xB7").repeated(60) + ".tif";
    EXPECT_FALSE(replaceFile(path(wide.constData()), "new"));
    EXPECT_FALSE(replaceFile(path("no extension %1"), "new"));
    EXPECT_EQ(names().size(), 4);
}

TEST_F(Replacement, LeavesProtectedFilesAndFoldersAsTheyAre)
{
    const QByteArray file = QFile::encodeName(path());
    const bool isRoot = geteuid() == 0;
    ASSERT_EQ(chmod(file.constData(), 0444), 0);
    ASSERT_EQ(chmod(QFile::encodeName(folder.path()).constData(), 0777), 0);
    const auto as = [isRoot](uid_t user) { return isRoot ? setfsuid(user) : 0; };
    as(nobody);
    const FileProblem protectedFile = replaceFile(path(), "new");
    as(0);
    EXPECT_EQ(protectedFile.kind(), FileProblem::Denied) << protectedFile.text().toStdString();

    ASSERT_EQ(chmod(file.constData(), 0666), 0);
    ASSERT_EQ(chmod(QFile::encodeName(folder.path()).constData(), 0555), 0);
    as(nobody);
    const FileProblem protectedFolder = replaceFile(path(), "new");
    as(0);
    EXPECT_EQ(protectedFolder.kind(), FileProblem::Denied) << protectedFolder.text().toStdString();
    ASSERT_EQ(chmod(QFile::encodeName(folder.path()).constData(), 0700), 0);
    EXPECT_EQ(read(), "old");
    EXPECT_EQ(names().size(), 1);
}

TEST_F(Replacement, LeavesTheOldFileWhenTheDiskTakesNoMore)
{
    const FileSizeLimit limit(100000);
    const FileProblem problem = replaceFile(path(), QByteArray(100001, 'x'));
    EXPECT_EQ(problem.kind(), FileProblem::FileSizeLimit) << problem.text().toStdString();
    EXPECT_EQ(read(), "old");
    EXPECT_EQ(names().size(), 1);
    EXPECT_FALSE(replaceFile(path(), QByteArray(100000, 'x')));
}

TEST_F(Replacement, LeavesTheOldFileWhenTheProcessIsKilled)
{
    for (const bool completes : {false, true}) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            FileReplacement file(path());
            file.begin();
            file.append(QByteArray(100000, 'x'));
            if (completes)
                file.complete();
            raise(SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(read().size(), completes ? 100000 : 3);
    }
}

TEST_F(Replacement, TwoAtOnceDoNotMix)
{
    FileReplacement first(path());
    FileReplacement second(path());
    ASSERT_FALSE(first.begin());
    ASSERT_FALSE(second.begin());
    EXPECT_NE(first.temporaryPath(), second.temporaryPath());
    EXPECT_EQ(first.target(), second.target());
    first.append("first");
    second.append("second");
    EXPECT_FALSE(second.complete());
    EXPECT_EQ(read(), "second");
    EXPECT_FALSE(first.complete());
    EXPECT_EQ(read(), "first");
    EXPECT_EQ(names().size(), 1);
}

TEST(FileProblems, OfTheSystemHaveAText)
{
    EXPECT_EQ(FileProblem::fromErrno(ENOSPC).text(), QStringLiteral("the disk is full"));
    EXPECT_EQ(FileProblem::fromErrno(EDQUOT).text(), QStringLiteral("the disk quota is used up"));
    EXPECT_EQ(FileProblem::fromErrno(EROFS).text(), QStringLiteral("the disk is read-only"));
    EXPECT_EQ(FileProblem::fromErrno(EACCES).text(), QStringLiteral("permission denied"));
    EXPECT_EQ(FileProblem::fromErrno(EIO).text(), QStringLiteral("Input/output error"));
    EXPECT_EQ(FileProblem().text(), QString());
    for (int kind = FileProblem::None + 1; kind <= FileProblem::OutOfMemory; ++kind)
        EXPECT_FALSE(FileProblem(FileProblem::Kind(kind), QStringLiteral("x")).text().isEmpty()) << kind;
}

class Reading : public Replacement
{
protected:
    FileProblem::Kind problem(const char* name, qint64 largest = 100) const
    {
        QByteArray bytes;
        return readWholeFile(path(name), largest, bytes).kind();
    }
};

TEST_F(Reading, SaysWhyAFileCannotBeRead)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("folder")));
    ASSERT_EQ(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    EXPECT_EQ(problem("a.png"), FileProblem::None);
    EXPECT_EQ(problem("a.png", 2), FileProblem::LargeFile);
    EXPECT_EQ(problem("missing"), FileProblem::Missing);
    EXPECT_EQ(problem("a.png/b"), FileProblem::Missing);
    EXPECT_EQ(problem("folder"), FileProblem::Folder);
    EXPECT_EQ(problem("pipe"), FileProblem::NotRegular);
    ASSERT_EQ(chmod(QFile::encodeName(path()).constData(), 0), 0);
    const bool isRoot = geteuid() == 0;
    if (isRoot)
        setfsuid(nobody);
    EXPECT_EQ(problem("a.png"), FileProblem::Denied); // the folder is protected as well for an administrator's thread
    if (isRoot)
        setfsuid(0);
}

} // namespace
