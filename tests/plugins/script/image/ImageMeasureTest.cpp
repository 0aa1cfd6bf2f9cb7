// Measurements of images that scripts cannot make themselves.

#include "support/ScriptTest.h"

namespace {

class ImageMeasure : public SharedScriptTest
{
};

TEST_F(ImageMeasure, SubtractsTheBlackLevelOnlyWhenAsked)
{
    auto image = makeTestImage(4, 1); // 0, 1, 2, 3
    image->picBuf()->blackLevel = 10;
    publish("img", *image);
    const std::string ends = "[(c['min'], c['mean'], c['max']) for c in ";
    EXPECT_EQ(value(ends + "img.measure_rect()]"), "[(0.0, 1.5, 3.0)]");
    EXPECT_EQ(value(ends + "img.measure_rect(0, 0, 0, 0, False)]"), "[(0.0, 1.5, 3.0)]");
    EXPECT_EQ(value(ends + "img.measure_rect(0, 0, 0, 0, True)]"), "[(-10.0, -8.5, -7.0)]");
    EXPECT_EQ(value(ends + "img.measure_row_profiles_in_rect()[0]]"), "[(0.0, 1.5, 3.0)]");
    EXPECT_EQ(value(ends + "img.measure_column_profiles_in_rect()[3]]"), "[(3.0, 3.0, 3.0)]");
}

} // namespace
