// Counted link lists (a machine's joints and variables, a joint's variables
// and children, a program's procedures, a script's commands), seen through
// the classes that hold them.

#include <zelkintestcommand.h>
#include <zelkintestprograms.h>

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

// The record of `program` with its procedure list replaced by `procedures`.
QByteArray ProgramWithProcedures(const ZELKinProgram* program, const QList<ZELKinProcedure*>& procedures)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << program->GetMachine()->GetReference() << qint32(procedures.size());
    for (const ZELKinProcedure* procedure : procedures)
        out << procedure->GetReference();
    out << program->GetDate() << program->GetAuthor();
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

TEST(ZELKinCountedLinkList, InsertedEntryHoldsAReferenceAndGoesBeforeTheEntryAtItsIndex)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    ZELKinCommand* last = new ZELKinTestCommand(script);
    ZELKinCommand* first = new ZELKinTestCommand(script, 0);
    ZELKinCommand* middle = new ZELKinTestCommand(script, 1);
    EXPECT_EQ(ZELTest::CommandsByIndex(*script), QList<ZELKinCommand*>({first, middle, last}));
    EXPECT_EQ(first->GetReferenceCount(), 1);
    EXPECT_EQ(middle->GetReferenceCount(), 1);
    EXPECT_EQ(last->GetReferenceCount(), 1);
}

TEST(ZELKinCountedLinkList, RemovedEntryReleasesItsReferenceAndClosesTheGap)
{
    ZELGeoContainer container;
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(ZELKinTestAccess::CreateMachine(&container));
    ZELKinProcedure* first = new ZELKinTestProcedure(program);
    ZELKinProcedure* middle = new ZELKinTestProcedure(program);
    ZELKinProcedure* last = new ZELKinTestProcedure(program);
    program->RemoveProcedure(middle);
    EXPECT_EQ(program->GetProcedures(), QList<ZELKinProcedure*>({first, last}));
    EXPECT_EQ(middle->GetReferenceCount(), 0);
    EXPECT_EQ(first->GetReferenceCount(), 1);
    EXPECT_EQ(last->GetReferenceCount(), 1);
}

TEST(ZELKinCountedLinkList, RemovingTheFirstOfTwoEntriesOfOneTargetKeepsTheSecond)
{
    ZELGeoContainer container;
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(ZELKinTestAccess::CreateMachine(&container));
    ZELKinProcedure* procedure = new ZELKinTestProcedure(program);
    ZELKinProcedure* other = new ZELKinTestProcedure(program);
    program->SetCurrentState(ProgramWithProcedures(program, {procedure, other, procedure}));
    ASSERT_EQ(procedure->GetReferenceCount(), 2);
    program->RemoveProcedure(procedure);
    EXPECT_EQ(program->GetProcedures(), QList<ZELKinProcedure*>({other, procedure}));
    EXPECT_EQ(procedure->GetReferenceCount(), 1);
}
