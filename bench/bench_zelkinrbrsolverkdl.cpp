// The roll-bend-roll solver beside Orocos KDL's numerical inverse kinematics
// on the same chain: the example machine's linear axes and wrist, with its
// own offsets and limits, solving the consecutive tool frames of one course
// over a curved part. KDL is seeded with the previous frame's answer, as a
// numerical solver following a path would be; ours lists every candidate of
// each frame from scratch. The run ends with the ratio of the two times.

#include <zelkinafpmachine.h>
#include <zelkinmachineloader.h>
#include <zelkinrotaryjoint.h>
#include <zelkinsolver.h>
#include <zelkintranslationjoint.h>
#include <zelkinvariable.h>

#include <zelgeocontainer.h>

#include <benchmark/benchmark.h>

#include <kdl/chain.hpp>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_nr_jl.hpp>
#include <kdl/chainiksolvervel_pinv.hpp>
#include <kdl/frames.hpp>
#include <kdl/jntarray.hpp>

#include <QFile>
#include <QStringList>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

// KDL's own defaults for its Newton-Raphson position solver.
constexpr unsigned int kKdlMaxIterations = 100;
constexpr double kKdlPrecision = 1e-6;

// How closely the two solvers must agree before their times are compared.
// Our answer is exact up to rounding, so KDL's forward kinematics must put
// it on the frame to a few rounding steps of coordinates of ten thousand mm;
// KDL's own answer stops within its precision of the frame; the joint values
// (rad or mm) must agree within what that precision leaves of them.
constexpr double kOurPositionTolerance = 1e-6;
constexpr double kOurDirectionTolerance = 1e-9;
constexpr double kKdlTolerance = 10.0 * kKdlPrecision;
constexpr double kJointTolerance = 1e-4;
// Every this many frames of the course, the answers of both are compared.
constexpr std::size_t kCheckEvery = 500;

// One course over a curved part: a mould shaped as a half cylinder of radius
// 900 mm lying along X, in the middle of the example machine's travel. The
// course winds from 50 degrees on one side of the crown to 50 degrees on the
// other while running 2.5 m along X, with a point every millimetre of path.
std::vector<ZELMathAxis> CourseOverCylinder()
{
    const double radius = 900.0;
    const ZELMathPoint axisStart(11000.0, 4500.0, -2300.0);
    const double length = 2500.0;
    const double sweep = qDegreesToRadians(100.0);
    const double spacing = 1.0;
    const double pathLength = std::hypot(length, radius * sweep);
    const int count = int(pathLength / spacing) + 1;

    std::vector<ZELMathAxis> frames;
    frames.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        const double t = double(i) / double(count - 1);
        const double angle = -0.5 * sweep + t * sweep;
        const ZELMathVector normal(0.0, std::sin(angle), std::cos(angle));
        const ZELMathPoint point = axisStart + ZELMathVector(t * length, 0.0, 0.0) + radius * normal;
        // The derivative along the course: along X, and round the cylinder.
        const ZELMathVector travel =
            ZELMathVector(length, radius * sweep * std::cos(angle), -radius * sweep * std::sin(angle)).GetNormalized();
        frames.emplace_back(point, travel, normal.Cross(travel), normal);
    }
    return frames;
}

KDL::Vector ToKdl(const ZELMathVector& vector)
{
    return KDL::Vector(vector.GetX(), vector.GetY(), vector.GetZ());
}

KDL::Vector ToKdl(const ZELMathPoint& point)
{
    return KDL::Vector(point.GetX(), point.GetY(), point.GetZ());
}

double LowerLimit(const ZELKinVariable* variable)
{
    return std::isnan(variable->GetMinimum()) ? -std::numeric_limits<double>::max() : variable->GetMinimum();
}

double UpperLimit(const ZELKinVariable* variable)
{
    return std::isnan(variable->GetMaximum()) ? std::numeric_limits<double>::max() : variable->GetMaximum();
}

// The tool tip with every axis at zero, from the machine's solver
// configuration ("tip-point: x, y, z" among ";"-separated items).
bool ReadTipPoint(const ZELKinMachine* machine, ZELMathPoint& tip)
{
    for (const QString& item : machine->GetSolverConfig().split(QLatin1Char(';'))) {
        const QStringList parts = item.split(QLatin1Char(':'));
        if (parts.size() != 2 || parts.at(0).simplified() != QLatin1String("tip-point"))
            continue;
        const QStringList coordinates = parts.at(1).split(QLatin1Char(','));
        if (coordinates.size() != 3)
            return false;
        tip = ZELMathPoint(coordinates.at(0).toDouble(), coordinates.at(1).toDouble(), coordinates.at(2).toDouble());
        return true;
    }
    return false;
}

// The example machine, its solver, the same chain in KDL, the course and
// both solvers' agreement on it, made once for both benchmarks.
class Comparison
{
public:
    static const Comparison& Get()
    {
        static const Comparison comparison;
        return comparison;
    }

    const std::string& GetError() const { return m_error; }

    ZELGeoContainer container;
    ZELKinMachine* machine = nullptr;
    std::unique_ptr<ZELKinSolver> solver;
    //! The variables driving the chain's joints, base to tool.
    std::vector<ZELKinVariable*> variables;
    ZELMathPoint tipPoint;
    KDL::Chain chain;
    KDL::JntArray lower;
    KDL::JntArray upper;
    std::vector<ZELMathAxis> frames;
    //! Where KDL's walk along the course starts: our answer to the first frame.
    KDL::JntArray firstSeed;
    //! Frames of one walk along the course on which KDL did not converge.
    int kdlFailures = 0;
    //! Frames on which both solvers were found to agree.
    int checkedFrames = 0;
    double rollerRadius = 0.0;

    /*!
        KDL's target for a tool frame. With every axis at zero the tool tip
        hangs at the tip point, and a TRAORI solution's X, Y, Z, the roller
        centre of the frame, are the machine's X, Y, Z plus the wrist's tip
        offset; so in the chain's coordinates the tip lies at the roller
        centre plus the tip point. With every axis at zero the head stands on
        a frame with the world's directions, so the tool's directions are the
        frame's own.
    */
    KDL::Frame Target(const ZELMathAxis& frame) const
    {
        const ZELMathPoint rollerCentre = frame.GetOrigin() + rollerRadius * frame.GetWDirection();
        return KDL::Frame(KDL::Rotation(ToKdl(frame.GetUDirection()), ToKdl(frame.GetVDirection()),
                                        ToKdl(frame.GetWDirection())),
                          ToKdl(rollerCentre) + ToKdl(tipPoint - ZELMathPoint()));
    }

    //! The machine axis values of our TRAORI solution, in chain order.
    KDL::JntArray ToJoints(const ZELKinSolution& traori) const
    {
        const ZELKinSolution values = solver->FromTraori(traori);
        KDL::JntArray joints(unsigned(variables.size()));
        for (std::size_t i = 0; i < variables.size(); ++i)
            joints(unsigned(i)) = values.GetVariableValue(variables[i]);
        return joints;
    }

private:
    Comparison()
    {
        QFile file(QStringLiteral(ZELKIN_EXAMPLE_MACHINE));
        if (!file.open(QIODevice::ReadOnly)) {
            m_error = "the example machine cannot be read";
            return;
        }
        machine = ZELKinMachineLoader(&container).LoadFromXML(&file);
        solver.reset(machine->CreateSolver());
        const auto* afpMachine = qobject_cast<const ZELKinAFPMachine*>(machine);
        if (!afpMachine || !solver || !ReadTipPoint(machine, tipPoint) || !BuildChain()) {
            m_error = "the example machine is not a fibre placement machine with a roll-bend-roll chain and a tip point";
            return;
        }
        rollerRadius = afpMachine->GetRollerRadius();
        frames = CourseOverCylinder();
        if (!FollowCourse())
            return;
        CheckAgreement();
    }

    // Walks the joint tree from its root down the only child of each joint
    // and adds one KDL segment per joint, each axis given in the machine's
    // home coordinates as the joints give theirs, then the tool tip.
    bool BuildChain()
    {
        const QList<ZELKinJoint*> roots = machine->GetRootJoints();
        if (roots.size() != 1)
            return false;
        for (const ZELKinJoint* joint = roots.first(); joint;) {
            ZELKinVariable* variable = joint->GetVariable(0);
            if (!variable)
                return false;
            if (const auto* rotary = qobject_cast<const ZELKinRotaryJoint*>(joint)) {
                chain.addSegment(KDL::Segment(KDL::Joint(ToKdl(rotary->GetPivot()), ToKdl(rotary->GetVector()),
                                                         KDL::Joint::RotAxis)));
            } else if (const auto* linear = qobject_cast<const ZELKinTranslationJoint*>(joint)) {
                chain.addSegment(
                    KDL::Segment(KDL::Joint(KDL::Vector::Zero(), ToKdl(linear->GetVector()), KDL::Joint::TransAxis)));
            } else {
                return false;
            }
            variables.push_back(variable);
            const QList<ZELKinJoint*> children = joint->GetChildJoints();
            joint = children.size() == 1 ? children.first() : nullptr;
        }
        chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None), KDL::Frame(ToKdl(tipPoint - ZELMathPoint()))));
        lower.resize(unsigned(variables.size()));
        upper.resize(unsigned(variables.size()));
        for (std::size_t i = 0; i < variables.size(); ++i) {
            lower(unsigned(i)) = LowerLimit(variables[i]);
            upper(unsigned(i)) = UpperLimit(variables[i]);
        }
        return variables.size() == 6;
    }

    // One walk of KDL along the course, counting the frames it misses.
    bool FollowCourse()
    {
        const QList<ZELKinSolution> first = solver->Solve(frames.front(), false);
        if (first.isEmpty()) {
            m_error = "our solver finds no configuration for the first frame of the course";
            return false;
        }
        firstSeed = ToJoints(first.first());
        KDL::ChainFkSolverPos_recursive forward(chain);
        KDL::ChainIkSolverVel_pinv velocity(chain);
        KDL::ChainIkSolverPos_NR_JL inverse(chain, lower, upper, forward, velocity, kKdlMaxIterations, kKdlPrecision);
        KDL::JntArray seed = firstSeed;
        KDL::JntArray answer(chain.getNrOfJoints());
        kdlAnswers.clear();
        for (const ZELMathAxis& frame : frames) {
            const bool converged = inverse.CartToJnt(seed, Target(frame), answer) >= 0;
            if (converged)
                seed = answer;
            else
                ++kdlFailures;
            kdlAnswers.push_back(converged ? answer : KDL::JntArray());
        }
        return true;
    }

    // On every kCheckEvery-th frame where KDL converged: our candidate
    // nearest KDL's answer has the same joint values, and KDL's forward
    // kinematics puts both on the frame.
    void CheckAgreement()
    {
        KDL::ChainFkSolverPos_recursive forward(chain);
        checkedFrames = 0;
        for (std::size_t i = 0; i < frames.size(); i += kCheckEvery) {
            const QList<ZELKinSolution> candidates = solver->Solve(frames[i], false);
            if (candidates.isEmpty()) {
                m_error = "our solver finds no configuration for frame " + std::to_string(i);
                return;
            }
            const KDL::JntArray& theirs = kdlAnswers[i];
            if (theirs.rows() == 0)
                continue;
            const KDL::JntArray ours = Nearest(candidates, theirs);
            const KDL::Frame target = Target(frames[i]);
            KDL::Frame oursReached;
            KDL::Frame theirsReached;
            forward.JntToCart(ours, oursReached);
            forward.JntToCart(theirs, theirsReached);
            if (!Reaches(oursReached, target, kOurPositionTolerance, kOurDirectionTolerance)) {
                m_error = "our answer misses frame " + std::to_string(i);
                return;
            }
            if (!Reaches(theirsReached, target, kKdlTolerance, kKdlTolerance)) {
                m_error = "KDL's answer misses frame " + std::to_string(i);
                return;
            }
            if (JointDistance(ours, theirs) > kJointTolerance) {
                m_error = "KDL and our solver disagree on the joint values of frame " + std::to_string(i);
                return;
            }
            ++checkedFrames;
        }
        if (checkedFrames == 0)
            m_error = "KDL converged on none of the frames checked";
    }

    KDL::JntArray Nearest(const QList<ZELKinSolution>& candidates, const KDL::JntArray& to) const
    {
        KDL::JntArray best;
        double bestDistance = std::numeric_limits<double>::infinity();
        for (const ZELKinSolution& candidate : candidates) {
            KDL::JntArray joints = ToJoints(candidate);
            const double distance = JointDistance(joints, to);
            if (distance < bestDistance) {
                best = joints;
                bestDistance = distance;
            }
        }
        return best;
    }

    static double JointDistance(const KDL::JntArray& a, const KDL::JntArray& b)
    {
        double distance = 0.0;
        for (unsigned i = 0; i < a.rows(); ++i)
            distance = std::max(distance, std::abs(a(i) - b(i)));
        return distance;
    }

    static bool Reaches(const KDL::Frame& reached, const KDL::Frame& target, double positionTolerance,
                        double directionTolerance)
    {
        return (reached.p - target.p).Norm() <= positionTolerance
            && (reached.M.UnitX() - target.M.UnitX()).Norm() <= directionTolerance
            && (reached.M.UnitY() - target.M.UnitY()).Norm() <= directionTolerance
            && (reached.M.UnitZ() - target.M.UnitZ()).Norm() <= directionTolerance;
    }

    std::vector<KDL::JntArray> kdlAnswers;
    std::string m_error;
};

// Every candidate of one frame after another along the course.
void ZELKinRBRSolverPerFrame(benchmark::State& state)
{
    const Comparison& comparison = Comparison::Get();
    if (!comparison.GetError().empty()) {
        state.SkipWithError(comparison.GetError().c_str());
        return;
    }
    const std::vector<ZELMathAxis>& frames = comparison.frames;
    std::size_t next = 0;
    qint64 candidates = 0;
    for (auto _ : state) {
        const QList<ZELKinSolution> solutions = comparison.solver->Solve(frames[next], false);
        candidates += solutions.size();
        benchmark::DoNotOptimize(solutions.constData());
        next = (next + 1) % frames.size();
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["candidates per frame"] = double(candidates) / double(state.iterations());
    state.counters["frames"] = double(frames.size());
}
BENCHMARK(ZELKinRBRSolverPerFrame);

// KDL along the same course, each frame seeded with the previous frame's
// answer; the walk starts again from the first seed at the end of the course.
void KdlNewtonRaphsonPerFrame(benchmark::State& state)
{
    const Comparison& comparison = Comparison::Get();
    if (!comparison.GetError().empty()) {
        state.SkipWithError(comparison.GetError().c_str());
        return;
    }
    const std::vector<ZELMathAxis>& frames = comparison.frames;
    std::vector<KDL::Frame> targets;
    targets.reserve(frames.size());
    for (const ZELMathAxis& frame : frames)
        targets.push_back(comparison.Target(frame));
    KDL::ChainFkSolverPos_recursive forward(comparison.chain);
    KDL::ChainIkSolverVel_pinv velocity(comparison.chain);
    KDL::ChainIkSolverPos_NR_JL inverse(comparison.chain, comparison.lower, comparison.upper, forward, velocity,
                                        kKdlMaxIterations, kKdlPrecision);
    KDL::JntArray seed = comparison.firstSeed;
    KDL::JntArray answer(comparison.chain.getNrOfJoints());
    std::size_t next = 0;
    qint64 failures = 0;
    for (auto _ : state) {
        if (inverse.CartToJnt(seed, targets[next], answer) >= 0)
            seed = answer;
        else
            ++failures;
        benchmark::DoNotOptimize(answer.data.data());
        next = (next + 1) % targets.size();
        if (next == 0)
            seed = comparison.firstSeed;
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["not converged per frame"] = double(failures) / double(state.iterations());
    state.counters["frames"] = double(frames.size());
}
BENCHMARK(KdlNewtonRaphsonPerFrame);

// The console report, followed by how many times faster our solver is: on
// the medians when the benchmarks were repeated, else on the single runs.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    RatioReporter()
        : benchmark::ConsoleReporter(OO_None)
    {
    }

    void ReportRuns(const std::vector<Run>& reports) override
    {
        benchmark::ConsoleReporter::ReportRuns(reports);
        for (const Run& run : reports) {
            if (run.error_occurred)
                continue;
            const bool isMedian = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            Times& times = m_times[run.run_name.function_name];
            if (run.run_type == Run::RT_Iteration && times.fromMedian)
                continue;
            if (run.run_type == Run::RT_Aggregate && !isMedian)
                continue;
            const double toNanoseconds = 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
            times = Times{run.GetAdjustedRealTime() * toNanoseconds, run.GetAdjustedCPUTime() * toNanoseconds,
                          isMedian};
        }
    }

    void Finalize() override
    {
        benchmark::ConsoleReporter::Finalize();
        const auto ours = m_times.find("ZELKinRBRSolverPerFrame");
        const auto kdl = m_times.find("KdlNewtonRaphsonPerFrame");
        if (ours == m_times.end() || kdl == m_times.end())
            return;
        std::printf("Per frame%s: ours %.0f ns, KDL %.0f ns: ours is %.1f times faster (CPU time: %.0f ns, %.0f ns, "
                    "%.1f times)\n",
                    ours->second.fromMedian ? " (medians)" : "", ours->second.real, kdl->second.real,
                    kdl->second.real / ours->second.real, ours->second.cpu, kdl->second.cpu,
                    kdl->second.cpu / ours->second.cpu);
        const Comparison& comparison = Comparison::Get();
        std::printf("Checked before timing: on %d frames both answers reach the frame and their joint values agree\n",
                    comparison.checkedFrames);
        std::printf("KDL did not converge on %d of the %zu frames of the course\n", comparison.kdlFailures,
                    comparison.frames.size());
    }

private:
    struct Times
    {
        double real = 0.0;
        double cpu = 0.0;
        bool fromMedian = false;
    };
    std::map<std::string, Times> m_times;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
