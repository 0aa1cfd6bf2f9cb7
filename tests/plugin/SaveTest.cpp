// save_to_file: the target's folder, the active view's image, the saver.

#include "support/ScriptTest.h"

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

namespace {

class SaveToFile : public ScriptTest
{
protected:
    SaveToFile() { host.environment.directory = folder.path(); }

    QTemporaryDir folder;
};

TEST_F(SaveToFile, ARelativePathTwoNewDirectoriesDeepCreatesBothBelowTheWorkingDirectory)
{
    host.delegate.addView(makeTestImage(4, 3));
    value("vantrel.save_to_file('one/two/picture.unknown')");
    EXPECT_TRUE(QFileInfo(folder.filePath(QStringLiteral("one/two"))).isDir());
    EXPECT_EQ(host.environment.resolved, QStringList(QStringLiteral("one/two/picture.unknown")));
}

TEST_F(SaveToFile, WithoutAnImageFailsWithoutAnExceptionAfterTheDirectoriesAreMade)
{
    EXPECT_EQ(value("vantrel.save_to_file('one/two/picture.png')"), "SystemError");
    EXPECT_TRUE(QFileInfo(folder.filePath(QStringLiteral("one/two"))).isDir());
    EXPECT_FALSE(QFileInfo::exists(folder.filePath(QStringLiteral("one/two/picture.png"))));
    EXPECT_EQ(host.delegate.lookups, QStringList({QStringLiteral("activeViewId()"), QStringLiteral("viewImage(-1)")}));
}

TEST_F(SaveToFile, OfAViewWithoutAnImageFailsWithoutAnException)
{
    host.delegate.addView(nullptr);
    EXPECT_EQ(value("vantrel.save_to_file('picture.png')"), "SystemError");
}

TEST_F(SaveToFile, WithoutASaverForTheNameFailsWithoutAnException)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.save_to_file('picture.unknown')"), "SystemError");
    EXPECT_EQ(value("vantrel.save_to_file('picture')"), "SystemError");
    EXPECT_EQ(value("vantrel.save_to_file('')"), "SystemError");
}

TEST_F(SaveToFile, IgnoresAFolderThatCannotBeMade)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.save_to_file('/proc/none/two/picture.unknown')"), "SystemError");
}

TEST_F(SaveToFile, TakesOneText)
{
    EXPECT_EQ(value("vantrel.save_to_file()").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.save_to_file(1)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.save_to_file('a', 'b')").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.save_to_file('a\\0b')"), "ValueError: embedded null character");
    EXPECT_TRUE(host.environment.resolved.empty());
}

} // namespace
