#include <zelgeocontainer.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <simdjson.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

// The document read: one program of four plies (0, +45, -45 and 90 degrees)
// laid on a convex cylinder section, each ply of 250 courses of 1000 on-part
// points, one million on-part points in all, laid out as zelkin
// generate-toolpath lays out its documents: every number in its shortest
// exact form, every point with its directions, one point a line, indented
// by its depth.
constexpr int kCoursesPerPly = 250;
constexpr int kPointsPerCourse = 1000;
constexpr std::array<double, 4> kPlyAngles = {0.0, 45.0, -45.0, 90.0};
constexpr int kOnPartPoints = int(kPlyAngles.size()) * kCoursesPerPly * kPointsPerCourse;
constexpr double kRadius = 1500.0;
constexpr double kSpacing = 3.0;
constexpr double kLift = 50.0;
constexpr double kPi = 3.14159265358979323846;

struct Vector
{
    double x;
    double y;
    double z;
};

struct Frame
{
    Vector origin;
    Vector travel;
    Vector normal;
};

// Appends JSON text: numbers in their shortest exact form, whatever the
// locale.
class JsonText
{
public:
    void Raw(const char* text) { m_text += text; }

    void Number(double value)
    {
        std::array<char, 32> digits{};
        const std::to_chars_result result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
        m_text.append(digits.data(), result.ptr);
    }

    void Integer(long long value) { m_text += std::to_string(value); }

    void Triple(const Vector& vector)
    {
        Raw("[");
        Number(vector.x);
        Raw(", ");
        Number(vector.y);
        Raw(", ");
        Number(vector.z);
        Raw("]");
    }

    void Point(const Frame& frame)
    {
        Raw("{\"origin\": ");
        Triple(frame.origin);
        Raw(", \"travel\": ");
        Triple(frame.travel);
        Raw(", \"normal\": ");
        Triple(frame.normal);
        Raw("}");
    }

    const std::string& Text() const { return m_text; }

private:
    std::string m_text;
};

// A point of a course laid at `plyAngle` (rad, from the cylinder's axis X)
// on the cylinder of radius kRadius: `along` mm along the course, which
// starts at `start` mm along the axis and `startAngle` rad around it.
Frame CylinderFrame(double plyAngle, double start, double startAngle, double along)
{
    const double angle = startAngle + along * std::sin(plyAngle) / kRadius;
    const Vector normal{0.0, std::sin(angle), std::cos(angle)};
    const Vector travel{std::cos(plyAngle), std::sin(plyAngle) * std::cos(angle), -std::sin(plyAngle) * std::sin(angle)};
    const Vector origin{start + along * std::cos(plyAngle), kRadius * normal.y, kRadius * normal.z - 2000.0};
    return Frame{origin, travel, normal};
}

Frame Lifted(const Frame& frame)
{
    Frame lifted = frame;
    lifted.origin.x += kLift * frame.normal.x;
    lifted.origin.y += kLift * frame.normal.y;
    lifted.origin.z += kLift * frame.normal.z;
    return lifted;
}

// The indentation of a point's line in a course, as the generator writes it.
constexpr const char* kPointIndent = "                  ";
// That of a trajectory's first line.
constexpr const char* kTrajectoryIndent = "              ";

void Trajectory(JsonText& json, const char* kind, const char* extra, const std::vector<Frame>& frames, int first,
                int last)
{
    json.Raw(kTrajectoryIndent);
    json.Raw("{\"kind\": \"");
    json.Raw(kind);
    json.Raw("\", \"feedrate\": 12700");
    json.Raw(extra);
    json.Raw(", \"points\": [\n");
    for (int i = first; i <= last; ++i) {
        json.Raw(kPointIndent);
        json.Point(frames[std::size_t(i)]);
        json.Raw(i < last ? ",\n" : "\n");
    }
    json.Raw("]}");
}

void Link(JsonText& json, const Frame& frame)
{
    json.Raw("{\"name\": \"transfer\", \"pointsDetail\": \"medium\", \"trajectories\": [");
    Trajectory(json, "offPart", "", {frame}, 0, 0);
    json.Raw("]}");
}

// Approach, roll-in, four tow trajectories that drop a tow each, roll-out
// and retract; the on-part points are the frames 1 to kPointsPerCourse.
void Course(JsonText& json, const std::vector<Frame>& frames)
{
    static const char* const kMasks[] = {"1111111111111111", "0111111111111111", "0011111111111111",
                                         "0001111111111111"};
    const int last = kPointsPerCourse;
    const int boundaries[] = {2, 250, 500, 750, last - 2};
    json.Raw("{\"name\": \"course\", \"towMask\": \"1111111111111111\", \"machineConfiguration\": "
             "{\"roller\": {\"name\": \"R16-4in\", \"width\": 101.6}, \"head\": {\"name\": \"H1\", "
             "\"towWidth\": 6.35}}, \"towLengths\": [");
    for (int tow = 0; tow < 16; ++tow) {
        json.Number(kSpacing * (kPointsPerCourse - 1) - tow);
        json.Raw(tow < 15 ? ", " : "], \"trajectories\": [\n");
    }
    Trajectory(json, "offPart", "", frames, 0, 1);
    json.Raw(",\n");
    Trajectory(json, "onPart", ", \"forwardTilt\": 0, \"sideTilt\": 0, \"smoothingAngle\": 0", frames, 1, 2);
    for (int t = 0; t < 4; ++t) {
        const std::string extra = std::string(", \"forwardTilt\": 0, \"towMask\": \"") + kMasks[t] + "\"";
        json.Raw(",\n");
        Trajectory(json, "tow", extra.c_str(), frames, boundaries[t], boundaries[t + 1]);
    }
    json.Raw(",\n");
    Trajectory(json, "onPart", "", frames, last - 2, last);
    json.Raw(",\n");
    Trajectory(json, "offPart", "", frames, last, last + 1);
    json.Raw("\n], \"rollInPoint\": 1, \"rollOutPoint\": 1}");
}

void Ply(JsonText& json, int ply)
{
    const double plyAngle = kPlyAngles[std::size_t(ply)] * kPi / 180.0;
    json.Raw("{\"kind\": \"rollLayup\", \"name\": \"Ply ");
    json.Integer(101 + ply);
    json.Raw("\", \"safetyPlane\": {\"origin\": [0, 0, -300], \"normal\": [0, 0, 1]}, \"addingFeedrate\": 2540, "
             "\"cuttingFeedrate\": 1270, \"material\": {\"id\": \"IM7-8552-6.35\"}, \"totalMaterialLength\": ");
    json.Number(16.0 * kSpacing * (kPointsPerCourse - 1) * kCoursesPerPly);
    json.Raw(", \"plies\": [{\"name\": \"P\", \"orientation\": ");
    json.Number(kPlyAngles[std::size_t(ply)]);
    json.Raw(", \"propagation\": \"angle\"}],\n\"links\": [\n");

    std::vector<std::vector<Frame>> courses;
    for (int c = 0; c < kCoursesPerPly; ++c) {
        // Courses spread across the section, about +-35 degrees.
        const double startAngle = -0.6 + c * 0.0048;
        std::vector<Frame> frames;
        frames.reserve(std::size_t(kPointsPerCourse) + 2);
        for (int i = 0; i < kPointsPerCourse; ++i)
            frames.push_back(CylinderFrame(plyAngle, 1000.0 + c * 0.5, startAngle, i * kSpacing));
        frames.insert(frames.begin(), Lifted(frames.front()));
        frames.push_back(Lifted(frames.back()));
        courses.push_back(std::move(frames));
    }
    Link(json, Lifted(Lifted(courses.front().front())));
    for (const std::vector<Frame>& frames : courses) {
        json.Raw(",\n");
        Link(json, Lifted(frames.back()));
    }
    json.Raw("\n],\n\"courses\": [\n");
    for (std::size_t c = 0; c < courses.size(); ++c) {
        Course(json, courses[c]);
        json.Raw(c + 1 < courses.size() ? ",\n" : "\n");
    }
    json.Raw("]}");
}

std::string Document()
{
    JsonText json;
    json.Raw("{\"format\": \"zelkin-toolpath\", \"version\": 1, \"program\": {\"name\": \"bench\", "
             "\"revision\": \"A\", \"procedures\": [\n");
    for (int ply = 0; ply < int(kPlyAngles.size()); ++ply) {
        Ply(json, ply);
        json.Raw(ply + 1 < int(kPlyAngles.size()) ? ",\n" : "\n");
    }
    json.Raw("]}}\n");
    return json.Text();
}

// The document, written once to a temporary file for all benchmarks.
class BenchFile
{
public:
    static const BenchFile& Get()
    {
        static const BenchFile file;
        return file;
    }

    QString GetPath() const { return m_directory.filePath(QStringLiteral("bench.json")); }
    qint64 GetSize() const { return m_size; }

private:
    BenchFile()
    {
        const std::string text = Document();
        QFile file(GetPath());
        if (!file.open(QIODevice::WriteOnly) || file.write(text.data(), qint64(text.size())) != qint64(text.size())) {
            std::fprintf(stderr, "cannot write the benchmark document %s\n", qPrintable(GetPath()));
            std::abort();
        }
        m_size = qint64(text.size());
    }

    QTemporaryDir m_directory;
    qint64 m_size = 0;
};

// The whole read: the file into memory, the parse, and the program built in
// a container. Deleting the container is not timed.
void ReadProgram(benchmark::State& state)
{
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
    state.SetItemsProcessed(state.iterations() * kOnPartPoints);
    state.counters["bytes_per_point"] = double(file.GetSize()) / kOnPartPoints;
}
BENCHMARK(ReadProgram)->Unit(benchmark::kMillisecond)->MinTime(5.0);

// The parse alone, for the share of the read that building the model takes.
void ParseOnly(benchmark::State& state)
{
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
