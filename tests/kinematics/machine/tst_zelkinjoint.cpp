#include <zelkintestaccess.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

namespace {

// A gantry X -> Y -> Z -> C whose joints the tests look at.
class ZELKinJointTree : public ::testing::Test
{
protected:
    void SetUp() override
    {
        machine = ZELKinTestAccess::CreateMachine(&container);
        x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
        y = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
        c = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C"), ZELKinVariable::Rotary);
        jointX = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("X"), machine, x, nullptr,
                                                          ZELMathVector(1, 0, 0), ZELKinJoint::High);
        jointY = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("Y"), machine, y, jointX,
                                                          ZELMathVector(0, 1, 0), ZELKinJoint::Low);
        jointC = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C"), machine, c, jointX);
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine = nullptr;
    ZELKinVariable *x = nullptr, *y = nullptr, *c = nullptr;
    ZELKinJoint *jointX = nullptr, *jointY = nullptr, *jointC = nullptr;
};

} // namespace

TEST_F(ZELKinJointTree, JointWithoutParentIsARootAndInNoChildrenList)
{
    EXPECT_EQ(jointX->GetParent(), nullptr);
    for (ZELKinJoint* joint : machine->GetJoints())
        EXPECT_FALSE(joint->GetChildJoints().contains(jointX));
}

TEST_F(ZELKinJointTree, ChildrenKeepCreationOrder)
{
    EXPECT_EQ(jointX->GetChildJoints(), QList<ZELKinJoint*>({jointY, jointC}));
    EXPECT_EQ(jointY->GetParent(), jointX);
    EXPECT_EQ(jointC->GetParent(), jointX);
    EXPECT_TRUE(jointY->GetChildJoints().isEmpty());
}

TEST_F(ZELKinJointTree, JointsRegisterWithTheirMachine)
{
    EXPECT_EQ(machine->GetJoints(), QList<ZELKinJoint*>({jointX, jointY, jointC}));
    EXPECT_EQ(jointY->GetMachine(), machine);
    EXPECT_EQ(jointY->GetLabel(), QStringLiteral("Y"));
    EXPECT_EQ(jointY->GetContainer(), &container);
}

TEST_F(ZELKinJointTree, SingleVariableJointsHaveOneDegreeOfFreedom)
{
    EXPECT_EQ(jointX->GetDegreesOfFreedom(), 1);
    EXPECT_EQ(jointC->GetDegreesOfFreedom(), 1);
    EXPECT_EQ(jointC->GetVariable(0), c);
}

TEST_F(ZELKinJointTree, VariableIndexOutsideTheListGivesNull)
{
    EXPECT_EQ(jointX->GetVariable(1), nullptr);
    EXPECT_EQ(jointX->GetVariable(-1), nullptr);
}

TEST_F(ZELKinJointTree, VariableLookUpByNameIsCaseSensitive)
{
    EXPECT_EQ(jointX->GetVariable(QStringLiteral("X")), x);
    EXPECT_EQ(jointX->GetVariable(QStringLiteral("x")), nullptr);
    EXPECT_EQ(jointX->GetVariable(QStringLiteral("Y")), nullptr);
}

TEST_F(ZELKinJointTree, KeepsItsPriority)
{
    EXPECT_EQ(jointX->GetPriority(), ZELKinJoint::High);
    EXPECT_EQ(jointY->GetPriority(), ZELKinJoint::Low);
    EXPECT_EQ(jointC->GetPriority(), ZELKinJoint::Medium);
}

TEST_F(ZELKinJointTree, ChildThatGoesReadsAsANullChild)
{
    container.DeleteGeometry(jointY);
    EXPECT_EQ(jointX->GetChildJoints(), QList<ZELKinJoint*>({nullptr, jointC}));
}

TEST_F(ZELKinJointTree, SaveAndLoadKeepTheTree)
{
    ZELGeoContainer target;
    ZELTest::CopyContainer(container, target);
    const ZELKinAFPMachine* loaded = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    ASSERT_EQ(loaded->GetNumJoints(), 3);
    ZELKinJoint* loadedX = loaded->GetJoint(0);
    ZELKinJoint* loadedY = loaded->GetJoint(1);
    ZELKinJoint* loadedC = loaded->GetJoint(2);
    EXPECT_EQ(loadedX->GetLabel(), QStringLiteral("X"));
    EXPECT_EQ(loadedX->GetMachine(), loaded);
    EXPECT_EQ(loadedX->GetParent(), nullptr);
    EXPECT_EQ(loadedX->GetChildJoints(), QList<ZELKinJoint*>({loadedY, loadedC}));
    EXPECT_EQ(loadedY->GetParent(), loadedX);
    EXPECT_EQ(loadedC->GetVariable(0), loaded->GetVariable(QStringLiteral("C")));
    EXPECT_EQ(loadedX->GetPriority(), ZELKinJoint::High);
    EXPECT_EQ(loadedY->GetPriority(), ZELKinJoint::Low);
    EXPECT_EQ(loadedC->GetPriority(), ZELKinJoint::Medium);
    EXPECT_EQ(loaded->GetVariable(QStringLiteral("C"))->GetReferenceCount(), 2);
}

TEST_F(ZELKinJointTree, ParentReferenceToAVariableThrowsNotFound)
{
    QByteArray record;
    {
        ZELGeoStream out(&record, &container);
        out << QStringLiteral("broken") << machine->GetReference() << x->GetReference();
    }
    ZELKinTranslationJoint joint(&container, ZELGeoGeometryRef());
    ZELGeoStream in(record, &container);
    EXPECT_THROW_MESSAGE(joint.Load(in), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinJoint with reference %1")
                             .arg(x->GetReference().GetIdentity()));
}

TEST_F(ZELKinJointTree, PriorityIsLoadedWithoutARangeCheck)
{
    QByteArray record;
    {
        ZELGeoStream out(&record, &container);
        out << QStringLiteral("J") << ZELGeoGeometryRef() << ZELGeoGeometryRef() << qint32(0) << qint32(0)
            << qint32(9);
    }
    ZELKinTranslationJoint joint(&container, ZELGeoGeometryRef());
    ZELGeoStream in(record, &container);
    joint.Load(in);
    EXPECT_EQ(int(joint.GetPriority()), 9);
}

TEST(ZELKinJoint, WithoutAMachineThrows)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    EXPECT_THROW_MESSAGE(ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("X"), nullptr, x), ZELSysException,
                         "joint 'X' needs a machine");
}
