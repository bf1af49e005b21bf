// Property test of the roll-bend-roll solver: tool frames that the machine
// reaches are made by a forward kinematics written here, independent of the
// solver's joint frames, and every candidate the solver returns must put the
// head back on the frame, inside every axis limit.

#include <zelkinmachineloader.h>
#include <zelkinrbrsolver.h>

#include <zelkintestaccess.h>

#include <zeltestsupport.h>

#include <Eigen/Geometry>

#include <QBuffer>
#include <QFile>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>

namespace {

using Vector = Eigen::Vector3d;

constexpr double kPi = 3.14159265358979323846;
// Directions rebuilt through a few frame products and arc tangents carry a
// few rounding steps of error; far beyond that means a wrong wrist.
constexpr double kDirection = 1e-9;
// Tip positions are hundreds to thousands of millimetres from the origin.
constexpr double kPosition = 1e-6;

Vector ToEigen(const ZELMathVector& vector)
{
    return Vector(vector.GetX(), vector.GetY(), vector.GetZ());
}

Vector ToEigen(const ZELMathPoint& point)
{
    return Vector(point.GetX(), point.GetY(), point.GetZ());
}

ZELMathVector ToVector(const Vector& vector)
{
    return ZELMathVector(vector.x(), vector.y(), vector.z());
}

double AngleBetween(const Vector& a, const Vector& b)
{
    return std::atan2(a.cross(b).norm(), a.dot(b));
}

struct Range
{
    double minimum;
    double maximum;

    bool Contains(double value) const { return value >= minimum && value <= maximum; }
};

// One machine as the test sees it: the home axes and pivots of the wrist,
// the head's normal and travel with every axis at zero, and the tool tip.
struct MachineCase
{
    const char* name;
    std::function<ZELKinMachine*(ZELGeoContainer&)> load;
    std::array<const char*, 3> wristNames;
    Vector homeNormal;
    Vector homeTravel;
    Vector tipPoint;
};
ZELTEST_PRINT_CASE_BY_NAME(MachineCase);

ZELKinMachine* LoadXml(ZELGeoContainer& container, QIODevice* device)
{
    return ZELKinMachineLoader(&container).LoadFromXML(device);
}

ZELKinMachine* LoadExample(ZELGeoContainer& container)
{
    QFile file(QStringLiteral(ZELKIN_EXAMPLE_MACHINE));
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    return LoadXml(container, &file);
}

// A head hung sideways: the first roll B1 turns about the vertical, the bend
// A1 about X through a pivot off the first roll axis, and the second roll C2
// about the home normal (0, -1/2, sqrt(3)/2), 30 degrees off the vertical;
// the first roll range is a whole turn, off centre.
ZELKinMachine* LoadSideHead(ZELGeoContainer& container)
{
    QBuffer buffer;
    buffer.setData(R"(<machine type="AFP" ncformat="AFPGCode" solver="RBR"
    solver-config="normal-tolerance: 0.1; first-roll-reference: 1,0,0; bend-reference: 0, 0.5, -0.8660254037844386;
                   second-roll-reference: 1,0,0; tip-point: 60, 80, -329.9038105676658"
    roller-radius="25" tow-width="3.175" add-distance="50" cut-distance="70" head-travel="100" material-axis="U">
  <mask numTows="8">FF</mask>
  <variables>
    <variable name="X" type="linear" minimum="-500" maximum="6000" max-speed="40" max-accel="2"/>
    <variable name="Y" type="linear" minimum="-2000" maximum="2000" max-speed="40" max-accel="2"/>
    <variable name="Z" type="linear" minimum="-1500" maximum="1500" max-speed="20" max-accel="3"/>
    <variable name="B1" type="rotary" minimum="-190" maximum="170" max-speed="7200" max-accel="720"/>
    <variable name="A1" type="rotary" minimum="-100" maximum="160" max-speed="5400" max-accel="360"/>
    <variable name="C2" type="rotary" minimum="-400" maximum="400" max-speed="7200" max-accel="720"/>
    <variable name="U" type="linear" max-speed="60" max-accel="5"/>
  </variables>
  <joints>
    <joint name="X" type="translation" vector="1,0,0" variables="X"/>
    <joint name="Y" type="translation" vector="0,1,0" variables="Y" parent="X"/>
    <joint name="Z" type="translation" vector="0,0,1" variables="Z" parent="Y"/>
    <joint name="B1" type="rotation" vector="0,0,1" pivot="40,-25,100" variables="B1" parent="Z"/>
    <joint name="A1" type="rotation" vector="1,0,0" pivot="40,15,-120" variables="A1" parent="B1"/>
    <joint name="C2" type="rotation" vector="0,-1,1.7320508075688772" pivot="60,5,-200" variables="C2" parent="A1"/>
  </joints>
</machine>)");
    buffer.open(QIODevice::ReadOnly);
    return LoadXml(container, &buffer);
}

// The head's pose for given axis values, by rotations about the joints' home
// axes through their home pivots, applied from the hand back to the base.
struct Pose
{
    Vector normal;
    Vector travel;
    //! Where the tool tip is for linear values of zero (mm).
    Vector tip;
};

struct Model
{
    std::array<Vector, 3> axis;
    std::array<Vector, 3> pivot;
    std::array<ZELKinVariable*, 3> wrist{};
    std::array<ZELKinVariable*, 3> linear{};
    Vector homeNormal;
    Vector homeTravel;
    Vector tipPoint;
    double rollerRadius = 0.0;
    double normalTolerance = 0.0;

    Pose PoseAt(const std::array<double, 3>& angles) const
    {
        Eigen::Matrix3d rotation = Eigen::Matrix3d::Identity();
        Vector tip = tipPoint;
        for (int k = 2; k >= 0; --k) {
            const Eigen::Matrix3d turn = Eigen::AngleAxisd(angles[k], axis[k].normalized()).toRotationMatrix();
            tip = pivot[k] + turn * (tip - pivot[k]);
            rotation = turn * rotation;
        }
        return Pose{rotation * homeNormal, rotation * homeTravel, tip};
    }

    std::array<double, 3> WristOf(const ZELKinSolution& solution) const
    {
        return {solution.GetVariableValue(wrist[0]), solution.GetVariableValue(wrist[1]),
                solution.GetVariableValue(wrist[2])};
    }

    Vector LinearOf(const ZELKinSolution& solution) const
    {
        return Vector(solution.GetVariableValue(linear[0]), solution.GetVariableValue(linear[1]),
                      solution.GetVariableValue(linear[2]));
    }

    Range RangeOf(const ZELKinVariable* variable) const { return {variable->GetMinimum(), variable->GetMaximum()}; }
};

// The worst errors met in one group of frames, apart for the candidates
// held to the normal tolerance (a snapped bend, a free first roll).
struct Worst
{
    double normal = 0.0;
    double travel = 0.0;
    double toleratedNormal = 0.0;
    double toleratedTravel = 0.0;
    double position = 0.0;
    int frames = 0;
    int candidates = 0;
    int tolerated = 0;

    void Print(const char* machine, const char* group) const
    {
        std::printf("%s, %s: %d frames, %d candidates; worst normal %.3g rad, travel %.3g rad, tip %.3g mm; "
                    "%d candidates within the normal tolerance: worst normal %.3g rad, travel %.3g rad\n",
                    machine, group, frames, candidates, normal, travel, position, tolerated, toleratedNormal,
                    toleratedTravel);
    }
};

class ZELKinRBRSolverProperty : public ::testing::TestWithParam<MachineCase>
{
protected:
    void SetUp() override
    {
        machine = GetParam().load(container);
        ASSERT_NE(machine, nullptr);
        solver.reset(machine->CreateSolver());
        ASSERT_NE(solver, nullptr);
        for (int k = 0; k < 3; ++k) {
            const auto* joint = qobject_cast<const ZELKinRotaryJoint*>(FindJoint(GetParam().wristNames[k]));
            ASSERT_NE(joint, nullptr);
            model.axis[k] = ToEigen(joint->GetVector());
            model.pivot[k] = ToEigen(joint->GetPivot());
            model.wrist[k] = joint->GetVariable(0);
            model.linear[k] = machine->GetVariable(QString(QLatin1Char("XYZ"[k])));
            ASSERT_NE(model.linear[k], nullptr);
        }
        model.homeNormal = GetParam().homeNormal.normalized();
        model.homeTravel = GetParam().homeTravel.normalized();
        model.tipPoint = GetParam().tipPoint;
        model.rollerRadius = qobject_cast<ZELKinAFPMachine*>(machine)->GetRollerRadius();
        model.normalTolerance = NormalToleranceOf(machine->GetSolverConfig());
        MeasureReach();
    }

    ZELKinJoint* FindJoint(const char* name) const
    {
        for (ZELKinJoint* joint : machine->GetJoints()) {
            if (joint->GetLabel() == QLatin1String(name))
                return joint;
        }
        return nullptr;
    }

    static double NormalToleranceOf(const QString& config)
    {
        for (const QString& item : config.split(QLatin1Char(';'))) {
            if (item.section(QLatin1Char(':'), 0, 0).trimmed() == QLatin1String("normal-tolerance"))
                return item.section(QLatin1Char(':'), 1, 1).trimmed().toDouble() * kPi / 180.0;
        }
        return 0.001;
    }

    // How far the wrist moves the tip, per axis, over a fine grid of the
    // wrist ranges, with slack for what lies between the grid points.
    void MeasureReach()
    {
        constexpr int kSteps = 24;
        Vector low = Vector::Constant(1e300);
        Vector high = Vector::Constant(-1e300);
        for (int i = 0; i <= kSteps; ++i) {
            for (int j = 0; j <= kSteps; ++j) {
                for (int k = 0; k <= kSteps; ++k) {
                    const int steps[] = {i, j, k};
                    std::array<double, 3> angles{};
                    for (int w = 0; w < 3; ++w) {
                        const Range range = model.RangeOf(model.wrist[w]);
                        angles[w] = range.minimum + (range.maximum - range.minimum) * steps[w] / kSteps;
                    }
                    const Vector offset = model.PoseAt(angles).tip - model.tipPoint;
                    low = low.cwiseMin(offset);
                    high = high.cwiseMax(offset);
                }
            }
        }
        reachLow = low;
        reachWidth = (high - low) * 1.05 + Vector::Constant(10.0);
    }

    double Uniform(double minimum, double maximum)
    {
        return std::uniform_real_distribution<double>(minimum, maximum)(random);
    }

    Vector UnitVector()
    {
        std::normal_distribution<double> normal;
        return Vector(normal(random), normal(random), normal(random)).normalized();
    }

    Vector PerpendicularTo(const Vector& direction)
    {
        const Vector other = UnitVector();
        return (other - other.dot(direction) * direction).normalized();
    }

    // Linear values inside the travel by the wrist's reach on each side, so
    // that every wrist configuration of the frame leaves them inside.
    Vector InnerLinearValues(double reachFactor)
    {
        Vector values;
        for (int k = 0; k < 3; ++k) {
            const Range range = model.RangeOf(model.linear[k]);
            const double margin = reachWidth[k] * reachFactor;
            values[k] = Uniform(range.minimum + margin, range.maximum - margin);
        }
        return values;
    }

    std::array<double, 3> RandomWrist()
    {
        std::array<double, 3> angles{};
        for (int k = 0; k < 3; ++k) {
            const Range range = model.RangeOf(model.wrist[k]);
            angles[k] = Uniform(range.minimum, range.maximum);
        }
        return angles;
    }

    static ZELMathAxis Frame(const Vector& origin, const Vector& travel, const Vector& normal)
    {
        return ZELMathAxis(ZELMathPoint() + ToVector(origin), ToVector(travel), ToVector(normal.cross(travel)),
                           ToVector(normal));
    }

    // A frame of the given orientation whose wrist configurations all leave
    // the linear axes inside their travel.
    ZELMathAxis FrameInside(const Vector& travel, const Vector& normal)
    {
        const Vector middleOffset = reachLow + 0.5 * reachWidth;
        const Vector tip = InnerLinearValues(0.5) + middleOffset;
        return Frame(tip - model.rollerRadius * normal, travel, normal);
    }

    // Checks every candidate against the frame: the head's normal and travel
    // within `tolerance` (the normal tolerance where the bend was snapped to
    // 0), every wrist value inside its range, the machine axes of FromTraori
    // inside the travel and putting the tip on the roller centre.
    void CheckCandidates(const ZELMathAxis& frame, const QList<ZELKinSolution>& candidates, double tolerance,
                         Worst& worst)
    {
        const Vector normal = ToEigen(frame.GetWDirection());
        const Vector travel = ToEigen(frame.GetUDirection());
        const Vector rollerCentre = ToEigen(frame.GetOrigin()) + model.rollerRadius * normal;
        ++worst.frames;
        ASSERT_FALSE(candidates.isEmpty()) << "a reachable frame gave no candidate";
        for (const ZELKinSolution& candidate : candidates) {
            ++worst.candidates;
            const std::array<double, 3> angles = model.WristOf(candidate);
            for (int k = 0; k < 3; ++k)
                EXPECT_TRUE(model.RangeOf(model.wrist[k]).Contains(angles[k])) << "wrist value " << k << " " << angles[k];
            const Pose pose = model.PoseAt(angles);
            const double allowed = angles[1] == 0.0 ? std::max(tolerance, model.normalTolerance) : tolerance;
            const double normalError = AngleBetween(pose.normal, normal);
            const double travelError = AngleBetween(pose.travel, travel);
            EXPECT_LE(normalError, allowed);
            EXPECT_LE(travelError, allowed);
            if (allowed > kDirection) {
                ++worst.tolerated;
                worst.toleratedNormal = std::max(worst.toleratedNormal, normalError);
                worst.toleratedTravel = std::max(worst.toleratedTravel, travelError);
            } else {
                worst.normal = std::max(worst.normal, normalError);
                worst.travel = std::max(worst.travel, travelError);
            }

            const ZELKinSolution machineAxes = solver->FromTraori(candidate);
            const Vector linear = model.LinearOf(machineAxes);
            for (int k = 0; k < 3; ++k)
                EXPECT_TRUE(model.RangeOf(model.linear[k]).Contains(linear[k])) << "linear value " << k << " " << linear[k];
            const double positionError = (linear + pose.tip - model.tipPoint - rollerCentre).norm();
            EXPECT_LE(positionError, kPosition);
            worst.position = std::max(worst.position, positionError);
        }
    }

    // A frame whose normal lies `angle` from `pole`, with a random travel.
    ZELMathAxis FrameNear(const Vector& pole, double angle)
    {
        const Vector normal = Eigen::AngleAxisd(angle, PerpendicularTo(pole)) * pole;
        return FrameInside(PerpendicularTo(normal), normal);
    }

    Vector FirstRollAxis() const { return model.axis[0].normalized(); }
    //! The poles of the first roll axis in turn: along it, then against it.
    Vector Pole(int i) const { return i % 2 == 0 ? FirstRollAxis() : Vector(-FirstRollAxis()); }

    ZELGeoContainer container;
    ZELKinMachine* machine = nullptr;
    std::unique_ptr<ZELKinSolver> solver;
    Model model;
    Vector reachLow;
    Vector reachWidth;
    std::mt19937_64 random{20261122};
};

} // namespace

TEST_P(ZELKinRBRSolverProperty, EveryCandidateOfARandomReachableFrameReproducesIt)
{
    constexpr int kFrames = 5000;
    Worst worst;
    int foundTheGeneratingWrist = 0;
    int comparable = 0;
    for (int i = 0; i < kFrames && !HasFatalFailure(); ++i) {
        const std::array<double, 3> angles = RandomWrist();
        const Pose pose = model.PoseAt(angles);
        const Vector linear = InnerLinearValues(1.0);
        const Vector rollerCentre = linear + pose.tip - model.tipPoint;
        const ZELMathAxis frame = Frame(rollerCentre - model.rollerRadius * pose.normal, pose.travel, pose.normal);
        const QList<ZELKinSolution> candidates = solver->Solve(frame, true);
        // Within the normal tolerance of either pole of the first roll axis
        // the travel picks the first roll, and the head may miss the normal
        // by that much.
        const double fromAxis = AngleBetween(pose.normal, FirstRollAxis());
        const double fromPole = std::min(fromAxis, kPi - fromAxis);
        CheckCandidates(frame, candidates, fromPole < model.normalTolerance ? model.normalTolerance : kDirection,
                        worst);

        // Away from both poles of the first roll and from a snapped bend, the
        // wrist the frame was made from must be one of the candidates.
        if (fromAxis < 0.01 || fromAxis > kPi - 0.01 || std::abs(angles[1]) < 2.0 * model.normalTolerance)
            continue;
        ++comparable;
        foundTheGeneratingWrist += std::any_of(candidates.begin(), candidates.end(), [&](const ZELKinSolution& c) {
            const std::array<double, 3> found = model.WristOf(c);
            return std::abs(found[0] - angles[0]) < 1e-7 && std::abs(found[1] - angles[1]) < 1e-7
                && std::abs(found[2] - angles[2]) < 1e-7;
        });
    }
    EXPECT_EQ(foundTheGeneratingWrist, comparable);
    EXPECT_GT(comparable, kFrames / 2);
    worst.Print(GetParam().name, "random reachable frames");
}

TEST_P(ZELKinRBRSolverProperty, FramesWithinTheNormalToleranceOfEitherPoleOfTheFirstRollAxisLeaveTheWristFree)
{
    constexpr int kFrames = 500;
    Worst worst;
    for (int i = 0; i < kFrames && !HasFatalFailure(); ++i) {
        const ZELMathAxis frame = FrameNear(Pole(i), Uniform(0.0, 0.999) * model.normalTolerance);
        const QList<ZELKinSolution> free = solver->Solve(frame, false);
        ASSERT_EQ(free.size(), 1);
        EXPECT_TRUE(free.first().IsInfinite());
        // In TRAORI form the travel picks the first roll, and the head then
        // misses the frame by at most the normal's angle from the pole.
        CheckCandidates(frame, solver->Solve(frame, true), model.normalTolerance, worst);
    }
    worst.Print(GetParam().name, "within the normal tolerance of either pole of the first roll axis");
}

TEST_P(ZELKinRBRSolverProperty, FramesJustOutsideTheNormalToleranceOfEitherPoleAreSolvedExactly)
{
    constexpr int kFrames = 500;
    Worst worst;
    for (int i = 0; i < kFrames && !HasFatalFailure(); ++i) {
        const ZELMathAxis frame = FrameNear(Pole(i), Uniform(1.0001, 1.05) * model.normalTolerance);
        const QList<ZELKinSolution> candidates = solver->Solve(frame, false);
        for (const ZELKinSolution& candidate : candidates)
            EXPECT_FALSE(candidate.IsInfinite());
        CheckCandidates(frame, candidates, kDirection, worst);
    }
    worst.Print(GetParam().name, "just outside the normal tolerance of either pole");
}

TEST_P(ZELKinRBRSolverProperty, WhereTheWristIsFreeSolveNearestKeepsTheGuessedFirstRollAndMeetsTheFrame)
{
    // Right at a pole the bend and second roll meet the frame exactly; off
    // it, the bend cannot take up the normal's angle from the pole, so the
    // head misses the frame by up to that angle.
    constexpr int kFrames = 500;
    Worst worst;
    for (int i = 0; i < kFrames && !HasFatalFailure(); ++i) {
        // Distances to the pole from exactly none to just inside the
        // tolerance, spread evenly in magnitude.
        const double distance = i < 2 ? 0.0 : std::pow(10.0, Uniform(-15.0, 0.0)) * 0.999 * model.normalTolerance;
        const ZELMathAxis frame = FrameNear(Pole(i), distance);
        const std::array<double, 3> guessed = RandomWrist();
        ZELKinSolution guess;
        for (int k = 0; k < 3; ++k)
            guess.SetVariableValue(model.wrist[k], guessed[k]);
        const ZELKinSolution nearest = solver->SolveNearest(frame, guess);
        ASSERT_FALSE(nearest.IsInfinite());
        EXPECT_TRUE(ZELTest::SameDouble(guessed[0], model.WristOf(nearest)[0], ZELTest::kExact));
        CheckCandidates(frame, {nearest}, std::max(distance, kDirection), worst);
    }
    worst.Print(GetParam().name, "solved nearest a guess where the wrist is free");
}

INSTANTIATE_TEST_SUITE_P(
    Machines, ZELKinRBRSolverProperty,
    ::testing::Values(
        // As the description says: at home the head points down onto a
        // normal +Z, travelling along +X, with the tip 330 mm below C.
        MachineCase{"ExampleGantry", LoadExample, {"C", "A", "C1"}, Vector(0, 0, 1), Vector(1, 0, 0),
                    Vector(0, 0, -330)},
        MachineCase{"SideHead", LoadSideHead, {"B1", "A1", "C2"}, Vector(0, -0.5, 0.8660254037844386),
                    Vector(1, 0, 0), Vector(60, 80, -329.9038105676658)}),
    [](const ::testing::TestParamInfo<MachineCase>& info) { return std::string(info.param.name); });
