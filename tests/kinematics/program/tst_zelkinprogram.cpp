#include "zelkintestcommand.h"
#include "zelkintestprograms.h"
#include "zelkintestrolllayup.h"

#include <zelkinprogram_p.h>

#include <zeltppoint.h>
#include <zeltpprocedure.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>
#include <zelsysnotimplementedexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <cmath>

namespace {

struct ProgramFixture
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(machine);
};

// A program record as ZELKinProgram::Save lays it out.
QByteArray ProgramRecord(const ZELGeoGeometryRef& machine, const QList<ZELGeoGeometryRef>& procedures,
                         const QDateTime& date, const QString& author)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << machine << qint32(procedures.size());
    for (const ZELGeoGeometryRef& procedure : procedures)
        out << procedure;
    out << date << author;
    return record;
}

const QDateTime kDate(QDate(2024, 3, 14), QTime(15, 9, 26, 535), Qt::UTC);

} // namespace

TEST(ZELKinProgram, CreationLinksTheMachineInItsContainerWithEmptyHeaderItems)
{
    ProgramFixture f;
    EXPECT_EQ(f.program->GetMachine(), f.machine);
    EXPECT_EQ(f.program->GetContainer(), &f.container);
    EXPECT_EQ(f.program->GetProgram(), f.program);
    EXPECT_EQ(f.program->GetNumProcedures(), 0);
    EXPECT_TRUE(f.program->GetProcedures().isEmpty());
    EXPECT_TRUE(f.program->GetDate().isNull());
    EXPECT_TRUE(f.program->GetAuthor().isEmpty());
    EXPECT_TRUE(f.program->GetOriginalFileName().isEmpty());
    EXPECT_EQ(f.program->GetRevisionNumber(), QStringLiteral("0"));
    EXPECT_EQ(f.machine->GetReferenceCount(), 1);
}

TEST(ZELKinProgram, LoadingConstructionGivesAnEmptyProgramWithoutMachine)
{
    const ZELKinProgram program(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(program.GetMachine(), nullptr);
    EXPECT_EQ(program.GetNumProcedures(), 0);
    EXPECT_EQ(program.GetRevisionNumber(), QStringLiteral("0"));
}

TEST(ZELKinProgram, WithoutAMachineStandsOutsideAnyContainer)
{
    const ZELKinProgram* program = ZELKinTestAccess::CreateProgram(nullptr);
    EXPECT_EQ(program->GetMachine(), nullptr);
    EXPECT_EQ(program->GetContainer(), nullptr);
    delete program;
}

TEST(ZELKinProgram, MachineReadsNullOnceItIsGone)
{
    ProgramFixture f;
    f.container.DeleteGeometry(f.machine);
    EXPECT_EQ(f.program->GetMachine(), nullptr);
}

TEST(ZELKinProgram, ProceduresJoinAtTheEndInOrderOfCreation)
{
    ProgramFixture f;
    ZELKinProcedure* first = new ZELKinTestProcedure(f.program);
    ZELKinProcedure* second = new ZELKinTestProcedure(f.program);
    EXPECT_EQ(f.program->GetNumProcedures(), 2);
    EXPECT_EQ(f.program->GetProcedure(0), first);
    EXPECT_EQ(f.program->GetProcedure(1), second);
    EXPECT_EQ(f.program->GetProcedures(), QList<ZELKinProcedure*>({first, second}));
    EXPECT_EQ(first->GetReferenceCount(), 1);
}

TEST(ZELKinProgram, DestroyedProcedureKeepsItsPlaceAsNull)
{
    ProgramFixture f;
    ZELKinProcedure* gone = ZELTest::AddProcedure(f.program, {2});
    ZELKinProcedure* kept = ZELTest::AddProcedure(f.program, {1});
    f.container.DeleteGeometry(gone);
    EXPECT_EQ(f.program->GetProcedures(), QList<ZELKinProcedure*>({nullptr, kept}));
    EXPECT_EQ(f.program->GetProcedure(0), nullptr);
    EXPECT_EQ(f.program->GetNumCommands(), 1);
    EXPECT_EQ(f.program->GetCommand(0), kept->GetCommand(0));
}

struct ProcedureIndexCase
{
    const char* name;
    int procedures;
    int index;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(ProcedureIndexCase);

class ZELKinProgramProcedureIndex : public ::testing::TestWithParam<ProcedureIndexCase>
{
};

TEST_P(ZELKinProgramProcedureIndex, OutsideTheListThrowsWithInclusiveBounds)
{
    const ProcedureIndexCase& c = GetParam();
    ProgramFixture f;
    for (int i = 0; i < c.procedures; ++i)
        new ZELKinTestProcedure(f.program);
    try {
        f.program->GetProcedure(c.index);
        FAIL() << "no exception";
    } catch (const ZELSysOutOfBoundsException& e) {
        EXPECT_EQ(e.GetMessage(), QString::fromLatin1(c.message));
        EXPECT_EQ(e.GetValue().toInt(), c.index);
        EXPECT_EQ(e.GetLowerBound().toInt(), 0);
        EXPECT_EQ(e.GetUpperBound().toInt(), c.procedures - 1);
        EXPECT_TRUE(e.IsLowerBoundInclusive());
        EXPECT_TRUE(e.IsUpperBoundInclusive());
    }
}

INSTANTIATE_TEST_SUITE_P(Indices, ZELKinProgramProcedureIndex,
                         ::testing::Values(ProcedureIndexCase{"OneBeyondTheEnd", 2, 2,
                                                              "value 2 is out of bounds [0, 1]"},
                                           ProcedureIndexCase{"MinusOne", 2, -1, "value -1 is out of bounds [0, 1]"},
                                           ProcedureIndexCase{"ZeroOfNone", 0, 0, "value 0 is out of bounds [0, -1]"}),
                         [](const ::testing::TestParamInfo<ProcedureIndexCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinProgram, WithoutProceduresHasNoCommandsAndCommandZeroIsOutOfBounds)
{
    ProgramFixture f;
    EXPECT_EQ(f.program->GetNumCommands(), 0);
    EXPECT_THROW_MESSAGE(f.program->GetCommand(0), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, 0]");
}

TEST(ZELKinProgram, FlatIndexSkipsAProcedureWithoutCommands)
{
    ProgramFixture f;
    const ZELKinProcedure* first = ZELTest::AddProcedure(f.program, {3});
    ZELTest::AddProcedure(f.program, {});
    const ZELKinProcedure* third = ZELTest::AddProcedure(f.program, {2});
    ASSERT_EQ(f.program->GetNumCommands(), 5);
    EXPECT_EQ(f.program->GetCommand(3), third->GetCommand(0));
    EXPECT_EQ(f.program->GetCommand(4), third->GetCommand(1));
    EXPECT_EQ(f.program->GetCommand(2), first->GetCommand(2));
}

TEST(ZELKinProgram, FlatIndexFollowsTheProceduresAndTheirScriptsInOrder)
{
    ProgramFixture f;
    const ZELKinTestProcedure* first = ZELTest::AddProcedure(f.program, {1, 0, 2});
    const ZELKinTestProcedure* second = ZELTest::AddProcedure(f.program, {0});
    const ZELKinTestProcedure* third = ZELTest::AddProcedure(f.program, {2, 1});
    QList<ZELKinCommand*> expected;
    for (const ZELKinTestProcedure* procedure : {first, second, third}) {
        for (const ZELKinTestScript* script : procedure->GetScripts())
            expected += ZELTest::CommandsByIndex(*script);
    }
    ASSERT_EQ(expected.size(), 6);
    EXPECT_EQ(ZELTest::CommandsByIndex(*f.program), expected);
}

struct CommandIndexCase
{
    const char* name;
    int index;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(CommandIndexCase);

class ZELKinProgramCommandIndex : public ::testing::TestWithParam<CommandIndexCase>
{
};

TEST_P(ZELKinProgramCommandIndex, OutsideTheCommandsThrowsTheResidualWithTheTotalAsUpperBound)
{
    // Two procedures of two commands each: past the end, the value reported
    // is what is left of the index after both counts are taken off.
    ProgramFixture f;
    ZELTest::AddProcedure(f.program, {2});
    ZELTest::AddProcedure(f.program, {1, 1});
    EXPECT_THROW_MESSAGE(f.program->GetCommand(GetParam().index), ZELSysOutOfBoundsException, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Indices, ZELKinProgramCommandIndex,
                         ::testing::Values(CommandIndexCase{"FiveOfFourReportsOne", 5,
                                                            "value 1 is out of bounds [0, 4]"},
                                           CommandIndexCase{"FourOfFourReportsZero", 4,
                                                            "value 0 is out of bounds [0, 4]"},
                                           CommandIndexCase{"NegativeReportsTheIndex", -3,
                                                            "value -3 is out of bounds [0, 4]"}),
                         [](const ::testing::TestParamInfo<CommandIndexCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinProgram, RemoveProcedureShortensTheListAndTheProcedureKeepsItsProgram)
{
    ProgramFixture f;
    ZELKinProcedure* first = ZELTest::AddProcedure(f.program, {2});
    ZELKinProcedure* second = ZELTest::AddProcedure(f.program, {3});
    const int references = first->GetReferenceCount(); // the program's and its script's
    f.container.SetModified(false);
    f.program->RemoveProcedure(first);
    EXPECT_EQ(f.program->GetNumProcedures(), 1);
    EXPECT_EQ(f.program->GetProcedure(0), second);
    EXPECT_EQ(f.program->GetNumCommands(), 3);
    EXPECT_EQ(first->GetProgram(), f.program);
    EXPECT_EQ(first->GetReferenceCount(), references - 1);
    EXPECT_EQ(f.container.GetGeometryByRef(first->GetReference()), first);
    EXPECT_TRUE(f.container.IsModified());
}

struct RemoveCase
{
    const char* name;
    int which; // 0: removed before, 1: of another program, 2: null
};
ZELTEST_PRINT_CASE_BY_NAME(RemoveCase);

class ZELKinProgramRemoveProcedure : public ::testing::TestWithParam<RemoveCase>
{
};

TEST_P(ZELKinProgramRemoveProcedure, NotInTheListThrowsAndChangesNothing)
{
    ProgramFixture f;
    ZELKinProcedure* removed = new ZELKinTestProcedure(f.program);
    ZELKinProcedure* kept = new ZELKinTestProcedure(f.program);
    f.program->RemoveProcedure(removed);
    ZELKinProgram* other = ZELKinTestAccess::CreateProgram(f.machine);
    ZELKinProcedure* foreign = new ZELKinTestProcedure(other);
    ZELKinProcedure* const candidates[] = {removed, foreign, nullptr};
    EXPECT_THROW_MESSAGE(f.program->RemoveProcedure(candidates[GetParam().which]), ZELSysException,
                         "procedure does not belong to this program");
    EXPECT_EQ(f.program->GetProcedures(), QList<ZELKinProcedure*>({kept}));
    EXPECT_EQ(other->GetProcedures(), QList<ZELKinProcedure*>({foreign}));
}

INSTANTIATE_TEST_SUITE_P(Procedures, ZELKinProgramRemoveProcedure,
                         ::testing::Values(RemoveCase{"RemovedBefore", 0}, RemoveCase{"OfAnotherProgram", 1},
                                           RemoveCase{"Null", 2}),
                         [](const ::testing::TestParamInfo<RemoveCase>& info) { return std::string(info.param.name); });

TEST(ZELKinProgram, AppendingAProcedureOfAnotherProgramThrowsProgramMismatch)
{
    ProgramFixture f;
    ZELKinProgram* other = ZELKinTestAccess::CreateProgram(f.machine);
    ZELKinProcedure* foreign = new ZELKinTestProcedure(other);
    f.container.SetModified(false);
    EXPECT_THROW_MESSAGE(ZELKinProgramPrivate::get(f.program)->AppendProcedure(foreign), ZELSysException,
                         "program mismatch");
    EXPECT_EQ(f.program->GetNumProcedures(), 0);
    EXPECT_EQ(foreign->GetReferenceCount(), 1);
    EXPECT_FALSE(f.container.IsModified());
}

TEST(ZELKinProgram, HeaderItemsKeepWhatIsSetAndMarkTheContainerModified)
{
    ProgramFixture f;
    f.container.SetModified(false);
    f.program->SetAuthor(QStringLiteral("jdoe"));
    EXPECT_TRUE(f.container.IsModified());
    f.program->SetDate(kDate);
    f.program->SetOriginalFileName(QStringLiteral("wing-skin.tpp"));
    f.program->SetRevisionNumber(QStringLiteral("C"));
    EXPECT_EQ(f.program->GetAuthor(), QStringLiteral("jdoe"));
    EXPECT_EQ(f.program->GetDate(), kDate);
    EXPECT_EQ(f.program->GetOriginalFileName(), QStringLiteral("wing-skin.tpp"));
    EXPECT_EQ(f.program->GetRevisionNumber(), QStringLiteral("C"));
}

TEST(ZELKinProgram, RecordHoldsMachineProceduresDateAndAuthorOnly)
{
    ProgramFixture f;
    const ZELKinProcedure* first = new ZELKinTestProcedure(f.program);
    const ZELKinProcedure* second = new ZELKinTestProcedure(f.program);
    f.program->SetAuthor(QStringLiteral("Zoë"));
    f.program->SetDate(kDate);
    f.program->SetOriginalFileName(QStringLiteral("wing-skin.tpp"));
    f.program->SetRevisionNumber(QStringLiteral("7"));
    EXPECT_EQ(f.program->GetCurrentState(),
              ProgramRecord(f.machine->GetReference(), {first->GetReference(), second->GetReference()}, kDate,
                            QStringLiteral("Zoë")));
}

TEST(ZELKinProgram, AfterSaveAndLoadAuthorAndDateSurviveRevisionIsZeroAndFileNameEmpty)
{
    ProgramFixture f;
    f.program->SetAuthor(QStringLiteral("jdoe"));
    f.program->SetDate(kDate);
    f.program->SetOriginalFileName(QStringLiteral("wing-skin.tpp"));
    f.program->SetRevisionNumber(QStringLiteral("12"));

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    const ZELKinProgram* loaded = ZELTest::FirstOf<ZELKinProgram>(target);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetAuthor(), QStringLiteral("jdoe"));
    EXPECT_EQ(loaded->GetDate(), kDate);
    EXPECT_EQ(loaded->GetRevisionNumber(), QStringLiteral("0"));
    EXPECT_TRUE(loaded->GetOriginalFileName().isEmpty());
    EXPECT_EQ(loaded->GetMachine(), ZELTest::FirstOf<ZELKinAFPMachine>(target));
}

TEST(ZELKinProgram, GoneMachineAndProcedureAreSavedEmptyAndLoadAsNull)
{
    ProgramFixture f;
    ZELKinProcedure* gone = new ZELKinTestProcedure(f.program);
    new ZELKinTestProcedure(f.program);
    f.container.DeleteGeometry(gone);
    f.container.DeleteGeometry(f.machine);

    ZELGeoContainer target;
    ASSERT_NO_THROW(ZELTest::CopyContainer(f.container, target));
    const ZELKinProgram* loaded = ZELTest::FirstOf<ZELKinProgram>(target);
    EXPECT_EQ(loaded->GetMachine(), nullptr);
    EXPECT_EQ(loaded->GetProcedures(),
              QList<ZELKinProcedure*>({nullptr, ZELTest::FirstOf<ZELKinTestProcedure>(target)}));
}

struct UnresolvedCase
{
    const char* name;
    bool inProcedures; // else the machine
    bool wrongClass;
    const char* expectedClass;
};
ZELTEST_PRINT_CASE_BY_NAME(UnresolvedCase);

class ZELKinProgramUnresolved : public ::testing::TestWithParam<UnresolvedCase>
{
};

TEST_P(ZELKinProgramUnresolved, ReferenceThrowsNotFound)
{
    const UnresolvedCase& c = GetParam();
    ProgramFixture f;
    const ZELGeoGeometryRef bad = c.wrongClass ? f.program->GetReference() : ZELGeoGeometryRef(31337);
    ZELKinProgram loaded(&f.container, ZELGeoGeometryRef());
    ZELGeoStream stream(ProgramRecord(c.inProcedures ? f.machine->GetReference() : bad,
                                      c.inProcedures ? QList<ZELGeoGeometryRef>{bad} : QList<ZELGeoGeometryRef>{},
                                      kDate, QString()),
                        &f.container);
    EXPECT_THROW_MESSAGE(loaded.Load(stream), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class %1 with reference %2")
                             .arg(QString::fromLatin1(c.expectedClass))
                             .arg(bad.GetIdentity()));
}

INSTANTIATE_TEST_SUITE_P(References, ZELKinProgramUnresolved,
                         ::testing::Values(UnresolvedCase{"MachineOfNoObject", false, false, "ZELKinMachine"},
                                           UnresolvedCase{"MachineOfAnotherClass", false, true, "ZELKinMachine"},
                                           UnresolvedCase{"ProcedureOfNoObject", true, false, "ZELKinProcedure"},
                                           UnresolvedCase{"ProcedureOfAnotherClass", true, true, "ZELKinProcedure"}),
                         [](const ::testing::TestParamInfo<UnresolvedCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinProgram, WholeProgramSurvivesSaveAndLoadIntoAFreshContainer)
{
    ProgramFixture f;
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("X"));
    ZELKinVariable* c = ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("C"), ZELKinVariable::Rotary);
    f.program->SetAuthor(QStringLiteral("jdoe"));
    f.program->SetDate(kDate);
    f.program->SetOriginalFileName(QStringLiteral("wing-skin.tpp"));
    f.program->SetRevisionNumber(QStringLiteral("4"));

    ZELKinTestProcedure* layup = ZELTest::AddProcedure(f.program, {2, 0, 3});
    ZELTest::AddProcedure(f.program, {1});
    layup->SetToolPathProcedure(new ZELTPProcedure(&f.container, QStringLiteral("ply 1")));
    layup->SetSafetyPlane(ZELMathPlane(ZELMathPoint(0.0, 0.0, 500.0), ZELMathVector(0.0, 0.0, 1.0)));
    new ZELKinTestCommand(layup->GetScripts().at(2), 1);
    const QList<ZELKinCommand*> commands = ZELTest::CommandsByIndex(*f.program);
    ASSERT_EQ(commands.size(), 7);
    for (int i = 0; i < commands.size(); ++i) {
        auto* position = qobject_cast<ZELKinPosition*>(commands.at(i));
        if (!position)
            continue;
        position->SetVariableValue(x, 100.0 * i + 0.125);
        if (i % 2 == 0)
            position->SetVariableValue(c, 0.5 * i);
        position->SetFeedrate(i == 3 ? ZELTest::kNaN : 1000.0 + i);
        position->SetTraori(i % 3 == 0);
        position->SetLateralPositionAdjustment(-0.25 * i);
        ZELMathAxis frame;
        frame.SetOrigin(ZELMathPoint(i, 2.0 * i, 3.0));
        position->SetToolPathPoint(new ZELTPPoint(&f.container, frame));
    }

    ZELGeoContainer target;
    ZELTest::CopyContainer(f.container, target);
    ASSERT_EQ(target.GetNumGeometries(), f.container.GetNumGeometries());

    const ZELKinProgram* program = ZELTest::FirstOf<ZELKinProgram>(target);
    const ZELKinAFPMachine* machine = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->GetMachine(), machine);
    EXPECT_EQ(program->GetAuthor(), QStringLiteral("jdoe"));
    EXPECT_EQ(program->GetDate(), kDate);
    EXPECT_TRUE(program->GetOriginalFileName().isEmpty());
    EXPECT_EQ(program->GetRevisionNumber(), QStringLiteral("0"));

    ASSERT_EQ(program->GetNumProcedures(), 2);
    const QList<ZELKinProcedure*> procedures = program->GetProcedures();
    for (int p = 0; p < 2; ++p) {
        const auto* saved = qobject_cast<const ZELKinTestProcedure*>(f.program->GetProcedure(p));
        const auto* loaded = qobject_cast<const ZELKinTestProcedure*>(procedures.at(p));
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(loaded->GetProgram(), program);
        EXPECT_EQ(loaded->GetToolPathProcedure(), nullptr); // not saved
        EXPECT_TRUE(ZELTest::SameDouble(0.0, loaded->GetSafetyPlane().GetOrigin().GetZ(), ZELTest::kExact));
        ASSERT_EQ(loaded->GetScripts().size(), saved->GetScripts().size());
        for (int s = 0; s < saved->GetScripts().size(); ++s) {
            EXPECT_EQ(loaded->GetScripts().at(s)->GetProcedure(), loaded);
            EXPECT_EQ(loaded->GetScripts().at(s)->GetNumCommands(), saved->GetScripts().at(s)->GetNumCommands());
        }
    }

    const QList<ZELKinCommand*> loadedCommands = ZELTest::CommandsByIndex(*program);
    ASSERT_EQ(loadedCommands.size(), commands.size());
    const ZELKinVariable* loadedX = machine->GetVariable(QStringLiteral("X"));
    const ZELKinVariable* loadedC = machine->GetVariable(QStringLiteral("C"));
    for (int i = 0; i < commands.size(); ++i) {
        SCOPED_TRACE(i);
        const ZELKinCommand* savedCommand = commands.at(i);
        const ZELKinCommand* loadedCommand = loadedCommands.at(i);
        ASSERT_NE(loadedCommand, nullptr);
        EXPECT_STREQ(loadedCommand->metaObject()->className(), savedCommand->metaObject()->className());
        EXPECT_EQ(qobject_cast<const ZELKinTestScript*>(loadedCommand->GetScript())->GetProcedure()->GetProgram(),
                  program);
        const auto* saved = qobject_cast<const ZELKinPosition*>(savedCommand);
        const auto* loaded = qobject_cast<const ZELKinPosition*>(loadedCommand);
        if (!saved)
            continue;
        ASSERT_NE(loaded, nullptr);
        const auto same = [](double expected, double actual) {
            return ZELTest::SameDouble(expected, actual, ZELTest::kExact);
        };
        EXPECT_TRUE(same(saved->GetVariableValue(x), loaded->GetVariableValue(loadedX)));
        EXPECT_EQ(loaded->IsVariableDefined(loadedC), saved->IsVariableDefined(c));
        EXPECT_TRUE(same(saved->GetVariableValue(c), loaded->GetVariableValue(loadedC)));
        EXPECT_TRUE(same(saved->GetFeedrate(), loaded->GetFeedrate()));
        EXPECT_TRUE(loaded->IsTraori()); // not saved
        EXPECT_TRUE(same(saved->GetLateralPositionAdjustment(), loaded->GetLateralPositionAdjustment()));
        ASSERT_NE(loaded->GetToolPathPoint(), nullptr);
        const ZELMathPoint savedTip = saved->GetToolPathPoint()->GetToolFrame().GetOrigin();
        const ZELMathPoint loadedTip = loaded->GetToolPathPoint()->GetToolFrame().GetOrigin();
        EXPECT_TRUE(same(savedTip.GetX(), loadedTip.GetX()));
        EXPECT_TRUE(same(savedTip.GetY(), loadedTip.GetY()));
        int index = -1;
        EXPECT_EQ(program->GetCorrespondingPosition(loaded->GetToolPathPoint(), &index), loaded);
        EXPECT_EQ(index, i);
    }
}

// A roll layup's positions count under its toolpath procedure's name; a
// procedure of another kind, or one translated from no toolpath procedure,
// is left out.
TEST(ZELKinProgram, PositionsByProcedureCountEachRollLayupUnderItsToolpathProceduresName)
{
    ZELTest::RollLayupFixture f;
    f.procedure->SetToolPathProcedure(new ZELTPProcedure(&f.container, QStringLiteral("Ply 1")));
    ZELTest::AddLinksAndCourses(f.procedure, {2, 1}, {3, 4});
    ZELKinRollLayupProcedure* unnamed = ZELKinTestAccess::CreateRollLayupProcedure(f.program, 2540.0, 1270.0);
    ZELTest::AddCourse(unnamed, 5);
    ZELTest::AddProcedure(f.program, {2})
        ->SetToolPathProcedure(new ZELTPProcedure(&f.container, QStringLiteral("probe")));

    const QHash<QString, qint64> positions = f.program->GetPositionsByProcedure();
    EXPECT_EQ(positions, (QHash<QString, qint64>{{QStringLiteral("Ply 1"), 10}}));
}
