#include "zelkinhtmlreport.h"

#include "zelkinreportplydata.h"
#include "zelkinreportsources.h"

#include <zelkinverifysummary.h>
#include <zelsysexception.h>

#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QStringList>

#include <algorithm>

namespace {

// The page's style and scripts are files of their own (report/), built
// into the tool as resources.
QString PagePart(const QString& name)
{
    QFile file(QStringLiteral(":/report/") + name);
    if (!file.open(QIODevice::ReadOnly))
        throw ZELSysException(QStringLiteral("the report's %1 is not built into zelkin").arg(name));
    return QString::fromUtf8(file.readAll());
}

QString Html(const QString& text)
{
    return text.toHtmlEscaped();
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

using Findings = QList<const ZELKinVerifyFinding*>;

QHash<QString, Findings> FindingsOfEachPly(const ZELKinVerification& verification)
{
    QHash<QString, Findings> findings;
    for (const ZELKinVerifyFinding& finding : verification.findings)
        findings[finding.plyNumber].append(&finding);
    return findings;
}

// Red for a failure, amber for a pass with warnings, green for a clean pass.
QString ResultClass(qsizetype failures, qsizetype warnings)
{
    if (failures > 0)
        return QStringLiteral("fail");
    return warnings > 0 ? QStringLiteral("warn") : QStringLiteral("pass");
}

QString ResultClass(const ZELKinVerification& verification)
{
    return ResultClass(verification.GetNumFailures(), verification.GetNumWarnings());
}

// What some findings of the verification come to, in the words of its
// result (ZELKinVerifySummary::GetResult).
struct Verdict
{
    qsizetype failures = 0;
    qsizetype warnings = 0;

    explicit Verdict(const Findings& findings)
    {
        for (const ZELKinVerifyFinding* finding : findings)
            ++(finding->warning ? warnings : failures);
    }

    QString GetClass() const { return ResultClass(failures, warnings); }

    QString GetText() const
    {
        QStringList counts;
        if (failures > 0)
            counts.append(ZELKinVerifySummary::CountFindings(failures));
        if (warnings > 0)
            counts.append(ZELKinVerifySummary::CountWarnings(warnings));
        const QString result = failures > 0 ? QStringLiteral("FAIL") : QStringLiteral("PASS");
        return counts.isEmpty() ? result : QStringLiteral("%1 (%2)").arg(result, counts.join(QStringLiteral(", ")));
    }
};

// The summary names the axis that came nearest its speed limit, which a
// percentage alone does not.
QString SummaryTable(const ZELKinVerifiedPly& ply)
{
    QStringList headings = ZELKinVerifySummary::GetHeadings();
    QStringList cells = ZELKinVerifySummary::GetCells(ply);
    const qsizetype speed = headings.indexOf(QStringLiteral("speed %"));
    if (speed >= 0) {
        headings[speed] = QStringLiteral("speed % (axis)");
        if (!ply.speedRatio.subject.isEmpty())
            cells[speed] += QStringLiteral(" (%1)").arg(ply.speedRatio.subject);
    }
    const auto escaped = [](QStringList texts) {
        for (QString& text : texts)
            text = Html(text);
        return texts;
    };
    return QStringLiteral("<table class=\"summary\">\n")
        + Row(QStringList{QStringLiteral("courses")} + escaped(headings), QStringLiteral("th"))
        + Row(QStringList{QString::number(ply.courses)} + escaped(cells), QStringLiteral("td"))
        + QStringLiteral("</table>\n");
}

QString Legend()
{
    return QStringLiteral(
        "<div class=\"legend\">"
        "<span><span class=\"key course\"></span>course lines, a colour per course</span>"
        "<span><span class=\"key link\"></span>link lines: approach, between courses, retract</span>"
        "<span><span class=\"key limit\"></span>axis limit</span>"
        "<span><span class=\"key finding\"></span>finding, with the number of findings where marks would "
        "overlap (a circle on the axis it is about and in the view from above; hover for its text)</span>"
        "<span><span class=\"key warning\"></span>warning</span>"
        "</div>\n");
}

// A long list is folded, so that the plots of the next ply stay in reach.
constexpr int kFindingsShownOpen = 50;

// A ply that fails along every course would make a page no browser opens
// in reasonable time: each ply lists this many findings and says how many
// it leaves to "zelkin verify --json". All are marked on the plots.
constexpr int kFindingsListedPerPly = 500;

// Which findings a ply lists when they are too many: the first of each
// course in turn, then the second of each, and so on, so that every course
// that fails shows up; in their order.
Findings Listed(const Findings& findings)
{
    if (findings.size() <= kFindingsListedPerPly)
        return findings;
    QMap<int, QList<int>> byCourse;
    for (int i = 0; i < findings.size(); ++i)
        byCourse[findings.at(i)->place.course].append(i);
    QList<int> chosen;
    for (int round = 0; chosen.size() < kFindingsListedPerPly; ++round) {
        for (const QList<int>& course : std::as_const(byCourse)) {
            if (round < course.size() && chosen.size() < kFindingsListedPerPly)
                chosen.append(course.at(round));
        }
    }
    std::sort(chosen.begin(), chosen.end());
    Findings listed;
    for (const int i : chosen)
        listed.append(findings.at(i));
    return listed;
}

QString FindingsTable(const Findings& findings)
{
    if (findings.isEmpty())
        return QStringLiteral("<p class=\"note\">No findings.</p>\n");
    QString table = QStringLiteral("<details%1><summary>%2</summary>\n<table class=\"findings\">\n")
                        .arg(findings.size() <= kFindingsShownOpen ? QStringLiteral(" open") : QString(),
                             ZELKinVerifySummary::CountFindings(findings.size()));
    table += Row({QStringLiteral("ply"), QStringLiteral("course"), QStringLiteral("point"), QStringLiteral("file:line"),
                  QStringLiteral("check"), QStringLiteral("message")},
                 QStringLiteral("th"));
    for (const ZELKinVerifyFinding* finding : Listed(findings))
        table += QStringLiteral("<tr%7 data-course=\"%2\"><td>%1</td><td>%2</td><td>%3</td><td class=\"where\">%4</td>"
                                "<td>%5</td><td>%6</td></tr>\n")
                     .arg(Html(finding->plyNumber), QString::number(finding->place.course),
                          ZELKinReportPlyData::DescribePoint(finding->place),
                          Html(ZELKinReportPlyData::DescribeWhere(finding->place)),
                          Html(ZELKinReportPlyData::DescribeCheck(*finding)), Html(finding->message),
                          finding->warning ? QStringLiteral(" class=\"warning\"") : QString());
    table += QStringLiteral("</table>\n");
    if (findings.size() > kFindingsListedPerPly)
        table += QStringLiteral("<p class=\"note\">%1 of the %2 are listed, the first of each course in turn; the "
                                "plots mark them all. 'zelkin verify --json' lists all %2.</p>\n")
                     .arg(kFindingsListedPerPly)
                     .arg(findings.size());
    return table + QStringLiteral("</details>\n");
}

QString Bytes(const ZELKinReportSources::File& file)
{
    return file.size < 0 ? QStringLiteral("-") : QString::number(file.size);
}

QString InputRow(const QString& input, const ZELKinReportSources::File& file)
{
    const QString sha256 = file.sha256.isEmpty() ? QStringLiteral("- (not a file that can be read again)")
                                                 : file.sha256;
    return QStringLiteral("<tr><td>%1</td><td>%2</td><td class=\"bytes\">%3</td><td class=\"hash\">%4</td></tr>\n")
        .arg(Html(input), Html(QFileInfo(file.path).fileName()), Bytes(file), Html(sha256));
}

// "2023-11-14 22:13:20 UTC", with the machine-readable form, which
// carries its offset from UTC, beside it.
QString Made(const QDateTime& made)
{
    return QStringLiteral("<time datetime=\"%1\">%2</time>")
        .arg(made.toOffsetFromUtc(made.offsetFromUtc()).toString(Qt::ISODate),
             Html(made.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss t"))));
}

} // namespace

ZELKinHtmlReport::ZELKinHtmlReport(const ZELKinAFPMachine& machine, const ZELKinVerification& verification,
                                   const QStringList& plyData, const ZELKinReportSources& sources,
                                   const QDateTime& made)
    : m_machine(machine)
    , m_verification(verification)
    , m_plyData(plyData)
    , m_sources(sources)
    , m_made(made)
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
                .arg(Html(QFileInfo(m_sources.GetToolpath().path).fileName()), Html(GetResult()));
    html += QStringLiteral("<script>\n") + PagePart(QStringLiteral("error-trap.js")) + QStringLiteral("</script>\n");
    html += QStringLiteral("<style>\n") + PagePart(QStringLiteral("report.css"))
        + QStringLiteral("</style>\n</head>\n<body>\n");
    const FindingsByPly findings = FindingsOfEachPly(m_verification);
    html += GetHeader(findings);
    for (const ZELKinVerifiedPly& ply : m_verification.plies)
        html += GetPlySection(ply, findings.value(ply.plyNumber));
    html += QStringLiteral("<script type=\"application/json\" id=\"zelkin-report-data\">") + GetData()
        + QStringLiteral("</script>\n");
    html += QStringLiteral("<script>\n") + PagePart(QStringLiteral("plotting.js")) + QStringLiteral("</script>\n");
    return html + QStringLiteral("</body>\n</html>\n");
}

QString ZELKinHtmlReport::GetResult() const
{
    return ZELKinVerifySummary::GetResult(m_verification);
}

int ZELKinHtmlReport::GetNumPlots() const
{
    const int perPly = int(ZELKinReportPlyData::AxesOf(m_machine).size()) + 2;
    return int(m_verification.plies.size()) * perPly;
}

QString ZELKinHtmlReport::GetHeader(const FindingsByPly& findings) const
{
    QString header = QStringLiteral("<header>\n<h1>Verification of %1</h1>\n")
                         .arg(Html(QFileInfo(m_sources.GetToolpath().path).fileName()));
    header += QStringLiteral("<p class=\"result %1\">%2</p>\n").arg(ResultClass(m_verification), Html(GetResult()));
    header += QStringLiteral("<table class=\"facts\">\n");
    header += Fact(QStringLiteral("program"),
                   m_sources.GetProgramName().isEmpty() ? QStringLiteral("-") : m_sources.GetProgramName());
    header += QStringLiteral("<tr><th>made</th><td>%1</td></tr>\n").arg(Made(m_made));
    header += Fact(QStringLiteral("by"), QStringLiteral("zelkin " ZELKIN_VERSION));
    header += Fact(QStringLiteral("toolpath"), m_sources.GetToolpath().path);
    header += Fact(QStringLiteral("machine"), m_sources.GetMachine().path);
    header += Fact(QStringLiteral("NC"), m_sources.GetNCPath());
    header += Fact(QStringLiteral("gates"), ZELKinVerifySummary::DescribeGates(m_verification.gates));
    header += QStringLiteral("</table>\n");
    header += GetInputs() + GetPlyList(findings);
    const Findings outside = findings.value(QString());
    if (!outside.isEmpty())
        header += QStringLiteral("<h3 id=\"outside\">Findings outside the ply files</h3>\n") + FindingsTable(outside);
    header += QStringLiteral(
        "<p class=\"note\">Plots show every motion line of a ply against the roller centre's path length: rotary "
        "axes in deg, linear axes in mm, X, Y and Z as slide positions. Link lines (approach, between courses, "
        "retract) are gated by their roller centre only; the probing file is not checked. Run times are estimates "
        "from the feeds and the axes' speed and acceleration limits, without the controller's waits.</p>\n");
    return header + QStringLiteral("</header>\n");
}

// Each file with its size and SHA-256, so that the page can be tied to
// the files it checked.
QString ZELKinHtmlReport::GetInputs() const
{
    QString table = QStringLiteral("<table class=\"inputs\">\n")
        + Row({QStringLiteral("input"), QStringLiteral("file"), QStringLiteral("bytes"), QStringLiteral("SHA-256")},
              QStringLiteral("th"));
    table += InputRow(QStringLiteral("machine description"), m_sources.GetMachine());
    table += InputRow(QStringLiteral("toolpath"), m_sources.GetToolpath());
    for (const ZELKinReportSources::File& file : m_sources.GetNCFiles())
        table += InputRow(QStringLiteral("NC"), file);
    return table + QStringLiteral("</table>\n");
}

// The plies at a glance: which fail, how often, and how long each runs.
QString ZELKinHtmlReport::GetPlyList(const FindingsByPly& findings) const
{
    QString list = QStringLiteral("<nav>\n<table class=\"plies\">\n")
        + Row({QStringLiteral("ply"), QStringLiteral("procedure"), QStringLiteral("result"),
               QStringLiteral("estimated run time")},
              QStringLiteral("th"));
    for (const ZELKinVerifiedPly& ply : m_verification.plies) {
        const Verdict verdict(findings.value(ply.plyNumber));
        list += QStringLiteral("<tr class=\"%1\"><td><a href=\"#ply-%2\">Ply %2</a></td><td>%3</td>"
                               "<td class=\"verdict\">%4</td><td class=\"time\">%5</td></tr>\n")
                    .arg(verdict.GetClass(), Html(ply.plyNumber), Html(ply.procedure), Html(verdict.GetText()),
                         Html(ZELKinReportPlyData::DescribeRunTime(ply.runTime)));
    }
    // A procedure without a ply file, or a file the program does not
    // account for, fails the program too.
    if (findings.contains(QString())) {
        const Verdict verdict(findings.value(QString()));
        list += QStringLiteral("<tr class=\"%1\"><td><a href=\"#outside\">other</a></td><td>outside the ply "
                               "files</td><td class=\"verdict\">%2</td><td></td></tr>\n")
                    .arg(verdict.GetClass(), Html(verdict.GetText()));
    }
    list += QStringLiteral("<tr class=\"total\"><td>all plies</td><td></td><td></td><td class=\"time\">%1</td></tr>\n")
                .arg(Html(ZELKinReportPlyData::DescribeRunTime(m_verification.runTime)));
    return list + QStringLiteral("</table>\n</nav>\n");
}

QString ZELKinHtmlReport::GetPlySection(const ZELKinVerifiedPly& ply, const Findings& findings) const
{
    const QString number = Html(ply.plyNumber);
    const Verdict verdict(findings);
    QString section = QStringLiteral("<section class=\"ply\" id=\"ply-%1\">\n<h2>Ply %1: %2</h2>\n")
                          .arg(number, Html(ply.procedure));
    section += QStringLiteral("<p class=\"verdict %1\">%2; estimated run time %3</p>\n")
                   .arg(verdict.GetClass(), Html(verdict.GetText()),
                        Html(ZELKinReportPlyData::DescribeRunTime(ply.runTime)));
    section += QStringLiteral("<p class=\"note\">%1</p>\n").arg(Html(ply.file));
    section += SummaryTable(ply);
    section += Legend();
    section += QStringLiteral("<div class=\"choice\" id=\"choice-%1\"></div>\n").arg(number);
    section += QStringLiteral("<div class=\"plots\" id=\"plots-%1\"></div>\n").arg(number);
    section += QStringLiteral("<h3>Findings</h3>\n") + FindingsTable(findings);
    return section + QStringLiteral("</section>\n");
}

QString ZELKinHtmlReport::GetData() const
{
    return QStringLiteral("{\"plotsExpected\":%1,\"plies\":[%2]}")
        .arg(QString::number(GetNumPlots()), m_plyData.join(QLatin1Char(',')));
}
