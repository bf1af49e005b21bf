#ifndef ZELKINAFPGCODEMATERIALAXIS_P_H
#define ZELKINAFPGCODEMATERIALAXIS_P_H

#include <optional>

class ZELKinCourse;
class ZELKinPosition;
class ZELKinVariable;

/*!
    Prepares the material (U) axis of a course before it is written, so
    that U counts mm of material from 0 at the course start: the unit of the
    machine's pinch distance, which the add events add to it.

    When the course's first position has no U value, every roll layup
    position of the course gets as its U the length, in mm, of the path
    through the tip points of the positions' toolpath points from the first
    position up to it (a position without a toolpath point adds no length),
    and no "uAxisOffset", which counts as 0. When the first position has a
    U value, the positions keep theirs and every position of the course
    gets "uAxisOffset" = that first value (ZELKinPosition::SetUAxisOffset,
    a declared property that costs no storage of its own). Without a
    material variable nothing is changed.
*/
class ZELKinAFPGCodeMaterialAxis
{
public:
    ZELKinAFPGCodeMaterialAxis() = delete;

    //! Returns the first position's U when it became the "uAxisOffset" of
    //! every position of the course, so that a reader of the course need
    //! not look the property up; empty otherwise.
    static std::optional<double> Prepare(ZELKinCourse* course, ZELKinVariable* materialVariable);
    //! The position's U value less its "uAxisOffset" when it has one: mm of
    //! material from the course start. NaN without a U value.
    static double MaterialFromCourseStart(const ZELKinPosition* position, const ZELKinVariable* materialVariable);

private:
    static void SetMaterialLengths(ZELKinCourse* course, ZELKinVariable* materialVariable);
    static void SetOffsets(ZELKinCourse* course, double offset);
};

#endif // ZELKINAFPGCODEMATERIALAXIS_P_H
