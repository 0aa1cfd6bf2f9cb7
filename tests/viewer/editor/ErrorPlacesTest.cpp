#include "workshop/ErrorPlaces.h"

#include <gtest/gtest.h>

namespace {

const QString failure = QStringLiteral("Traceback (most recent call last):\n"
                                       "  File \"/s/a.py\", line 8, in <module>\n"
                                       "    work()\n"
                                       "  File \"/s/b.py\", line 3, in work\n"
                                       "    raise ValueError('File \"/s/a.py\", line 99')\n"
                                       "ValueError: File \"/s/a.py\", line 99\n");

FileError errorIn(const char* file, const QString& errors)
{
    return errorInFile(errors, [file](const QString& name) { return name == QString::fromUtf8(file); });
}

TEST(ErrorPlaces, AreFoundWithTheirExtent)
{
    const QString line = QStringLiteral("  File \"/a b/\u00e4.py\", line 12, in f; File \"x\", line 3");
    const auto places = errorPlacesIn(line);
    ASSERT_EQ(places.size(), 2);
    EXPECT_EQ(places[0].file.toStdString(), "/a b/\u00e4.py");
    EXPECT_EQ(places[0].line, 12);
    EXPECT_EQ(line.mid(places[0].begin, places[0].end - places[0].begin).toStdString(),
              "File \"/a b/\u00e4.py\", line 12");
    EXPECT_EQ(places[1].file.toStdString(), "x");
}

TEST(ErrorPlaces, InTheInterpreterItselfAreNoLinks)
{
    EXPECT_TRUE(errorPlacesIn(QStringLiteral("  File \"<string>\", line 1, in <module>")).isEmpty());
    EXPECT_TRUE(errorPlacesIn(QStringLiteral("File not found, line 3")).isEmpty());
    EXPECT_TRUE(errorPlacesIn(QString()).isEmpty());
}

TEST(FileError, IsThatOfTheLastCallInTheFile)
{
    EXPECT_EQ(errorIn("/s/a.py", failure).line, 8);
    EXPECT_EQ(errorIn("/s/b.py", failure).line, 3);
    EXPECT_EQ(errorIn("/s/c.py", failure).line, 0);
    EXPECT_EQ(errorIn("/s/a.py", failure).message.toStdString(), "ValueError: File \"/s/a.py\", line 99");
}

TEST(FileError, IsThatOfTheLastTraceback)
{
    const QString second = QStringLiteral("\nDuring handling of the above exception, another exception occurred:\n\n"
                                          "Traceback (most recent call last):\n"
                                          "  File \"/s/a.py\", line 5, in <module>\n"
                                          "KeyError: 1\n");
    EXPECT_EQ(errorIn("/s/a.py", failure + second).line, 5);
    EXPECT_EQ(errorIn("/s/a.py", failure + second).message.toStdString(), "KeyError: 1");
    EXPECT_EQ(errorIn("/s/b.py", failure + second).line, 0);
}

TEST(FileError, OfInvalidSyntaxHasNoTraceback)
{
    const QString errors =
        QStringLiteral("some text of the script's\n  File \"/s/a.py\", line 2\n    x = (\n        ^\n"
                       "SyntaxError: '(' was never closed\n");
    EXPECT_EQ(errorIn("/s/a.py", errors).line, 2);
    EXPECT_EQ(errorIn("/s/a.py", errors).message.toStdString(), "SyntaxError: '(' was never closed");
}

} // namespace
