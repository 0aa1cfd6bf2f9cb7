// What names of camera parameters say.

#include "camera/CameraNames.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

using Action = CameraAttributeName::Action;
using Selected = CameraParameterName::Selected;

struct AttributeRow {
    const char* text;
    Action action;
    const char* parameter;
    const char* target;
};

void PrintTo(const AttributeRow& row, std::ostream* out)
{
    *out << row.text;
}

class CameraAttributeNames : public testing::TestWithParam<AttributeRow>
{
};

TEST_P(CameraAttributeNames, AreTakenApart)
{
    const AttributeRow& row = GetParam();
    const CameraAttributeName name = fx_cam_parseAttributeName(QString::fromUtf8(row.text));
    EXPECT_EQ(int(name.action), int(row.action)) << row.text;
    EXPECT_EQ(name.parameter.toStdString(), row.parameter) << row.text;
    EXPECT_EQ(name.target.toStdString(), row.target) << row.text;
}

INSTANTIATE_TEST_SUITE_P(WithAPrefix, CameraAttributeNames,
                         testing::Values(AttributeRow{"get_level", Action::Read, "level", "level"},
                                         AttributeRow{"is_level", Action::Read, "level", "level"},
                                         AttributeRow{"set_level", Action::Set, "level", "level"},
                                         AttributeRow{"enable_level", Action::Enable, "level", "level"},
                                         AttributeRow{"disable_level", Action::Disable, "level", "level"},
                                         AttributeRow{"get_black_level", Action::Read, "black_level", "black_level"},
                                         AttributeRow{"is_set_level", Action::Read, "set_level", "set_level"},
                                         AttributeRow{"get_pegel_höhe", Action::Read, "pegel_höhe", "pegel_höhe"},
                                         AttributeRow{"get_", Action::Read, "", ""},
                                         AttributeRow{"get__", Action::Read, "_", "_"}));

INSTANTIATE_TEST_SUITE_P(
    WithARangeWord, CameraAttributeNames,
    testing::Values(AttributeRow{"get_level_maximum", Action::Read, "level", "level:max"},
                    AttributeRow{"is_level_minimum", Action::Read, "level", "level:min"},
                    AttributeRow{"set_black_level_increment", Action::Set, "black_level", "black_level:inc"},
                    AttributeRow{"enable_level_maximum", Action::Enable, "level", "level:max"},
                    AttributeRow{"get_a_minimum_maximum", Action::Read, "a_minimum", "a_minimum:max"},
                    AttributeRow{"get__a_maximum", Action::Read, "_a", "_a:max"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutARangeWord, CameraAttributeNames,
    testing::Values(AttributeRow{"get_maximum", Action::Read, "maximum", "maximum"},
                    AttributeRow{"get__maximum", Action::Read, "_maximum", "_maximum"},
                    AttributeRow{"get_level_Maximum", Action::Read, "level_Maximum", "level_Maximum"},
                    AttributeRow{"get_level_maximum_", Action::Read, "level_maximum_", "level_maximum_"},
                    AttributeRow{"get_level_max", Action::Read, "level_max", "level_max"},
                    AttributeRow{"get_levelmaximum", Action::Read, "levelmaximum", "levelmaximum"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutAPrefix, CameraAttributeNames,
    testing::Values(AttributeRow{"", Action::None, "", ""}, AttributeRow{"level", Action::None, "", ""},
                    AttributeRow{"level_maximum", Action::None, "", ""}, AttributeRow{"get", Action::None, "", ""},
                    AttributeRow{"Get_level", Action::None, "", ""}, AttributeRow{" get_level", Action::None, "", ""},
                    AttributeRow{"_get_level", Action::None, "", ""},
                    AttributeRow{"open_device", Action::None, "", ""}));

struct ParameterRow {
    const char* name;
    const char* base;
    Selected selected;
};

void PrintTo(const ParameterRow& row, std::ostream* out)
{
    *out << row.name;
}

class CameraParameterNames : public testing::TestWithParam<ParameterRow>
{
};

TEST_P(CameraParameterNames, AreSplitAtAKnownSuffix)
{
    const ParameterRow& row = GetParam();
    const CameraParameterName name = fx_cam_splitSuffix(QString::fromUtf8(row.name));
    EXPECT_EQ(name.base.toStdString(), row.base) << row.name;
    EXPECT_EQ(int(name.selected), int(row.selected)) << row.name;
}

INSTANTIATE_TEST_SUITE_P(Known, CameraParameterNames,
                         testing::Values(ParameterRow{"level", "level", Selected::Value},
                                         ParameterRow{"level:info", "level", Selected::Value},
                                         ParameterRow{"level:min", "level", Selected::Minimum},
                                         ParameterRow{"level:max", "level", Selected::Maximum},
                                         ParameterRow{"level:inc", "level", Selected::Increment},
                                         ParameterRow{":min", "", Selected::Minimum}));

INSTANTIATE_TEST_SUITE_P(Unknown, CameraParameterNames,
                         testing::Values(ParameterRow{"level:", "level:", Selected::Value},
                                         ParameterRow{"level:abc", "level:abc", Selected::Value},
                                         ParameterRow{"level:MIN", "level:MIN", Selected::Value},
                                         ParameterRow{"level:min ", "level:min ", Selected::Value},
                                         ParameterRow{"level:abc:min", "level:abc:min", Selected::Value},
                                         ParameterRow{"level_maximum", "level_maximum", Selected::Value}));

} // namespace
