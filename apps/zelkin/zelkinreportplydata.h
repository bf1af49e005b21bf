#ifndef ZELKINREPORTPLYDATA_H
#define ZELKINREPORTPLYDATA_H

#include <zelkinverification.h>

#include <QList>
#include <QString>

class ZELKinAFPMachine;

/*!
    One verified ply as the report page's script draws it, one JSON object:
    its motion lines as columns, the series of each machine axis and of the
    view from above, its courses, and its findings as marks where they
    happen.

    A series is cut down course by course, so that one course chosen on
    the page still shows its shape: the lines along each course, and those
    of each of its links, are cut into stretches of equal path length, at
    least GetMinBucketsPerCourse() of them and together at least
    GetMinBucketsPerPly() a ply, and of each stretch the lines holding the
    smallest and the largest value are kept, with the first line without a
    value (so that a gap stays a gap) and the first and last line of each
    course and link. A course or link of few lines keeps them all; a line
    between two that hold its value, as the page writes it, is left out.
    Peaks, and any limit they pass, are never smoothed away.

    Every finding is marked at the motion line it belongs to: its own line,
    or for a line that moves nothing (a tow event, a course record) the
    nearest motion line before it in the ply. Findings on one line make one
    mark with their count; a ply with more lines holding findings than
    GetMaxMarks() has the marks in one stretch of its path (of as many
    stretches) made into one.
*/
class ZELKinReportPlyData
{
public:
    //! A machine variable as its plot shows it.
    struct Axis
    {
        //! In the verified line's axes.
        int index = 0;
        QString label;
        QString kind;
        QString unit;
        //! From model units (mm, rad) to the plot's (mm, deg).
        double scale = 1.0;
        int decimals = 0;
        //! In the plot's units; NaN for none.
        double minimum = 0.0;
        double maximum = 0.0;
    };

    //! The machine's variables in its order: rotary axes in degrees, linear
    //! ones in mm.
    static QList<Axis> AxesOf(const ZELKinAFPMachine& machine);

    static constexpr int GetMinBucketsPerPly() { return 2000; }
    static constexpr int GetMinBucketsPerCourse() { return 16; }
    static constexpr int GetMaxMarks() { return 2000; }

    //! How the page words an estimated run time: as "verify" does
    //! ("0:02:11.9", ">= 0:02:11.9" when lines are left out that cannot be
    //! timed), or "-" when no line could be timed.
    static QString DescribeRunTime(const ZELKinRunTime& runTime);
    //! The course's toolpath point, from 1, or "-" for none.
    static QString DescribePoint(const ZELKinVerifyPlace& place);
    //! "<file>:<line>".
    static QString DescribeWhere(const ZELKinVerifyPlace& place);
    //! The check, with " (warning)" after it for a warning, which does not fail.
    static QString DescribeCheck(const ZELKinVerifyFinding& finding);

    //! The object of `ply`, checked on `machine`, marked with those of
    //! `findings` that name it (every one of its own must be among them).
    static QString ToJson(const ZELKinAFPMachine& machine, const ZELKinVerifiedPly& ply,
                          const QList<ZELKinVerifyFinding>& findings);

    //! `findings` are the ply's own, every one of them; nothing is owned,
    //! and all must outlive the data.
    ZELKinReportPlyData(const ZELKinVerifiedPly& ply, const QList<Axis>& axes,
                        const QList<const ZELKinVerifyFinding*>& findings);

    //! The object, with '<' written so that no text can end the <script>
    //! element it stands in.
    QString ToJson() const;

private:
    QString GetMarks() const;
    QString GetCourses() const;

    const ZELKinVerifiedPly& m_ply;
    const QList<Axis>& m_axes;
    const QList<const ZELKinVerifyFinding*>& m_findings;
};

#endif // ZELKINREPORTPLYDATA_H
