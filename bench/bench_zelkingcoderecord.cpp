#include <zelkingcoderecord.h>

#include <benchmark/benchmark.h>

#include <QString>
#include <QStringList>

namespace {

// The head of a posted ply file: sequence table, start-up codes, ply and
// phase markers.
const char* const HeadLines[] = {
    "; Sequence 0101 processed by jdoe at Tue Mar 5 14:07:09 2024",
    "; SEQ       PLY      MATERIAL   ANGLE    METHOD  ",
    "; ==== ============= ======== ========= ======== ",
    "; 0101 P1            T35         45.000 A-ANGLE ",
    ";[BEGIN START-UP CODES]",
    "G700; English Units",
    "HSL; Establish High Speed Functions",
    "GUD_EID=\"PART\"",
    "GUD_REVISION=\"B\"",
    "GUD_SEQUENCE_NUMBER=101",
    "GUD_CHECK_POINT_NUM=0",
    "GUD_RECOVERY_NUM=0",
    "M3; Start-of-Program Macro",
    "MSG(\"Verify the probe is not mounted.\")",
    "M0; Program Stop",
    "MSG(\"\")",
    "M10; Extend Head",
    "G90; Absolute Positioning Mode",
    "G94; Feed-Per-Minute Mode",
    "M25; Turn On Tow Tension",
    "M18; Turn Off Compaction Heater",
    "M13; Turn On Compaction Force",
    "M50; Cancel Process Parameter Zones",
    ";[END START-UP CODES]",
    "MSG(\"PART\")",
    ";[PLY] PlyId=P1,Angle=0.785,Method=A-ANGLE,Area=1.500",
    "GUD_MATERIAL_REQUIRED=\"T35\"",
    "M27; Verify Material Loaded",
    ";[PHASE] Phase=AFP",
    "M61; Activate Layup Traori",
    "M67; Establish Tool Transformation Frame",
};

constexpr int MotionLinesPerCourse = 200;
constexpr int Courses = 100;

QString Decimal(double value)
{
    return QString::number(value, 'f', 4);
}

// One motion line of a course, every axis word present as after a course
// start, with the tow event block in the comment.
QString MotionLine(int lineNumber, int step)
{
    const double s = step * 0.01;
    return QStringLiteral("N%1G1X%2Y%3Z%4C%5A%6C1=%7U%8F200;{P0.0000Q0.0000M0.0000T65535}")
        .arg(lineNumber)
        .arg(Decimal(176.1654 + s), Decimal(165.9715 - s * 0.5), Decimal(-79.2438 + s * 0.1),
             Decimal(36.7151 + s * 0.2), Decimal(-12.5), Decimal(45.0), Decimal(64.999 + s));
}

// A ply file of Courses courses, each with its marker, tow events and
// motion lines, as one text with a line feed after every line.
QString PlyFileText()
{
    QString text;
    for (const char* line : HeadLines)
        text += QLatin1String(line) + QLatin1Char('\n');
    int lineNumber = 0;
    for (int course = 1; course <= Courses; ++course) {
        text += QStringLiteral(";[COURSE] CourseNumber=%1,TowRoller=8,TowsUsed=000F,Material=T35\n").arg(course);
        text += QStringLiteral(";PMAC1: G500U25.400A/B[000F]\n");
        text += QStringLiteral("GUD_TOW_MASK=15\n");
        for (int step = 0; step < MotionLinesPerCourse; ++step)
            text += MotionLine(++lineNumber, step) + QLatin1Char('\n');
        text += QStringLiteral("M30; End of Course\n");
    }
    return text;
}

QStringList SplitIntoLines(const QString& text)
{
    return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void ReportPerLine(benchmark::State& state, qsizetype lines)
{
    state.SetItemsProcessed(state.iterations() * lines);
    // Seconds per line, shown as time.
    state.counters["per_line"] = benchmark::Counter(double(lines), benchmark::Counter::kIsIterationInvariantRate
                                                                       | benchmark::Counter::kInvert);
}

// Only splitting the file text into lines: the floor under any reader.
void SplitPlyFileIntoLines(benchmark::State& state)
{
    const QString text = PlyFileText();
    qsizetype lines = 0;
    for (auto _ : state) {
        const QStringList split = SplitIntoLines(text);
        lines = split.size();
        benchmark::DoNotOptimize(split.constData());
    }
    ReportPerLine(state, lines);
}
BENCHMARK(SplitPlyFileIntoLines)->Unit(benchmark::kMillisecond);

// Taking every line of the split file apart into a record.
void RecordPerPlyFileLine(benchmark::State& state)
{
    const QStringList lines = SplitIntoLines(PlyFileText());
    for (auto _ : state) {
        unsigned lineNumber = 0;
        for (const QString& line : lines) {
            const ZELKinGCodeRecord record(++lineNumber, line);
            benchmark::DoNotOptimize(&record);
        }
    }
    ReportPerLine(state, lines.size());
}
BENCHMARK(RecordPerPlyFileLine)->Unit(benchmark::kMillisecond);

// One line of about `characters` characters of axis words, codes and a word
// without a value, with neither a line break nor a semicolon: a program run
// together into one line. Reading it must take time in proportion to its
// length (the target is 1 s for 10 MB).
QString LongLine(qsizetype characters)
{
    QString line;
    line.reserve(characters + 128);
    for (int step = 0; line.size() < characters; ++step) {
        const QString motion = MotionLine(step, step % MotionLinesPerCourse);
        line += QStringView(motion).left(motion.indexOf(QLatin1Char(';')));
        line += QLatin1String(" TRAORI M64 ");
    }
    return line;
}

void RecordOneLongLine(benchmark::State& state, qsizetype characters)
{
    const QString line = LongLine(characters);
    for (auto _ : state) {
        const ZELKinGCodeRecord record(1, line);
        benchmark::DoNotOptimize(&record);
    }
    state.SetBytesProcessed(state.iterations() * line.size());
}
BENCHMARK_CAPTURE(RecordOneLongLine, 10MB, qsizetype(10000000))->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
