#include <zelkinprogramcheck.h>

#include "zelkintranslationtestsolver.h"
#include "zelkintranslationtesttoolpath.h"

#include <zelkinafpmachine.h>
#include <zelkinmachineloader.h>
#include <zelkinprocedure.h>
#include <zelkinprogram.h>
#include <zelkinsolver.h>
#include <zelkintranslator.h>

#include <zelgeocontainer.h>
#include <zeltpprocedure.h>

#include <zeltestsupport.h>

#include <QBuffer>

#include <limits>
#include <memory>
#include <utility>

using namespace ZELKinTranslationTest;

namespace {

// The example gantry with limits of the test's own: a course of the
// translation fixture (X 3200 to 3300 mm at Y 3500 mm, Z -1500 mm, travelling
// +X with its normal +Z) lies inside the default ones.
struct Limits
{
    double xMaximum = 24384.0;
    double c1Limit = 185.5;
};

QByteArray MachineDescription(const Limits& limits)
{
    return QStringLiteral(
               R"(<machine type="AFP" ncformat="AFPGCode" solver="RBR"
    solver-config="first-roll-reference: 0,1,0; bend-reference: 0,0,-1; second-roll-reference: 1,0,0; tip-point: 0,0,-330"
    roller-radius="30" tow-width="6.35" add-distance="50.8" add-pinch="12.7" cut-distance="76.2" head-travel="101.6"
    material-axis="U">
  <mask numTows="16">FFFF</mask>
  <variables>
    <variable name="X" type="linear" minimum="0" maximum="%1" max-speed="40" max-accel="2"/>
    <variable name="Y" type="linear" minimum="1150" maximum="8000" max-speed="40" max-accel="2"/>
    <variable name="Z" type="linear" minimum="-3000" maximum="0" max-speed="20" max-accel="3"/>
    <variable name="C" type="rotary" minimum="-200.5" maximum="200.5" max-speed="7200" max-accel="720"/>
    <variable name="A" type="rotary" minimum="-95" maximum="95" max-speed="5400" max-accel="360"/>
    <variable name="C1" type="rotary" minimum="-%2" maximum="%2" max-speed="7200" max-accel="720"/>
    <variable name="U" type="linear" max-speed="60" max-accel="5"/>
  </variables>
  <joints>
    <joint name="X" type="translation" vector="1,0,0" variables="X" priority="high"/>
    <joint name="Y" type="translation" vector="0,1,0" variables="Y" parent="X" priority="high"/>
    <joint name="Z" type="translation" vector="0,0,1" variables="Z" parent="Y" priority="high"/>
    <joint name="C" type="rotation" vector="1,0,0" pivot="0,0,0" variables="C" parent="Z" priority="medium"/>
    <joint name="A" type="rotation" vector="0,1,0" pivot="0,0,-150" variables="A" parent="C" priority="medium"/>
    <joint name="C1" type="rotation" vector="0,0,1" pivot="0,0,-300" variables="C1" parent="A" priority="medium"/>
  </joints>
</machine>)")
        .arg(limits.xMaximum)
        .arg(limits.c1Limit)
        .toUtf8();
}

class ZELKinProgramCheckTest : public ::testing::Test
{
protected:
    ZELKinAFPMachine* LoadMachine(const Limits& limits = Limits())
    {
        QByteArray description = MachineDescription(limits);
        QBuffer device(&description);
        device.open(QIODevice::ReadOnly);
        return qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(&container).LoadFromXML(&device));
    }

    // Loads the machine, translates the builder's program for it and checks
    // the result.
    ZELKinProgramCheck::Findings TranslateAndCheck(const Limits& limits = Limits(), int listed = 100)
    {
        ZELKinAFPMachine* machine = LoadMachine(limits);
        EXPECT_NE(machine, nullptr);
        if (!machine)
            return {};
        solver.reset(machine->CreateSolver());
        solver->Configure(machine->GetSolverConfig());
        return TranslateAndCheckWith(listed);
    }

    ZELKinProgramCheck::Findings TranslateAndCheckWith(int listed = 100)
    {
        ZELKinTranslator translator(solver.get());
        ::testing::internal::CaptureStdout();
        program = translator.Translate(builder.GetProgram());
        ::testing::internal::GetCapturedStdout();
        omissions = translator.GetOmissions();
        return ZELKinProgramCheck(solver.get()).Check(program, omissions, listed);
    }

    // Flat plies of these names, X's limit at 3000 mm; those marked
    // `inside` start at X 2000 mm and stay within it, the others do not.
    Limits AddPliesAgainstTheXLimit(const QList<std::pair<QString, bool>>& plies)
    {
        Shape inside;
        inside.startX = 2000.0;
        for (const auto& [name, isInside] : plies) {
            if (isInside)
                builder.AddFlatLayup(name, {inside});
            else
                builder.AddFlatLayup(name);
        }
        Limits limits;
        limits.xMaximum = 3000.0;
        return limits;
    }

    ZELGeoContainer container;
    ToolpathBuilder builder{&container};
    std::unique_ptr<ZELKinSolver> solver;
    ZELKinProgram* program = nullptr;
    QList<ZELKinTranslator::Omission> omissions;
};

} // namespace

TEST_F(ZELKinProgramCheckTest, FindsNothingInACourseTheMachineReachesInsideItsLimits)
{
    builder.AddFlatLayup(QStringLiteral("ply one"));
    const ZELKinProgramCheck::Findings findings = TranslateAndCheck();
    EXPECT_TRUE(findings.IsClean());
    EXPECT_EQ(findings.count, 0);
    EXPECT_TRUE(findings.first.isEmpty());
    EXPECT_TRUE(findings.procedures.isEmpty());
}

TEST_F(ZELKinProgramCheckTest, NamesTheCoursePointWhereAWristThatCannotTurnEnoughLeavesTheProcedureOut)
{
    // The fourth on-part point travels -X: C1 would turn half a turn, which
    // a C1 of +-40 deg cannot, and turning C instead would turn the head
    // over. The course is the procedure's first; its positions run from the
    // lifted approach point (1) through 3210 (2), 3220 (3) to 3240 (5).
    Shape shape;
    shape.halfTurnIndex = 3;
    builder.AddFlatLayup(QStringLiteral("ply one"), {shape});
    Limits limits;
    limits.c1Limit = 40.0;
    const ZELKinProgramCheck::Findings findings = TranslateAndCheck(limits);

    ASSERT_EQ(omissions.size(), 1);
    EXPECT_EQ(omissions.first().procedure, QStringLiteral("ply one"));
    EXPECT_FALSE(omissions.first().onLink);
    EXPECT_EQ(omissions.first().script, 1);
    EXPECT_EQ(omissions.first().point, 5);
    EXPECT_FALSE(omissions.first().reachable);
    EXPECT_EQ(program->GetNumProcedures(), 0);

    ASSERT_EQ(findings.count, 1);
    ASSERT_EQ(findings.first.size(), 1);
    EXPECT_EQ(findings.first.first().GetText(),
              QStringLiteral("procedure 'ply one', course 1, point 5: no wrist configuration within the machine's "
                             "limits reaches this point: the procedure cannot be solved"));
    EXPECT_EQ(findings.procedures, QStringList{QStringLiteral("ply one")});
}

TEST_F(ZELKinProgramCheckTest, NamesALinearAxisBeyondItsLimitAsASlidePosition)
{
    // X may reach 3250 mm: the tool tip programmed at 3300 mm puts the X
    // slide beyond it (the wrist sits at zero, so the slide runs with the tip).
    builder.AddFlatLayup(QStringLiteral("ply one"));
    Limits limits;
    limits.xMaximum = 3250.0;
    const ZELKinProgramCheck::Findings findings = TranslateAndCheck(limits);

    ASSERT_FALSE(findings.IsClean());
    EXPECT_EQ(findings.procedures, QStringList{QStringLiteral("ply one")});
    // The approach link's lifted point at 3100 mm is inside; along the
    // course the positions at 3260 mm (point 7) and on are beyond.
    ASSERT_FALSE(findings.first.isEmpty());
    EXPECT_EQ(findings.first.first().GetText(),
              QStringLiteral("procedure 'ply one', course 1, point 7: X at 3260.0000 mm (slide position) is beyond its "
                             "maximum of 3250.0000 mm"));
    EXPECT_EQ(findings.count, findings.first.size());
}

TEST_F(ZELKinProgramCheckTest, CountsEveryProblemAndListsOnlyTheFirst)
{
    builder.AddFlatLayup(QStringLiteral("ply one"));
    builder.AddFlatLayup(QStringLiteral("ply two"));
    Limits limits;
    limits.xMaximum = 3000.0;
    const ZELKinProgramCheck::Findings findings = TranslateAndCheck(limits, 2);

    // Every position of both procedures lies beyond X's maximum: eleven on
    // each course and one on each of the two links.
    EXPECT_EQ(findings.count, 2 * 13);
    ASSERT_EQ(findings.first.size(), 2);
    EXPECT_EQ(findings.first.at(0).script, QStringLiteral("course link 1"));
    EXPECT_EQ(findings.first.at(0).point, 1);
    EXPECT_EQ(findings.first.at(1).script, QStringLiteral("course 1"));
    EXPECT_EQ(findings.first.at(1).point, 1);
    EXPECT_EQ(findings.procedures, (QStringList{QStringLiteral("ply one"), QStringLiteral("ply two")}));
}

TEST_F(ZELKinProgramCheckTest, ChecksProceduresSideBySideWithTheSameFindings)
{
    // Three procedures, the middle one inside X's limit and the others not.
    const Limits limits = AddPliesAgainstTheXLimit(
        {{QStringLiteral("ply one"), false}, {QStringLiteral("ply two"), true}, {QStringLiteral("ply three"), false}});
    const ZELKinProgramCheck::Findings alone = TranslateAndCheck(limits, 20);
    ZELKinProgramCheck check(solver.get());
    check.SetThreadCount(3);
    const ZELKinProgramCheck::Findings sideBySide = check.Check(program, omissions, 20);

    EXPECT_EQ(alone.count, 2 * 13);
    EXPECT_EQ(sideBySide.count, alone.count);
    EXPECT_EQ(sideBySide.procedures, (QStringList{QStringLiteral("ply one"), QStringLiteral("ply three")}));
    EXPECT_EQ(sideBySide.procedures, alone.procedures);
    ASSERT_EQ(sideBySide.first.size(), 20);
    ASSERT_EQ(alone.first.size(), 20);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(sideBySide.first.at(i).GetText(), alone.first.at(i).GetText()) << i;
    EXPECT_EQ(sideBySide.first.last().procedure, QStringLiteral("ply three"));
}

TEST_F(ZELKinProgramCheckTest, RemovingTheProceduresWithProblemsLeavesTheOthersInOrder)
{
    const Limits limits = AddPliesAgainstTheXLimit({{QStringLiteral("ply one"), false},
                                                    {QStringLiteral("ply two"), true},
                                                    {QStringLiteral("ply three"), false},
                                                    {QStringLiteral("ply four"), true}});
    const ZELKinProgramCheck::Findings findings = TranslateAndCheck(limits);
    ASSERT_EQ(findings.procedures, (QStringList{QStringLiteral("ply one"), QStringLiteral("ply three")}));

    findings.RemoveProceduresFrom(program);
    QStringList left;
    for (const ZELKinProcedure* procedure : program->GetProcedures())
        left.append(procedure->GetToolPathProcedure()->GetName());
    EXPECT_EQ(left, (QStringList{QStringLiteral("ply two"), QStringLiteral("ply four")}));
    EXPECT_TRUE(ZELKinProgramCheck(solver.get()).Check(program, {}).IsClean());
}

TEST_F(ZELKinProgramCheckTest, NamesTheAxesAPositionHasNoValueForAndTheValuesThatAreNotFinite)
{
    builder.AddFlatLayup(QStringLiteral("ply one"));
    ZELKinAFPMachine* machine = LoadMachine();
    ASSERT_NE(machine, nullptr);
    solver = std::make_unique<XOnlySolver>(machine,
                                           [](const ZELMathAxis&) { return std::numeric_limits<double>::infinity(); });
    const ZELKinProgramCheck::Findings findings = TranslateAndCheckWith();

    // Two problems at each of the 13 positions; U drives no joint, so no
    // position needs it.
    EXPECT_EQ(findings.count, 2 * 13);
    ASSERT_GE(findings.first.size(), 2);
    EXPECT_EQ(findings.first.at(0).GetText(),
              QStringLiteral("procedure 'ply one', course link 1, point 1: the position has no value for Y, Z, C, A, C1"));
    EXPECT_EQ(findings.first.at(1).GetText(),
              QStringLiteral("procedure 'ply one', course link 1, point 1: the value of X is not a finite number"));
}

TEST(ZELKinProgramCheckProblem, WritesItsPlaceBeforeItsMessage)
{
    const ZELKinProgramCheck::Problem inCourse{QStringLiteral("Ply 2 45"), QStringLiteral("course 3"), 17,
                                               QStringLiteral("C1 at 212.0000 deg is beyond its maximum of 185.5000 deg")};
    EXPECT_EQ(inCourse.GetText(), QStringLiteral("procedure 'Ply 2 45', course 3, point 17: C1 at 212.0000 deg is "
                                                 "beyond its maximum of 185.5000 deg"));
    const ZELKinProgramCheck::Problem whole{QStringLiteral("Ply 1 0"), QString(), 0,
                                            QStringLiteral("no position of the procedure could be solved")};
    EXPECT_EQ(whole.GetText(), QStringLiteral("procedure 'Ply 1 0': no position of the procedure could be solved"));
    const ZELKinProgramCheck::Problem probe{QStringLiteral("probe"), QString(), 2, QStringLiteral("X at 1 mm")};
    EXPECT_EQ(probe.GetText(), QStringLiteral("procedure 'probe', point 2: X at 1 mm"));
}
