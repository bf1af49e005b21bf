// Path solving must stay linear in the number of positions: the time per
// position stays flat from 10 000 to 5 000 000 positions (bench/run-benchmarks
// fits log time against log N; the slope may be at most 1.05), at most 2 us
// a position with up to eight candidates a point. The "per_position" counter
// gives it in seconds. The SolveProcedure family measures path solving
// itself, over a cheap stand-in wrist of two or three candidates a frame;
// SolveEightCandidates the same with eight a frame; and the
// SolveCylinderOnExampleMachine family a part laid on the example machine
// with its roll-bend-roll solver.

#include <zelkinmachineloader.h>
#include <zelkinsolver.h>

#include <zelkintestaccess.h>
#include <zelkintestrollsolver.h>

#include <zeltpcourselink.h>
#include <zeltppoint.h>

#include <benchmark/benchmark.h>

#include <QFile>
#include <QList>
#include <QtMath>

#include <cmath>
#include <memory>
#include <string>
#include <typeindex>
#include <utility>

namespace {

constexpr double kPi = 3.14159265358979323846;
// Positions per course, and per link between two courses.
constexpr int kCoursePositions = 995;
constexpr int kLinkPositions = 5;

/*
    A deterministic wrist of one roll axis A over X, Y, Z that behaves the
    way a roll-bend-roll wrist does along a course: each frame has the roll
    that follows the course and the one half a turn away; every tenth frame
    a third, slightly turned one, whose chain competes with the first for a
    few steps; every 97th frame has a free wrist. With eight rolls, each
    frame has eight, an eighth of a turn apart, so that every candidate
    chains on from several live series. Continuity and cost as a wrist
    solver judges them: the change of the roll.
*/
enum class Rolls { TwoOrThree, Eight };

class BenchSolver : public ZELKinTestRollSolver
{
public:
    BenchSolver(ZELKinMachine* machine, ZELKinVariable* x, ZELKinVariable* y, ZELKinVariable* z, ZELKinVariable* a,
                Rolls rolls)
        : ZELKinTestRollSolver(machine, x, y, z, a)
        , rolls(rolls)
    {
    }

    using ZELKinTestRollSolver::Solve;

    QList<ZELKinSolution> Solve(const ZELMathAxis& frame, bool) const override
    {
        const ZELMathPoint origin = frame.GetOrigin();
        const int step = int(origin.GetX());
        if (step % 97 == 0)
            return {ZELKinSolution()};
        const double roll = 0.5 * std::sin(origin.GetX() / 500.0);
        if (rolls == Rolls::Eight) {
            QList<ZELKinSolution> candidates;
            for (int k = 0; k < 8; ++k)
                candidates.append(At(origin, roll + k * kPi / 4.0));
            return candidates;
        }
        QList<ZELKinSolution> candidates{At(origin, roll), At(origin, roll + kPi)};
        if (step % 10 == 0)
            candidates.append(At(origin, roll + 0.05));
        return candidates;
    }

    bool IsContiguous(const ZELKinSolution& from, const ZELKinSolution& to, Continuity mode) const override
    {
        const double change = std::abs(Roll(to) - Roll(from));
        switch (mode) {
        case ContinuityFull:
            return change < kPi / 2.0;
        case ContinuityFirstRoll:
            return change < kPi;
        default:
            return true;
        }
    }

private:
    const Rolls rolls;
};

/*
    A procedure of about `positions` positions: links and courses in laying
    order, the links of low, medium and full points detail in turn. The
    points lie 1 mm apart along X.
*/
class BenchProcedure
{
public:
    explicit BenchProcedure(int positions, Rolls rolls = Rolls::TwoOrThree)
        : machine(ZELKinTestAccess::CreateMachine(&container))
        , x(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("X"), ZELKinVariable::Linear, -1e9, 1e9))
        , y(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Y")))
        , z(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("Z")))
        , a(ZELKinTestAccess::CreateVariable(machine, QStringLiteral("A"), ZELKinVariable::Rotary, -10.0, 10.0))
        , procedure(ZELKinTestAccess::CreateRollLayupProcedure(ZELKinTestAccess::CreateProgram(machine), 2540.0,
                                                                 1270.0))
        , solver(machine, x, y, z, a, rolls)
    {
        static const ZELTPCourseLink::PointsDetail kDetails[] = {ZELTPCourseLink::PointsDetailLow,
                                                                 ZELTPCourseLink::PointsDetailMedium,
                                                                 ZELTPCourseLink::PointsDetailFull};
        for (int link = 0; count < positions; ++link) {
            AddLink(kDetails[link % 3]);
            AddCourse();
        }
        AddLink(ZELTPCourseLink::PointsDetailFull);
    }

    int GetCount() const { return count; }
    const ZELKinSolver* GetSolver() const { return &solver; }
    ZELKinRollLayupProcedure* GetProcedure() const { return procedure; }

private:
    const ZELTPPoint* NextPoint()
    {
        const ZELMathPoint origin(double(++count), 0.0, 0.0);
        return new ZELTPPoint(&container, ZELMathAxis(origin, ZELMathVector(1, 0, 0), ZELMathVector(0, 1, 0),
                                                      ZELMathVector(0, 0, 1)));
    }

    void AddLink(ZELTPCourseLink::PointsDetail detail)
    {
        ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(procedure);
        auto* source = new ZELTPCourseLink(&container, QStringLiteral("link"));
        source->SetPointsDetail(detail);
        link->SetToolPathCourseLink(source);
        for (int i = 0; i < kLinkPositions; ++i)
            ZELKinTestAccess::CreatePosition(link)->SetToolPathPoint(NextPoint());
    }

    void AddCourse()
    {
        ZELKinTowCourse* course = ZELKinTestAccess::CreateTowCourse(procedure, machine->GetMaximumMask());
        for (int i = 0; i < kCoursePositions; ++i)
            ZELKinTestAccess::CreateRollLayupPosition(course)->SetToolPathPoint(NextPoint());
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine;
    ZELKinVariable* x;
    ZELKinVariable* y;
    ZELKinVariable* z;
    ZELKinVariable* a;
    ZELKinRollLayupProcedure* procedure;
    BenchSolver solver;
    int count = 0;
};

class EightCandidateProcedure : public BenchProcedure
{
public:
    explicit EightCandidateProcedure(int positions)
        : BenchProcedure(positions, Rolls::Eight)
    {
    }
};

/*
    A procedure of about `positions` positions on the example machine, read
    from the source tree: plies of tow courses laid along X over a convex
    cylinder of radius 1500 mm whose axis runs along X at Y 4500, Z -2500,
    so that the top of the part lies at Z -1000. The courses of a ply lie
    one tow band (4 degrees around X) apart from -40 to 40 degrees, run +X
    and -X in turn with a point every 5 mm, and are joined by links that
    lift the head off the part and turn it round, of low, medium and full
    points detail in turn.
*/
class CylinderProcedure
{
public:
    explicit CylinderProcedure(int positions)
        : machine(LoadExampleMachine(&container))
    {
        if (!machine)
            return;
        solver.reset(machine->CreateSolver());
        procedure = ZELKinTestAccess::CreateRollLayupProcedure(ZELKinTestAccess::CreateProgram(machine), 2540.0,
                                                                1270.0);
        static const ZELTPCourseLink::PointsDetail kDetails[] = {ZELTPCourseLink::PointsDetailLow,
                                                                 ZELTPCourseLink::PointsDetailMedium,
                                                                 ZELTPCourseLink::PointsDetailFull};
        Station last = Lifted(CourseStart(0));
        for (int course = 0; count < positions; ++course) {
            AddLink(kDetails[course % 3], last, CourseStart(course));
            last = AddCourse(course);
        }
        AddLink(ZELTPCourseLink::PointsDetailFull, last, Lifted(last));
    }

    int GetCount() const { return count; }
    //! Null when the example machine cannot be read.
    const ZELKinSolver* GetSolver() const { return solver.get(); }
    ZELKinRollLayupProcedure* GetProcedure() const { return procedure; }

private:
    // Where the tool stands: `x` mm along the cylinder's axis, `angle`
    // radians around it from +Z towards +Y, travelling `heading` radians
    // from +X about the surface normal, `lift` mm off the surface.
    struct Station
    {
        double x;
        double angle;
        double heading;
        double lift;
    };

    static constexpr double kRadius = 1500.0;
    static constexpr double kAxisY = 4500.0;
    static constexpr double kAxisZ = -2500.0;
    static constexpr double kCourseStartX = 3000.0;
    static constexpr double kCourseEndX = 7000.0;
    static constexpr double kPointSpacing = 5.0;
    static constexpr int kCoursesPerPly = 21;
    static constexpr double kFirstCourseAngle = qDegreesToRadians(-40.0);
    static constexpr double kCourseAngleStep = qDegreesToRadians(4.0);
    // How far the links lift the head off the part.
    static constexpr double kClearance = 100.0;

    static ZELKinAFPMachine* LoadExampleMachine(ZELGeoContainer* container)
    {
        QFile file(QStringLiteral(ZELKIN_EXAMPLE_MACHINE));
        if (!file.open(QIODevice::ReadOnly))
            return nullptr;
        return qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(container).LoadFromXML(&file));
    }

    static Station CourseStart(int course)
    {
        const double angle = kFirstCourseAngle + (course % kCoursesPerPly) * kCourseAngleStep;
        return course % 2 == 0 ? Station{kCourseStartX, angle, 0.0, 0.0} : Station{kCourseEndX, angle, kPi, 0.0};
    }

    static Station Lifted(Station station)
    {
        station.lift += kClearance;
        return station;
    }

    // The tool frame: u the travel, w the outward surface normal.
    static ZELMathAxis FrameAt(const Station& station)
    {
        const ZELMathVector normal(0.0, std::sin(station.angle), std::cos(station.angle));
        const ZELMathVector around(0.0, std::cos(station.angle), -std::sin(station.angle));
        const ZELMathVector travel =
            std::cos(station.heading) * ZELMathVector(1.0, 0.0, 0.0) + std::sin(station.heading) * around;
        const double radius = kRadius + station.lift;
        const ZELMathPoint origin(station.x, kAxisY + radius * normal.GetY(), kAxisZ + radius * normal.GetZ());
        return ZELMathAxis(origin, travel, normal.Cross(travel), normal);
    }

    const ZELTPPoint* NextPoint(const Station& station)
    {
        ++count;
        return new ZELTPPoint(&container, FrameAt(station));
    }

    // The link's points lie between `from` and `to`, raised by the
    // clearance half way.
    void AddLink(ZELTPCourseLink::PointsDetail detail, const Station& from, const Station& to)
    {
        ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(procedure);
        auto* source = new ZELTPCourseLink(&container, QStringLiteral("link"));
        source->SetPointsDetail(detail);
        link->SetToolPathCourseLink(source);
        for (int i = 1; i <= kLinkPositions; ++i) {
            const double t = double(i) / double(kLinkPositions + 1);
            const auto along = [t](double a, double b) { return a + (b - a) * t; };
            const Station station{along(from.x, to.x), along(from.angle, to.angle), along(from.heading, to.heading),
                                  along(from.lift, to.lift) + kClearance * std::sin(kPi * t)};
            ZELKinTestAccess::CreatePosition(link)->SetToolPathPoint(NextPoint(station));
        }
    }

    //! Returns the station of the course's last point.
    Station AddCourse(int course)
    {
        ZELKinTowCourse* tows = ZELKinTestAccess::CreateTowCourse(procedure, machine->GetMaximumMask());
        Station station = CourseStart(course);
        const double step = std::cos(station.heading) * kPointSpacing;
        const int points = int(std::lround((kCourseEndX - kCourseStartX) / kPointSpacing)) + 1;
        for (int i = 0; i < points; ++i, station.x += step)
            ZELKinTestAccess::CreateRollLayupPosition(tows)->SetToolPathPoint(NextPoint(station));
        station.x -= step;
        return station;
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine;
    std::unique_ptr<ZELKinSolver> solver;
    ZELKinRollLayupProcedure* procedure = nullptr;
    int count = 0;
};

// Building a procedure of a million positions takes longer than solving it,
// and the benchmark runs its function more than once: the procedure last
// built is kept for the next run of the same kind and size. Only one is
// kept, since five million positions take gigabytes.
template <typename Procedure>
const Procedure& ProcedureOf(int positions)
{
    static std::shared_ptr<void> kept;
    static std::pair<std::type_index, int> keptKey{typeid(void), 0};
    const std::pair<std::type_index, int> key{typeid(Procedure), positions};
    if (!kept || keptKey != key) {
        kept.reset();
        kept = std::make_shared<Procedure>(positions);
        keptKey = key;
    }
    return *static_cast<const Procedure*>(kept.get());
}

template <typename Procedure>
void Solve(benchmark::State& state)
{
    const Procedure& procedure = ProcedureOf<Procedure>(int(state.range(0)));
    const ZELKinSolver* solver = procedure.GetSolver();
    if (!solver) {
        state.SkipWithError("the machine cannot be read");
        return;
    }
    for (auto _ : state) {
        const ZELKinSolutionSeries series = solver->Solve(procedure.GetProcedure());
        if (series.GetCount() != procedure.GetCount()) {
            state.SkipWithError("the procedure was not solved whole");
            break;
        }
        benchmark::DoNotOptimize(series.GetCost());
    }
    state.counters["positions"] = procedure.GetCount();
    state.counters["per_position"] = benchmark::Counter(double(procedure.GetCount()),
                                                        benchmark::Counter::kIsIterationInvariantRate |
                                                            benchmark::Counter::kInvert);
}

constexpr int kSizes[] = {10000, 100000, 1000000, 5000000};

// Each family comes in two: the first solve of each size, right after its
// procedure was built, which also pays for the memory that the process
// takes from the system for the first time and later solves reuse; and the
// steady state that the sizes are compared in, warmed up and timed over
// several solves. Both of a size run one after the other, on one procedure.
template <typename Procedure>
bool RegisterFamily(const std::string& name)
{
    for (const int size : kSizes) {
        benchmark::RegisterBenchmark((name + "TheFirstTime").c_str(), &Solve<Procedure>)
            ->Arg(size)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(name.c_str(), &Solve<Procedure>)
            ->Arg(size)
            ->MinWarmUpTime(1.0)
            ->MinTime(2.0)
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}

[[maybe_unused]] const bool registered = RegisterFamily<BenchProcedure>("SolveProcedure")
    && RegisterFamily<EightCandidateProcedure>("SolveEightCandidates")
    && RegisterFamily<CylinderProcedure>("SolveCylinderOnExampleMachine");

} // namespace

BENCHMARK_MAIN();
