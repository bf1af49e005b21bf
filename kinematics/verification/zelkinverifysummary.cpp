#include "zelkinverifysummary.h"

#include "zelkinverification.h"

#include <QtMath>

#include <cmath>

QStringList ZELKinVerifySummary::GetHeadings()
{
    return {QStringLiteral("lines"),      QStringLiteral("matched"),    QStringLiteral("links"),
            QStringLiteral("points"),     QStringLiteral("centre mm"),  QStringLiteral("contact mm"),
            QStringLiteral("normal deg"), QStringLiteral("travel deg"), QStringLiteral("step deg"),
            QStringLiteral("speed %"),    QStringLiteral("margin deg"), QStringLiteral("tows mm"),
            QStringLiteral("links mm"),   QStringLiteral("path mm"),    QStringLiteral("findings"),
            QStringLiteral("warnings")};
}

QStringList ZELKinVerifySummary::GetCells(const ZELKinVerifyTally& tally)
{
    return {QString::number(tally.motionLines),
            QString::number(tally.matchedLines),
            QString::number(tally.linkLines),
            QString::number(tally.points),
            Cell(tally.centre.value, 1.0, 4),
            Cell(tally.contact.value, 1.0, 4),
            Cell(tally.normal.value, qRadiansToDegrees(1.0), 4),
            Cell(tally.travel.value, qRadiansToDegrees(1.0), 4),
            Cell(tally.rotaryStep.value, qRadiansToDegrees(1.0), 3),
            Cell(tally.speedRatio.value, 100.0, 1),
            Cell(tally.singularityMargin.value, qRadiansToDegrees(1.0), 3),
            Cell(tally.towEvent.value, 1.0, 3),
            Cell(tally.linkCentre.value, 1.0, 4),
            Cell(tally.pathGap.value, 1.0, 4),
            QString::number(tally.findings),
            QString::number(tally.warnings)};
}

QString ZELKinVerifySummary::Cell(double value, double scale, int decimals)
{
    return std::isnan(value) ? QStringLiteral("-") : QString::number(value * scale, 'f', decimals);
}

QString ZELKinVerifySummary::DescribeGates(const ZELKinVerifyGates& gates)
{
    return QStringLiteral("roller centre, link and path %1 mm; normal and travel %2 deg a written rotary word, "
                          "%3 rad a word left out, by the sine of its axis to the direction; contact %1 mm and the "
                          "roller radius times that; flip %4 deg; singularity warning %5 deg; tow events %6 mm")
        .arg(Cell(gates.centre, 1.0, 4), Cell(gates.rotaryRounding, qRadiansToDegrees(1.0), 5),
             Cell(gates.rotaryLag, 1.0, 3), Cell(gates.flip, qRadiansToDegrees(1.0), 3),
             Cell(gates.singularity, qRadiansToDegrees(1.0), 3), Cell(gates.towEvent, 1.0, 3));
}

QString ZELKinVerifySummary::GetResult(const ZELKinVerification& verification)
{
    const qsizetype warnings = verification.GetNumWarnings();
    if (verification.IsPassed())
        return warnings == 0 ? QStringLiteral("PASS") : QStringLiteral("PASS (%1)").arg(CountWarnings(warnings));
    const QString failures = CountFindings(verification.GetNumFailures());
    return warnings == 0 ? QStringLiteral("FAIL (%1)").arg(failures)
                         : QStringLiteral("FAIL (%1, %2)").arg(failures, CountWarnings(warnings));
}

QString ZELKinVerifySummary::CountFindings(qsizetype count)
{
    return count == 1 ? QStringLiteral("1 finding") : QStringLiteral("%1 findings").arg(count);
}

QString ZELKinVerifySummary::CountWarnings(qsizetype count)
{
    return count == 1 ? QStringLiteral("1 warning") : QStringLiteral("%1 warnings").arg(count);
}
