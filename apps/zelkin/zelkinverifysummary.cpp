#include "zelkinverifysummary.h"

#include "zelkinverifier.h"

#include <cmath>

namespace {

constexpr double kDegreesPerRadian = 57.29577951308232;

} // namespace

QStringList ZELKinVerifySummary::GetHeadings()
{
    return {QStringLiteral("lines"),      QStringLiteral("matched"),    QStringLiteral("links"),
            QStringLiteral("centre mm"),  QStringLiteral("normal deg"), QStringLiteral("travel deg"),
            QStringLiteral("step deg"),   QStringLiteral("speed %"),    QStringLiteral("margin deg"),
            QStringLiteral("tows mm"),    QStringLiteral("links mm"),   QStringLiteral("findings")};
}

QStringList ZELKinVerifySummary::GetCells(const ZELKinVerifyTally& tally)
{
    return {QString::number(tally.motionLines),
            QString::number(tally.matchedLines),
            QString::number(tally.linkLines),
            Cell(tally.centre.value, 1.0, 4),
            Cell(tally.normal.value, kDegreesPerRadian, 4),
            Cell(tally.travel.value, kDegreesPerRadian, 4),
            Cell(tally.rotaryStep.value, kDegreesPerRadian, 3),
            Cell(tally.speedRatio.value, 100.0, 1),
            Cell(tally.singularityMargin.value, kDegreesPerRadian, 3),
            Cell(tally.towEvent.value, 1.0, 3),
            Cell(tally.linkCentre.value, 1.0, 3),
            QString::number(tally.findings)};
}

QString ZELKinVerifySummary::Cell(double value, double scale, int decimals)
{
    return std::isnan(value) ? QStringLiteral("-") : QString::number(value * scale, 'f', decimals);
}

QString ZELKinVerifySummary::DescribeGates(const ZELKinVerifyGates& gates)
{
    return QStringLiteral("roller centre %1 mm, normal and travel %2 deg, flip %3 deg, singularity %4 deg, "
                          "tow events %5 mm")
        .arg(Cell(gates.centre, 1.0, 4), Cell(gates.angle, kDegreesPerRadian, 4),
             Cell(gates.flip, kDegreesPerRadian, 3), Cell(gates.singularity, kDegreesPerRadian, 3),
             Cell(gates.towEvent, 1.0, 3));
}

QString ZELKinVerifySummary::GetResult(const ZELKinVerification& verification)
{
    return verification.IsPassed() ? QStringLiteral("PASS")
                                   : QStringLiteral("FAIL (%1)").arg(CountFindings(verification.findings.size()));
}

QString ZELKinVerifySummary::CountFindings(qsizetype count)
{
    return count == 1 ? QStringLiteral("1 finding") : QStringLiteral("%1 findings").arg(count);
}
