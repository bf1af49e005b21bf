// Counted link lists (a machine's joints and variables, a joint's variables
// and children), seen through the classes that hold them.

#include <zelkintestaccess.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

namespace {

// A machine record with the given joint references and no variables.
QByteArray MachineRecord(qint32 jointCount, const QList<ZELGeoGeometryRef>& joints)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << QStringLiteral("gantry") << jointCount;
    for (const ZELGeoGeometryRef& joint : joints)
        out << joint;
    return record;
}

} // namespace

TEST(ZELKinCountedLinkList, HoldsOneReferenceOnEachEntry)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* c = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C"), ZELKinVariable::Rotary);
    EXPECT_EQ(c->GetReferenceCount(), 1); // the machine's variable list

    ZELKinJoint* joint = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C"), machine, c);
    EXPECT_EQ(c->GetReferenceCount(), 2); // and the joint's variable list
    EXPECT_EQ(joint->GetReferenceCount(), 1); // the machine's joint list

    ZELKinJoint* child = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C2"), machine, c, joint);
    EXPECT_EQ(joint->GetReferenceCount(), 1); // a child's parent link is weak
    EXPECT_EQ(child->GetReferenceCount(), 2); // the machine's joint list and the parent's children
}

TEST(ZELKinCountedLinkList, ReleasesItsReferencesWhenItsHolderGoes)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* c = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("C"), ZELKinVariable::Rotary);
    ZELKinJoint* joint = ZELKinTestAccess::CreateRotaryJoint(QStringLiteral("C"), machine, c);
    container.DeleteGeometry(joint);
    EXPECT_EQ(c->GetReferenceCount(), 1);
    container.DeleteGeometry(machine);
    EXPECT_EQ(c->GetReferenceCount(), 0);
}

TEST(ZELKinCountedLinkList, DestroyedEntrySavesEmptyAndLoadsAsNullAtTheSamePlace)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinVariable* y = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Z"));
    source.DeleteGeometry(y);
    ASSERT_EQ(machine->GetNumVariables(), 3);
    EXPECT_EQ(machine->GetVariable(1), nullptr);

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    const ZELKinAFPMachine* loaded = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    ASSERT_EQ(loaded->GetNumVariables(), 3);
    EXPECT_EQ(loaded->GetVariable(0)->GetLabel(), QStringLiteral("X"));
    EXPECT_EQ(loaded->GetVariable(1), nullptr);
    EXPECT_EQ(loaded->GetVariable(2)->GetLabel(), QStringLiteral("Z"));
}

TEST(ZELKinCountedLinkList, CountLargerThanTheEntriesPresentStopsAtTheEndWithoutThrowing)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinJoint* joint = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("X"), machine, x);

    ZELKinAFPMachine loaded(&container, ZELGeoGeometryRef());
    ZELGeoStream stream(MachineRecord(1000000, {joint->GetReference()}), &container);
    EXPECT_NO_THROW(loaded.Load(stream));
    ASSERT_EQ(loaded.GetNumJoints(), 1);
    EXPECT_EQ(loaded.GetJoint(0), joint);
    EXPECT_EQ(loaded.GetNumVariables(), 0);
}

TEST(ZELKinCountedLinkList, NegativeCountReadsNoEntries)
{
    ZELGeoContainer container;
    ZELKinAFPMachine loaded(&container, ZELGeoGeometryRef());
    ZELGeoStream stream(MachineRecord(-5, {}), &container);
    EXPECT_NO_THROW(loaded.Load(stream));
    EXPECT_EQ(loaded.GetNumJoints(), 0);
}

TEST(ZELKinCountedLinkList, EntryOfTheWrongClassThrowsNotFound)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    const ZELKinVariable* variable = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));

    ZELKinAFPMachine loaded(&container, ZELGeoGeometryRef());
    ZELGeoStream stream(MachineRecord(1, {variable->GetReference()}), &container);
    EXPECT_THROW_MESSAGE(loaded.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinJoint with reference %1")
                             .arg(variable->GetReference().GetIdentity()));
}

TEST(ZELKinCountedLinkList, LoadingReplacesTheEntriesAndTakesNewReferences)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinJoint* joint = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("X"), machine, x);
    ASSERT_EQ(joint->GetReferenceCount(), 1);

    machine->SetCurrentState(machine->GetCurrentState());
    EXPECT_EQ(machine->GetNumJoints(), 1);
    EXPECT_EQ(joint->GetReferenceCount(), 1);
}
