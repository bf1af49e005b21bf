#ifndef ZELKINAFPGCODECOURSE_P_H
#define ZELKINAFPGCODECOURSE_P_H

#include "zelkinafpgcodeaxiswords_p.h"
#include "zelkinafpgcodetowevents_p.h"

#include <QString>

#include <optional>
#include <vector>

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

    The motion lines are modal against what the controller holds (see
    ZELKinAFPGCodeAxisWords). The lines before "N1G641 ADIS=OFF_PART" run
    only on one way into the course or the other, so the controller is
    known to hold only what that line writes: every word of the approach
    link's last position. "G92(U,0.0000)" then presets U to 0.

    The course's first position is its approach point. When the approach
    link ends on it (none of its axis words would be written), it gives no
    line, and the tow codes of the commands after it none either.
    Otherwise it gets a line of its own, the first along the course. Any
    later position gives no line when every one of its words would be left
    out; the tow codes of the commands after it move on to the next line
    written.
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
    //! What the controller holds after the lines written so far, and the N
    //! index of the last line along the course, which numbers the retract
    //! lines.
    struct Written
    {
        ZELKinAFPGCodeAxisWords::Held held;
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
    //! Returns what the controller holds after "N1G641 ADIS=OFF_PART".
    ZELKinAFPGCodeAxisWords::Held WriteApproach(ZELKinNCStream& out, const ZELKinTowCourse* course) const;
    void WriteCourseStart(ZELKinNCStream& out, const ZELKinTowCourse* course,
                          ZELKinAFPGCodeAxisWords::Held& held) const;
    //! What the lines along a course take from each of its commands: the
    //! position, its axis values and the tow codes after it, found once
    //! rather than for its own line and again for the line before.
    struct Step;
    using Steps = std::vector<Step>;
    Steps CollectSteps(const ZELKinTowCourse* course) const;
    void WriteCourseLines(ZELKinNCStream& out, const ZELKinTowCourse* course, const Steps& steps,
                          Written& written) const;
    void WriteOffPartLine(ZELKinNCStream& out, const ZELKinTowCourse* course, const Steps& steps,
                          ZELKinAFPGCodeAxisWords::Held& held) const;
    void WriteRetract(ZELKinNCStream& out, const ZELKinTowCourse* course, Written& written) const;
    /*!
        The time (s) of the line that turns what a line to `values` leaves
        out: that of the first position after command `command` of
        `course`, then of its retract, that does not lie within 0.001 of
        `values`, at its feed; NaN when none follows. A course position's
        feed is limited by the tow codes right after it only: codes carried
        over from positions that give no line could only slow it further.
    */
    double FollowingSeconds(const ZELKinTowCourse* course, const Steps& steps, int command,
                            const ZELKinAFPGCodeAxisWords::AxisValues& values) const;
    //! The same after position `index` of the course's retract (-1: before
    //! its first).
    double RetractFollowingSeconds(const ZELKinTowCourse* course, int index,
                                   const ZELKinAFPGCodeAxisWords::AxisValues& values) const;

    const ZELKinAFPMachine* const machine;
    const ZELKinRollLayupProcedure* const procedure;
    const ZELKinAFPGCodeTowEvents::PinchSplitting splitting;
    const ZELKinAFPGCodeAxisWords words;
    //! Ply 0's material and name; empty when the procedure has no plies.
    QString material;
    QString plyName;
};

#endif // ZELKINAFPGCODECOURSE_P_H
