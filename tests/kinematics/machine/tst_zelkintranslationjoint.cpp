#include <zelkintestaccess.h>

#include <zeltestsupport.h>

TEST(ZELKinTranslationJoint, KeepsTheVectorExactlyAsGiven)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* z = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Z"));
    const ZELKinTranslationJoint* joint =
        ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("Z"), machine, z, nullptr, ZELMathVector(0, 0, -5));
    EXPECT_TRUE(joint->GetVector().IsEqual(ZELMathVector(0, 0, -5), ZELTest::kExact));
    EXPECT_EQ(joint->GetDegreesOfFreedom(), 1);
    EXPECT_EQ(joint->GetVariable(0), z);
}

TEST(ZELKinTranslationJoint, OnARotaryVariableThrowsAfterRegistering)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* c = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C"), ZELKinVariable::Rotary);
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("X"), machine, c), ZELSysException,
                         "Translation joint requires linear variable");
    ASSERT_EQ(machine->GetNumJoints(), 1);
    EXPECT_EQ(machine->GetJoint(0), nullptr);
    EXPECT_TRUE(machine->GetRootJoints().isEmpty());
}

TEST(ZELKinTranslationJoint, SaveAndLoadKeepTheVector)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    ZELKinVariable* y = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
    ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("Y"), machine, y, nullptr, ZELMathVector(0, 1, 1e-9));

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    const ZELKinTranslationJoint* loaded = ZELTest::FirstOf<ZELKinTranslationJoint>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_TRUE(loaded->GetVector().IsEqual(ZELMathVector(0, 1, 1e-9), ZELTest::kExact));
    EXPECT_EQ(loaded->GetMachine(), ZELTest::FirstOf<ZELKinAFPMachine>(target));
}
