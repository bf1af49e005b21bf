#include <zelkinsolutionseries.h>

#include <benchmark/benchmark.h>

#include <QList>

#include <vector>

namespace {

// The series never looks into its commands or solutions, so one solution
// and no command stand for the positions of a procedure.
ZELKinSolution Solution()
{
    ZELKinSolution solution;
    solution.SetTraori(true);
    return solution;
}

// Every append goes to a fresh copy of the series before it, which then
// replaces it: the pattern of path solving along one chain.
void AppendToFreshCopies(benchmark::State& state)
{
    const int entries = int(state.range(0));
    const ZELKinSolution solution = Solution();
    for (auto _ : state) {
        ZELKinSolutionSeries series;
        for (int i = 0; i < entries; ++i) {
            ZELKinSolutionSeries next = series;
            next.Append(nullptr, solution);
            series = next;
        }
        benchmark::DoNotOptimize(series.GetCount());
    }
    state.SetItemsProcessed(state.iterations() * entries);
    state.SetComplexityN(entries);
}
BENCHMARK(AppendToFreshCopies)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);

// As above, with every copy kept alive until the end, so that no store is
// ever the sole property of the series that extends it.
void AppendToFreshCopiesKeepingThemAll(benchmark::State& state)
{
    const int entries = int(state.range(0));
    const ZELKinSolution solution = Solution();
    for (auto _ : state) {
        std::vector<ZELKinSolutionSeries> chain(1);
        chain.reserve(std::size_t(entries) + 1);
        for (int i = 0; i < entries; ++i) {
            ZELKinSolutionSeries next = chain.back();
            next.Append(nullptr, solution);
            chain.push_back(next);
        }
        benchmark::DoNotOptimize(chain.back().GetCount());
    }
    state.SetItemsProcessed(state.iterations() * entries);
    state.SetComplexityN(entries);
}
BENCHMARK(AppendToFreshCopiesKeepingThemAll)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);

// A beam of three live series: at each step three candidates each extend a
// copy of one live series, the first two the same one, so that every step
// forks a store as well as appending in place.
void ExtendABeamOfThree(benchmark::State& state)
{
    const int steps = int(state.range(0));
    const ZELKinSolution solution = Solution();
    for (auto _ : state) {
        std::vector<ZELKinSolutionSeries> live(3);
        for (int step = 0; step < steps; ++step) {
            std::vector<ZELKinSolutionSeries> next{live[0], live[0], live[2]};
            for (ZELKinSolutionSeries& series : next)
                series.Append(nullptr, solution);
            live.swap(next);
        }
        benchmark::DoNotOptimize(live.front().GetCount());
    }
    state.SetItemsProcessed(state.iterations() * steps * 3);
    state.SetComplexityN(steps);
}
BENCHMARK(ExtendABeamOfThree)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);

// For comparison: the same chain of copies over a plain list, where each
// append to a shared copy copies the whole history.
void AppendToFreshCopiesOfAList(benchmark::State& state)
{
    const int entries = int(state.range(0));
    const ZELKinSolution solution = Solution();
    for (auto _ : state) {
        QList<ZELKinSolution> list;
        for (int i = 0; i < entries; ++i) {
            QList<ZELKinSolution> next = list;
            next.append(solution);
            list = next;
        }
        benchmark::DoNotOptimize(list.size());
    }
    state.SetItemsProcessed(state.iterations() * entries);
    state.SetComplexityN(entries);
}
BENCHMARK(AppendToFreshCopiesOfAList)->RangeMultiplier(10)->Range(1000, 10000)->Complexity(benchmark::oNSquared);

} // namespace

BENCHMARK_MAIN();
