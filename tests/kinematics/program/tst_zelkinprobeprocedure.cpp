// The probe procedure: an append-only sequence of positions and probe
// commands, saved as a plain procedure.

#include "zelkintestcommand.h"
#include "zelkintestprograms.h"

#include <zelkinprobeprocedure_p.h>

#include <zeltppoint.h>

#include <zelgeostream.h>
#include <zelsysexception.h>
#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <QMetaMethod>

#include <climits>
#include <cmath>

using ZELTest::kNaN;

namespace {

struct ProgramFixture
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinProgram* program = ZELKinTestAccess::CreateProgram(machine);
};

// A probe procedure's record is a plain procedure's: the program reference.
QByteArray ProcedureRecord(const ZELGeoGeometryRef& program)
{
    QByteArray record;
    ZELGeoStream out(&record, nullptr);
    out << program;
    return record;
}

int IndexOfCommand(ZELKinProbeProcedure* procedure, ZELKinCommand* command)
{
    return ZELKinScriptPrivate::get(procedure)->IndexOfCommand(command);
}

// The loaded geometries of class T, in creation order.
template <typename T>
QList<T*> AllOf(const QList<ZELGeoGeometry*>& geometries)
{
    QList<T*> objects;
    for (ZELGeoGeometry* geometry : geometries) {
        if (auto* object = qobject_cast<T*>(geometry))
            objects.append(object);
    }
    return objects;
}

constexpr const char* kCannotInsert = "cannot insert commands in a probing operation";

} // namespace

TEST(ZELKinProbeProcedure, CreationAppendsAnEmptyProcedureToTheProgramInItsContainer)
{
    ProgramFixture f;
    ZELKinProcedure* first = ZELTest::AddProcedure(f.program, {1});
    f.container.SetModified(false);
    ZELKinProbeProcedure* probing = ZELKinTestAccess::CreateProbeProcedure(f.program);
    EXPECT_EQ(probing->GetProgram(), f.program);
    EXPECT_EQ(probing->GetContainer(), &f.container);
    EXPECT_EQ(f.program->GetProcedures(), QList<ZELKinProcedure*>({first, probing}));
    EXPECT_EQ(probing->GetNumCommands(), 0);
    EXPECT_EQ(probing->GetReferenceCount(), 1);
    EXPECT_TRUE(f.container.IsModified());
}

TEST(ZELKinProbeProcedure, WithoutAProgramStandsOutsideAnyContainer)
{
    const ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(nullptr);
    EXPECT_EQ(procedure->GetProgram(), nullptr);
    EXPECT_EQ(procedure->GetContainer(), nullptr);
    EXPECT_EQ(procedure->GetNumCommands(), 0);
    delete procedure;
}

TEST(ZELKinProbeProcedure, LoadingConstructionGivesAProcedureWithoutProgramOrCommands)
{
    const ZELKinProbeProcedure procedure(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(procedure.GetProgram(), nullptr);
    EXPECT_EQ(procedure.GetNumCommands(), 0);
    EXPECT_EQ(procedure.GetFirstPosition(), nullptr);
}

TEST(ZELKinProbeProcedure, IsCreatedByTheContainerFromItsClassNameThroughConstructorZero)
{
    const QMetaObject* metaObject = &ZELKinProbeProcedure::staticMetaObject;
    EXPECT_EQ(metaObject->superClass(), &ZELKinProcedure::staticMetaObject);
    ASSERT_EQ(metaObject->constructorCount(), 1);
    EXPECT_EQ(metaObject->constructor(0).parameterTypes(),
              QList<QByteArray>({"ZELGeoContainer*", "ZELGeoGeometryRef"}));
    EXPECT_EQ(metaObject->constructor(0).parameterNames(), QList<QByteArray>({"container", "reference"}));
    EXPECT_EQ(ZELGeoContainer::FindClass("ZELKinProbeProcedure"), metaObject);
}

TEST(ZELKinProbeProcedure, PositionThenProbeCommandGiveTwoCommandsWithThePositionFirst)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinPosition* position = ZELKinTestAccess::CreatePosition(procedure);
    ZELKinProbeCommand* probe = ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, 12.7);
    EXPECT_EQ(procedure->GetNumCommands(), 2);
    EXPECT_EQ(procedure->GetCommand(0), position);
    EXPECT_EQ(procedure->GetCommand(1), probe);
    EXPECT_EQ(position->GetIndex(), 0);
    EXPECT_EQ(probe->GetIndex(), 1);
    EXPECT_EQ(position->GetScript(), procedure);
    EXPECT_EQ(probe->GetScript(), procedure);
    EXPECT_EQ(procedure->GetFirstPosition(), position);
    EXPECT_EQ(procedure->GetLastPosition(), position);
}

TEST(ZELKinProbeProcedure, CommandsJoinAtTheEndInOrderOfCreation)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    const QList<ZELKinCommand*> expected = {
        ZELKinTestAccess::CreatePosition(procedure),
        ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, 6.35),
        ZELKinTestAccess::CreatePosition(procedure),
        ZELKinTestAccess::CreatePosition(procedure),
        ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, 6.35),
    };
    EXPECT_EQ(ZELTest::CommandsByIndex(*procedure), expected);
    for (int index = 0; index < expected.size(); ++index)
        EXPECT_EQ(expected.at(index)->GetIndex(), index);
    EXPECT_EQ(procedure->GetLastPosition(), expected.at(3));
}

TEST(ZELKinProbeProcedure, AnyNegativeIndexAppends)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinTestAccess::CreatePosition(procedure);
    const ZELKinCommand* minusOne = new ZELKinTestCommand(procedure, -1);
    const ZELKinCommand* minusSeven = new ZELKinTestPosition(procedure, -7);
    EXPECT_EQ(minusOne->GetIndex(), 1);
    EXPECT_EQ(minusSeven->GetIndex(), 2);
    EXPECT_EQ(procedure->GetCommand(1), minusOne);
    EXPECT_EQ(procedure->GetCommand(2), minusSeven);
}

TEST(ZELKinProbeProcedure, AppendingMarksTheContainerModified)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    f.container.SetModified(false);
    ZELKinTestAccess::CreatePosition(procedure);
    EXPECT_TRUE(f.container.IsModified());
}

struct ExplicitIndexCase
{
    const char* name;
    int existing;
    int index;
};
ZELTEST_PRINT_CASE_BY_NAME(ExplicitIndexCase);

class ZELKinProbeProcedureExplicitIndex : public ::testing::TestWithParam<ExplicitIndexCase>
{
};

TEST_P(ZELKinProbeProcedureExplicitIndex, ThrowsAndInsertsNothing)
{
    const ExplicitIndexCase& c = GetParam();
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    QList<ZELKinCommand*> existing;
    for (int i = 0; i < c.existing; ++i)
        existing.append(ZELKinTestAccess::CreatePosition(procedure));
    const int geometries = f.container.GetNumGeometries();
    const int references = procedure->GetReferenceCount();
    f.container.SetModified(false);

    EXPECT_THROW_MESSAGE(new ZELKinTestPosition(procedure, c.index), ZELSysException, kCannotInsert);

    EXPECT_EQ(ZELTest::CommandsByIndex(*procedure), existing);
    EXPECT_EQ(f.container.GetNumGeometries(), geometries);
    EXPECT_EQ(procedure->GetReferenceCount(), references);
    EXPECT_FALSE(f.container.IsModified());
}

INSTANTIATE_TEST_SUITE_P(Indices, ZELKinProbeProcedureExplicitIndex,
                         ::testing::Values(ExplicitIndexCase{"ZeroIntoAnEmptyProcedure", 0, 0},
                                           ExplicitIndexCase{"AtTheFront", 3, 0},
                                           ExplicitIndexCase{"InTheMiddle", 3, 1},
                                           ExplicitIndexCase{"BeforeTheLast", 3, 2},
                                           ExplicitIndexCase{"EqualToTheCount", 3, 3},
                                           ExplicitIndexCase{"FarBeyond", 3, 99}),
                         [](const ::testing::TestParamInfo<ExplicitIndexCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinProbeProcedure, ExplicitIndexIsRefusedForCommandsThatAreNotPositions)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinTestAccess::CreatePosition(procedure);
    EXPECT_THROW_MESSAGE(new ZELKinTestCommand(procedure, 0), ZELSysException, kCannotInsert);
    EXPECT_EQ(procedure->GetNumCommands(), 1);
}

TEST(ZELKinProbeProcedure, IndexOfCommandScansForTheSameObject)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinProbeProcedure* other = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinCommand* foreign = ZELKinTestAccess::CreatePosition(other);
    EXPECT_EQ(IndexOfCommand(procedure, foreign), -1); // empty list

    ZELKinCommand* position = ZELKinTestAccess::CreatePosition(procedure);
    ZELKinCommand* probe = ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, 6.35);
    EXPECT_EQ(IndexOfCommand(procedure, position), 0);
    EXPECT_EQ(IndexOfCommand(procedure, probe), 1);
    EXPECT_EQ(IndexOfCommand(procedure, foreign), -1);
    EXPECT_EQ(IndexOfCommand(procedure, nullptr), -1);
}

TEST(ZELKinProbeProcedure, IndexOfCommandDoesNotMatchNullWithADestroyedEntry)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    f.container.DeleteGeometry(ZELKinTestAccess::CreatePosition(procedure));
    ASSERT_EQ(procedure->GetNumCommands(), 1);
    EXPECT_EQ(IndexOfCommand(procedure, nullptr), -1);
}

struct OutsideIndexCase
{
    const char* name;
    int index;
};
ZELTEST_PRINT_CASE_BY_NAME(OutsideIndexCase);

class ZELKinProbeProcedureCommandOutside : public ::testing::TestWithParam<OutsideIndexCase>
{
};

TEST_P(ZELKinProbeProcedureCommandOutside, ReadsNullWithoutThrowing)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinTestAccess::CreatePosition(procedure);
    ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, 6.35);
    ZELKinCommand* command = procedure->GetCommand(0);
    EXPECT_NO_THROW(command = procedure->GetCommand(GetParam().index));
    EXPECT_EQ(command, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Indices, ZELKinProbeProcedureCommandOutside,
                         ::testing::Values(OutsideIndexCase{"MinusOne", -1}, OutsideIndexCase{"TheCount", 2},
                                           OutsideIndexCase{"FarBeyond", 1000},
                                           OutsideIndexCase{"LargestInt", INT_MAX},
                                           OutsideIndexCase{"SmallestInt", INT_MIN}),
                         [](const ::testing::TestParamInfo<OutsideIndexCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ZELKinProbeProcedure, DestroyedCommandKeepsItsPlaceAsNull)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinPosition* gone = ZELKinTestAccess::CreatePosition(procedure);
    ZELKinProbeCommand* kept = ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, 6.35);
    f.container.DeleteGeometry(gone);
    EXPECT_EQ(ZELTest::CommandsByIndex(*procedure), QList<ZELKinCommand*>({nullptr, kept}));
    EXPECT_EQ(procedure->GetFirstPosition(), nullptr);
}

TEST(ZELKinProbeProcedure, ProcedureAndCommandsHoldOneReferenceOnEachOther)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinPosition* position = ZELKinTestAccess::CreatePosition(procedure);
    ZELKinProbeCommand* probe = ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, 6.35);
    EXPECT_EQ(procedure->GetReferenceCount(), 3); // the program and both commands
    EXPECT_EQ(position->GetReferenceCount(), 1);
    EXPECT_EQ(probe->GetReferenceCount(), 1);

    f.container.DeleteGeometry(position);
    EXPECT_EQ(procedure->GetReferenceCount(), 2);
    f.container.DeleteGeometry(procedure);
    EXPECT_EQ(probe->GetReferenceCount(), 0);
    EXPECT_EQ(probe->GetScript(), nullptr);
}

TEST(ZELKinProbeProcedure, ProgramFlatIndexRunsThroughTheProbeCommandsInOrder)
{
    ProgramFixture f;
    ZELKinTestProcedure* before = ZELTest::AddProcedure(f.program, {2});
    ZELKinProbeProcedure* probing = ZELKinTestAccess::CreateProbeProcedure(f.program);
    const QList<ZELKinCommand*> probeCommands = {
        ZELKinTestAccess::CreatePosition(probing),
        ZELKinTestAccess::CreateProbeCommand(probing, ZELKinProbeCommand::Sphere, 6.35),
        ZELKinTestAccess::CreatePosition(probing),
    };
    ZELKinTestProcedure* after = ZELTest::AddProcedure(f.program, {1});

    ASSERT_EQ(f.program->GetNumCommands(), 6);
    EXPECT_EQ(ZELTest::CommandsByIndex(*f.program),
              ZELTest::CommandsByIndex(*before) + probeCommands + ZELTest::CommandsByIndex(*after));
    const ZELTPPoint* point = new ZELTPPoint(&f.container, ZELMathAxis());
    qobject_cast<ZELKinPosition*>(probeCommands.at(2))->SetToolPathPoint(point);
    int index = -1;
    EXPECT_EQ(f.program->GetCorrespondingPosition(point, &index), probeCommands.at(2));
    EXPECT_EQ(index, 4);
    EXPECT_THROW_MESSAGE(f.program->GetCommand(6), ZELSysOutOfBoundsException, "value 0 is out of bounds [0, 6]");
}

TEST(ZELKinProbeProcedure, ProgramFlatIndexSkipsAnEmptyProbeProcedure)
{
    ProgramFixture f;
    ZELKinTestProcedure* before = ZELTest::AddProcedure(f.program, {3});
    ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinTestProcedure* after = ZELTest::AddProcedure(f.program, {2});
    ASSERT_EQ(f.program->GetNumCommands(), 5);
    EXPECT_EQ(f.program->GetCommand(2), before->GetCommand(2));
    EXPECT_EQ(f.program->GetCommand(3), after->GetCommand(0));
}

TEST(ZELKinProbeProcedure, RecordIsAPlainProcedureRecordWithoutTheCommands)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinTestAccess::CreatePosition(procedure);
    ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, 6.35);
    EXPECT_EQ(procedure->GetCurrentState(), ProcedureRecord(f.program->GetReference()));
}

TEST(ZELKinProbeProcedure, SaveAndLoadKeepTheCommandsButNotTheProcedureCommandList)
{
    ProgramFixture f;
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(f.machine, QStringLiteral("X"));
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    ZELKinPosition* position = ZELKinTestAccess::CreatePosition(procedure);
    position->SetVariableValue(x, 812.8);
    position->SetFeedrate(1500.0);
    ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, 12.7);
    ZELKinTestAccess::CreateProbeCommand(procedure, ZELKinProbeCommand::Sphere, kNaN);

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTest::CopyContainer(f.container, target);
    const ZELKinProgram* loadedProgram = ZELTest::FirstOf<ZELKinProgram>(target);
    ZELKinProbeProcedure* loadedProcedure = ZELTest::FirstOf<ZELKinProbeProcedure>(target);
    ASSERT_NE(loadedProgram, nullptr);
    ASSERT_NE(loadedProcedure, nullptr);
    EXPECT_EQ(loadedProcedure->GetProgram(), loadedProgram);
    EXPECT_EQ(loadedProgram->GetProcedures(), QList<ZELKinProcedure*>({loadedProcedure}));

    // The command list is not part of the record: it comes back empty, so
    // the program's flat index no longer reaches the commands.
    EXPECT_EQ(loadedProcedure->GetNumCommands(), 0);
    EXPECT_EQ(loadedProgram->GetNumCommands(), 0);

    // The commands themselves come back whole and still name the procedure.
    const QList<ZELKinPosition*> positions = AllOf<ZELKinPosition>(loaded);
    ASSERT_EQ(positions.size(), 1);
    EXPECT_EQ(positions.at(0)->GetScript(), loadedProcedure);
    const ZELKinVariable* loadedX = ZELTest::FirstOf<ZELKinAFPMachine>(target)->GetVariable(QStringLiteral("X"));
    EXPECT_TRUE(ZELTest::SameDouble(812.8, positions.at(0)->GetVariableValue(loadedX), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(1500.0, positions.at(0)->GetFeedrate(), ZELTest::kExact));

    const QList<ZELKinProbeCommand*> probes = AllOf<ZELKinProbeCommand>(loaded);
    ASSERT_EQ(probes.size(), 2);
    for (const ZELKinProbeCommand* probe : probes) {
        EXPECT_EQ(probe->GetScript(), loadedProcedure);
        EXPECT_EQ(probe->GetTargetShape(), ZELKinProbeCommand::Sphere);
    }
    EXPECT_TRUE(ZELTest::SameDouble(12.7, probes.at(0)->GetDiameter(), ZELTest::kExact));
    EXPECT_TRUE(std::isnan(probes.at(1)->GetDiameter()));
}

TEST(ZELKinProbeProcedure, LoadingRestoresTheProgramAndLeavesTheCommandListAsItWas)
{
    ProgramFixture f;
    ZELKinProbeProcedure* procedure = ZELKinTestAccess::CreateProbeProcedure(f.program);
    const ZELKinCommand* position = ZELKinTestAccess::CreatePosition(procedure);
    ZELGeoStream stream(ProcedureRecord(f.program->GetReference()), &f.container);
    procedure->Load(stream);
    EXPECT_EQ(procedure->GetProgram(), f.program);
    EXPECT_EQ(ZELTest::CommandsByIndex(*procedure), QList<ZELKinCommand*>({const_cast<ZELKinCommand*>(position)}));
    EXPECT_EQ(f.program->GetNumProcedures(), 1);
}
