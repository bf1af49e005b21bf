#include "zelkinhtmlreport.h"

#include <zelkinafpmachine.h>
#include <zelkinvariable.h>
#include <zelkinverifysummary.h>
#include <zelsysexception.h>
#include <zelsysjsontext.h>

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QVector>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace {

// Decimals kept in the inlined data: far below what a plot can show, far
// above what makes the page large.
constexpr int kLengthDecimals = 2;
constexpr int kLinearDecimals = 3;
constexpr int kRotaryDecimals = 4;

// The page's style and scripts are files of their own (report/), built
// into the tool as resources.
QString PagePart(const QString& name)
{
    QFile file(QStringLiteral(":/report/") + name);
    if (!file.open(QIODevice::ReadOnly))
        throw ZELSysException(QStringLiteral("the report's %1 is not built into zelkin").arg(name));
    return QString::fromUtf8(file.readAll());
}

// A machine variable as its plot shows it.
struct PlotAxis
{
    //! In the verified line's axes.
    int index = 0;
    QString label;
    QString kind;
    QString unit;
    //! From model units (mm, rad) to the plot's (mm, deg).
    double scale = 1.0;
    int decimals = kLinearDecimals;
    //! In the plot's units; NaN for none.
    double minimum = 0.0;
    double maximum = 0.0;
};

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

QList<PlotAxis> PlotAxesOf(const ZELKinAFPMachine& machine)
{
    QList<PlotAxis> axes;
    const QList<ZELKinVariable*> variables = machine.GetVariables();
    for (int i = 0; i < variables.size(); ++i) {
        const ZELKinVariable* variable = variables.at(i);
        if (!variable)
            continue;
        const bool rotary = variable->GetType() == ZELKinVariable::Rotary;
        const double scale = rotary ? qRadiansToDegrees(1.0) : 1.0;
        axes.append(PlotAxis{i, variable->GetLabel(), KindOf(*variable, machine),
                             rotary ? QStringLiteral("deg") : QStringLiteral("mm"), scale,
                             rotary ? kRotaryDecimals : kLinearDecimals, variable->GetMinimum() * scale,
                             variable->GetMaximum() * scale});
    }
    return axes;
}

QString Html(const QString& text)
{
    return text.toHtmlEscaped();
}

// Also escapes '<', so that no string can end the script element that
// holds the data.
// The page's data sits inside a <script> element.
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

template <typename Value>
QString JsonArrayOf(const QList<int>& samples, Value valueOf)
{
    QStringList items;
    items.reserve(samples.size());
    for (const int sample : samples)
        items.append(valueOf(sample));
    return JsonArray(items);
}

QList<int> AllIndices(int count)
{
    QList<int> indices(count);
    std::iota(indices.begin(), indices.end(), 0);
    return indices;
}

QList<int> Merged(const QList<int>& a, const QList<int>& b)
{
    QList<int> merged;
    merged.reserve(a.size() + b.size());
    std::set_union(a.cbegin(), a.cend(), b.cbegin(), b.cend(), std::back_inserter(merged));
    return merged;
}

int BucketOf(double pathLength, double totalLength)
{
    if (!(totalLength > 0.0))
        return 0;
    const int bucket = int(pathLength / totalLength * ZELKinHtmlReport::GetMaxBuckets());
    return std::clamp(bucket, 0, ZELKinHtmlReport::GetMaxBuckets() - 1);
}

// What a plot keeps of one series: every line when they are few; otherwise,
// in each stretch of equal path length, the lines with the smallest and the
// largest value, so that no peak is lost, and the first line without one,
// so that the plot still shows the gap; always the first and the last line.
QList<int> KeptLines(const QList<ZELKinVerifiedLine>& lines, const QVector<double>& values)
{
    if (lines.size() <= ZELKinHtmlReport::GetMaxBuckets())
        return AllIndices(int(lines.size()));
    struct Bucket
    {
        int lowest = -1;
        int highest = -1;
        int gap = -1;
    };
    QVector<Bucket> buckets(ZELKinHtmlReport::GetMaxBuckets());
    const double totalLength = lines.last().pathLength;
    for (int i = 0; i < lines.size(); ++i) {
        Bucket& bucket = buckets[BucketOf(lines.at(i).pathLength, totalLength)];
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
    QList<int> kept{0, int(lines.size()) - 1};
    for (const Bucket& bucket : buckets) {
        for (const int line : {bucket.lowest, bucket.highest, bucket.gap}) {
            if (line >= 0)
                kept.append(line);
        }
    }
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    return kept;
}

double ValueAt(const ZELKinVerifiedLine& line, const PlotAxis& axis)
{
    return axis.index < line.axes.size() ? line.axes.at(axis.index) * axis.scale : std::nan("");
}

QVector<double> ValuesOf(const QList<ZELKinVerifiedLine>& lines, const PlotAxis& axis)
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

// The motion line a finding is drawn at: its own line, or for a tow event
// the motion line before it, which the event follows.
int LineIndexOf(const QList<ZELKinVerifiedLine>& lines, unsigned findingLine)
{
    const auto after = std::upper_bound(
        lines.cbegin(), lines.cend(), findingLine,
        [](unsigned number, const ZELKinVerifiedLine& line) { return number < line.line; });
    return std::max(0, int(after - lines.cbegin()) - 1);
}

QString Where(const ZELKinVerifyPlace& place)
{
    return QStringLiteral("%1:%2").arg(place.file, QString::number(place.line));
}

QString Point(const ZELKinVerifyPlace& place)
{
    return place.point > 0 ? QString::number(place.point) : QStringLiteral("-");
}

// Red for a failure, amber for a pass with warnings, green for a clean pass.
QString ResultClass(const ZELKinVerification& verification)
{
    if (!verification.IsPassed())
        return QStringLiteral("fail");
    return verification.GetNumWarnings() > 0 ? QStringLiteral("warn") : QStringLiteral("pass");
}

// A warning does not fail the verification, and says so.
QString CheckOf(const ZELKinVerifyFinding& finding)
{
    return finding.warning ? finding.check + QStringLiteral(" (warning)") : finding.check;
}

QString FindingTitle(const ZELKinVerifyFinding& finding)
{
    return QStringLiteral("course %1, point %2, %3: %4: %5")
        .arg(QString::number(finding.place.course), Point(finding.place), Where(finding.place), CheckOf(finding),
             finding.message);
}

// A ply that fails along every course would make a page no browser opens in
// reasonable time: each ply shows and marks its first findings, and says how
// many it leaves to "zelkin verify --json".
constexpr int kFindingsShownPerPly = 500;

QList<ZELKinVerifyFinding> Shown(const QList<ZELKinVerifyFinding>& findings)
{
    return findings.mid(0, kFindingsShownPerPly);
}

QList<ZELKinVerifyFinding> FindingsOf(const ZELKinVerification& verification, const ZELKinVerifiedPly& ply)
{
    QList<ZELKinVerifyFinding> findings;
    for (const ZELKinVerifyFinding& finding : verification.findings) {
        if (finding.plyNumber == ply.plyNumber)
            findings.append(finding);
    }
    return findings;
}

int AxisNamed(const QList<PlotAxis>& axes, const QString& label)
{
    for (int i = 0; i < axes.size(); ++i) {
        if (axes.at(i).label == label)
            return i;
    }
    return -1;
}

QString FindingData(const ZELKinVerifyFinding& finding, const QList<ZELKinVerifiedLine>& lines,
                    const QList<PlotAxis>& axes)
{
    const int axis = AxisNamed(axes, finding.subject);
    double length = std::nan("");
    ZELMathPoint centre(std::nan(""), std::nan(""), std::nan(""));
    double value = std::nan("");
    if (!lines.isEmpty()) {
        const ZELKinVerifiedLine& line = lines.at(LineIndexOf(lines, finding.place.line));
        length = line.pathLength;
        centre = line.centre;
        if (axis >= 0)
            value = ValueAt(line, axes.at(axis));
    }
    const int decimals = axis >= 0 ? axes.at(axis).decimals : kLinearDecimals;
    return QStringLiteral("{\"s\":%1,\"x\":%2,\"y\":%3,\"axis\":%4,\"v\":%5,\"text\":%6}")
        .arg(JsonNumber(length, kLengthDecimals), JsonNumber(centre.GetX(), kLengthDecimals),
             JsonNumber(centre.GetY(), kLengthDecimals), QString::number(axis), JsonNumber(value, decimals),
             JsonString(FindingTitle(finding)));
}

struct KeptSeries
{
    QList<int> lines;
    QVector<double> values;
};

// One ply as the page's script reads it: the kept lines once, as columns
// (s path length, x and y of the roller centre, c course, a 1 along a
// course, n line number), and each plot as indices into them.
QString PlyData(const ZELKinVerifiedPly& ply, const QList<PlotAxis>& axes, const QList<ZELKinVerifyFinding>& findings)
{
    const QList<ZELKinVerifiedLine>& lines = ply.lines;
    QList<KeptSeries> series;
    QList<int> samples;
    for (const PlotAxis& axis : axes) {
        const QVector<double> values = ValuesOf(lines, axis);
        series.append(KeptSeries{KeptLines(lines, values), values});
        samples = Merged(samples, series.last().lines);
    }
    const QList<int> top = Merged(KeptLines(lines, CentreCoordinates(lines, &ZELMathPoint::GetX)),
                                  KeptLines(lines, CentreCoordinates(lines, &ZELMathPoint::GetY)));
    samples = Merged(samples, top);

    QVector<int> sampleOfLine(lines.size(), -1);
    for (int i = 0; i < samples.size(); ++i)
        sampleOfLine[samples.at(i)] = i;
    const auto toSamples = [&sampleOfLine](const QList<int>& kept) {
        return JsonArrayOf(kept, [&sampleOfLine](int line) { return QString::number(sampleOfLine.at(line)); });
    };

    QStringList axisData;
    for (int k = 0; k < axes.size(); ++k) {
        const PlotAxis& axis = axes.at(k);
        const KeptSeries& kept = series.at(k);
        axisData.append(
            QStringLiteral("{\"label\":%1,\"kind\":%2,\"unit\":%3,\"min\":%4,\"max\":%5,\"i\":%6,\"v\":%7}")
                .arg(JsonString(axis.label), JsonString(axis.kind), JsonString(axis.unit),
                     JsonNumber(axis.minimum, axis.decimals), JsonNumber(axis.maximum, axis.decimals),
                     toSamples(kept.lines), JsonArrayOf(kept.lines, [&](int line) {
                         return JsonNumber(kept.values.at(line), axis.decimals);
                     })));
    }
    QStringList findingData;
    for (const ZELKinVerifyFinding& finding : findings)
        findingData.append(FindingData(finding, lines, axes));

    const auto column = [&](auto valueOf) { return JsonArrayOf(samples, valueOf); };
    const auto coordinates = [&](double (ZELMathPoint::*coordinate)() const) {
        return column([&](int i) { return JsonNumber((lines.at(i).centre.*coordinate)(), kLengthDecimals); });
    };
    const QStringList members{
        QStringLiteral("\"number\":") + JsonString(ply.plyNumber),
        QStringLiteral("\"length\":") + JsonNumber(lines.isEmpty() ? 0.0 : lines.last().pathLength, kLengthDecimals),
        QStringLiteral("\"s\":") + column([&](int i) { return JsonNumber(lines.at(i).pathLength, kLengthDecimals); }),
        QStringLiteral("\"x\":") + coordinates(&ZELMathPoint::GetX),
        QStringLiteral("\"y\":") + coordinates(&ZELMathPoint::GetY),
        QStringLiteral("\"c\":") + column([&](int i) { return QString::number(lines.at(i).course); }),
        QStringLiteral("\"a\":") + column([&](int i) { return QString::number(lines.at(i).alongCourse ? 1 : 0); }),
        QStringLiteral("\"n\":") + column([&](int i) { return QString::number(lines.at(i).line); }),
        QStringLiteral("\"top\":") + toSamples(top),
        QStringLiteral("\"axes\":") + JsonArray(axisData),
        QStringLiteral("\"findings\":") + JsonArray(findingData)};
    return QLatin1Char('{') + members.join(QLatin1Char(',')) + QLatin1Char('}');
}

QString Row(const QStringList& cells, const QString& cellTag)
{
    QString row = QStringLiteral("<tr>");
    for (const QString& cell : cells)
        row += QStringLiteral("<%1>%2</%1>").arg(cellTag, cell);
    return row + QStringLiteral("</tr>\n");
}

QString Fact(const QString& name, const QString& value)
{
    return QStringLiteral("<tr><th>%1</th><td>%2</td></tr>\n").arg(Html(name), Html(value));
}

QString SummaryTable(const ZELKinVerifiedPly& ply)
{
    const QStringList headings = QStringList{QStringLiteral("courses")} + ZELKinVerifySummary::GetHeadings();
    const QStringList values = QStringList{QString::number(ply.courses)} + ZELKinVerifySummary::GetCells(ply);
    return QStringLiteral("<table class=\"summary\">\n") + Row(headings, QStringLiteral("th")) +
           Row(values, QStringLiteral("td")) + QStringLiteral("</table>\n");
}

QString Legend()
{
    return QStringLiteral(
        "<div class=\"legend\">"
        "<span><span class=\"key course\"></span>course lines, a colour per course</span>"
        "<span><span class=\"key link\"></span>link lines: approach, between courses, retract</span>"
        "<span><span class=\"key limit\"></span>axis limit</span>"
        "<span><span class=\"key finding\"></span>finding (a circle on the axis it is about and in the view "
        "from above; hover for its text)</span>"
        "</div>\n");
}

// A long list is folded, so that the plots of the next ply stay in reach.
constexpr int kFindingsShownOpen = 50;

QString FindingsTable(const QList<ZELKinVerifyFinding>& findings)
{
    if (findings.isEmpty())
        return QStringLiteral("<p class=\"note\">No findings.</p>\n");
    QString table = QStringLiteral("<details%1><summary>%2</summary>\n<table class=\"findings\">\n")
                        .arg(findings.size() <= kFindingsShownOpen ? QStringLiteral(" open") : QString(),
                             ZELKinVerifySummary::CountFindings(findings.size()));
    table += Row({QStringLiteral("ply"), QStringLiteral("course"), QStringLiteral("point"), QStringLiteral("file:line"),
                  QStringLiteral("check"), QStringLiteral("message")},
                 QStringLiteral("th"));
    for (const ZELKinVerifyFinding& finding : Shown(findings))
        table += QStringLiteral("<tr%7><td>%1</td><td>%2</td><td>%3</td><td class=\"where\">%4</td><td>%5</td>"
                                "<td>%6</td></tr>\n")
                     .arg(Html(finding.plyNumber), QString::number(finding.place.course), Point(finding.place),
                          Html(Where(finding.place)), Html(CheckOf(finding)), Html(finding.message),
                          finding.warning ? QStringLiteral(" class=\"warning\"") : QString());
    table += QStringLiteral("</table>\n");
    if (findings.size() > kFindingsShownPerPly)
        table += QStringLiteral("<p class=\"note\">The first %1 are listed and marked; 'zelkin verify --json' lists "
                                "all %2.</p>\n")
                     .arg(kFindingsShownPerPly)
                     .arg(findings.size());
    return table + QStringLiteral("</details>\n");
}

} // namespace

ZELKinHtmlReport::ZELKinHtmlReport(const ZELKinAFPMachine& machine, const ZELKinVerification& verification,
                                   const Sources& sources)
    : m_machine(machine)
    , m_verification(verification)
    , m_sources(sources)
{
}

QString ZELKinHtmlReport::ToHtml() const
{
    QString html = QStringLiteral(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        // The page loads nothing: the browser refuses any reference that
        // might have slipped in.
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
        "style-src 'unsafe-inline'; script-src 'unsafe-inline'\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n");
    html += QStringLiteral("<title>zelkin report: %1, %2</title>\n")
                .arg(Html(QFileInfo(m_sources.toolpathPath).fileName()), Html(GetResult()));
    html += QStringLiteral("<script>\n") + PagePart(QStringLiteral("error-trap.js")) + QStringLiteral("</script>\n");
    html += QStringLiteral("<style>\n") + PagePart(QStringLiteral("report.css"))
        + QStringLiteral("</style>\n</head>\n<body>\n");
    html += GetHeader();
    for (const ZELKinVerifiedPly& ply : m_verification.plies)
        html += GetPlySection(ply);
    html += QStringLiteral("<script type=\"application/json\" id=\"zelkin-report-data\">") + GetData() +
            QStringLiteral("</script>\n");
    html += QStringLiteral("<script>\n") + PagePart(QStringLiteral("plotting.js")) + QStringLiteral("</script>\n");
    return html + QStringLiteral("</body>\n</html>\n");
}

QString ZELKinHtmlReport::GetResult() const
{
    return ZELKinVerifySummary::GetResult(m_verification);
}

int ZELKinHtmlReport::GetNumPlots() const
{
    const int perPly = int(PlotAxesOf(m_machine).size()) + 1;
    return int(m_verification.plies.size()) * perPly;
}

QString ZELKinHtmlReport::GetHeader() const
{
    QString header = QStringLiteral("<header>\n<h1>Verification of %1</h1>\n")
                         .arg(Html(QFileInfo(m_sources.toolpathPath).fileName()));
    header += QStringLiteral("<p class=\"result %1\">%2</p>\n").arg(ResultClass(m_verification), Html(GetResult()));
    header += QStringLiteral("<table class=\"facts\">\n");
    header += Fact(QStringLiteral("toolpath"), m_sources.toolpathPath);
    header += Fact(QStringLiteral("machine"), m_sources.machinePath);
    header += Fact(QStringLiteral("NC"), m_sources.ncPath);
    header += Fact(QStringLiteral("gates"), ZELKinVerifySummary::DescribeGates(m_verification.gates));
    header += QStringLiteral("</table>\n<nav>");
    for (const ZELKinVerifiedPly& ply : m_verification.plies)
        header += QStringLiteral("<a href=\"#ply-%1\">Ply %1: %2</a>").arg(Html(ply.plyNumber), Html(ply.procedure));
    header += QStringLiteral("</nav>\n");
    const QList<ZELKinVerifyFinding> outside = FindingsOf(m_verification, ZELKinVerifiedPly());
    if (!outside.isEmpty())
        header += QStringLiteral("<h3>Findings outside the ply files</h3>\n") + FindingsTable(outside);
    header += QStringLiteral(
        "<p class=\"note\">Plots show every motion line of a ply against the roller centre's path length: rotary "
        "axes in deg, linear axes in mm, X, Y and Z as slide positions. Link lines (approach, between courses, "
        "retract) are gated by their roller centre only; the probing file is not checked.</p>\n");
    return header + QStringLiteral("</header>\n");
}

QString ZELKinHtmlReport::GetPlySection(const ZELKinVerifiedPly& ply) const
{
    const QString number = Html(ply.plyNumber);
    QString section = QStringLiteral("<section class=\"ply\" id=\"ply-%1\">\n<h2>Ply %1: %2</h2>\n")
                          .arg(number, Html(ply.procedure));
    section += QStringLiteral("<p class=\"note\">%1</p>\n").arg(Html(ply.file));
    section += SummaryTable(ply);
    section += Legend();
    section += QStringLiteral("<div class=\"plots\" id=\"plots-%1\"></div>\n").arg(number);
    section += QStringLiteral("<h3>Findings</h3>\n") + FindingsTable(FindingsOf(m_verification, ply));
    return section + QStringLiteral("</section>\n");
}

QString ZELKinHtmlReport::GetData() const
{
    const QList<PlotAxis> axes = PlotAxesOf(m_machine);
    QStringList plies;
    for (const ZELKinVerifiedPly& ply : m_verification.plies)
        plies.append(PlyData(ply, axes, Shown(FindingsOf(m_verification, ply))));
    return QStringLiteral("{\"plotsExpected\":%1,\"plies\":%2}").arg(QString::number(GetNumPlots()), JsonArray(plies));
}
