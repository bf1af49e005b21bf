#ifndef ZELKINAFPGCODEPLY_P_H
#define ZELKINAFPGCODEPLY_P_H

#include "zelkinafpgcodetowevents_p.h"

class ZELKinNCStream;
class ZELKinRollLayupProcedure;
class ZELSysProgress;

/*!
    The ply file (".PPF", or a ply section of a bundle) of one roll layup
    procedure: its head (sequence and ply records), the start-up codes, the
    retract model and the ply records for the controller, one course block
    per course (ZELKinAFPGCodeCourse), and the end of the ply.

    The procedure must be numbered (ZELKinAFPGCodePlies::Number) and its
    program's machine be a ZELKinAFPMachine. Writing prepares each course's
    material axis and keeps the feeds written as the positions'
    "actualFeedrate".
*/
class ZELKinAFPGCodePly
{
public:
    //! Counts the positions of each course written in `progress` (not
    //! owned) unless it is null.
    ZELKinAFPGCodePly(const ZELKinRollLayupProcedure* procedure,
                      const ZELKinAFPGCodeTowEvents::PinchSplitting& splitting, ZELSysProgress* progress);

    //! The positions of the procedure's tow courses: what writing it counts.
    static qint64 CountCoursePositions(const ZELKinRollLayupProcedure* procedure);

    void Write(ZELKinNCStream& out) const;

private:
    void WriteHead(ZELKinNCStream& out) const;
    void WriteStartUp(ZELKinNCStream& out) const;
    void WritePlyRecords(ZELKinNCStream& out) const;
    void WriteCourses(ZELKinNCStream& out) const;
    static void WriteEnd(ZELKinNCStream& out);

    const ZELKinRollLayupProcedure* const procedure;
    const ZELKinAFPGCodeTowEvents::PinchSplitting splitting;
    ZELSysProgress* const progress;
};

#endif // ZELKINAFPGCODEPLY_P_H
