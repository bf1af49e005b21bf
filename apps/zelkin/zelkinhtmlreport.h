#ifndef ZELKINHTMLREPORT_H
#define ZELKINHTMLREPORT_H

#include <zelkinverification.h>

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

class ZELKinAFPMachine;
class ZELKinReportSources;

/*!
    A verification as one self-contained HTML page, for a person to read in
    any browser with no network: the style, the script and the data are all
    inside the page, which refers to no other file.

    The header says when the page was made and by which zelkin, names the
    program and every file that was checked with its size and SHA-256, the
    gates and the result, and lists the plies with their results and
    estimated run times. Each ply has a section: its summary values, an
    overview strip of its whole path with its courses and findings, one
    plot per machine axis against the roller centre's path length (rotary
    axes in deg, linear ones in mm, X, Y and Z as slide positions; the
    axis's limits drawn as lines), a plot of the roller centre's path seen
    from above, every finding marked where it happens and listed below the
    plots. The reader chooses the courses the plots show, the whole ply or
    a range of courses.

    The page's script draws the plots from the data inlined as JSON
    (ZELKinReportPlyData tells how a large ply is cut down). When it is done
    the script sets "data-plots-drawn" and "data-plots-expected" on <body>;
    a script error counts itself in "data-script-errors", so that a browser
    run can check the page.
*/
class ZELKinHtmlReport
{
public:
    //! `plyData` holds the data of each of the verification's plies in
    //! their order, as ZELKinReportPlyData made it from their lines while
    //! they were checked; it is kept. Nothing else is owned, and all must
    //! outlive the report. `made` is when the report was made.
    ZELKinHtmlReport(const ZELKinAFPMachine& machine, const ZELKinVerification& verification,
                     const QStringList& plyData, const ZELKinReportSources& sources, const QDateTime& made);

    //! The whole page. Throws ZELSysException only when the page's style or
    //! script is not built in.
    QString ToHtml() const;

    //! The verification's result, as ZELKinVerifySummary::GetResult words it.
    QString GetResult() const;

    //! How many plots the page's script draws: per ply, the overview strip,
    //! the view from above and one per machine axis.
    int GetNumPlots() const;

private:
    //! The findings of each ply, by its number; those of no ply under "".
    using FindingsByPly = QHash<QString, QList<const ZELKinVerifyFinding*>>;

    QString GetHeader(const FindingsByPly& findings) const;
    QString GetInputs() const;
    QString GetPlyList(const FindingsByPly& findings) const;
    QString GetPlySection(const ZELKinVerifiedPly& ply, const QList<const ZELKinVerifyFinding*>& findings) const;
    QString GetData() const;

    const ZELKinAFPMachine& m_machine;
    const ZELKinVerification& m_verification;
    const QStringList m_plyData;
    const ZELKinReportSources& m_sources;
    QDateTime m_made;
};

#endif // ZELKINHTMLREPORT_H
