// Single counted links (a command's script, a program's machine, a
// position's toolpath point and variables), seen through the classes that
// hold them.

#include <zelkintestcommand.h>
#include <zelkintestprograms.h>

#include <zeltppoint.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

namespace {

QByteArray CommandRecord(const ZELGeoGeometryRef& script)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << script;
    return record;
}

} // namespace

TEST(ZELKinCountedLink, HoldsOneReferenceOnItsTarget)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinTestAccess::CreateProgram(machine);
    EXPECT_EQ(machine->GetReferenceCount(), 1);

    auto* script = new ZELKinTestScript(&container);
    new ZELKinTestCommand(script);
    EXPECT_EQ(script->GetReferenceCount(), 1);
}

TEST(ZELKinCountedLink, RetargetingMovesTheReferenceToTheNewTarget)
{
    ZELGeoContainer container;
    ZELKinPosition position(&container, ZELGeoGeometryRef());
    const ZELTPPoint* first = new ZELTPPoint(&container, ZELMathAxis());
    const ZELTPPoint* second = new ZELTPPoint(&container, ZELMathAxis());
    position.SetToolPathPoint(first);
    position.SetToolPathPoint(second);
    EXPECT_EQ(first->GetReferenceCount(), 0);
    EXPECT_EQ(second->GetReferenceCount(), 1);
}

TEST(ZELKinCountedLink, SettingTheSameTargetAgainKeepsOneReference)
{
    ZELGeoContainer container;
    ZELKinPosition position(&container, ZELGeoGeometryRef());
    const ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    position.SetToolPathPoint(point);
    position.SetToolPathPoint(point);
    EXPECT_EQ(point->GetReferenceCount(), 1);
    EXPECT_EQ(position.GetToolPathPoint(), point);
}

TEST(ZELKinCountedLink, SettingNullReleasesTheTarget)
{
    ZELGeoContainer container;
    ZELKinPosition position(&container, ZELGeoGeometryRef());
    const ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    position.SetToolPathPoint(point);
    position.SetToolPathPoint(nullptr);
    EXPECT_EQ(point->GetReferenceCount(), 0);
    EXPECT_EQ(position.GetToolPathPoint(), nullptr);
}

TEST(ZELKinCountedLink, ReleasesItsTargetWhenItsHolderGoes)
{
    ZELGeoContainer container;
    const ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    auto* position = new ZELKinPosition(&container, ZELGeoGeometryRef());
    position->SetToolPathPoint(point);
    container.DeleteGeometry(position);
    EXPECT_EQ(point->GetReferenceCount(), 0);
}

TEST(ZELKinCountedLink, ReadsNullOnceItsTargetIsDestroyedAndCanBeSetAgain)
{
    ZELGeoContainer container;
    ZELTPPoint* gone = new ZELTPPoint(&container, ZELMathAxis());
    const ZELTPPoint* next = new ZELTPPoint(&container, ZELMathAxis());
    auto* position = new ZELKinPosition(&container, ZELGeoGeometryRef());
    position->SetToolPathPoint(gone);
    container.DeleteGeometry(gone);
    EXPECT_EQ(position->GetToolPathPoint(), nullptr);
    position->SetToolPathPoint(next);
    EXPECT_EQ(next->GetReferenceCount(), 1);
    container.DeleteGeometry(position);
    EXPECT_EQ(next->GetReferenceCount(), 0);
}

TEST(ZELKinCountedLink, APositionFindsAVariableByItsOwnLinkOnlyWhileTheVariableLives)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinVariable* y = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
    ZELKinVariable* unset = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Z"));
    auto* position = new ZELKinPosition(&container, ZELGeoGeometryRef());
    position->SetVariableValue(x, 1.5);
    position->SetVariableValue(y, -2.5);
    EXPECT_TRUE(ZELTest::SameDouble(1.5, position->GetVariableValue(x), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(-2.5, position->GetVariableValue(y), ZELTest::kExact));
    EXPECT_FALSE(position->IsVariableDefined(unset));
    EXPECT_FALSE(position->IsVariableDefined(nullptr));
    container.DeleteGeometry(x);
    // The link to X reads null now; Y is still found behind it.
    EXPECT_TRUE(ZELTest::SameDouble(-2.5, position->GetVariableValue(y), ZELTest::kExact));
    position->SetVariableValue(unset, 4.0);
    EXPECT_TRUE(ZELTest::SameDouble(4.0, position->GetVariableValue(unset), ZELTest::kExact));
}

TEST(ZELKinCountedLink, LinksMovedWithinAListOfValuesKeepTheirReferences)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    QList<ZELKinVariable*> variables;
    for (int i = 0; i < 9; ++i)
        variables.append(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("V%1").arg(i)));
    ZELKinPosition position(&container, ZELGeoGeometryRef());
    for (int i = 0; i < variables.size(); ++i)
        position.SetVariableValue(variables.at(i), i);
    for (int i = 0; i < variables.size(); i += 2)
        position.SetVariableValue(variables.at(i), ZELTest::kNaN);
    for (int i = 0; i < variables.size(); ++i) {
        EXPECT_EQ(variables.at(i)->GetReferenceCount(), i % 2 == 0 ? 1 : 2) << i;
        EXPECT_EQ(position.IsVariableDefined(variables.at(i)), i % 2 == 1) << i;
    }
}

TEST(ZELKinCountedLink, LoadingTakesAReferenceOnTheLoadedTargetAndReleasesThePreviousOne)
{
    ZELGeoContainer container;
    auto* previous = new ZELKinTestScript(&container);
    auto* loaded = new ZELKinTestScript(&container);
    ZELKinCommand* command = new ZELKinTestCommand(previous);
    ZELGeoStream stream(CommandRecord(loaded->GetReference()), &container);
    command->Load(stream);
    EXPECT_EQ(command->GetScript(), loaded);
    EXPECT_EQ(loaded->GetReferenceCount(), 1);
    EXPECT_EQ(previous->GetReferenceCount(), 0);
}

TEST(ZELKinCountedLink, ToADestroyedTargetIsSavedEmptyAndLoadsAsNullWithoutError)
{
    ZELGeoContainer source;
    ZELTPPoint* point = new ZELTPPoint(&source, ZELMathAxis());
    auto* position = new ZELKinPosition(&source, ZELGeoGeometryRef());
    position->SetToolPathPoint(point);
    source.DeleteGeometry(point);

    ZELGeoStream record(position->GetCurrentState(), nullptr);
    ZELGeoGeometryRef script;
    double feedrate = 0.0;
    qint32 count = -1;
    ZELGeoGeometryRef savedPoint(99);
    record >> script >> feedrate >> count >> savedPoint;
    EXPECT_EQ(count, 0);
    EXPECT_FALSE(savedPoint.IsValid());

    ZELGeoContainer target;
    ASSERT_NO_THROW(ZELTest::CopyContainer(source, target));
    EXPECT_EQ(ZELTest::FirstOf<ZELKinPosition>(target)->GetToolPathPoint(), nullptr);
}

TEST(ZELKinCountedLink, ToAnObjectOfTheWrongClassThrowsNotFoundAndReleasesThePreviousTarget)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    ZELKinCommand* command = new ZELKinTestCommand(script);
    const ZELKinCommand* other = new ZELKinTestCommand(script);
    ASSERT_EQ(script->GetReferenceCount(), 2);
    ZELGeoStream stream(CommandRecord(other->GetReference()), &container);
    EXPECT_THROW_MESSAGE(command->Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinScript with reference %1")
                             .arg(other->GetReference().GetIdentity()));
    EXPECT_EQ(command->GetScript(), nullptr);
    EXPECT_EQ(script->GetReferenceCount(), 1);
}
