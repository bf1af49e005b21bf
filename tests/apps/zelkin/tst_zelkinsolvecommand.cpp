#include "zelkintesttoolpath.h"
#include "zelkintoolrun.h"

#include <zeltestsupport.h>

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <string>

namespace {

const QString kHeader = QStringLiteral("procedure,script,index,X,Y,Z,C,A,C1,U");

struct SolvedToolpath
{
    explicit SolvedToolpath(const QString& document = ZELKinTestToolpath::Document())
    {
        toolpath = WriteFile(directory, QStringLiteral("flat.json"), document);
        csv = QDir(directory.path()).filePath(QStringLiteral("axes.csv"));
    }

    ZELKinToolRun Solve(const QStringList& extra = QStringList()) const
    {
        return RunZelkin(QStringList{QStringLiteral("solve"), QStringLiteral("--machine"), GetExampleMachinePath(),
                                     QStringLiteral("--toolpath"), toolpath} +
                         extra);
    }

    QStringList ReadCsv() const
    {
        QFile file(csv);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << csv.toStdString();
        QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        EXPECT_EQ(lines.last(), QString()) << "the last row ends its line";
        lines.removeLast();
        return lines;
    }

    QTemporaryDir directory;
    QString toolpath;
    QString csv;
};

// The first six columns of a row, and the wrist and material columns apart.
struct Row
{
    QString position;
    QStringList wrist;
    QString material;
};

Row Split(const QString& line)
{
    const QStringList fields = line.split(QLatin1Char(','));
    EXPECT_EQ(fields.size(), 10) << line.toStdString();
    if (fields.size() != 10)
        return Row();
    return Row{fields.mid(0, 6).join(QLatin1Char(',')), fields.mid(6, 3), fields.at(9)};
}

} // namespace

TEST(ZELKinSolveCommand, ShowsTheLibrarysProgressLinesOnStandardErrorAndNothingOnStandardOutput)
{
    const SolvedToolpath solved;
    const ZELKinToolRun run = solved.Solve({QStringLiteral("--csv"), solved.csv});

    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(run.standardOutput, QString());
    const QStringList library = run.GetErrorLines().filter(
        QRegularExpression(QStringLiteral("^(Translating the program|Solving kinematics|  Processing .*)$")));
    EXPECT_EQ(library, QStringList({QStringLiteral("Translating the program"), QStringLiteral("Solving kinematics"),
                                    QStringLiteral("  Processing ply one")}))
        << run.standardError.toStdString();
    // Anything else is where a stretch of work stands or what it did, which
    // a slow machine may show even for this small part.
    const QRegularExpression progress(QStringLiteral(
        "^(Reading the toolpath|Translating the program|Solving kinematics|Checking the solved program)( \\(.*\\))?: "));
    for (const QString& line : run.GetErrorLines())
        EXPECT_TRUE(library.contains(line) || progress.match(line).hasMatch()) << line.toStdString();
}

TEST(ZELKinSolveCommand, QuietShowsNothingOnStandardError)
{
    const SolvedToolpath solved;
    const ZELKinToolRun run = solved.Solve({QStringLiteral("--csv"), solved.csv, QStringLiteral("--quiet")});

    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_EQ(run.standardError, QString());
    EXPECT_EQ(run.standardOutput, QString());
}

TEST(ZELKinSolveCommand, WritesOneRowPerPositionInTheOrderTheMachineRunsThem)
{
    const SolvedToolpath solved;
    ASSERT_EQ(solved.Solve({QStringLiteral("--csv"), solved.csv}).exitCode, 0);

    // Every layup position carries the roller centre, 30 mm above its point:
    // the link positions, which are not solved, too. Index 4 of the course
    // is the tow add command and index 14 the cut.
    const QStringList expected{
        kHeader,
        QStringLiteral("ply one,link 1,0,2800.000000,3500.000000,-1170.000000"),
        QStringLiteral("ply one,course 1,0,2900.000000,3500.000000,-1370.000000"),
        QStringLiteral("ply one,course 1,1,2950.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,2,3000.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,3,3010.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,5,3020.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,6,3030.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,7,3040.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,8,3050.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,9,3060.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,10,3070.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,11,3080.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,12,3090.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,13,3100.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,15,3110.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,16,3120.000000,3500.000000,-1470.000000"),
        QStringLiteral("ply one,course 1,17,3170.000000,3500.000000,-1370.000000"),
        QStringLiteral("ply one,link 2,0,3300.000000,3500.000000,-1170.000000"),
        QStringLiteral("probe,probing,0,2500.000000,3500.000000,-1300.000000"),
        QStringLiteral("probe,probing,1,2500.000000,3500.000000,-1490.000000"),
        QStringLiteral("probe,probing,3,2500.000000,3500.000000,-1300.000000"),
    };
    const QStringList lines = solved.ReadCsv();
    ASSERT_EQ(lines.size(), expected.size());
    EXPECT_EQ(lines.first(), kHeader);
    for (int i = 1; i < lines.size(); ++i)
        EXPECT_EQ(Split(lines.at(i)).position, expected.at(i)) << "row " << i;
}

TEST(ZELKinSolveCommand, LayupRowsShareOneWristAndProbingRowsHaveNone)
{
    const SolvedToolpath solved;
    ASSERT_EQ(solved.Solve({QStringLiteral("--csv"), solved.csv}).exitCode, 0);
    const QStringList lines = solved.ReadCsv();
    ASSERT_EQ(lines.size(), 22);

    // Every frame of the ply is the same up to its origin, so the cheapest
    // series keeps one wrist, in degrees with six decimals, along all of it.
    const QStringList wrist = Split(lines.at(1)).wrist;
    for (const QString& value : wrist)
        EXPECT_TRUE(QRegularExpression(QStringLiteral("^-?\\d+\\.\\d{6}$")).match(value).hasMatch())
            << value.toStdString();
    for (int i = 1; i <= 18; ++i) {
        EXPECT_EQ(Split(lines.at(i)).wrist, wrist) << "row " << i;
        EXPECT_EQ(Split(lines.at(i)).material, QString()) << "the solver leaves the material axis alone";
    }
    for (int i = 19; i <= 21; ++i)
        EXPECT_EQ(Split(lines.at(i)).wrist, QStringList({QString(), QString(), QString()})) << "row " << i;
}

TEST(ZELKinSolveCommand, WithoutCsvFileStandardOutputIsTheCsvAlone)
{
    const SolvedToolpath solved;
    const ZELKinToolRun run = solved.Solve();

    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    QStringList lines = run.standardOutput.split(QLatin1Char('\n'));
    ASSERT_GE(lines.size(), 3);
    EXPECT_EQ(lines.takeLast(), QString()) << "the last row ends its line";
    EXPECT_EQ(lines.at(0), kHeader);
    EXPECT_TRUE(lines.at(1).startsWith(QStringLiteral("ply one,link 1,0,2800.000000,")));
    // "zelkin solve > axes.csv" is a CSV: every row has the header's fields
    // (no name here holds a comma).
    for (const QString& line : std::as_const(lines))
        EXPECT_EQ(line.count(QLatin1Char(',')), kHeader.count(QLatin1Char(','))) << line.toStdString();
}

TEST(ZELKinSolveCommand, ProcedureNamesWithCommasAreQuoted)
{
    QTemporaryDir directory;
    const QString toolpath =
        WriteFile(directory, QStringLiteral("t.json"), ZELKinTestToolpath::Document(QStringLiteral("ply 'one', left")));
    const QString csv = QDir(directory.path()).filePath(QStringLiteral("axes.csv"));
    const ZELKinToolRun run =
        RunZelkin({QStringLiteral("solve"), QStringLiteral("--machine"), GetExampleMachinePath(),
                   QStringLiteral("--toolpath"), toolpath, QStringLiteral("--csv"), csv});
    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();

    QFile file(csv);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    ASSERT_GE(lines.size(), 2);
    EXPECT_TRUE(lines.at(1).startsWith(QStringLiteral("\"ply 'one', left\",link 1,0,"))) << lines.at(1).toStdString();
}

TEST(ZELKinSolveCommand, AProcedureThatCannotBeSolvedIsStatusThreeAndNoCsv)
{
    // The layup turns over at its course's point 8, which the wrist reaches
    // only by turning the second roll half a turn in one step.
    const SolvedToolpath solved(ZELKinTestToolpath::Document(QStringLiteral("ply one"), true));

    const ZELKinToolRun run = solved.Solve({QStringLiteral("--csv"), solved.csv});

    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.GetDiagnosticLines(),
              QStringList{QStringLiteral("zelkin: error: procedure 'ply one', course 1, point 8: the wrist cannot "
                                         "reach this point from the one before without a flip: the procedure cannot "
                                         "be solved; nothing was written")})
        << run.standardError.toStdString();
    EXPECT_FALSE(QFile::exists(solved.csv));
}

TEST(ZELKinSolveCommand, KeepGoingWritesTheRowsOfTheProceduresWithoutProblems)
{
    const SolvedToolpath solved(ZELKinTestToolpath::Document(QStringLiteral("ply one"), true));

    const ZELKinToolRun run = solved.Solve({QStringLiteral("--csv"), solved.csv, QStringLiteral("--keep-going")});

    EXPECT_EQ(run.exitCode, 3);
    ASSERT_EQ(run.GetDiagnosticLines().size(), 1);
    EXPECT_TRUE(run.GetDiagnosticLines().first().endsWith(QStringLiteral("; written without 'ply one'")))
        << run.standardError.toStdString();
    const QStringList rows = solved.ReadCsv();
    ASSERT_GT(rows.size(), 1);
    EXPECT_EQ(rows.first(), kHeader);
    for (const QString& row : rows.mid(1))
        EXPECT_FALSE(row.startsWith(QStringLiteral("ply one,"))) << row.toStdString();
}

TEST(ZELKinSolveCommand, AMissingToolpathIsOneErrorLineAndNoCsv)
{
    const SolvedToolpath solved;
    const ZELKinToolRun run =
        RunZelkin({QStringLiteral("solve"), QStringLiteral("--machine"), GetExampleMachinePath(),
                   QStringLiteral("--toolpath"), QStringLiteral("/nonexistent/t.json"), QStringLiteral("--csv"),
                   solved.csv});

    EXPECT_EQ(run.exitStatus, QProcess::NormalExit);
    EXPECT_EQ(run.exitCode, 1);
    const QStringList errors = run.GetErrorLines();
    ASSERT_EQ(errors.size(), 1);
    EXPECT_TRUE(errors.first().startsWith(QStringLiteral("zelkin: error: "))) << errors.first().toStdString();
    EXPECT_TRUE(errors.first().contains(QStringLiteral("/nonexistent/t.json"))) << errors.first().toStdString();
    EXPECT_FALSE(QFile::exists(solved.csv));
}

class ZELKinSolveCommandExample : public ::testing::TestWithParam<const char*>
{
};

TEST_P(ZELKinSolveCommandExample, SolvesEveryProcedureOfTheShippedExample)
{
    QTemporaryDir directory;
    const QString csv = QDir(directory.path()).filePath(QStringLiteral("axes.csv"));
    const ZELKinToolRun run = RunZelkin(
        {QStringLiteral("solve"), QStringLiteral("--machine"), GetExampleMachinePath(), QStringLiteral("--toolpath"),
         QStringLiteral(ZELKIN_EXAMPLES_DIR "/toolpaths/") + QString::fromUtf8(GetParam()), QStringLiteral("--csv"),
         csv});

    ASSERT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_FALSE(run.standardOutput.contains(QStringLiteral("failed"))) << run.standardOutput.toStdString();
    EXPECT_FALSE(run.standardOutput.contains(QStringLiteral("Could not successfully find")));
    EXPECT_TRUE(QFile::exists(csv));
}

INSTANTIATE_TEST_SUITE_P(Toolpaths, ZELKinSolveCommandExample,
                         ::testing::Values("minimal.json", "flat-panel.json", "cylinder-section.json", "dome.json"),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             std::string name = info.param;
                             name.erase(name.find('.'));
                             name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                             return name;
                         });

struct UsageCase
{
    const char* name;
    QStringList arguments;
    const char* error;
};
ZELTEST_PRINT_CASE_BY_NAME(UsageCase);

class ZELKinSolveCommandUsage : public ::testing::TestWithParam<UsageCase>
{
};

TEST_P(ZELKinSolveCommandUsage, IsRefusedWithStatusTwo)
{
    const ZELKinToolRun run = RunZelkin(QStringList{QStringLiteral("solve")} + GetParam().arguments);

    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.standardOutput, QString());
    EXPECT_EQ(run.GetErrorLines(),
              QStringList({QStringLiteral("zelkin: error: ") + QString::fromUtf8(GetParam().error),
                           QStringLiteral("zelkin: hint: run 'zelkin help solve' for its usage")}));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ZELKinSolveCommandUsage,
    ::testing::Values(
        UsageCase{"NoMachine", {QStringLiteral("--toolpath"), QStringLiteral("t.json")},
                  "missing the option --machine"},
        UsageCase{"NoToolpath", {QStringLiteral("--machine"), QStringLiteral("m.xml")},
                  "missing the option --toolpath"},
        UsageCase{"Positional",
                  {QStringLiteral("--machine"), QStringLiteral("m.xml"), QStringLiteral("--toolpath"),
                   QStringLiteral("t.json"), QStringLiteral("extra")},
                  "unexpected argument 'extra'"},
        UsageCase{"UnknownOption", {QStringLiteral("--fast")}, "unknown option '--fast'"}),
    [](const ::testing::TestParamInfo<UsageCase>& info) { return std::string(info.param.name); });
