#include <zelkintestaccess.h>

#include <zeltestsupport.h>

TEST(ZELKinRotaryJoint, KeepsVectorAndPivotExactlyAsGiven)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* a = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("A"), ZELKinVariable::Rotary);
    const ZELKinRotaryJoint* joint = ZELKinTestAccess::CreateRotaryJoint(
        QStringLiteral("A"), machine, a, nullptr, ZELMathVector(0, 2, 0), ZELMathPoint(1, 2, -150));
    EXPECT_TRUE(joint->GetVector().IsEqual(ZELMathVector(0, 2, 0), ZELTest::kExact));
    EXPECT_TRUE(joint->GetPivot().IsEqual(ZELMathPoint(1, 2, -150), ZELTest::kExact));
    EXPECT_EQ(joint->GetDegreesOfFreedom(), 1);
}

TEST(ZELKinRotaryJoint, OnALinearVariableThrowsAfterRegistering)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinJoint* parent = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("X"), machine, x);
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C"), machine, x, parent), ZELSysException,
                         "Rotary joint requires rotary variable.");
    ASSERT_EQ(machine->GetNumJoints(), 2);
    EXPECT_EQ(machine->GetJoint(1), nullptr);
    EXPECT_EQ(parent->GetChildJoints(), QList<ZELKinJoint*>({nullptr}));
    EXPECT_EQ(x->GetReferenceCount(), 2); // the machine and joint X; the failed joint released its own
}

TEST(ZELKinRotaryJoint, WithoutAVariableThrows)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C"), machine, nullptr), ZELSysException,
                         "Rotary joint requires rotary variable.");
}

TEST(ZELKinRotaryJoint, SaveAndLoadKeepVectorAndPivot)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    ZELKinVariable* c = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C1"), ZELKinVariable::Rotary);
    ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C1"), machine, c, nullptr, ZELMathVector(0.1, 0.2, 3.0),
                                        ZELMathPoint(0, 0, -300), ZELKinJoint::Low);

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    const ZELKinRotaryJoint* loaded = ZELTest::FirstOf<ZELKinRotaryJoint>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetLabel(), QStringLiteral("C1"));
    EXPECT_TRUE(loaded->GetVector().IsEqual(ZELMathVector(0.1, 0.2, 3.0), ZELTest::kExact));
    EXPECT_TRUE(loaded->GetPivot().IsEqual(ZELMathPoint(0, 0, -300), ZELTest::kExact));
    EXPECT_EQ(loaded->GetPriority(), ZELKinJoint::Low);
    EXPECT_EQ(loaded->GetVariable(0)->GetLabel(), QStringLiteral("C1"));
}
