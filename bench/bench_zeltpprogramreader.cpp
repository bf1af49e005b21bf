#include <zelgeocontainer.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>

#include <benchmark/benchmark.h>

#include <QFileInfo>
#include <QString>

#include <simdjson.h>

#include <memory>
#include <string>

namespace {

// The file read: a toolpath that zelkin generate-toolpath wrote, named by
// the environment, as bench/run-benchmarks sets it up (the 1 000 000
// position cylinder part).
constexpr const char* kToolpathVariable = "ZELKIN_BENCH_TOOLPATH";

class BenchFile
{
public:
    static const BenchFile& Get()
    {
        static const BenchFile file;
        return file;
    }

    bool IsUsable() const { return m_size > 0; }
    QString GetPath() const { return m_path; }
    qint64 GetSize() const { return m_size; }

private:
    BenchFile()
        : m_path(qEnvironmentVariable(kToolpathVariable))
        , m_size(m_path.isEmpty() ? 0 : QFileInfo(m_path).size())
    {
    }

    QString m_path;
    qint64 m_size = 0;
};

bool SkipWithoutFile(benchmark::State& state)
{
    if (BenchFile::Get().IsUsable())
        return false;
    state.SkipWithError((std::string("set ") + kToolpathVariable +
                         " to a toolpath file written by zelkin generate-toolpath").c_str());
    return true;
}

// The whole read: the file into memory, the parse, and the program built in
// a container. Deleting the container is not timed.
void ReadProgram(benchmark::State& state)
{
    if (SkipWithoutFile(state))
        return;
    const BenchFile& file = BenchFile::Get();
    for (auto _ : state) {
        auto container = std::make_unique<ZELGeoContainer>();
        ZELTPProgram* program = ZELTPProgramReader(container.get()).Read(file.GetPath());
        benchmark::DoNotOptimize(program);
        state.PauseTiming();
        container.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * file.GetSize());
}
BENCHMARK(ReadProgram)->Unit(benchmark::kMillisecond)->MinTime(5.0);

// The parse alone, for the share of the read that building the model takes.
void ParseOnly(benchmark::State& state)
{
    if (SkipWithoutFile(state))
        return;
    const BenchFile& file = BenchFile::Get();
    const simdjson::padded_string text = simdjson::padded_string::load(file.GetPath().toStdString());
    for (auto _ : state) {
        simdjson::dom::parser parser;
        simdjson::dom::element root;
        benchmark::DoNotOptimize(parser.parse(text).get(root));
    }
    state.SetBytesProcessed(state.iterations() * file.GetSize());
}
BENCHMARK(ParseOnly)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

BENCHMARK_MAIN();
