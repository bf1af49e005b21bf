#include <zeltpmachineconfiguration.h>

#include <zeltestsupport.h>

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

TEST(ZELTPMachineConfiguration, DefaultHasAnUnnamedRollerAndHead)
{
    const ZELTPMachineConfiguration configuration;
    EXPECT_TRUE(configuration.GetTool().GetName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, configuration.GetTool().GetWidth(), ZELTest::kExact));
    EXPECT_TRUE(configuration.GetHead().GetName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, configuration.GetHead().GetTowWidth(), ZELTest::kExact));
}

TEST(ZELTPMachineConfiguration, KeepsToolAndHead)
{
    const ZELTPMachineConfiguration configuration(ZELTPRoller(QStringLiteral("R50"), 50.8),
                                                  ZELTPAFPHead(QStringLiteral("H16"), 6.35));
    EXPECT_EQ(configuration.GetTool().GetName(), QStringLiteral("R50"));
    EXPECT_TRUE(ZELTest::SameDouble(50.8, configuration.GetTool().GetWidth(), ZELTest::kExact));
    EXPECT_EQ(configuration.GetHead().GetName(), QStringLiteral("H16"));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, configuration.GetHead().GetTowWidth(), ZELTest::kExact));
}

TEST(ZELTPMachineConfiguration, StreamFormIsToolThenHead)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R50"), 50.8),
                                     ZELTPAFPHead(QStringLiteral("H16"), 6.35));
    QDataStream in(bytes);
    QString toolName;
    double toolWidth = 0.0;
    QString headName;
    double towWidth = 0.0;
    in >> toolName >> toolWidth >> headName >> towWidth;
    EXPECT_EQ(toolName, QStringLiteral("R50"));
    EXPECT_TRUE(ZELTest::SameDouble(50.8, toolWidth, ZELTest::kExact));
    EXPECT_EQ(headName, QStringLiteral("H16"));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, towWidth, ZELTest::kExact));
    EXPECT_TRUE(in.atEnd());
}

TEST(ZELTPMachineConfiguration, SurvivesTheStream)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPMachineConfiguration(ZELTPRoller(QStringLiteral("R25"), 25.4),
                                     ZELTPAFPHead(QStringLiteral("H8"), 12.7));
    QDataStream in(bytes);
    ZELTPMachineConfiguration configuration;
    in >> configuration;
    EXPECT_EQ(configuration.GetTool().GetName(), QStringLiteral("R25"));
    EXPECT_TRUE(ZELTest::SameDouble(25.4, configuration.GetTool().GetWidth(), ZELTest::kExact));
    EXPECT_EQ(configuration.GetHead().GetName(), QStringLiteral("H8"));
    EXPECT_TRUE(ZELTest::SameDouble(12.7, configuration.GetHead().GetTowWidth(), ZELTest::kExact));
}

TEST(ZELTPMachineConfiguration, AHeadCutOffByTheEndOfTheDataReadsEmpty)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << ZELTPRoller(QStringLiteral("R25"), 25.4);
    QDataStream in(bytes);
    ZELTPMachineConfiguration configuration;
    in >> configuration;
    EXPECT_EQ(configuration.GetTool().GetName(), QStringLiteral("R25"));
    EXPECT_TRUE(configuration.GetHead().GetName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, configuration.GetHead().GetTowWidth(), ZELTest::kExact));
    EXPECT_EQ(in.status(), QDataStream::ReadPastEnd);
}

namespace {

struct RollerTowsCase
{
    const char* name;
    double rollerWidth;
    double towWidth;
    int rollerTows;
};
ZELTEST_PRINT_CASE_BY_NAME(RollerTowsCase);

class ZELTPMachineConfigurationRollerTows : public ::testing::TestWithParam<RollerTowsCase>
{
};

} // namespace

TEST_P(ZELTPMachineConfigurationRollerTows, CountsTheWholeTowsUnderTheRoller)
{
    const RollerTowsCase& c = GetParam();
    const ZELTPMachineConfiguration configuration(ZELTPRoller(QStringLiteral("R"), c.rollerWidth),
                                                  ZELTPAFPHead(QStringLiteral("H"), c.towWidth));
    EXPECT_EQ(configuration.GetRollerTows(), c.rollerTows);
}

INSTANTIATE_TEST_SUITE_P(
    Widths, ZELTPMachineConfigurationRollerTows,
    ::testing::Values(RollerTowsCase{"SixteenTowsWide", 101.6, 6.35, 16},
                      RollerTowsCase{"EightTowsWide", 50.8, 6.35, 8},
                      RollerTowsCase{"WithinTheAllowanceBelowEightTows", 50.7995, 6.35, 8},
                      RollerTowsCase{"BeyondTheAllowanceBelowEightTows", 50.79, 6.35, 7},
                      RollerTowsCase{"NarrowerThanOneTow", 6.3, 6.35, 0},
                      RollerTowsCase{"WiderThanAnyMask", 5000.0, 0.1, 64},
                      RollerTowsCase{"HeadWithoutTowWidth", 50.8, 0.0, 0},
                      RollerTowsCase{"NoRollerOnNoHead", 0.0, 0.0, 0},
                      RollerTowsCase{"NegativeTowWidth", 50.8, -6.35, 0}),
    [](const ::testing::TestParamInfo<RollerTowsCase>& info) { return std::string(info.param.name); });
