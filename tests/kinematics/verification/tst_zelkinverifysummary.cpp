// The columns and the result line that verify and report show.

#include <zelkinverification.h>
#include <zelkinverifysummary.h>

#include <zeltestsupport.h>

#include <limits>

namespace {

ZELKinVerifyFinding Finding(bool warning)
{
    ZELKinVerifyFinding finding;
    finding.check = warning ? QStringLiteral("singularity") : QStringLiteral("centre");
    finding.warning = warning;
    return finding;
}

struct ResultCase
{
    const char* name;
    int failures;
    int warnings;
    const char* result;
};

class ZELKinVerifySummaryResult : public ::testing::TestWithParam<ResultCase>
{
};

TEST_P(ZELKinVerifySummaryResult, CountsFindingsAndWarningsAndOnlyFindingsFail)
{
    const ResultCase& c = GetParam();
    ZELKinVerification verification;
    for (int i = 0; i < c.warnings; ++i)
        verification.findings.append(Finding(true));
    for (int i = 0; i < c.failures; ++i)
        verification.findings.append(Finding(false));
    EXPECT_EQ(verification.IsPassed(), c.failures == 0);
    EXPECT_EQ(verification.GetNumFailures(), c.failures);
    EXPECT_EQ(verification.GetNumWarnings(), c.warnings);
    EXPECT_EQ(ZELKinVerifySummary::GetResult(verification), QString::fromUtf8(c.result));
}

INSTANTIATE_TEST_SUITE_P(Results, ZELKinVerifySummaryResult,
                         ::testing::Values(ResultCase{"Nothing", 0, 0, "PASS"},
                                           ResultCase{"OneWarning", 0, 1, "PASS (1 warning)"},
                                           ResultCase{"TwoWarnings", 0, 2, "PASS (2 warnings)"},
                                           ResultCase{"OneFinding", 1, 0, "FAIL (1 finding)"},
                                           ResultCase{"FindingsAndAWarning", 2, 1, "FAIL (2 findings, 1 warning)"},
                                           ResultCase{"FindingAndWarnings", 1, 3, "FAIL (1 finding, 3 warnings)"}),
                         [](const ::testing::TestParamInfo<ResultCase>& info) { return info.param.name; });

TEST(ZELKinVerifySummary, AValueNothingMeasuredShowsADash)
{
    EXPECT_EQ(ZELKinVerifySummary::Cell(std::numeric_limits<double>::quiet_NaN(), 1.0, 4), QStringLiteral("-"));
}

TEST(ZELKinVerifySummary, AValueIsScaledAndRoundedToItsDecimals)
{
    EXPECT_EQ(ZELKinVerifySummary::Cell(0.98765, 100.0, 1), QStringLiteral("98.8"));
    EXPECT_EQ(ZELKinVerifySummary::Cell(0.0123456, 1.0, 4), QStringLiteral("0.0123"));
}

// Counts first, then the worst value of each check in the unit its heading
// names: angles in degrees, the speed ratio in percent.
TEST(ZELKinVerifySummary, EachHeadingHasItsCellInTheUnitItNames)
{
    ZELKinVerifyTally tally;
    tally.motionLines = 12;
    tally.matchedLines = 7;
    tally.linkLines = 5;
    tally.points = 9;
    tally.centre.value = 0.00123;
    tally.normal.value = 0.001;
    tally.speedRatio.value = 0.5;
    tally.findings = 2;
    tally.warnings = 1;
    const QStringList headings = ZELKinVerifySummary::GetHeadings();
    const QStringList cells = ZELKinVerifySummary::GetCells(tally);
    ASSERT_EQ(cells.size(), headings.size());
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("lines"))), QStringLiteral("12"));
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("matched"))), QStringLiteral("7"));
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("links"))), QStringLiteral("5"));
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("points"))), QStringLiteral("9"));
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("centre mm"))), QStringLiteral("0.0012"));
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("normal deg"))), QStringLiteral("0.0573"));
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("speed %"))), QStringLiteral("50.0"));
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("contact mm"))), QStringLiteral("-"));
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("findings"))), QStringLiteral("2"));
    EXPECT_EQ(cells.at(headings.indexOf(QStringLiteral("warnings"))), QStringLiteral("1"));
}

TEST(ZELKinVerifySummary, TheGatesAreDescribedInTheUnitsPeopleReadThemIn)
{
    EXPECT_EQ(ZELKinVerifySummary::DescribeGates(ZELKinVerifyGates()),
              QStringLiteral("roller centre, link and path 0.0100 mm; normal and travel 0.00005 deg a written rotary "
                             "word, 0.001 rad a word left out, by the sine of its axis to the direction; contact "
                             "0.0100 mm and the roller radius times that; flip 30.000 deg; singularity warning 2.000 "
                             "deg; tow events 0.010 mm"));
}

} // namespace
