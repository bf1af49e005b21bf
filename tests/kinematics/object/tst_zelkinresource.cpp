#include <zelkintestaccess.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

class ZELKinResourceLabel : public ::testing::TestWithParam<QString>
{
};

TEST_P(ZELKinResourceLabel, IsUnchangedBySavingAndLoading)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    ZELKinTestAccess::CreateVariable(machine, GetParam());

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    const ZELKinVariable* loaded = ZELTest::FirstOf<ZELKinVariable>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetLabel(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Labels, ZELKinResourceLabel,
                         ::testing::Values(QString(), QStringLiteral("X"), QStringLiteral("Kopf \u00c4\u00df\u00b0"),
                                           QStringLiteral("\u30ed\u30fc\u30eb C1")));

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
