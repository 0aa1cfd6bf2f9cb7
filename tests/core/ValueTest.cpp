#include "CxValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();

CxValue text(const char* value)
{
    return CxValue::fromString(QString::fromUtf8(value));
}

std::string printed(float value)
{
    return CxValue::fromFloat(value).toString().toStdString();
}

TEST(Value, IsEmptyByDefaultAndConvertsToNothing)
{
    const CxValue value;
    EXPECT_EQ(value.type(), CxValue::Empty);
    EXPECT_EQ(value.toInt(), 0);
    EXPECT_EQ(value.toFloat(), 0.0F);
    EXPECT_FALSE(value.toBool());
    EXPECT_TRUE(value.toString().isEmpty());
    EXPECT_EQ(value.converted(CxValue::Empty), CxValue());
}

TEST(Value, FloatingRoundsToTheNearestInteger)
{
    EXPECT_EQ(CxValue::fromFloat(1.4F).toInt(), 1);
    EXPECT_EQ(CxValue::fromFloat(1.5F).toInt(), 2);
    EXPECT_EQ(CxValue::fromFloat(-1.5F).toInt(), -2);
    EXPECT_EQ(CxValue::fromFloat(-1.4F).toInt(), -1);
}

TEST(Value, FloatingBeyondThirtyTwoBitsStopsAtTheLimits)
{
    EXPECT_EQ(CxValue::fromFloat(1e20F).toInt(), largest);
    EXPECT_EQ(CxValue::fromFloat(-1e20F).toInt(), smallest);
    EXPECT_EQ(CxValue::fromFloat(infinity).toInt(), largest);
    EXPECT_EQ(CxValue::fromFloat(notANumber).toInt(), 0);
    EXPECT_FALSE(CxValue::fromFloat(notANumber).toBool());
}

TEST(Value, TextsThatAreNumbersConvert)
{
    EXPECT_EQ(text("42").toInt(), 42);
    EXPECT_EQ(text(" -7 ").toInt(), -7);
    EXPECT_EQ(text("2.6").toInt(), 3);
    EXPECT_EQ(text("1e3").toInt(), 1000);
    EXPECT_EQ(text("99999999999").toInt(), largest);
    EXPECT_FLOAT_EQ(text("0.25").toFloat(), 0.25F);
    EXPECT_EQ(text("-1e300").toFloat(), -infinity);
}

TEST(Value, TextsThatAreNoNumbersConvertToZero)
{
    for (const char* word : {"", "abc", "12 apples", "nan", "0x10", "1,5", "--1"}) {
        EXPECT_EQ(text(word).toInt(), 0) << word;
        EXPECT_EQ(text(word).toFloat(), 0.0F) << word;
    }
}

TEST(Value, TextsBecomeTruthValues)
{
    for (const char* word : {"true", "True", "YES", "on", "1", "-2.5"})
        EXPECT_TRUE(text(word).toBool()) << word;
    for (const char* word : {"false", "no", "off", "0", "0.0", "", "maybe"})
        EXPECT_FALSE(text(word).toBool()) << word;
}

TEST(Value, TruthValuesAreOneAndZero)
{
    EXPECT_EQ(CxValue::fromBool(true).toInt(), 1);
    EXPECT_EQ(CxValue::fromBool(true).toFloat(), 1.0F);
    EXPECT_EQ(CxValue::fromBool(false).toInt(), 0);
    EXPECT_EQ(CxValue::fromBool(true).toString(), QStringLiteral("true"));
    EXPECT_EQ(CxValue::fromBool(false).toString(), QStringLiteral("false"));
}

TEST(Value, FloatingPrintsTheFewestDigitsThatReadBackTheSame)
{
    EXPECT_EQ(printed(0.1F), "0.1");
    EXPECT_EQ(printed(24.0F), "24");
    EXPECT_EQ(printed(-35.5F), "-35.5");
    EXPECT_EQ(printed(1000000.0F), "1000000");
    EXPECT_EQ(printed(0.0F), "0");
    EXPECT_EQ(printed(1e20F), "1e+20");
    for (const float value : {0.3F, 1.0F / 3.0F, 16777217.0F, 1e-7F, 3.4e38F, std::numeric_limits<float>::denorm_min()})
        EXPECT_EQ(CxValue::fromString(CxValue::fromFloat(value).toString()).toFloat(), value) << value;
}

TEST(Value, ConvertingTakesTheTypeAlong)
{
    const CxValue value = CxValue::fromFloat(2.5F);
    EXPECT_EQ(value.converted(CxValue::Integer), CxValue::fromInt(3));
    EXPECT_EQ(value.converted(CxValue::Floating), value);
    EXPECT_EQ(value.converted(CxValue::Boolean), CxValue::fromBool(true));
    EXPECT_EQ(value.converted(CxValue::String), text("2.5"));
}

TEST(Value, EqualMeansEqualTypeAndValue)
{
    EXPECT_FALSE(CxValue::fromInt(1) == CxValue::fromFloat(1.0F));
    EXPECT_FALSE(CxValue::fromInt(1) == CxValue::fromInt(2));
    EXPECT_FALSE(CxValue::fromFloat(notANumber) == CxValue::fromFloat(notANumber));
    EXPECT_EQ(text("a"), text("a"));
}

} // namespace
