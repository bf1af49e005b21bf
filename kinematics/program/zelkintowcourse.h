#ifndef ZELKINTOWCOURSE_H
#define ZELKINTOWCOURSE_H

#include "zelkincourse.h"

#include <zelcomptowmask.h>

class ZELKinTowCoursePrivate;

/*!
    The course of a roll layup procedure on a fibre placement machine: its
    commands (roll layup positions, tow commands and tow feed commands, in
    the order the machine runs them), the tow mask of the course, one length
    per tow and the number of tows of the roller.

    Commands join the course in their own constructors. A command must name
    this course as its script, or ZELSysException "command does not belong
    to course" is thrown. -1 appends; an index in 0..count inserts before
    the command there, so that the count itself appends too (where a course
    link refuses it); a larger index throws ZELSysOutOfBoundsException(index,
    -1, count, true, true). Nothing is inserted when it throws. The course
    holds a counted link to each of its commands.

    Record (after the course's): commands (count as qint32, then one
    reference each), tow mask (its stream form), tow lengths (count as
    qint32, then one double each). The roller tows are not saved: a loaded
    course has 0.
*/
class ZELKINEMATICS_EXPORT ZELKinTowCourse : public ZELKinCourse
{
    Q_OBJECT

public:
    //! Loading constructor: no procedure, commands or tow lengths and a mask
    //! of 0 tows, until Load.
    Q_INVOKABLE ZELKinTowCourse(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinTowCourse() override;

    //! The list size, commands that have gone included.
    int GetNumCommands() const override;
    //! The command at `index`; null if it has been destroyed. Throws
    //! ZELSysOutOfBoundsException(index, 0, count - 1, true, true) outside
    //! the list.
    ZELKinCommand* GetCommand(int index) const override;

    ZELCompTowMask GetTowMask() const;
    //! The length laid by tow `tow` (mm), tows counted from 0. Throws
    //! ZELSysOutOfBoundsException(tow, 0, count - 1, true, true) outside
    //! the tow lengths.
    double GetTowLength(int tow) const;
    //! Replaces the length of tow `tow` (mm); throws as GetTowLength does and
    //! then changes nothing.
    void SetTowLength(int tow, double length);
    //! The number of tows of the roller; 0 until set and after a load.
    int GetRollerTows() const;
    void SetRollerTows(int tows);

    void Save(ZELGeoStream& stream) const override;
    //! Throws what ZELKinCourse::Load throws, and
    //! ZELGeoGeometryNotFoundException when a saved command names no command
    //! of the container being loaded. A tow length count larger than the
    //! lengths present stops at the end of the record.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinTowCourse(ZELKinTowCoursePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    /*!
        Appends the new course to the procedure (as every course does), then
        checks it against the machine of the procedure's program: throws
        ZELSysException "tow course added to program without AFP machine"
        when that is not a ZELKinAFPMachine (or there is no procedure,
        program or machine), then "tow mask size does not match machine tow
        mask size" when the mask's tow count is not the machine's maximum
        mask's. Otherwise keeps the mask and gives each tow a length of 0.
        A course that throws is destroyed, and the procedure's entry for it
        reads null.
    */
    ZELKinTowCourse(ZELKinRollLayupProcedure* procedure, const ZELCompTowMask& mask);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinTowCourse)
};

#endif // ZELKINTOWCOURSE_H
