#include <zelkinforwardkinematics.h>
#include <zelkinmachineloader.h>
#include <zelkinposition.h>
#include <zelkinrbrsolver.h>
#include <zelkinsolution.h>
#include <zelkintranslator.h>
#include <zeltpprogramreader.h>

#include <zelkintestaccess.h>

#include <zeltestsupport.h>

#include <QFile>

#include <cmath>
#include <memory>

namespace {

constexpr double kQuarterTurn = 1.5707963267948966;
constexpr double kHalfTurn = 3.141592653589793;
// Poses worked by hand come out of a few sines and products of frames.
constexpr double kPose = 1e-9;
// The solver's slides, through frames of its own, on a part thousands of
// millimetres from the origin.
constexpr double kSlides = 1e-6;

// A machine whose joints the test builds one by one; every variable's
// value starts at zero.
class Machine
{
public:
    Machine()
        : machine(ZELKinTestAccess::CreateMachine(&container))
    {
    }

    ZELKinJoint* AddRotary(const QString& name, const ZELMathVector& vector, const ZELMathPoint& pivot)
    {
        ZELKinVariable* variable = ZELKinTestAccess::CreateVariable(machine, name, ZELKinVariable::Rotary);
        last = ZELKinTestAccess::CreateRotaryJoint(name, machine, variable, last, vector, pivot);
        values.append(0.0);
        return last;
    }

    ZELKinJoint* AddTranslation(const QString& name, const ZELMathVector& vector)
    {
        ZELKinVariable* variable = ZELKinTestAccess::CreateVariable(machine, name);
        last = ZELKinTestAccess::CreateTranslationJoint(name, machine, variable, last, vector);
        values.append(0.0);
        return last;
    }

    void Set(const QString& name, double value)
    {
        values[machine->GetVariables().indexOf(machine->GetVariable(name))] = value;
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine = nullptr;
    ZELKinJoint* last = nullptr;
    QVector<double> values;
};

// The tool of the example machine: the tip 330 mm below the first roll's
// pivot, the normal up and the travel along +X with every axis at zero.
ZELMathAxis ExampleTool()
{
    return ZELMathAxis(ZELMathPoint(0, 0, -330), ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                       ZELMathVector(0, 0, 1));
}

// The example machine's wrist alone: C about X through the origin, A about
// Y 150 mm lower, C1 about Z 300 mm lower.
void AddExampleWrist(Machine& machine)
{
    machine.AddRotary(QStringLiteral("C"), ZELMathVector(1, 0, 0), ZELMathPoint(0, 0, 0));
    machine.AddRotary(QStringLiteral("A"), ZELMathVector(0, 1, 0), ZELMathPoint(0, 0, -150));
    machine.AddRotary(QStringLiteral("C1"), ZELMathVector(0, 0, 1), ZELMathPoint(0, 0, -300));
}

// The example machine's first six variables: X, Y, Z, C, A, C1.
bool DefinesSlidesAndWrist(const ZELKinSolution& solution, const QList<ZELKinVariable*>& variables)
{
    for (int i = 0; i < 6; ++i) {
        if (!solution.IsDefined(variables.at(i)))
            return false;
    }
    return true;
}

} // namespace

TEST(ZELKinForwardKinematics, WithEveryValueAtZeroTheToolStandsAtHome)
{
    Machine machine;
    machine.AddTranslation(QStringLiteral("X"), ZELMathVector(1, 0, 0));
    AddExampleWrist(machine);
    ZELKinForwardKinematics kinematics(*machine.machine);
    kinematics.SetHomeToolFrame(ExampleTool());

    EXPECT_TRUE(kinematics.GetToolFrame(machine.values).IsEqual(ExampleTool(), ZELTest::kExact));
}

TEST(ZELKinForwardKinematics, OneRotationTurnsTheTipAboutTheAxisRightHandedly)
{
    Machine machine;
    machine.AddRotary(QStringLiteral("C"), ZELMathVector(0, 0, 1), ZELMathPoint());
    ZELKinForwardKinematics kinematics(*machine.machine);
    kinematics.SetHomeToolFrame(ZELMathAxis(ZELMathPoint(10, 0, 5), ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                                            ZELMathVector(0, 0, 1)));
    machine.Set(QStringLiteral("C"), kQuarterTurn);

    // A quarter turn about +Z carries +X onto +Y.
    const ZELMathAxis tool = kinematics.GetToolFrame(machine.values);
    EXPECT_TRUE(tool.GetOrigin().IsEqual(ZELMathPoint(0, 10, 5), kPose));
    EXPECT_TRUE(tool.GetUDirection().IsEqual(ZELMathVector(0, 1, 0), kPose));
    EXPECT_TRUE(tool.GetWDirection().IsEqual(ZELMathVector(0, 0, 1), kPose));
}

TEST(ZELKinForwardKinematics, ARollBendRollChainTurnsEachJointAboutItsParentsTurnedAxis)
{
    Machine machine;
    AddExampleWrist(machine);
    ZELKinForwardKinematics kinematics(*machine.machine);
    kinematics.SetHomeToolFrame(ExampleTool());
    machine.Set(QStringLiteral("C"), kQuarterTurn);
    machine.Set(QStringLiteral("A"), kQuarterTurn);
    machine.Set(QStringLiteral("C1"), kQuarterTurn);

    // By hand, from the tool's joint up: C1 turns the travel +X onto +Y and
    // leaves the tip on its axis; A turns the tip, 180 mm below its pivot,
    // to (-180, 0, -150), the normal onto +X and keeps the travel on +Y; C
    // turns the tip to (-180, 150, 0) and the travel onto +Z.
    const ZELMathAxis tool = kinematics.GetToolFrame(machine.values);
    EXPECT_TRUE(tool.GetOrigin().IsEqual(ZELMathPoint(-180, 150, 0), kPose));
    EXPECT_TRUE(tool.GetWDirection().IsEqual(ZELMathVector(1, 0, 0), kPose));
    EXPECT_TRUE(tool.GetUDirection().IsEqual(ZELMathVector(0, 0, 1), kPose));
    // A's axis, turned by C alone, and C1's, turned by C and A.
    EXPECT_TRUE(
        kinematics.GetAxis(machine.values, machine.machine->GetJoint(1)).IsEqual(ZELMathVector(0, 0, 1), kPose));
    EXPECT_TRUE(
        kinematics.GetAxis(machine.values, machine.machine->GetJoint(2)).IsEqual(ZELMathVector(1, 0, 0), kPose));
}

TEST(ZELKinForwardKinematics, ARotationTurnsAboutItsPivotWhereverThePivotIs)
{
    Machine machine;
    const ZELKinJoint* joint = machine.AddRotary(QStringLiteral("B"), ZELMathVector(0, 0, 1), ZELMathPoint(10, 20, 0));
    ZELKinForwardKinematics kinematics(*machine.machine);
    kinematics.SetHomeToolFrame(ZELMathAxis(ZELMathPoint(0, 0, 5), ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                                            ZELMathVector(0, 0, 1)));
    machine.Set(QStringLiteral("B"), kHalfTurn);

    // Half a turn about the pivot (10, 20) mirrors the tip (0, 0) through it.
    EXPECT_TRUE(kinematics.GetToolFrame(machine.values).GetOrigin().IsEqual(ZELMathPoint(20, 40, 5), kPose));
    // The pivot itself stays where it is.
    EXPECT_TRUE(
        (kinematics.GetPose(machine.values, joint) * ZELMathPoint(10, 20, 7)).IsEqual(ZELMathPoint(10, 20, 7), kPose));
}

TEST(ZELKinForwardKinematics, TranslationsSlideAlongVectorsThatNeedNotBeAxes)
{
    Machine machine;
    machine.AddTranslation(QStringLiteral("P"), ZELMathVector(1, 0, 0));
    machine.AddTranslation(QStringLiteral("Q"), ZELMathVector(1, 1, 0));
    machine.AddTranslation(QStringLiteral("R"), ZELMathVector(0, 0, 1));
    ZELKinForwardKinematics kinematics(*machine.machine);
    machine.Set(QStringLiteral("P"), 5.0);
    machine.Set(QStringLiteral("Q"), 5.0 * std::sqrt(2.0));
    machine.Set(QStringLiteral("R"), 2.0);

    EXPECT_TRUE(kinematics.GetToolFrame(machine.values).GetOrigin().IsEqual(ZELMathPoint(10, 5, 2), kPose));
    // And back: the slides that bring the tip there.
    const QVector<double> placed = kinematics.GetValuesForToolTip({0.0, 0.0, 0.0}, ZELMathPoint(10, 5, 2));
    EXPECT_TRUE(ZELTest::SameDouble(5.0, placed.at(0), kPose));
    EXPECT_TRUE(ZELTest::SameDouble(5.0 * std::sqrt(2.0), placed.at(1), kPose));
    EXPECT_TRUE(ZELTest::SameDouble(2.0, placed.at(2), kPose));
}

TEST(ZELKinForwardKinematics, AVectorsLengthDoesNotScaleTheMotion)
{
    Machine machine;
    machine.AddTranslation(QStringLiteral("S"), ZELMathVector(3, 4, 0));
    machine.AddRotary(QStringLiteral("C"), ZELMathVector(0, 0, 2), ZELMathPoint());
    ZELKinForwardKinematics kinematics(*machine.machine);
    kinematics.SetHomeToolFrame(ZELMathAxis(ZELMathPoint(1, 0, 0), ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                                            ZELMathVector(0, 0, 1)));
    machine.Set(QStringLiteral("S"), 10.0);
    machine.Set(QStringLiteral("C"), kQuarterTurn);

    // 10 mm along (3, 4, 0)/5, and a quarter turn, not a half, about +Z.
    EXPECT_TRUE(kinematics.GetToolFrame(machine.values).GetOrigin().IsEqual(ZELMathPoint(6, 9, 0), kPose));
}

TEST(ZELKinForwardKinematics, SlidesUnderARotationSlideAlongTheirTurnedVectors)
{
    Machine machine;
    machine.AddRotary(QStringLiteral("T"), ZELMathVector(0, 0, 1), ZELMathPoint());
    machine.AddTranslation(QStringLiteral("X"), ZELMathVector(1, 0, 0));
    machine.AddTranslation(QStringLiteral("Y"), ZELMathVector(0, 1, 0));
    machine.AddTranslation(QStringLiteral("Z"), ZELMathVector(0, 0, 1));
    ZELKinForwardKinematics kinematics(*machine.machine);
    machine.Set(QStringLiteral("T"), kQuarterTurn);
    machine.Set(QStringLiteral("X"), 10.0);

    // The table turned a quarter: X now runs along +Y.
    EXPECT_TRUE(kinematics.GetToolFrame(machine.values).GetOrigin().IsEqual(ZELMathPoint(0, 10, 0), kPose));
    const QVector<double> placed = kinematics.GetValuesForToolTip(machine.values, ZELMathPoint(-3, 7, 1));
    EXPECT_TRUE(ZELTest::SameDouble(kQuarterTurn, placed.at(0), ZELTest::kExact));
    EXPECT_TRUE(ZELTest::SameDouble(7.0, placed.at(1), kPose));
    EXPECT_TRUE(ZELTest::SameDouble(3.0, placed.at(2), kPose));
    EXPECT_TRUE(ZELTest::SameDouble(1.0, placed.at(3), kPose));
}

TEST(ZELKinForwardKinematics, SlidesOfTheExampleMachineTakeTheWristsTipOffsetOff)
{
    Machine machine;
    machine.AddTranslation(QStringLiteral("X"), ZELMathVector(1, 0, 0));
    machine.AddTranslation(QStringLiteral("Y"), ZELMathVector(0, 1, 0));
    machine.AddTranslation(QStringLiteral("Z"), ZELMathVector(0, 0, 1));
    AddExampleWrist(machine);
    ZELKinForwardKinematics kinematics(*machine.machine);
    kinematics.SetHomeToolFrame(ExampleTool());
    machine.Set(QStringLiteral("C"), kQuarterTurn);
    machine.Set(QStringLiteral("A"), kQuarterTurn);

    // The wrist alone puts the tip at (-180, 150, 0), 330 mm above and
    // (-180, 150) beside its home (0, 0, -330).
    const QVector<double> placed = kinematics.GetValuesForToolTip(machine.values, ZELMathPoint(1000, 2000, -1000));
    EXPECT_TRUE(ZELTest::SameDouble(1180.0, placed.at(0), kPose));
    EXPECT_TRUE(ZELTest::SameDouble(1850.0, placed.at(1), kPose));
    EXPECT_TRUE(ZELTest::SameDouble(-1000.0, placed.at(2), kPose));
}

TEST(ZELKinForwardKinematics, SlidesThatSpanAPlaneOnlyReachNoTipAndGiveNaN)
{
    Machine machine;
    machine.AddTranslation(QStringLiteral("X"), ZELMathVector(1, 0, 0));
    machine.AddTranslation(QStringLiteral("Y"), ZELMathVector(0, 1, 0));
    machine.AddTranslation(QStringLiteral("W"), ZELMathVector(1, 1, 0));
    ZELKinForwardKinematics kinematics(*machine.machine);

    const QVector<double> placed = kinematics.GetValuesForToolTip(machine.values, ZELMathPoint(1, 2, 3));
    EXPECT_TRUE(std::isnan(placed.at(0)));
    EXPECT_TRUE(std::isnan(placed.at(2)));
}

TEST(ZELKinForwardKinematics, AValueThatIsNotSetPosesNothing)
{
    Machine machine;
    AddExampleWrist(machine);
    ZELKinForwardKinematics kinematics(*machine.machine);
    kinematics.SetHomeToolFrame(ExampleTool());
    machine.Set(QStringLiteral("A"), ZELTest::kNaN);

    EXPECT_TRUE(std::isnan(kinematics.GetToolFrame(machine.values).GetWDirection().GetX()));
    // C's axis hangs above A and does not depend on it.
    EXPECT_TRUE(
        kinematics.GetAxis(machine.values, machine.machine->GetJoint(0)).IsEqual(ZELMathVector(1, 0, 0), kPose));
}

TEST(ZELKinForwardKinematics, ChainRunsFromTheRootToTheOneJointWithoutChildren)
{
    Machine machine;
    machine.AddTranslation(QStringLiteral("X"), ZELMathVector(1, 0, 0));
    AddExampleWrist(machine);
    const ZELKinForwardKinematics kinematics(*machine.machine);

    QStringList names;
    for (const ZELKinJoint* joint : kinematics.GetChain())
        names.append(joint->GetLabel());
    EXPECT_EQ(names,
              QStringList({QStringLiteral("X"), QStringLiteral("C"), QStringLiteral("A"), QStringLiteral("C1")}));
}

TEST(ZELKinForwardKinematics, ATreeWithTwoEndsIsRefused)
{
    Machine machine;
    ZELKinJoint* root = machine.AddTranslation(QStringLiteral("X"), ZELMathVector(1, 0, 0));
    machine.AddTranslation(QStringLiteral("Y"), ZELMathVector(0, 1, 0));
    machine.last = root;
    machine.AddTranslation(QStringLiteral("Z"), ZELMathVector(0, 0, 1));

    EXPECT_THROW_MESSAGE(ZELKinForwardKinematics(*machine.machine), ZELSysException,
                         "the joint tree ends in more than one joint: 'Y' and 'Z'");
}

TEST(ZELKinForwardKinematics, AMachineWithoutJointsIsRefused)
{
    Machine machine;
    EXPECT_THROW_MESSAGE(ZELKinForwardKinematics(*machine.machine), ZELSysException, "the machine has no joints");
}

TEST(ZELKinForwardKinematics, PlacingTheTipNeedsThreeSlides)
{
    Machine machine;
    machine.AddTranslation(QStringLiteral("X"), ZELMathVector(1, 0, 0));
    AddExampleWrist(machine);
    const ZELKinForwardKinematics kinematics(*machine.machine);

    EXPECT_THROW_MESSAGE(kinematics.GetValuesForToolTip(machine.values, ZELMathPoint()), ZELSysException,
                         "placing the tool tip needs three translation joints in the chain, not 1");
}

TEST(ZELKinForwardKinematics, AJointOutsideTheChainHasNoPose)
{
    Machine machine;
    AddExampleWrist(machine);
    Machine other;
    const ZELKinJoint* stranger = other.AddRotary(QStringLiteral("B"), ZELMathVector(0, 0, 1), ZELMathPoint());
    const ZELKinForwardKinematics kinematics(*machine.machine);

    EXPECT_THROW_MESSAGE(kinematics.GetPose(machine.values, stranger), ZELSysException,
                         "joint 'B' is not in the chain");
}

// Every position of the solved demo part: the slides that bring the tool tip
// to the programmed roller centre are the ones the solver takes off with its
// own joint frames, and the tool points where the solver says it does.
TEST(ZELKinForwardKinematics, SlidesAndToolFrameAgreeWithTheSolverOnEveryPositionOfTheDemo)
{
    ZELGeoContainer container;
    QFile description(QStringLiteral(ZELKIN_EXAMPLES_DIR "/machines/gantry-rbr.xml"));
    ASSERT_TRUE(description.open(QIODevice::ReadOnly));
    ZELKinMachine* machine = ZELKinMachineLoader(&container).LoadFromXML(&description);
    ASSERT_NE(machine, nullptr);
    const std::unique_ptr<ZELKinSolver> solver(machine->CreateSolver());
    const auto* rbr = dynamic_cast<const ZELKinRBRSolver*>(solver.get());
    ASSERT_NE(rbr, nullptr);
    const ZELTPProgram* toolpath =
        ZELTPProgramReader(&container).Read(QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/cylinder-section.json"));
    const ZELKinProgram* program = ZELKinTranslator(solver.get()).Translate(toolpath);
    ASSERT_NE(program, nullptr);

    ZELKinForwardKinematics kinematics(*machine);
    kinematics.SetHomeToolFrame(ExampleTool());
    const QList<ZELKinVariable*> variables = machine->GetVariables();
    const ZELMathVector tip = ExampleTool().GetOrigin() - ZELMathPoint();
    int compared = 0;
    for (const ZELKinProcedure* procedure : program->GetProcedures()) {
        for (int i = 0; i < procedure->GetNumCommands(); ++i) {
            auto* position = qobject_cast<ZELKinPosition*>(procedure->GetCommand(i));
            const ZELKinSolution solution = position ? ZELKinSolution(position) : ZELKinSolution();
            if (!position || !position->IsTraori() || !DefinesSlidesAndWrist(solution, variables))
                continue;
            QVector<double> values;
            for (ZELKinVariable* variable : variables)
                values.append(solution.IsDefined(variable) ? solution.GetVariableValue(variable) : ZELTest::kNaN);
            const ZELMathPoint centre(values.at(0), values.at(1), values.at(2));
            const QVector<double> slides = kinematics.GetValuesForToolTip(values, centre + tip);
            const ZELKinSolution expected = rbr->FromTraori(solution);
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_TRUE(
                    ZELTest::SameDouble(expected.GetVariableValue(variables.at(axis)), slides.at(axis), kSlides))
                    << variables.at(axis)->GetLabel().toStdString() << " of command " << i;
            const ZELMathAxis frame = rbr->GetToolFrame(solution);
            const ZELMathAxis tool = kinematics.GetToolFrame(slides);
            EXPECT_TRUE(tool.GetWDirection().IsEqual(frame.GetWDirection(), kPose));
            EXPECT_TRUE(tool.GetUDirection().IsEqual(frame.GetUDirection(), kPose));
            ++compared;
        }
    }
    EXPECT_GT(compared, 400);
}
