// Writing NC text: a position (motion) line may cost at most 0.5 us. The
// "per_line" counter gives the time per position line in seconds.
//
// The WritePly family writes a whole ply file of solved courses through the
// writer front end, to a temporary folder, per position line. The
// FormatLines families take one typical motion line apart: the same words
// and numbers written by the NC stream, and by QString::number through a
// QTextStream as the writer did before the stream, for the ratio.

#include <zelkinncstream_p.h>
#include <zelkinwriter.h>

#include <zelkintestaccess.h>
#include <zelkintestsixaxismachine.h>

#include <benchmark/benchmark.h>

#include <QIODevice>
#include <QTemporaryDir>
#include <QTextStream>

#include <cmath>
#include <memory>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kPositionsPerCourse = 1000;
constexpr int kLinkPositions = 5;

/*
    A solved roll layup procedure of about `positions` positions on a
    machine with the axes X, Y, Z (linear), A, C1 (rotary) and U (the
    material axis): courses of a thousand positions along X, a point every
    5 mm, over a gently curved part, with the tilt angles that a course
    carries and a tow add near each course start; links of five positions
    between them.
*/
class BenchPly : ZELKinTestSixAxisMachine
{
public:
    explicit BenchPly(int positions)
        : ZELKinTestSixAxisMachine(ZELKinTestHead(), 1e9)
        , procedure(ZELKinTestAccess::CreateRollLayupProcedure(program, 1270.0, 1905.0))
    {
        program->SetOriginalFileName(QStringLiteral("BENCH"));
        program->SetRevisionNumber(QStringLiteral("A"));
        program->SetAuthor(QStringLiteral("bench"));
        ZELKinPlyDescription ply;
        ply.SetName(QStringLiteral("P1"));
        ply.SetMaterial(QStringLiteral("T35"));
        // The ply table prints the angle and the area; a ply made without
        // them has NaN, which the writer refuses.
        ply.SetAngle(0.0);
        ply.SetArea(1.0e6);
        procedure->AddPlyDefinition(ply);
        for (int course = 0; count < positions; ++course) {
            AddLink(course);
            AddCourse(course);
        }
        AddLink(-1);
    }

    ZELKinProgram* GetProgram() const { return program; }
    //! The position lines written: every course position but the first.
    int GetLines() const { return lines; }

private:
    void Place(ZELKinPosition* position, double along, double across, double lift, double feedrate)
    {
        position->SetVariableValue(x, along);
        position->SetVariableValue(y, across);
        position->SetVariableValue(z, -200.0 + lift + 50.0 * std::sin(along / 400.0));
        position->SetVariableValue(a, 0.3 * std::cos(along / 400.0));
        position->SetVariableValue(c1, kPi / 2.0);
        position->SetFeedrate(feedrate);
        ++count;
    }

    void AddLink(int course)
    {
        ZELKinCourseLink* link = ZELKinTestAccess::CreateCourseLink(procedure);
        for (int i = 0; i < kLinkPositions; ++i)
            Place(ZELKinTestAccess::CreatePosition(link), 1000.0, 100.0 * course, 100.0 - 20.0 * i, 5080.0);
    }

    void AddCourse(int course)
    {
        ZELKinTowCourse* tows = ZELKinTestAccess::CreateTowCourse(procedure, machine->GetMaximumMask());
        tows->SetRollerTows(16);
        for (int i = 0; i < kPositionsPerCourse; ++i) {
            ZELKinRollLayupPosition* position = ZELKinTestAccess::CreateRollLayupPosition(tows);
            const double along = 1000.0 + 5.0 * i;
            Place(position, along, 100.0 * course + 0.001 * i, 0.0, 2540.0);
            position->SetVariableValue(u, 5.0 * i);
            position->SetNIndex(i);
            position->SetPAngle(0.0);
            position->SetQAngle(0.01 * std::sin(along / 100.0));
            position->SetSmoothAngle(0.0);
            if (i == 2)
                ZELKinTestAccess::CreateTowCommand(tows, machine->GetMaximumMask(), ZELKinTowCommand::Add);
        }
        lines += kPositionsPerCourse - 1;
    }

    ZELKinRollLayupProcedure* procedure;
    int count = 0;
    int lines = 0;
};

// Building a ply of a million positions takes longer than writing it: the
// ply last built is kept for the next run of the same size.
const BenchPly& PlyOf(int positions)
{
    static std::unique_ptr<BenchPly> kept;
    static int keptPositions = 0;
    if (!kept || keptPositions != positions) {
        kept.reset();
        kept = std::make_unique<BenchPly>(positions);
        keptPositions = positions;
    }
    return *kept;
}

void ReportPerLine(benchmark::State& state, double lines)
{
    state.SetItemsProcessed(state.iterations() * int64_t(lines));
    state.counters["lines"] = lines;
    state.counters["per_line"] = benchmark::Counter(lines, benchmark::Counter::kIsIterationInvariantRate |
                                                               benchmark::Counter::kInvert);
}

void WritePly(benchmark::State& state)
{
    const BenchPly& ply = PlyOf(int(state.range(0)));
    QTemporaryDir output;
    ZELKinWriter writer(ply.GetProgram());
    for (auto _ : state)
        writer.Write(output.path(), QStringLiteral("AFPGCode"), QString());
    ReportPerLine(state, ply.GetLines());
}
BENCHMARK(WritePly)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// A device that keeps nothing, so that only the formatting is measured.
class DiscardingDevice : public QIODevice
{
public:
    DiscardingDevice() { open(QIODevice::WriteOnly); }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64 size) override { return size; }
};

constexpr int kFormattedLines = 100000;

// The values of motion line `i`: X, Z, U, A (degrees) and the Q angle.
struct LineValues
{
    double x;
    double z;
    double u;
    double a;
    double q;
};

LineValues ValuesOf(int i)
{
    const double along = 1000.0 + 5.0 * i;
    return {along / 25.4, (-200.0 + 50.0 * std::sin(along / 400.0)) / 25.4, 5.0 * i,
            17.2 * std::cos(along / 400.0), 0.57 * std::sin(along / 100.0)};
}

// "N12G1X40.1575Z-6.8346U60.0000A=17.1990F100;{P0.0000Q0.3829M0.0000}"
void FormatLinesWithTheNCStream(benchmark::State& state)
{
    DiscardingDevice device;
    for (auto _ : state) {
        ZELKinNCStream out(&device);
        for (int i = 0; i < kFormattedLines; ++i) {
            const LineValues v = ValuesOf(i);
            out << "\nN" << i << "G1X" << ZELKinNCStream::Fixed{v.x, 4} << 'Z' << ZELKinNCStream::Fixed{v.z, 4} << 'U'
                << ZELKinNCStream::Fixed{v.u, 4} << "A=" << ZELKinNCStream::Fixed{v.a, 4} << 'F' << 100.0
                << ";{P" << ZELKinNCStream::Fixed{0.0, 4} << 'Q' << ZELKinNCStream::Fixed{v.q, 4} << 'M'
                << ZELKinNCStream::Fixed{0.0, 4} << '}';
        }
    }
    ReportPerLine(state, kFormattedLines);
}
BENCHMARK(FormatLinesWithTheNCStream)->Unit(benchmark::kMillisecond);

void FormatLinesWithQStringNumber(benchmark::State& state)
{
    DiscardingDevice device;
    const auto fixed = [](double value) { return QString::number(value, 'f', 4); };
    for (auto _ : state) {
        QTextStream out(&device);
        for (int i = 0; i < kFormattedLines; ++i) {
            const LineValues v = ValuesOf(i);
            out << "\nN" << i << "G1X" << fixed(v.x) << 'Z' << fixed(v.z) << 'U' << fixed(v.u) << "A=" << fixed(v.a)
                << 'F' << QString::number(100.0, 'g', 6) << ";{P" << fixed(0.0) << 'Q' << fixed(v.q) << 'M'
                << fixed(0.0) << '}';
        }
        out.flush();
    }
    ReportPerLine(state, kFormattedLines);
}
BENCHMARK(FormatLinesWithQStringNumber)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
