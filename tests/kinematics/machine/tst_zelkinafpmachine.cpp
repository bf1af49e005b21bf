#include <zelkintestaccess.h>

#include <zeltestsupport.h>

#include <functional>

using ZELTest::kNaN;
using Head = ZELKinTestAccess::Head;

struct HeadCase
{
    const char* name;
    std::function<void(Head&)> change;
    const char* message; // empty when the head is accepted
};
ZELTEST_PRINT_CASE_BY_NAME(HeadCase);

class ZELKinAFPMachineHead : public ::testing::TestWithParam<HeadCase>
{
};

TEST_P(ZELKinAFPMachineHead, IsValidatedAtCreation)
{
    ZELGeoContainer container;
    Head head;
    GetParam().change(head);
    const QString message = QString::fromUtf8(GetParam().message);
    if (message.isEmpty()) {
        EXPECT_NO_THROW(ZELKinTestAccess::CreateMachine(&container, head));
        EXPECT_EQ(container.GetNumGeometries(), 1);
    } else {
        EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateMachine(&container, head), ZELSysException, message);
        EXPECT_EQ(container.GetNumGeometries(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Parameters, ZELKinAFPMachineHead,
    ::testing::Values(
        HeadCase{"Defaults", [](Head&) {}, ""},
        HeadCase{"InvalidMask", [](Head& h) { h.mask = ZELCompTowMask(65, true); }, "maximum mask is invalid"},
        HeadCase{"EmptyMask", [](Head& h) { h.mask = ZELCompTowMask(); }, ""},
        HeadCase{"RollerRadiusAtThreshold", [](Head& h) { h.rollerRadius = 0.001; }, ""},
        HeadCase{"RollerRadiusBelowThreshold", [](Head& h) { h.rollerRadius = 0.0009; },
                 "roller radius must be greater than zero"},
        HeadCase{"RollerRadiusNaN", [](Head& h) { h.rollerRadius = kNaN; }, ""},
        HeadCase{"MaterialVariableEmpty", [](Head& h) { h.materialVariable.clear(); },
                 "material variable is not defined"},
        HeadCase{"MaterialVariableUnknown", [](Head& h) { h.materialVariable = QStringLiteral("W"); }, ""},
        HeadCase{"TowWidthZero", [](Head& h) { h.towWidth = 0.0; }, "tow width must be greater than zero"},
        HeadCase{"AddDistanceNegative", [](Head& h) { h.addDistance = -1.0; }, "add distance must be greater than zero"},
        HeadCase{"AddPinchZero", [](Head& h) { h.addPinch = 0.0; }, ""},
        HeadCase{"AddPinchAtThreshold", [](Head& h) { h.addPinch = -0.001; }, ""},
        HeadCase{"AddPinchBelowThreshold", [](Head& h) { h.addPinch = -0.0011; },
                 "add pinch distance must not be negative"},
        HeadCase{"CutDistanceTiny", [](Head& h) { h.cutDistance = 0.0005; }, "cut distance must be greater than zero"},
        HeadCase{"HeadTravelZero", [](Head& h) { h.headTravel = 0.0; }, "head travel must be greater than zero"},
        HeadCase{"EveryLengthNaN",
                 [](Head& h) {
                     h.rollerRadius = h.towWidth = h.addDistance = h.addPinch = h.cutDistance = h.headTravel = kNaN;
                 },
                 ""},
        HeadCase{"RollerRadiusComesBeforeMaterialVariable",
                 [](Head& h) {
                     h.rollerRadius = 0.0;
                     h.materialVariable.clear();
                 },
                 "roller radius must be greater than zero"},
        HeadCase{"MaskComesFirst",
                 [](Head& h) {
                     h.mask = ZELCompTowMask(-3, false);
                     h.rollerRadius = 0.0;
                 },
                 "maximum mask is invalid"},
        HeadCase{"HeadTravelIsCheckedLast",
                 [](Head& h) {
                     h.cutDistance = 0.0;
                     h.headTravel = 0.0;
                 },
                 "cut distance must be greater than zero"}),
    [](const ::testing::TestParamInfo<HeadCase>& info) { return std::string(info.param.name); });

TEST(ZELKinAFPMachine, KeepsEveryHeadParameter)
{
    ZELGeoContainer container;
    const ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    EXPECT_EQ(machine->GetMaximumMask(), ZELCompTowMask(16, true));
    EXPECT_TRUE(ZELTest::SameDouble(30.0, machine->GetRollerRadius(), ZELTest::kExact));
    EXPECT_EQ(machine->GetMaterialVariableName(), QStringLiteral("U"));
    EXPECT_TRUE(ZELTest::SameDouble(6.35, machine->GetTowWidth(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(50.8, machine->GetAddDistance(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(12.7, machine->GetPinchDistance(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(76.2, machine->GetCutDistance(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(101.6, machine->GetHeadTravel(), ZELTest::kExact));
}

TEST(ZELKinAFPMachine, MaterialVariableIsTheVariableOfThatName)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    EXPECT_EQ(machine->GetMaterialVariable(), nullptr);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinVariable* u = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("U"));
    EXPECT_EQ(machine->GetMaterialVariable(), u);
}

TEST(ZELKinAFPMachine, UnknownMaterialVariableIsAcceptedAndFindsNothing)
{
    ZELGeoContainer container;
    Head head;
    head.materialVariable = QStringLiteral("u");
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container, head);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("U"));
    EXPECT_EQ(machine->GetMaterialVariable(), nullptr);
}

TEST(ZELKinAFPMachine, LoadingConstructionGivesTheDefaults)
{
    const ZELKinAFPMachine machine(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(machine.GetMaximumMask(), ZELCompTowMask());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, machine.GetRollerRadius(), ZELTest::kExact));
    EXPECT_TRUE(machine.GetMaterialVariableName().isEmpty());
    EXPECT_TRUE(ZELTest::SameDouble(0.0, machine.GetHeadTravel(), ZELTest::kExact));
    EXPECT_TRUE(machine.GetLabel().isEmpty());
    EXPECT_TRUE(machine.GetSolverName().isEmpty());
}

TEST(ZELKinAFPMachine, SaveAndLoadGiveEqualValuesFromEveryGetter)
{
    ZELGeoContainer source;
    Head head;
    head.mask = ZELCompTowMask(12, false);
    head.mask.SetTowEnabled(3, true);
    head.mask.SetTowEnabled(12, true);
    head.addPinch = 0.0;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source, head);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("U"));

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    const ZELKinAFPMachine* loaded = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetMaximumMask(), head.mask);
    EXPECT_EQ(loaded->GetMaximumMask().GetHexadecimalString(), QStringLiteral("804"));
    EXPECT_TRUE(ZELTest::SameDouble(machine->GetRollerRadius(), loaded->GetRollerRadius(), ZELTest::kExact));
    EXPECT_EQ(loaded->GetMaterialVariableName(), QStringLiteral("U"));
    EXPECT_EQ(loaded->GetMaterialVariable(), loaded->GetVariable(0));
    EXPECT_TRUE(ZELTest::SameDouble(machine->GetTowWidth(), loaded->GetTowWidth(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(machine->GetAddDistance(), loaded->GetAddDistance(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, loaded->GetPinchDistance(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(machine->GetCutDistance(), loaded->GetCutDistance(), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(machine->GetHeadTravel(), loaded->GetHeadTravel(), ZELTest::kExact));
}

TEST(ZELKinAFPMachine, LoadRunsNoValidation)
{
    ZELGeoContainer container;
    ZELKinAFPMachine machine(&container, ZELGeoGeometryRef());
    const ZELKinAFPMachine empty(&container, ZELGeoGeometryRef());
    EXPECT_NO_THROW(machine.SetCurrentState(empty.GetCurrentState()));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, machine.GetRollerRadius(), ZELTest::kExact));
}
