#ifndef ZELKINVERIFYSUMMARY_H
#define ZELKINVERIFYSUMMARY_H

#include "zelkinematics_export.h"

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

ZELKINEMATICS_EXPORT QStringList GetHeadings();
//! One cell a heading.
ZELKINEMATICS_EXPORT QStringList GetCells(const ZELKinVerifyTally& tally);
//! The gates in one line, in the units people read them in.
ZELKINEMATICS_EXPORT QString DescribeGates(const ZELKinVerifyGates& gates);
//! "1 finding", "<n> findings".
ZELKINEMATICS_EXPORT QString CountFindings(qsizetype count);
//! "1 warning", "<n> warnings".
ZELKINEMATICS_EXPORT QString CountWarnings(qsizetype count);
//! "PASS", "PASS (<n> warnings)", "FAIL (<n> findings)" or "FAIL (<n>
//! findings, <m> warnings)": warnings do not fail.
ZELKINEMATICS_EXPORT QString GetResult(const ZELKinVerification& verification);
//! `value` times `scale` with `decimals` decimals, or "-" for NaN.
ZELKINEMATICS_EXPORT QString Cell(double value, double scale, int decimals);

} // namespace ZELKinVerifySummary

#endif // ZELKINVERIFYSUMMARY_H
