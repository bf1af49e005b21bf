#include <zelkintestaccess.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

#include <cmath>

using ZELTest::kNaN;

TEST(ZELKinVariable, CreationStoresEveryFieldUnchanged)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    const ZELKinVariable* c =
        ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C"), ZELKinVariable::Rotary, -3.5, 3.5, 1.2, 6.0);
    EXPECT_EQ(c->GetLabel(), QStringLiteral("C"));
    EXPECT_EQ(c->GetMachine(), machine);
    EXPECT_EQ(c->GetType(), ZELKinVariable::Rotary);
    EXPECT_TRUE(ZELTest::SameDouble(-3.5, c->GetMinimum(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(3.5, c->GetMaximum(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1.2, c->GetMaxVelocity(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(6.0, c->GetMaxAcceleration(), ZELTest::kExact));
    EXPECT_EQ(c->GetContainer(), &container);
}

TEST(ZELKinVariable, CreationAppendsToTheMachineAndMarksItChanging)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    container.SetModified(false);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinVariable* y = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
    EXPECT_EQ(machine->GetVariables(), QList<ZELKinVariable*>({x, y}));
    EXPECT_TRUE(container.IsModified());
}

TEST(ZELKinVariable, LoadingConstructionGivesTheDefaults)
{
    const ZELKinVariable variable(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(variable.GetMachine(), nullptr);
    EXPECT_EQ(variable.GetType(), ZELKinVariable::Linear);
    EXPECT_TRUE(std::isnan(variable.GetMinimum()));
    EXPECT_TRUE(std::isnan(variable.GetMaximum()));
    EXPECT_TRUE(std::isnan(variable.GetMaxVelocity()));
    EXPECT_TRUE(std::isnan(variable.GetMaxAcceleration()));
    EXPECT_TRUE(variable.IsInfinite());
}

TEST(ZELKinVariable, MinimumAboveMaximumThrowsAndLeavesANullEntryInTheMachine)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    const int geometries = container.GetNumGeometries();
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Z"), ZELKinVariable::Linear, 5.0,
                                                          4.0),
                         ZELSysException, "variable minimum is greater than maximum for 'Z'");
    ASSERT_EQ(machine->GetNumVariables(), 1);
    EXPECT_EQ(machine->GetVariable(0), nullptr);
    EXPECT_EQ(container.GetNumGeometries(), geometries);
}

TEST(ZELKinVariable, WithoutAMachineThrows)
{
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateVariable(nullptr, QStringLiteral("X")), ZELSysException,
                         "variable 'X' needs a machine");
}

struct LimitsCase
{
    const char* name;
    double minimum, maximum;
    bool infinite;
};
ZELTEST_PRINT_CASE_BY_NAME(LimitsCase);

class ZELKinVariableLimits : public ::testing::TestWithParam<LimitsCase>
{
};

TEST_P(ZELKinVariableLimits, AreAcceptedAndTellWhetherTheAxisIsEndless)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    const LimitsCase& c = GetParam();
    const ZELKinVariable* variable =
        ZELKinTestAccess::CreateVariable(machine, QStringLiteral("V"), ZELKinVariable::Rotary, c.minimum, c.maximum);
    EXPECT_TRUE(ZELTest::SameDouble(c.minimum, variable->GetMinimum(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(c.maximum, variable->GetMaximum(), ZELTest::kExact));
    EXPECT_EQ(variable->IsInfinite(), c.infinite);
}

INSTANTIATE_TEST_SUITE_P(Limits, ZELKinVariableLimits,
                         ::testing::Values(LimitsCase{"MinimumEqualToMaximum", 2.0, 2.0, false},
                                           LimitsCase{"UpperLimitMissing", 10.0, kNaN, false},
                                           LimitsCase{"LowerLimitMissing", kNaN, -10.0, false},
                                           LimitsCase{"BothLimitsMissing", kNaN, kNaN, true}),
                         [](const ::testing::TestParamInfo<LimitsCase>& info) { return std::string(info.param.name); });

TEST(ZELKinVariable, SaveAndLoadKeepEveryFieldAndNaNLimits)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("U"), ZELKinVariable::Linear, kNaN, kNaN, 1000.0, 5000.0);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("A"), ZELKinVariable::Rotary, -1.5, 1.5, 0.5, 9.0);

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    const ZELKinAFPMachine* loaded = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    ASSERT_EQ(loaded->GetNumVariables(), 2);
    const ZELKinVariable* u = loaded->GetVariable(0);
    const ZELKinVariable* a = loaded->GetVariable(1);
    EXPECT_EQ(u->GetMachine(), loaded);
    EXPECT_EQ(u->GetLabel(), QStringLiteral("U"));
    EXPECT_EQ(u->GetType(), ZELKinVariable::Linear);
    EXPECT_TRUE(std::isnan(u->GetMinimum()));
    EXPECT_TRUE(std::isnan(u->GetMaximum()));
    EXPECT_TRUE(u->IsInfinite());
    EXPECT_TRUE(ZELTest::SameDouble(1000.0, u->GetMaxVelocity(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(5000.0, u->GetMaxAcceleration(), ZELTest::kExact));
    EXPECT_EQ(a->GetType(), ZELKinVariable::Rotary);
    EXPECT_TRUE(ZELTest::SameDouble(-1.5, a->GetMinimum(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1.5, a->GetMaximum(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.5, a->GetMaxVelocity(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(9.0, a->GetMaxAcceleration(), ZELTest::kExact));
}

TEST(ZELKinVariable, TypeIsLoadedAsItStandsWithoutARangeCheck)
{
    ZELGeoContainer container;
    ZELKinVariable variable(&container, ZELGeoGeometryRef());
    QByteArray record;
    {
        ZELGeoStream out(&record, &container);
        out << QStringLiteral("V") << ZELGeoGeometryRef() << qint32(7) << 5.0 << 1.0 << 2.0 << 3.0;
    }
    ZELGeoStream in(record, &container);
    variable.Load(in);
    EXPECT_EQ(int(variable.GetType()), 7);
    EXPECT_TRUE(ZELTest::SameDouble(5.0, variable.GetMinimum(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1.0, variable.GetMaximum(), ZELTest::kExact));
}
