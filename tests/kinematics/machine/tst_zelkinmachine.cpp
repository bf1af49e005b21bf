#include <zelkintestaccess.h>

#include <zelkinrbrsolver.h>

#include <zelsysoutofboundsexception.h>

#include <zeltestsupport.h>

#include <memory>

TEST(ZELKinMachine, WithoutJointsHasNoRootJoints)
{
    ZELGeoContainer container;
    const ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    EXPECT_TRUE(machine->GetRootJoints().isEmpty());
    EXPECT_EQ(machine->GetNumJoints(), 0);
    EXPECT_EQ(machine->GetNumVariables(), 0);
}

TEST(ZELKinMachine, RootJointsAreThoseWithoutParentInJointOrder)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinJoint* a = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("A"), machine, x);
    ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("B"), machine, x, a);
    ZELKinJoint* c = ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("C"), machine, x);
    EXPECT_EQ(machine->GetRootJoints(), QList<ZELKinJoint*>({a, c}));
}

struct IndexCase
{
    const char* name;
    int jointsToCreate;
    int index;
    int upperBound;
};
ZELTEST_PRINT_CASE_BY_NAME(IndexCase);

class ZELKinMachineJointIndex : public ::testing::TestWithParam<IndexCase>
{
};

TEST_P(ZELKinMachineJointIndex, OutsideTheListThrowsWithInclusiveBounds)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    for (int i = 0; i < GetParam().jointsToCreate; ++i)
        ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("J%1").arg(i), machine, x);
    try {
        machine->GetJoint(GetParam().index);
        FAIL() << "no exception";
    } catch (const ZELSysOutOfBoundsException& e) {
        EXPECT_EQ(e.GetValue().toInt(), GetParam().index);
        EXPECT_EQ(e.GetLowerBound().toInt(), 0);
        EXPECT_EQ(e.GetUpperBound().toInt(), GetParam().upperBound);
        EXPECT_TRUE(e.IsLowerBoundInclusive());
        EXPECT_TRUE(e.IsUpperBoundInclusive());
    }
}

INSTANTIATE_TEST_SUITE_P(Indices, ZELKinMachineJointIndex,
                         ::testing::Values(IndexCase{"OneBeyondTheEnd", 2, 2, 1}, IndexCase{"MinusOne", 2, -1, 1},
                                           IndexCase{"ZeroOnAnEmptyMachine", 0, 0, -1}),
                         [](const ::testing::TestParamInfo<IndexCase>& info) { return std::string(info.param.name); });

TEST(ZELKinMachine, VariableIndexOutsideTheListThrows)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    EXPECT_THROW_MESSAGE(machine->GetVariable(1), ZELSysOutOfBoundsException, "value 1 is out of bounds [0, 0]");
    EXPECT_THROW_MESSAGE(machine->GetVariable(-1), ZELSysOutOfBoundsException, "value -1 is out of bounds [0, 0]");
}

TEST(ZELKinMachine, FindsTheFirstVariableByExactName)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    ZELKinVariable* first = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    EXPECT_EQ(machine->GetVariable(QStringLiteral("X")), first);
    EXPECT_EQ(machine->GetVariable(QStringLiteral("x")), nullptr);
    EXPECT_EQ(machine->GetVariable(QString()), nullptr);
}

namespace {

constexpr double kHalfPi = 1.57079632679489661923;

// Gives the machine made by ZELKinTestAccess::CreateMachine a gantry X, Y, Z
// carrying a wrist C (about Z), A (about Y), C1 (about Z), all pivots at the
// origin; the machine's solver configuration only sets the tip point, so the
// default zero directions suit these axes.
void AddGantryWithWrist(ZELKinMachine* machine)
{
    ZELKinJoint* parent = nullptr;
    for (const char* axis : {"X", "Y", "Z"}) {
        ZELKinVariable* variable = ZELKinTestAccess::CreateVariable(machine, QString::fromLatin1(axis));
        parent = ZELKinTestAccess::CreateTranslationJoint(QString::fromLatin1(axis), machine, variable, parent);
    }
    const ZELMathVector axes[] = {ZELMathVector(0, 0, 1), ZELMathVector(0, 1, 0), ZELMathVector(0, 0, 1)};
    const char* names[] = {"C", "A", "C1"};
    for (int i = 0; i < 3; ++i) {
        ZELKinVariable* variable = ZELKinTestAccess::CreateVariable(machine, QString::fromLatin1(names[i]),
                                                                    ZELKinVariable::Rotary, -3.5, 3.5);
        parent = ZELKinTestAccess::CreateRotaryJoint(QString::fromLatin1(names[i]), machine, variable, parent,
                                                     axes[i]);
    }
}

struct SolverNameCase
{
    const char* name;
    QString solverName;
};
ZELTEST_PRINT_CASE_BY_NAME(SolverNameCase);

class ZELKinMachineUnknownSolverName : public ::testing::TestWithParam<SolverNameCase>
{
};

} // namespace

TEST_P(ZELKinMachineUnknownSolverName, CreatesNoSolver)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine =
        ZELKinTestAccess::CreateMachine(&container, ZELKinTestAccess::Head(), GetParam().solverName);
    AddGantryWithWrist(machine);
    EXPECT_EQ(machine->GetSolverName(), GetParam().solverName);
    EXPECT_EQ(machine->CreateSolver(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Names, ZELKinMachineUnknownSolverName,
                         ::testing::Values(SolverNameCase{"LowerCase", QStringLiteral("rbr")},
                                           SolverNameCase{"MixedCase", QStringLiteral("Rbr")},
                                           SolverNameCase{"Blanks", QStringLiteral(" RBR")},
                                           SolverNameCase{"Other", QStringLiteral("RRR")},
                                           SolverNameCase{"Empty", QString()}),
                         [](const ::testing::TestParamInfo<SolverNameCase>& info) { return std::string(info.param.name); });

TEST(ZELKinMachine, CreatesARollBendRollSolverConfiguredWithTheSolverText)
{
    ZELGeoContainer container;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    AddGantryWithWrist(machine);
    const std::unique_ptr<ZELKinSolver> solver(machine->CreateSolver());
    ASSERT_NE(dynamic_cast<ZELKinRBRSolver*>(solver.get()), nullptr);
    EXPECT_EQ(solver->GetMachine(), machine);

    // Bending A a quarter turn about Y swings the tip point (0, 0, -330) of
    // the configuration text to (-330, 0, 0), once Configure has built the
    // joint frames.
    ZELKinSolution solution;
    for (const char* name : {"X", "Y", "Z", "C", "C1"})
        solution.SetVariableValue(machine->GetVariable(QString::fromLatin1(name)), 0.0);
    solution.SetVariableValue(machine->GetVariable(QStringLiteral("A")), kHalfPi);
    const ZELMathPoint tip = solver->GetTipPoint(solution);
    EXPECT_TRUE(ZELTest::SameDouble(-330.0, tip.GetX(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(0.0, tip.GetY(), ZELTest::kTight));
    EXPECT_TRUE(ZELTest::SameDouble(330.0, tip.GetZ(), ZELTest::kTight));
}

TEST(ZELKinMachine, CreatingTheRollBendRollSolverWithoutAWristThrows)
{
    ZELGeoContainer container;
    const ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    EXPECT_THROW_MESSAGE(machine->CreateSolver(), ZELSysException, "not a rotary joint");
}

TEST(ZELKinMachine, KeepsItsSolverAndNCSettings)
{
    ZELGeoContainer container;
    const ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&container);
    EXPECT_EQ(machine->GetLabel(), QStringLiteral("gantry"));
    EXPECT_EQ(machine->GetNCCodeFormat(), QStringLiteral("AFPGCode"));
    EXPECT_EQ(machine->GetNCCodeConfig(), QStringLiteral("nc settings"));
    EXPECT_EQ(machine->GetSolverName(), QStringLiteral("RBR"));
    EXPECT_EQ(machine->GetSolverConfig(), QStringLiteral("tip-point: 0,0,-330"));
}

TEST(ZELKinMachine, SaveAndLoadKeepListsAndSettings)
{
    ZELGeoContainer source;
    ZELKinAFPMachine* machine = ZELKinTestAccess::CreateMachine(&source);
    ZELKinVariable* x = ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"));
    ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y"));
    ZELKinTestAccess::CreateTranslationJoint(QStringLiteral("X"), machine, x);

    ZELGeoContainer target;
    ZELTest::CopyContainer(source, target);
    const ZELKinAFPMachine* loaded = ZELTest::FirstOf<ZELKinAFPMachine>(target);
    EXPECT_EQ(loaded->GetLabel(), QStringLiteral("gantry"));
    EXPECT_EQ(loaded->GetNCCodeFormat(), QStringLiteral("AFPGCode"));
    EXPECT_EQ(loaded->GetNCCodeConfig(), QStringLiteral("nc settings"));
    EXPECT_EQ(loaded->GetSolverName(), QStringLiteral("RBR"));
    EXPECT_EQ(loaded->GetSolverConfig(), QStringLiteral("tip-point: 0,0,-330"));
    ASSERT_EQ(loaded->GetNumVariables(), 2);
    EXPECT_EQ(loaded->GetVariable(1)->GetLabel(), QStringLiteral("Y"));
    ASSERT_EQ(loaded->GetNumJoints(), 1);
    EXPECT_EQ(loaded->GetRootJoints(), QList<ZELKinJoint*>({loaded->GetJoint(0)}));
}
