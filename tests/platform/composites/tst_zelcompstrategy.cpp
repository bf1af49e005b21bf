#include "zelcompstrategy.h"

#include "zeltestsupport.h"

#include <QMetaEnum>

#include <string>
#include <type_traits>

static_assert(!std::is_default_constructible_v<ZELCompStrategy>, "the class only scopes its enumeration");

namespace {

struct ModeCase {
    const char* name;
    quint8 value;
    const char* label;
    //! The enumerator's name in the meta-object; null for a value outside the enumeration.
    const char* key;
};
ZELTEST_PRINT_CASE_BY_NAME(ModeCase);

} // namespace

class ZELCompStrategyModeTest : public ::testing::TestWithParam<ModeCase> {};

TEST_P(ZELCompStrategyModeTest, LabelNamesTheMode)
{
    const ModeCase& c = GetParam();
    const auto mode = static_cast<ZELCompStrategy::PropagationMode>(c.value);
    EXPECT_EQ(ZELCompStrategy::GetPropagationModeLabel(mode), QString::fromLatin1(c.label));
}

TEST_P(ZELCompStrategyModeTest, MetaObjectNamesTheEnumerator)
{
    const ModeCase& c = GetParam();
    EXPECT_STREQ(QMetaEnum::fromType<ZELCompStrategy::PropagationMode>().valueToKey(c.value), c.key);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, ZELCompStrategyModeTest,
    ::testing::Values(ModeCase{"Angle", ZELCompStrategy::Angle, "Angle", "Angle"},
                      ModeCase{"Offset", ZELCompStrategy::Offset, "Offset", "Offset"},
                      ModeCase{"GeodesicOffset", ZELCompStrategy::GeodesicOffset, "Geodesic Offset", "GeodesicOffset"},
                      ModeCase{"Parallel", ZELCompStrategy::Parallel, "Parallel", "Parallel"},
                      ModeCase{"Geodesic", ZELCompStrategy::Geodesic, "Geodesic", "Geodesic"},
                      ModeCase{"UserDefined", ZELCompStrategy::UserDefined, "User Defined", "UserDefined"},
                      ModeCase{"FirstValueBeyondTheModes", 6, "Unknown (6)", nullptr},
                      ModeCase{"ValueNine", 9, "Unknown (9)", nullptr},
                      ModeCase{"LargestByte", 255, "Unknown (255)", nullptr}),
    [](const ::testing::TestParamInfo<ModeCase>& info) { return std::string(info.param.name); });

TEST(ZELCompStrategyTest, MetaObjectKnowsExactlySixModes)
{
    EXPECT_EQ(QMetaEnum::fromType<ZELCompStrategy::PropagationMode>().keyCount(), 6);
}
