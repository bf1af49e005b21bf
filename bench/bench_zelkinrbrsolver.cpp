#include <zelkinmachine.h>
#include <zelkinmachineloader.h>
#include <zelkinrbrsolver.h>

#include <zelgeocontainer.h>

#include <benchmark/benchmark.h>

#include <QFile>

#include <memory>
#include <random>
#include <vector>

namespace {

// Tool frames with normals spread over the whole sphere and travels across
// them, around the middle of the example machine's travel; nearly all are
// reachable, a few lie within the normal tolerance of the first roll axis.
std::vector<ZELMathAxis> RandomFrames(int count)
{
    std::mt19937_64 random(20261122);
    std::normal_distribution<double> normal;
    const auto unit = [&] { return ZELMathVector(normal(random), normal(random), normal(random)).GetNormalized(); };
    std::vector<ZELMathAxis> frames;
    frames.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        const ZELMathVector w = unit();
        const ZELMathVector v = w.Cross(unit()).GetNormalized();
        frames.emplace_back(ZELMathPoint(12000.0, 4500.0, -1500.0), v.Cross(w), v, w);
    }
    return frames;
}

// Solves one frame after another, as path solving does for each position.
void SolveOneFrame(benchmark::State& state)
{
    ZELGeoContainer container;
    QFile file(QStringLiteral(ZELKIN_EXAMPLE_MACHINE));
    if (!file.open(QIODevice::ReadOnly)) {
        state.SkipWithError("the example machine cannot be read");
        return;
    }
    const ZELKinMachine* machine = ZELKinMachineLoader(&container).LoadFromXML(&file);
    const std::unique_ptr<ZELKinSolver> solver(machine->CreateSolver());
    const std::vector<ZELMathAxis> frames = RandomFrames(4096);
    std::size_t next = 0;
    qint64 candidates = 0;
    for (auto _ : state) {
        const QList<ZELKinSolution> solutions = solver->Solve(frames[next], false);
        candidates += solutions.size();
        benchmark::DoNotOptimize(solutions.constData());
        next = (next + 1) % frames.size();
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["candidates per frame"] = double(candidates) / double(state.iterations());
}
BENCHMARK(SolveOneFrame);

} // namespace

BENCHMARK_MAIN();
