// Commands joining their scripts, by the common insertion rule of scripts
// that keep their own list and by the refusal of program and procedures.

#include "zelkintestcommand.h"
#include "zelkintestprograms.h"

#include <zelkinscript_p.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysnotimplementedexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

namespace {

// A command record: the geometry part is empty, so only the script reference.
QByteArray CommandRecord(const ZELGeoGeometryRef& script)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << script;
    return record;
}

} // namespace

TEST(ZELKinCommand, CreationLinksTheScriptInItsContainerAndAppends)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    const ZELKinCommand* first = new ZELKinTestCommand(script);
    const ZELKinCommand* second = new ZELKinTestCommand(script, -1);
    EXPECT_EQ(first->GetScript(), script);
    EXPECT_EQ(first->GetContainer(), &container);
    EXPECT_EQ(first->GetIndex(), 0);
    EXPECT_EQ(second->GetIndex(), 1);
    EXPECT_EQ(script->GetCommand(0), first);
    EXPECT_EQ(script->GetCommand(1), second);
}

TEST(ZELKinCommand, AnyNegativeIndexAppends)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    new ZELKinTestCommand(script);
    const ZELKinCommand* appended = new ZELKinTestCommand(script, -5);
    EXPECT_EQ(appended->GetIndex(), 1);
    EXPECT_EQ(script->GetCommand(1), appended);
}

struct InsertCase
{
    const char* name;
    int existing;
    int index;
    int result;
};
ZELTEST_PRINT_CASE_BY_NAME(InsertCase);

class ZELKinCommandInsertAt : public ::testing::TestWithParam<InsertCase>
{
};

TEST_P(ZELKinCommandInsertAt, PutsTheCommandBeforeTheOneAtTheIndexAndKeepsTheIndex)
{
    const InsertCase& c = GetParam();
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    QList<ZELKinCommand*> expected;
    for (int i = 0; i < c.existing; ++i)
        expected.append(new ZELKinTestCommand(script));
    const ZELKinCommand* inserted = new ZELKinTestCommand(script, c.index);
    expected.insert(c.result, const_cast<ZELKinCommand*>(inserted));
    EXPECT_EQ(inserted->GetIndex(), c.result);
    EXPECT_EQ(ZELTest::CommandsByIndex(*script), expected);
}

INSTANTIATE_TEST_SUITE_P(Indices, ZELKinCommandInsertAt,
                         ::testing::Values(InsertCase{"AppendToEmpty", 0, -1, 0},
                                           InsertCase{"AppendAfterThree", 3, -1, 3},
                                           InsertCase{"AtTheFront", 3, 0, 0},
                                           InsertCase{"InTheMiddle", 3, 1, 1},
                                           InsertCase{"BeforeTheLast", 3, 2, 2}),
                         [](const ::testing::TestParamInfo<InsertCase>& info) { return std::string(info.param.name); });

struct PastTheEndCase
{
    const char* name;
    int existing;
    int index;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(PastTheEndCase);

class ZELKinCommandInsertPastTheEnd : public ::testing::TestWithParam<PastTheEndCase>
{
};

TEST_P(ZELKinCommandInsertPastTheEnd, ThrowsWithTheAppendValueAsLowerBoundAndInsertsNothing)
{
    const PastTheEndCase& c = GetParam();
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    const QList<ZELKinPosition*> existing = ZELTest::AddPositions(script, c.existing);
    const int geometries = container.GetNumGeometries();
    container.SetModified(false);
    try {
        new ZELKinTestCommand(script, c.index);
        FAIL() << "no exception";
    } catch (const ZELSysOutOfBoundsException& e) {
        EXPECT_EQ(e.GetMessage(), QString::fromLatin1(c.message));
        EXPECT_EQ(e.GetValue().toInt(), c.index);
        EXPECT_EQ(e.GetLowerBound().toInt(), -1);
        EXPECT_EQ(e.GetUpperBound().toInt(), c.existing - 1);
        EXPECT_TRUE(e.IsLowerBoundInclusive());
        EXPECT_TRUE(e.IsUpperBoundInclusive());
    }
    EXPECT_EQ(ZELTest::CommandsByIndex(*script), QList<ZELKinCommand*>(existing.cbegin(), existing.cend()));
    EXPECT_EQ(container.GetNumGeometries(), geometries);
    EXPECT_FALSE(container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(Indices, ZELKinCommandInsertPastTheEnd,
                         ::testing::Values(PastTheEndCase{"IndexEqualToTheCount", 2, 2,
                                                          "value 2 is out of bounds [-1, 1]"},
                                           PastTheEndCase{"FarBeyond", 2, 9, "value 9 is out of bounds [-1, 1]"},
                                           PastTheEndCase{"ZeroIntoAnEmptyScript", 0, 0,
                                                          "value 0 is out of bounds [-1, -1]"}),
                         [](const ::testing::TestParamInfo<PastTheEndCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinCommand, IndexIsTheOneGivenAtCreationEvenAfterLaterInsertionsBeforeIt)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    const ZELKinCommand* command = new ZELKinTestCommand(script);
    new ZELKinTestCommand(script, 0);
    EXPECT_EQ(command->GetIndex(), 0);
    EXPECT_EQ(script->IndexOfCommand(const_cast<ZELKinCommand*>(command)), 1);
}

TEST(ZELKinCommand, InsertionMarksTheScriptChanging)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    container.SetModified(false);
    new ZELKinTestCommand(script);
    EXPECT_TRUE(container.IsModified());
}

TEST(ZELKinCommand, IndexOfCommandScansForTheSameObject)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    auto* other = new ZELKinTestScript(&container);
    EXPECT_EQ(script->IndexOfCommand(new ZELKinTestCommand(other)), -1); // empty list

    ZELKinCommand* first = new ZELKinTestCommand(script);
    ZELKinCommand* second = new ZELKinTestCommand(script);
    ZELKinCommand* foreign = new ZELKinTestCommand(other);
    EXPECT_EQ(script->IndexOfCommand(first), 0);
    EXPECT_EQ(script->IndexOfCommand(second), 1);
    EXPECT_EQ(script->IndexOfCommand(foreign), -1);
}

TEST(ZELKinCommand, IndexOfCommandDoesNotMatchNullWithADestroyedEntry)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    container.DeleteGeometry(new ZELKinTestCommand(script));
    ASSERT_EQ(script->GetNumCommands(), 1);
    EXPECT_EQ(script->IndexOfCommand(nullptr), -1);
}

TEST(ZELKinCommand, ScriptAndCommandHoldOneReferenceOnEachOther)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    ZELKinCommand* first = new ZELKinTestCommand(script);
    ZELKinCommand* second = new ZELKinTestCommand(script, 0);
    EXPECT_EQ(script->GetReferenceCount(), 2);
    EXPECT_EQ(first->GetReferenceCount(), 1);
    EXPECT_EQ(second->GetReferenceCount(), 1);

    container.DeleteGeometry(first);
    EXPECT_EQ(script->GetReferenceCount(), 1);
    container.DeleteGeometry(script);
    EXPECT_EQ(second->GetReferenceCount(), 0);
    EXPECT_EQ(second->GetScript(), nullptr);
}

TEST(ZELKinCommand, WithoutAScriptStandsOutsideAnyContainer)
{
    const ZELKinTestCommand command(static_cast<ZELKinScript*>(nullptr));
    EXPECT_EQ(command.GetScript(), nullptr);
    EXPECT_EQ(command.GetContainer(), nullptr);
    EXPECT_EQ(command.GetIndex(), 0);
}

TEST(ZELKinCommand, ProgramTakesNoCommands)
{
    ZELGeoContainer container;
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(ZELKinTestAccess::CreateMachine(&container));
    const int geometries = container.GetNumGeometries();
    EXPECT_THROW_MESSAGE(new ZELKinTestPosition(program), ZELSysNotImplementedException,
                         "'InsertCommand' is not implemented");
    EXPECT_EQ(container.GetNumGeometries(), geometries);
    EXPECT_THROW_MESSAGE(ZELKinScriptPrivate::get(program)->IndexOfCommand(nullptr), ZELSysNotImplementedException,
                         "'IndexOfCommand' is not implemented");
}

TEST(ZELKinCommand, ProcedureTakesNoCommandsOfItsOwn)
{
    ZELGeoContainer container;
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(ZELKinTestAccess::CreateMachine(&container));
    ZELKinTestProcedure* procedure = ZELTest::AddProcedure(program, {1});
    EXPECT_THROW_MESSAGE(new ZELKinTestCommand(procedure, -1), ZELSysNotImplementedException,
                         "'InsertCommand' is not implemented");
    EXPECT_THROW_MESSAGE(ZELKinScriptPrivate::get(procedure)->IndexOfCommand(procedure->GetCommand(0)),
                         ZELSysNotImplementedException, "'IndexOfCommand' is not implemented");
    EXPECT_EQ(procedure->GetNumCommands(), 1);
}

TEST(ZELKinCommand, RecordIsTheScriptReference)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    const ZELKinCommand* command = new ZELKinTestCommand(script);
    EXPECT_EQ(command->GetCurrentState(), CommandRecord(script->GetReference()));
}

TEST(ZELKinCommand, SaveAndLoadResolveTheScriptAndKeepItsCommandOrder)
{
    ZELGeoContainer source;
    auto* script = new ZELKinTestScript(&source);
    new ZELKinTestCommand(script);
    new ZELKinTestCommand(script, 0);

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTest::CopyContainer(source, target); // in creation order
    ASSERT_EQ(loaded.size(), 3);
    const auto* loadedScript = qobject_cast<ZELKinTestScript*>(loaded.at(0));
    ASSERT_NE(loadedScript, nullptr);
    const QList<ZELKinCommand*> expected = {qobject_cast<ZELKinCommand*>(loaded.at(2)),
                                            qobject_cast<ZELKinCommand*>(loaded.at(1))};
    EXPECT_EQ(ZELTest::CommandsByIndex(*loadedScript), expected);
    for (const ZELKinCommand* command : ZELTest::CommandsByIndex(*loadedScript)) {
        ASSERT_NE(command, nullptr);
        EXPECT_EQ(command->GetScript(), loadedScript);
        EXPECT_EQ(command->GetIndex(), 0); // not saved
    }
}

TEST(ZELKinCommand, LoadingDoesNotInsertTheCommandIntoItsScript)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    ZELKinTestCommand command(&container, ZELGeoGeometryRef());
    ZELGeoStream stream(CommandRecord(script->GetReference()), &container);
    command.Load(stream);
    EXPECT_EQ(command.GetScript(), script);
    EXPECT_EQ(script->GetNumCommands(), 0);
    EXPECT_EQ(script->GetReferenceCount(), 1);
}

TEST(ZELKinCommand, ScriptDestroyedBeforeSavingIsWrittenEmptyAndLoadsAsNull)
{
    ZELGeoContainer source;
    auto* script = new ZELKinTestScript(&source);
    const ZELKinCommand* command = new ZELKinTestCommand(script);
    source.DeleteGeometry(script);
    EXPECT_EQ(command->GetCurrentState(), CommandRecord(ZELGeoGeometryRef()));

    ZELGeoContainer target;
    ASSERT_NO_THROW(ZELTest::CopyContainer(source, target));
    const ZELKinTestCommand* loaded = ZELTest::FirstOf<ZELKinTestCommand>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetScript(), nullptr);
}

struct UnresolvedCase
{
    const char* name;
    bool wrongClass;
};
ZELTEST_PRINT_CASE_BY_NAME(UnresolvedCase);

class ZELKinCommandUnresolvedScript : public ::testing::TestWithParam<UnresolvedCase>
{
};

TEST_P(ZELKinCommandUnresolvedScript, ThrowsNotFoundAndLeavesNoScript)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    const ZELKinCommand* other = new ZELKinTestCommand(script);
    const ZELGeoGeometryRef saved = GetParam().wrongClass ? other->GetReference() : ZELGeoGeometryRef(4711);
    ZELKinTestCommand command(&container, ZELGeoGeometryRef());
    ZELGeoStream stream(CommandRecord(saved), &container);
    EXPECT_THROW_MESSAGE(command.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELKinScript with reference %1")
                             .arg(saved.GetIdentity()));
    EXPECT_EQ(command.GetScript(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(References, ZELKinCommandUnresolvedScript,
                         ::testing::Values(UnresolvedCase{"NoSuchObject", false},
                                           UnresolvedCase{"ACommandInsteadOfAScript", true}),
                         [](const ::testing::TestParamInfo<UnresolvedCase>& info) {
                             return std::string(info.param.name);
                         });
