#ifndef ZELKINHTMLREPORT_H
#define ZELKINHTMLREPORT_H

#include <zelkinverification.h>

#include <QString>

class ZELKinAFPMachine;

/*!
    A verification as one self-contained HTML page, for a person to read in
    any browser with no network: the style, the script and the data are all
    inside the page, which refers to no other file.

    The header names the files that were checked, the gates and the result.
    Each ply has a section: its summary values, one plot per machine axis
    against the roller centre's path length (rotary axes in deg, linear ones
    in mm, X, Y and Z as slide positions; the axis's limits drawn as lines),
    a plot of the roller centre's path seen from above, every finding marked
    where it happens and listed below the plots. Course lines and link lines
    are drawn apart.

    The page's script draws the plots from the data inlined as JSON. Each
    series is cut down to at most GetMaxBuckets() stretches of equal path
    length, of which the lines holding the smallest and the largest value
    are kept, so that a large program keeps the page small while its peaks
    (and any limit they pass) stay on the plot. Findings are never left out.

    When it is done the script sets "data-plots-drawn" and
    "data-plots-expected" on <body>; a script error counts itself in
    "data-script-errors", so that a browser run can check the page.
*/
class ZELKinHtmlReport
{
public:
    //! The files the verification read, as the header names them.
    struct Sources
    {
        QString machinePath;
        QString toolpathPath;
        QString ncPath;
    };

    //! Neither the machine nor the verification is owned; both must outlive
    //! the report.
    ZELKinHtmlReport(const ZELKinAFPMachine& machine, const ZELKinVerification& verification,
                     const Sources& sources);

    //! The whole page. Throws nothing.
    QString ToHtml() const;

    //! The verification's result, as ZELKinVerifySummary::GetResult words it.
    QString GetResult() const;

    //! How many plots the page's script draws: per ply, one per machine
    //! axis and the view from above.
    int GetNumPlots() const;

    //! The most path-length stretches a plotted series is cut into.
    static constexpr int GetMaxBuckets() { return 2000; }

private:
    QString GetHeader() const;
    QString GetPlySection(const ZELKinVerifiedPly& ply) const;
    QString GetData() const;

    const ZELKinAFPMachine& m_machine;
    const ZELKinVerification& m_verification;
    Sources m_sources;
};

#endif // ZELKINHTMLREPORT_H
