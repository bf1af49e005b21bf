#include "zelkinreportplydata.h"

#include "zelkinruntimetext.h"

#include <zelkinafpmachine.h>
#include <zelkinvariable.h>
#include <zelsysjsontext.h>

#include <QMap>
#include <QStringList>
#include <QVector>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace {

// Decimals kept in the inlined data: far below what a plot can show, far
// above what makes the page large.
constexpr int kLengthDecimals = 2;
constexpr int kLinearDecimals = 3;
constexpr int kRotaryDecimals = 4;
constexpr int kPercentDecimals = 1;

// The data sits inside a <script> element: '<' is escaped, so that no text
// can end it.
QString JsonString(const QString& text)
{
    return ZELSysJsonText::Quoted(text, ZELSysJsonText::Embedding::HtmlScript);
}

QString JsonNumber(double value, int decimals)
{
    if (!std::isfinite(value))
        return QStringLiteral("null");
    QString text = QString::number(value, 'f', decimals);
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
    }
    return text == QStringLiteral("-0") ? QStringLiteral("0") : text;
}

QString JsonArray(const QStringList& items)
{
    return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
}

template <typename Value> QString JsonArrayOf(const QList<int>& indices, Value valueOf)
{
    QStringList items;
    items.reserve(indices.size());
    for (const int index : indices)
        items.append(valueOf(index));
    return JsonArray(items);
}

QString JsonMember(const QString& name, const QString& value)
{
    return JsonString(name) + QLatin1Char(':') + value;
}

QString JsonObject(const QStringList& members)
{
    return QLatin1Char('{') + members.join(QLatin1Char(',')) + QLatin1Char('}');
}

QString KindOf(const ZELKinVariable& variable, const ZELKinAFPMachine& machine)
{
    if (variable.GetType() == ZELKinVariable::Rotary)
        return QStringLiteral("rotary axis");
    if (&variable == machine.GetMaterialVariable())
        return QStringLiteral("material axis");
    if (variable.GetLabel().size() == 1 && QStringLiteral("XYZ").contains(variable.GetLabel()))
        return QStringLiteral("slide position");
    return QStringLiteral("linear axis");
}

QList<int> Merged(const QList<int>& a, const QList<int>& b)
{
    QList<int> merged;
    merged.reserve(a.size() + b.size());
    std::set_union(a.cbegin(), a.cend(), b.cbegin(), b.cend(), std::back_inserter(merged));
    return merged;
}

// Which of `buckets` stretches of equal length, laid over `span`, holds
// `offset`.
int BucketOf(double offset, double span, int buckets)
{
    if (!(span > 0.0))
        return 0;
    return std::clamp(int(offset / span * buckets), 0, buckets - 1);
}

// Consecutive lines of one course that all run along it, or all stand on
// one of its links, [begin, end): a course's lines run from its record to
// the next one's; those before the first record belong to none. A link
// takes few lines over a long way, and stretches of equal length over the
// two together would leave the course itself a few.
struct Run
{
    int begin = 0;
    int end = 0;
};

QList<Run> RunsOf(const QList<ZELKinVerifiedLine>& lines)
{
    QList<Run> runs;
    for (int i = 0; i < lines.size(); ++i) {
        const bool next = i == 0 || lines.at(i).course != lines.at(i - 1).course
            || lines.at(i).alongCourse != lines.at(i - 1).alongCourse;
        if (next)
            runs.append(Run{i, i});
        runs.last().end = i + 1;
    }
    return runs;
}

int BucketsPerRun(qsizetype runs)
{
    const int shared = int((ZELKinReportPlyData::GetMinBucketsPerPly() + runs - 1) / std::max<qsizetype>(runs, 1));
    return std::max(ZELKinReportPlyData::GetMinBucketsPerCourse(), shared);
}

// What a series keeps of one run: every line when they are few; otherwise,
// in each stretch, the lines with the smallest and the largest value and
// the first line without one; always the run's first and last line.
void KeepOfRun(const QList<ZELKinVerifiedLine>& lines, const QVector<double>& values, const Run& run, int buckets,
               QList<int>& kept)
{
    if (run.end - run.begin <= 2 * buckets) {
        for (int i = run.begin; i < run.end; ++i)
            kept.append(i);
        return;
    }
    struct Bucket
    {
        int lowest = -1;
        int highest = -1;
        int gap = -1;
    };
    QVector<Bucket> stretches(buckets);
    const double start = lines.at(run.begin).pathLength;
    const double span = lines.at(run.end - 1).pathLength - start;
    for (int i = run.begin; i < run.end; ++i) {
        Bucket& bucket = stretches[BucketOf(lines.at(i).pathLength - start, span, buckets)];
        const double value = values.at(i);
        if (std::isnan(value)) {
            if (bucket.gap < 0)
                bucket.gap = i;
            continue;
        }
        if (bucket.lowest < 0 || value < values.at(bucket.lowest))
            bucket.lowest = i;
        if (bucket.highest < 0 || value > values.at(bucket.highest))
            bucket.highest = i;
    }
    kept.append(run.begin);
    kept.append(run.end - 1);
    for (const Bucket& bucket : stretches) {
        for (const int line : {bucket.lowest, bucket.highest, bucket.gap}) {
            if (line >= 0)
                kept.append(line);
        }
    }
}

// A kept line between two of its run that hold the same value, as the page
// writes it, adds nothing to the plot: an axis that stands still for a
// course keeps the course's ends.
QList<int> WithoutFlats(const QList<int>& kept, const QList<ZELKinVerifiedLine>& lines, const QVector<double>& values,
                        int decimals)
{
    const double scale = std::pow(10.0, decimals);
    const auto written = [&](int line) {
        const double value = values.at(line);
        return std::isfinite(value) ? std::optional<qint64>(qRound64(value * scale)) : std::nullopt;
    };
    const auto sameRun = [&](int a, int b) {
        return lines.at(a).course == lines.at(b).course && lines.at(a).alongCourse == lines.at(b).alongCourse;
    };
    QList<int> needed;
    needed.reserve(kept.size());
    for (int k = 0; k < kept.size(); ++k) {
        const int line = kept.at(k);
        const bool flat = k > 0 && k + 1 < kept.size() && written(line) && written(line) == written(kept.at(k - 1))
            && written(line) == written(kept.at(k + 1)) && sameRun(line, kept.at(k - 1))
            && sameRun(line, kept.at(k + 1));
        if (!flat)
            needed.append(line);
    }
    return needed;
}

QList<int> KeptLines(const QList<ZELKinVerifiedLine>& lines, const QList<Run>& runs, const QVector<double>& values,
                     int decimals)
{
    QList<int> kept;
    const int buckets = BucketsPerRun(runs.size());
    for (const Run& run : runs)
        KeepOfRun(lines, values, run, buckets, kept);
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    return WithoutFlats(kept, lines, values, decimals);
}

double ValueAt(const ZELKinVerifiedLine& line, const ZELKinReportPlyData::Axis& axis)
{
    return axis.index < line.axes.size() ? line.axes.at(axis.index) * axis.scale : std::nan("");
}

QVector<double> ValuesOf(const QList<ZELKinVerifiedLine>& lines, const ZELKinReportPlyData::Axis& axis)
{
    QVector<double> values;
    values.reserve(lines.size());
    for (const ZELKinVerifiedLine& line : lines)
        values.append(ValueAt(line, axis));
    return values;
}

QVector<double> CentreCoordinates(const QList<ZELKinVerifiedLine>& lines, double (ZELMathPoint::*coordinate)() const)
{
    QVector<double> values;
    values.reserve(lines.size());
    for (const ZELKinVerifiedLine& line : lines)
        values.append((line.centre.*coordinate)());
    return values;
}

// The motion line a finding is marked at: its own line, or the nearest
// motion line before it (a tow event follows the line before it). A
// finding before the ply's first motion line is marked at its start; one
// that names no line of the ply's file is not marked.
int LineIndexOf(const ZELKinVerifiedPly& ply, const ZELKinVerifyPlace& place)
{
    if (ply.lines.isEmpty() || place.line == 0 || place.file != ply.file)
        return -1;
    const auto after
        = std::upper_bound(ply.lines.cbegin(), ply.lines.cend(), place.line,
                           [](unsigned number, const ZELKinVerifiedLine& line) { return number < line.line; });
    return std::max(0, int(after - ply.lines.cbegin()) - 1);
}

int AxisNamed(const QList<ZELKinReportPlyData::Axis>& axes, const QString& label)
{
    for (int i = 0; i < axes.size(); ++i) {
        if (axes.at(i).label == label)
            return i;
    }
    return -1;
}

QString FindingTitle(const ZELKinVerifyFinding& finding)
{
    return QStringLiteral("course %1, point %2, %3: %4: %5")
        .arg(QString::number(finding.place.course), ZELKinReportPlyData::DescribePoint(finding.place),
             ZELKinReportPlyData::DescribeWhere(finding.place), ZELKinReportPlyData::DescribeCheck(finding),
             finding.message);
}

// The findings at one motion line, or at the lines of one stretch of the
// path once they are too many to mark one by one.
struct Mark
{
    int firstLine = 0;
    int lastLine = 0;
    int count = 0;
    int warnings = 0;
    //! The plotted axes the findings are about, each with its value on the
    //! line of the first finding about it.
    QMap<int, double> axes;
    //! Its text stands for the mark's.
    const ZELKinVerifyFinding* first = nullptr;

    void Add(const Mark& other)
    {
        firstLine = std::min(firstLine, other.firstLine);
        lastLine = std::max(lastLine, other.lastLine);
        count += other.count;
        warnings += other.warnings;
        for (auto axis = other.axes.cbegin(); axis != other.axes.cend(); ++axis) {
            if (!axes.contains(axis.key()))
                axes.insert(axis.key(), axis.value());
        }
    }
};

QList<Mark> Thinned(const QList<Mark>& byLine, const QList<ZELKinVerifiedLine>& lines)
{
    if (byLine.size() <= ZELKinReportPlyData::GetMaxMarks())
        return byLine;
    QList<Mark> byStretch;
    int stretchOfLast = -1;
    const double length = lines.last().pathLength;
    for (const Mark& mark : byLine) {
        const int stretch = BucketOf(lines.at(mark.firstLine).pathLength, length, ZELKinReportPlyData::GetMaxMarks());
        if (stretch == stretchOfLast)
            byStretch.last().Add(mark);
        else
            byStretch.append(mark);
        stretchOfLast = stretch;
    }
    return byStretch;
}

QString JsonCourseSpeed(const ZELKinVerifyExtreme& speed)
{
    if (!std::isfinite(speed.value))
        return QStringLiteral("null");
    return JsonObject({JsonMember(QStringLiteral("percent"), JsonNumber(speed.value * 100.0, kPercentDecimals)),
                       JsonMember(QStringLiteral("axis"), JsonString(speed.subject)),
                       JsonMember(QStringLiteral("line"), QString::number(speed.place.line))});
}

} // namespace

QList<ZELKinReportPlyData::Axis> ZELKinReportPlyData::AxesOf(const ZELKinAFPMachine& machine)
{
    QList<Axis> axes;
    const QList<ZELKinVariable*> variables = machine.GetVariables();
    for (int i = 0; i < variables.size(); ++i) {
        const ZELKinVariable* variable = variables.at(i);
        if (!variable)
            continue;
        const bool rotary = variable->GetType() == ZELKinVariable::Rotary;
        const double scale = rotary ? qRadiansToDegrees(1.0) : 1.0;
        axes.append(Axis{i, variable->GetLabel(), KindOf(*variable, machine),
                         rotary ? QStringLiteral("deg") : QStringLiteral("mm"), scale,
                         rotary ? kRotaryDecimals : kLinearDecimals, variable->GetMinimum() * scale,
                         variable->GetMaximum() * scale});
    }
    return axes;
}

QString ZELKinReportPlyData::DescribeRunTime(const ZELKinRunTime& runTime)
{
    return runTime.untimedLines >= runTime.motionLines ? QStringLiteral("-") : ZELKinRunTimeText::Clock(runTime);
}

QString ZELKinReportPlyData::DescribePoint(const ZELKinVerifyPlace& place)
{
    return place.point > 0 ? QString::number(place.point) : QStringLiteral("-");
}

QString ZELKinReportPlyData::DescribeWhere(const ZELKinVerifyPlace& place)
{
    return QStringLiteral("%1:%2").arg(place.file, QString::number(place.line));
}

QString ZELKinReportPlyData::DescribeCheck(const ZELKinVerifyFinding& finding)
{
    return finding.warning ? finding.check + QStringLiteral(" (warning)") : finding.check;
}

QString ZELKinReportPlyData::ToJson(const ZELKinAFPMachine& machine, const ZELKinVerifiedPly& ply,
                                    const QList<ZELKinVerifyFinding>& findings)
{
    const QList<Axis> axes = AxesOf(machine);
    QList<const ZELKinVerifyFinding*> own;
    own.reserve(findings.size());
    for (const ZELKinVerifyFinding& finding : findings) {
        if (finding.plyNumber == ply.plyNumber)
            own.append(&finding);
    }
    return ZELKinReportPlyData(ply, axes, own).ToJson();
}

ZELKinReportPlyData::ZELKinReportPlyData(const ZELKinVerifiedPly& ply, const QList<Axis>& axes,
                                         const QList<const ZELKinVerifyFinding*>& findings)
    : m_ply(ply)
    , m_axes(axes)
    , m_findings(findings)
{
}

// The kept lines once, as columns (s path length, x and y of the roller
// centre, c course, a 1 along a course, n line number), and each series as
// indices into them.
QString ZELKinReportPlyData::ToJson() const
{
    const QList<ZELKinVerifiedLine>& lines = m_ply.lines;
    const QList<Run> runs = RunsOf(lines);
    QList<QList<int>> kept;
    QList<QVector<double>> values;
    QList<int> samples;
    for (const Axis& axis : m_axes) {
        values.append(ValuesOf(lines, axis));
        kept.append(KeptLines(lines, runs, values.last(), axis.decimals));
        samples = Merged(samples, kept.last());
    }
    const QList<int> top
        = Merged(KeptLines(lines, runs, CentreCoordinates(lines, &ZELMathPoint::GetX), kLengthDecimals),
                 KeptLines(lines, runs, CentreCoordinates(lines, &ZELMathPoint::GetY), kLengthDecimals));
    samples = Merged(samples, top);

    QVector<int> sampleOfLine(lines.size(), -1);
    for (int i = 0; i < samples.size(); ++i)
        sampleOfLine[samples.at(i)] = i;
    const auto toSamples = [&sampleOfLine](const QList<int>& indices) {
        return JsonArrayOf(indices, [&sampleOfLine](int line) { return QString::number(sampleOfLine.at(line)); });
    };

    QStringList axisData;
    for (int k = 0; k < m_axes.size(); ++k) {
        const Axis& axis = m_axes.at(k);
        const QVector<double>& axisValues = values.at(k);
        axisData.append(JsonObject({JsonMember(QStringLiteral("label"), JsonString(axis.label)),
                                    JsonMember(QStringLiteral("kind"), JsonString(axis.kind)),
                                    JsonMember(QStringLiteral("unit"), JsonString(axis.unit)),
                                    JsonMember(QStringLiteral("min"), JsonNumber(axis.minimum, axis.decimals)),
                                    JsonMember(QStringLiteral("max"), JsonNumber(axis.maximum, axis.decimals)),
                                    JsonMember(QStringLiteral("i"), toSamples(kept.at(k))),
                                    JsonMember(QStringLiteral("v"), JsonArrayOf(kept.at(k), [&](int line) {
                                                   return JsonNumber(axisValues.at(line), axis.decimals);
                                               }))}));
    }

    const auto column = [&](auto valueOf) { return JsonArrayOf(samples, valueOf); };
    const auto coordinates = [&](double (ZELMathPoint::*coordinate)() const) {
        return column([&](int i) { return JsonNumber((lines.at(i).centre.*coordinate)(), kLengthDecimals); });
    };
    return JsonObject(
        {JsonMember(QStringLiteral("number"), JsonString(m_ply.plyNumber)),
         JsonMember(QStringLiteral("length"),
                    JsonNumber(lines.isEmpty() ? 0.0 : lines.last().pathLength, kLengthDecimals)),
         JsonMember(QStringLiteral("s"),
                    column([&](int i) { return JsonNumber(lines.at(i).pathLength, kLengthDecimals); })),
         JsonMember(QStringLiteral("x"), coordinates(&ZELMathPoint::GetX)),
         JsonMember(QStringLiteral("y"), coordinates(&ZELMathPoint::GetY)),
         JsonMember(QStringLiteral("c"), column([&](int i) { return QString::number(lines.at(i).course); })),
         JsonMember(QStringLiteral("a"),
                    column([&](int i) { return QString::number(lines.at(i).alongCourse ? 1 : 0); })),
         JsonMember(QStringLiteral("n"), column([&](int i) { return QString::number(lines.at(i).line); })),
         JsonMember(QStringLiteral("top"), toSamples(top)), JsonMember(QStringLiteral("axes"), JsonArray(axisData)),
         JsonMember(QStringLiteral("courses"), GetCourses()), JsonMember(QStringLiteral("marks"), GetMarks())});
}

// Each mark at the roller centre's path length and position on its first
// line; "line" and "last" are the NC lines it spans.
QString ZELKinReportPlyData::GetMarks() const
{
    const QList<ZELKinVerifiedLine>& lines = m_ply.lines;
    QList<Mark> byLine;
    QVector<int> markOfLine(lines.size(), -1);
    for (const ZELKinVerifyFinding* finding : m_findings) {
        const int index = LineIndexOf(m_ply, finding->place);
        if (index < 0)
            continue;
        if (markOfLine.at(index) < 0) {
            markOfLine[index] = int(byLine.size());
            byLine.append(Mark{index, index, 0, 0, {}, finding});
        }
        Mark& mark = byLine[markOfLine.at(index)];
        ++mark.count;
        mark.warnings += finding->warning ? 1 : 0;
        const int axis = AxisNamed(m_axes, finding->subject);
        if (axis >= 0 && !mark.axes.contains(axis))
            mark.axes.insert(axis, ValueAt(lines.at(index), m_axes.at(axis)));
    }
    std::sort(byLine.begin(), byLine.end(), [](const Mark& a, const Mark& b) { return a.firstLine < b.firstLine; });
    QStringList marks;
    for (const Mark& mark : Thinned(byLine, lines)) {
        const ZELKinVerifiedLine& line = lines.at(mark.firstLine);
        QStringList axes;
        for (auto axis = mark.axes.cbegin(); axis != mark.axes.cend(); ++axis)
            axes.append(QStringLiteral("[%1,%2]").arg(QString::number(axis.key()),
                                                      JsonNumber(axis.value(), m_axes.at(axis.key()).decimals)));
        marks.append(
            JsonObject({JsonMember(QStringLiteral("s"), JsonNumber(line.pathLength, kLengthDecimals)),
                        JsonMember(QStringLiteral("x"), JsonNumber(line.centre.GetX(), kLengthDecimals)),
                        JsonMember(QStringLiteral("y"), JsonNumber(line.centre.GetY(), kLengthDecimals)),
                        JsonMember(QStringLiteral("line"), QString::number(line.line)),
                        JsonMember(QStringLiteral("last"), QString::number(lines.at(mark.lastLine).line)),
                        JsonMember(QStringLiteral("count"), QString::number(mark.count)),
                        JsonMember(QStringLiteral("warning"),
                                   mark.warnings == mark.count ? QStringLiteral("true") : QStringLiteral("false")),
                        JsonMember(QStringLiteral("axes"), JsonArray(axes)),
                        JsonMember(QStringLiteral("text"), JsonString(FindingTitle(*mark.first)))}));
    }
    return JsonArray(marks);
}

// Per course of the file: its findings and warnings, its run time and its
// fastest axis against that axis's speed limit.
QString ZELKinReportPlyData::GetCourses() const
{
    QStringList courses;
    for (const ZELKinVerifiedCourse& course : m_ply.courseTallies)
        courses.append(JsonObject({JsonMember(QStringLiteral("course"), QString::number(course.course)),
                                   JsonMember(QStringLiteral("findings"), QString::number(course.findings)),
                                   JsonMember(QStringLiteral("warnings"), QString::number(course.warnings)),
                                   JsonMember(QStringLiteral("time"), JsonString(DescribeRunTime(course.runTime))),
                                   JsonMember(QStringLiteral("speed"), JsonCourseSpeed(course.speedRatio))}));
    return JsonArray(courses);
}
