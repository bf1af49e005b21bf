#include <zelkintestaccess.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

struct LabelCase
{
    const char* name;
    QString label;
};
ZELTEST_PRINT_CASE_BY_NAME(LabelCase);

class ZELKinResourceLabel : public ::testing::TestWithParam<LabelCase>
{
};

TEST_P(ZELKinResourceLabel, IsUnchangedBySavingAndLoading)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    ZELKinTestAccess::CreateVariable(machine, GetParam().label);

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    const ZELKinVariable* loaded = ZELTest::FirstOf<ZELKinVariable>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetLabel(), GetParam().label);
}

INSTANTIATE_TEST_SUITE_P(Labels, ZELKinResourceLabel,
                         ::testing::Values(LabelCase{"Empty", QString()}, LabelCase{"OneLetter", QStringLiteral("X")},
                                           LabelCase{"GermanLettersAndDegreeSign",
                                                     QStringLiteral("Kopf \u00c4\u00df\u00b0")},
                                           LabelCase{"KatakanaWithSpace", QStringLiteral("\u30ed\u30fc\u30eb C1")}));

TEST(ZELKinResource, LoadingConstructionLeavesTheLabelEmptyUntilLoad)
{
    ZELGeoContainer container;
    const ZELKinVariable variable(&container, ZELGeoGeometryRef());
    EXPECT_TRUE(variable.GetLabel().isEmpty());
}

TEST(ZELKinResource, RecordStartsWithTheLabel)
{
    ZELGeoContainer container;
    const ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELGeoStream stream(machine->GetCurrentState(), &container);
    QString label;
    stream >> label;
    EXPECT_EQ(label, QStringLiteral("gantry"));
}
