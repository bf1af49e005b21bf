#ifndef ZELKINVERIFYSUMMARY_H
#define ZELKINVERIFYSUMMARY_H

#include <QString>
#include <QStringList>

struct ZELKinVerification;
struct ZELKinVerifyGates;
struct ZELKinVerifyTally;

/*!
    The columns in which "verify" and "report" show a tally of the checks:
    counts, then the worst value of each check in the units its heading
    names. A value that nothing measured shows "-".
*/
namespace ZELKinVerifySummary {

QStringList GetHeadings();
//! One cell a heading.
QStringList GetCells(const ZELKinVerifyTally& tally);
//! "roller centre 0.0100 mm, normal and travel 0.0600 deg, flip 30.000
//! deg, singularity 2.000 deg, tow events 0.010 mm"
QString DescribeGates(const ZELKinVerifyGates& gates);
//! "1 finding", "<n> findings".
QString CountFindings(qsizetype count);
//! "PASS", or "FAIL (1 finding)", "FAIL (<n> findings)".
QString GetResult(const ZELKinVerification& verification);
//! `value` times `scale` with `decimals` decimals, or "-" for NaN.
QString Cell(double value, double scale, int decimals);

} // namespace ZELKinVerifySummary

#endif // ZELKINVERIFYSUMMARY_H
