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
//! The gates in one line, in the units people read them in.
QString DescribeGates(const ZELKinVerifyGates& gates);
//! "1 finding", "<n> findings".
QString CountFindings(qsizetype count);
//! "1 warning", "<n> warnings".
QString CountWarnings(qsizetype count);
//! "PASS", "PASS (<n> warnings)", "FAIL (<n> findings)" or "FAIL (<n>
//! findings, <m> warnings)": warnings do not fail.
QString GetResult(const ZELKinVerification& verification);
//! `value` times `scale` with `decimals` decimals, or "-" for NaN.
QString Cell(double value, double scale, int decimals);

} // namespace ZELKinVerifySummary

#endif // ZELKINVERIFYSUMMARY_H
