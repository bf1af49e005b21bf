#ifndef ZELKINAFPGCODECOURSE_P_H
#define ZELKINAFPGCODECOURSE_P_H

#include "zelkinafpgcodeaxiswords_p.h"
#include "zelkinafpgcodetowevents_p.h"

#include <QString>

#include <optional>

class ZELKinNCStream;
class ZELKinAFPMachine;
class ZELKinPosition;
class ZELKinRollLayupProcedure;
class ZELKinTowCourse;

/*!
    The block of one course in a ply file: the course record, the tow
    events for the tow controller, the tows required, the approach that the
    controller runs either from the park position or from the previous
    course, the course start codes, one motion line per position along the
    course, and the off-part and retract moves.

    Before the block is written, the course's material axis is prepared
    (ZELKinAFPGCodeMaterialAxis), and each position line keeps its feed as
    the position's "actualFeedrate".

    The course's first position stands for the approach point written just
    before the course mode: it is not written again, and the positions along
    the course are modal against it. A position that repeats the last one
    written (every axis within 0.001) gives no line; the tow codes of the
    commands after it move on to the next line written.
*/
class ZELKinAFPGCodeCourse
{
public:
    ZELKinAFPGCodeCourse(const ZELKinAFPMachine* machine, const ZELKinRollLayupProcedure* procedure,
                         const ZELKinAFPGCodeTowEvents::PinchSplitting& splitting);

    //! Writes the block of `course`, which stands at `listIndex` in its
    //! procedure's course list.
    void Write(ZELKinNCStream& out, ZELKinTowCourse* course, int listIndex) const;

private:
    //! The position last written, and the N index of the last line along
    //! the course, which numbers the retract lines.
    struct Written
    {
        const ZELKinPosition* position;
        int lastCourseLineN;
    };

    //! `offset` is the "uAxisOffset" of every position of the course, when
    //! one holds for them all.
    void WriteRecordAndEvents(ZELKinNCStream& out, const ZELKinTowCourse* course, int listIndex,
                              std::optional<double> offset) const;
    static void WriteTowsRequired(ZELKinNCStream& out, const ZELKinTowCourse* course);
    //! The roller checks, which the first course of a procedure always
    //! runs and the later ones only when coming from park.
    static void WriteStartChecks(ZELKinNCStream& out, const ZELKinTowCourse* course, int listIndex);
    void WriteApproach(ZELKinNCStream& out, const ZELKinTowCourse* course) const;
    void WriteCourseStart(ZELKinNCStream& out, const ZELKinTowCourse* course) const;
    Written WriteCourseLines(ZELKinNCStream& out, const ZELKinTowCourse* course) const;
    Written WriteOffPartLine(ZELKinNCStream& out, const ZELKinTowCourse* course, Written written) const;
    void WriteRetract(ZELKinNCStream& out, const ZELKinTowCourse* course, Written written) const;

    const ZELKinAFPMachine* const machine;
    const ZELKinRollLayupProcedure* const procedure;
    const ZELKinAFPGCodeTowEvents::PinchSplitting splitting;
    const ZELKinAFPGCodeAxisWords words;
    //! Ply 0's material and name; empty when the procedure has no plies.
    QString material;
    QString plyName;
};

#endif // ZELKINAFPGCODECOURSE_P_H
