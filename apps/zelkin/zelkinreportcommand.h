#ifndef ZELKINREPORTCOMMAND_H
#define ZELKINREPORTCOMMAND_H

#include "zelkincommand.h"

/*!
    "zelkin report --machine M.xml --toolpath T.json --nc PATH -o REPORT.html
    [--flip-angle DEG] [--singularity-angle DEG]": runs the checks of
    "zelkin verify" and writes what they found as one self-contained HTML
    page (ZELKinHtmlReport): a header with the result, and per ply its
    summary, its axes plotted against path length with their limits, its
    courses seen from above and its findings. Exit status 0 once the page is
    written, whatever the checks found: the page shows it.
*/
class ZELKinReportCommand : public ZELKinCommand
{
public:
    QString GetName() const override;
    QString GetSummary() const override;
    QString GetSynopsis() const override;
    QString GetDescription() const override;
    QList<ZELKinOption> GetOptions() const override;
    int Run(const QStringList& arguments) override;
};

#endif // ZELKINREPORTCOMMAND_H
