// The position searches that every script offers, on a script that keeps its
// own commands and on a program, whose commands are those of its procedures.

#include "zelkintestcommand.h"
#include "zelkintestprograms.h"

#include <zeltppoint.h>

#include <zeltestsupport.h>

namespace {

// A program for a machine, the usual setting of a search.
struct ProgramFixture
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(machine);
};

} // namespace

TEST(ZELKinScript, EmptyScriptHasNoFirstOrLastPosition)
{
    ZELGeoContainer container;
    const ZELKinTestScript* script = new ZELKinTestScript(&container);
    EXPECT_EQ(script->GetFirstPosition(), nullptr);
    EXPECT_EQ(script->GetLastPosition(), nullptr);
}

TEST(ZELKinScript, ScriptOfNonPositionCommandsOnlyHasNoFirstOrLastPosition)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    new ZELKinTestCommand(script);
    new ZELKinTestCommand(script);
    EXPECT_EQ(script->GetFirstPosition(), nullptr);
    EXPECT_EQ(script->GetLastPosition(), nullptr);
}

TEST(ZELKinScript, WithOnePositionFirstAndLastAreThatPosition)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    new ZELKinTestCommand(script);
    ZELKinPosition* only = new ZELKinTestPosition(script);
    new ZELKinTestCommand(script);
    EXPECT_EQ(script->GetFirstPosition(), only);
    EXPECT_EQ(script->GetLastPosition(), only);
}

TEST(ZELKinScript, FirstAndLastPositionFollowTheIndexOrderNotTheOrderOfCreation)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    ZELKinPosition* middle = new ZELKinTestPosition(script);
    ZELKinPosition* last = new ZELKinTestPosition(script);
    ZELKinPosition* first = new ZELKinTestPosition(script, 0);
    new ZELKinTestCommand(script);
    new ZELKinTestCommand(script, 0);
    ASSERT_EQ(ZELTest::CommandsByIndex(*script).mid(1, 3), QList<ZELKinCommand*>({first, middle, last}));
    EXPECT_EQ(script->GetFirstPosition(), first);
    EXPECT_EQ(script->GetLastPosition(), last);
}

TEST(ZELKinScript, DestroyedCommandsAreSkippedBySearches)
{
    ZELGeoContainer container;
    auto* script = new ZELKinTestScript(&container);
    ZELKinPosition* gone = new ZELKinTestPosition(script);
    ZELKinPosition* kept = new ZELKinTestPosition(script);
    ZELKinPosition* goneToo = new ZELKinTestPosition(script);
    container.DeleteGeometry(gone);
    container.DeleteGeometry(goneToo);
    ASSERT_EQ(script->GetNumCommands(), 3);
    EXPECT_EQ(script->GetFirstPosition(), kept);
    EXPECT_EQ(script->GetLastPosition(), kept);
}

TEST(ZELKinScript, CorrespondingPositionOfASharedPointIsTheLowerIndex)
{
    ZELGeoContainer container;
    const ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    auto* script = new ZELKinTestScript(&container);
    const QList<ZELKinPosition*> positions = ZELTest::AddPositions(script, 4);
    positions[3]->SetToolPathPoint(point);
    positions[1]->SetToolPathPoint(point);

    int index = -7;
    EXPECT_EQ(script->GetCorrespondingPosition(point, &index), positions[1]);
    EXPECT_EQ(index, 1);
}

TEST(ZELKinScript, CorrespondingPositionIsFoundWithoutAnIndexToFill)
{
    ZELGeoContainer container;
    const ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    auto* script = new ZELKinTestScript(&container);
    new ZELKinTestCommand(script);
    ZELKinPosition* position = new ZELKinTestPosition(script);
    position->SetToolPathPoint(point);
    EXPECT_EQ(script->GetCorrespondingPosition(point, nullptr), position);
}

TEST(ZELKinScript, PointOfNoPositionFindsNothingAndLeavesTheIndexUntouched)
{
    ZELGeoContainer container;
    const ZELTPPoint* used = new ZELTPPoint(&container, ZELMathAxis());
    const ZELTPPoint* unused = new ZELTPPoint(&container, ZELMathAxis());
    auto* script = new ZELKinTestScript(&container);
    ZELTest::AddPositions(script, 2)[1]->SetToolPathPoint(used);

    int index = 42;
    EXPECT_EQ(script->GetCorrespondingPosition(unused, &index), nullptr);
    EXPECT_EQ(index, 42);
}

TEST(ZELKinScript, NullPointCorrespondsToTheFirstPositionWithoutAPoint)
{
    ZELGeoContainer container;
    const ZELTPPoint* point = new ZELTPPoint(&container, ZELMathAxis());
    auto* script = new ZELKinTestScript(&container);
    const QList<ZELKinPosition*> positions = ZELTest::AddPositions(script, 3);
    positions[0]->SetToolPathPoint(point);

    int index = -1;
    EXPECT_EQ(script->GetCorrespondingPosition(nullptr, &index), positions[1]);
    EXPECT_EQ(index, 1);
}

TEST(ZELKinScript, ProgramSearchesRunOverTheFlattenedCommandsOfItsProcedures)
{
    ProgramFixture f;
    ZELTest::AddProcedure(f.program, {});
    ZELKinTestProcedure* second = ZELTest::AddProcedure(f.program, {0, 2});
    ZELKinTestProcedure* third = ZELTest::AddProcedure(f.program, {3});
    new ZELKinTestCommand(third->GetScripts().at(0));
    ZELTest::AddProcedure(f.program, {0});

    const QList<ZELKinCommand*> flat = ZELTest::CommandsByIndex(*f.program);
    ASSERT_EQ(flat.size(), 6);
    EXPECT_EQ(f.program->GetFirstPosition(), second->GetScripts().at(1)->GetCommand(0));
    EXPECT_EQ(f.program->GetLastPosition(), third->GetScripts().at(0)->GetCommand(2));
    EXPECT_EQ(f.program->GetLastPosition(), flat.at(4));
}

TEST(ZELKinScript, CorrespondingPositionOfAProgramGivesTheProgramWideIndex)
{
    ProgramFixture f;
    ZELTest::AddProcedure(f.program, {2, 0, 1});
    ZELTest::AddProcedure(f.program, {});
    ZELTest::AddProcedure(f.program, {3, 2});

    // Every position gets its own point; each must be found at the index
    // under which GetCommand gives that position.
    const QList<ZELKinCommand*> flat = ZELTest::CommandsByIndex(*f.program);
    ASSERT_EQ(flat.size(), 8);
    for (int expected = 0; expected < flat.size(); ++expected) {
        auto* position = qobject_cast<ZELKinPosition*>(flat.at(expected));
        const ZELTPPoint* point = new ZELTPPoint(&f.container, ZELMathAxis());
        position->SetToolPathPoint(point);
        int index = -1;
        EXPECT_EQ(f.program->GetCorrespondingPosition(point, &index), position);
        EXPECT_EQ(index, expected);
    }
}

TEST(ZELKinScript, ProcedureSearchesRunOverItsScriptsAndSkipEmptyOnes)
{
    ProgramFixture f;
    ZELKinTestProcedure* procedure = ZELTest::AddProcedure(f.program, {0, 1, 0, 2, 0});
    const QList<ZELKinTestScript*> scripts = procedure->GetScripts();
    EXPECT_EQ(procedure->GetFirstPosition(), scripts.at(1)->GetCommand(0));
    EXPECT_EQ(procedure->GetLastPosition(), scripts.at(3)->GetCommand(1));
}

TEST(ZELKinScript, SearchingAProgramAsksEachScriptForItsCountOnce)
{
    // Asking the program for each flat index in turn would walk the
    // procedures and their scripts again for every command; a search walks
    // each script once, however many commands the program holds.
    ProgramFixture f;
    for (int procedure = 0; procedure < 5; ++procedure)
        ZELTest::AddProcedure(f.program, {20, 20, 20});
    const ZELTPPoint* point = new ZELTPPoint(&f.container, ZELMathAxis());
    QList<ZELKinTestScript*> scripts;
    for (ZELKinProcedure* procedure : f.program->GetProcedures())
        scripts += qobject_cast<ZELKinTestProcedure*>(procedure)->GetScripts();
    const auto queries = [&scripts] {
        int total = 0;
        for (const ZELKinTestScript* script : scripts)
            total += script->GetCountQueries();
        return total;
    };

    int before = queries();
    EXPECT_EQ(f.program->GetCorrespondingPosition(point, nullptr), nullptr);
    EXPECT_EQ(queries() - before, scripts.size());

    before = queries();
    EXPECT_NE(f.program->GetLastPosition(), nullptr);
    EXPECT_EQ(queries() - before, 1); // the last script holds the last position
}
