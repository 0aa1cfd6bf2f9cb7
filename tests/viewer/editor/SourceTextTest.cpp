#include "editor/SourceText.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

struct Sample {
    const char* name;
    QByteArray bytes;
};

void PrintTo(const Sample& sample, std::ostream* stream)
{
    *stream << sample.name;
}

class SourceTextKept : public testing::TestWithParam<Sample>
{
};

TEST_P(SourceTextKept, ComesBackWithItsBytes)
{
    QString problem;
    const auto source = SourceText::decoded(GetParam().bytes, problem);
    ASSERT_TRUE(source) << problem.toStdString();
    const auto bytes = source->encoded(problem);
    ASSERT_TRUE(bytes) << problem.toStdString();
    EXPECT_EQ(*bytes, GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Files, SourceTextKept,
    testing::Values(Sample{"Empty", ""}, Sample{"Plain", "print(1)\n"}, Sample{"NoLastLineEnd", "print(1)"},
                    Sample{"WindowsLines", "a = 1\r\nb = 2\r\n"}, Sample{"OldMacLines", "a = 1\rb = 2\r"},
                    Sample{"MixedLines", "a = 1\r\nb = 2\nc = 3\r"},
                    Sample{"Utf8", "s = '\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80'\n"},
                    Sample{"Mark", "\xef\xbb\xbfs = '\xc3\xa4'\n"}, Sample{"MarkAlone", "\xef\xbb\xbf"},
                    Sample{"Latin1", "# -*- coding: latin-1 -*-\ns = '\xe4'\n"},
                    Sample{"Latin1Underscore", "# coding=latin_1\ns = '\xe4'\n"},
                    Sample{"Latin9InTheSecondLine",
                           "#!/usr/bin/python3\n# vim: set fileencoding=iso-8859-15 :\ns = '\xa4'\n"},
                    Sample{"Windows1252", "# coding: cp1252\ns = '\x80'\n"},
                    Sample{"DeclarationTooLate", "a = 1\n\n# coding: latin-1\ns = '\xc3\xa4'\n"},
                    Sample{"DeclarationBehindCode", "a = 1\n# coding: latin-1\ns = '\xc3\xa4'\n"},
                    Sample{"ControlCharacters", "s = '\x01\x1b\x7f'\n\x0c\n"}),
    [](const auto& sample) { return std::string(sample.param.name); });

struct Bad {
    const char* name;
    QByteArray bytes;
    const char* problem;
};

void PrintTo(const Bad& sample, std::ostream* stream)
{
    *stream << sample.name;
}

class SourceTextRefused : public testing::TestWithParam<Bad>
{
};

TEST_P(SourceTextRefused, WithTheReason)
{
    QString problem;
    EXPECT_FALSE(SourceText::decoded(GetParam().bytes, problem));
    EXPECT_EQ(problem.toStdString(), GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(
    Files, SourceTextRefused,
    testing::Values(Bad{"Latin1Undeclared", "s = '\xe4'\n", "it is not text in the encoding utf-8"},
                    Bad{"NullBytes", QByteArray("a\0b", 3), "it contains null bytes"},
                    Bad{"UnknownEncoding", "# coding: klingon\n", "the encoding klingon is not known"},
                    Bad{"NotAscii", "# coding: ascii\ns = '\xe4'\n", "it is not text in the encoding ascii"}),
    [](const auto& sample) { return std::string(sample.param.name); });

TEST(SourceText, FollowsADeclarationThatWasChanged)
{
    QString problem;
    EXPECT_EQ((SourceText{QStringLiteral("# coding: latin-1\ns = '\u00e4'\n"), false}.encoded(problem)),
              QByteArray("# coding: latin-1\ns = '\xe4'\n"));
}

TEST(SourceText, LosesNoCharacter)
{
    QString problem;
    EXPECT_FALSE((SourceText{QStringLiteral("# coding: latin-1\ns = '\u20ac'\n"), false}.encoded(problem)));
    EXPECT_EQ(problem.toStdString(), "the text has characters that the encoding latin-1 lacks");
    EXPECT_FALSE((SourceText{QStringLiteral("# coding: klingon\n"), false}.encoded(problem)));
    EXPECT_EQ(problem.toStdString(), "the encoding klingon is not known");
    EXPECT_FALSE((SourceText{QString(QChar(0xd800)), false}.encoded(problem)));
}

} // namespace
