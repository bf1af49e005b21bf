#ifndef ZELKINCOURSELINK_H
#define ZELKINCOURSELINK_H

#include "zelkinscript.h"

class ZELKinCourse;
class ZELKinCourseLinkPrivate;
class ZELKinRollLayupProcedure;
class ZELTPCourseLink;

/*!
    An off-part move of a roll layup procedure between two courses (an
    approach, a retract or a transfer): positions and tool changes, in the
    order the machine runs them.

    A link joins its procedure in its constructor, at the end of the link
    list, and keeps that index for life. Link i comes from course i - 1 and
    goes to course i: the first link has no course before it, and the last
    link of a complete procedure none after it.

    Commands join the link in their own constructors by the common rule: -1
    appends, an index in 0..count - 1 inserts before the command there, and
    a larger index throws ZELSysOutOfBoundsException(index, -1, count - 1,
    true, true), inserting nothing. The link holds a counted link to each of
    its commands.

    Record (after the geometry part): procedure (reference, empty when the
    link has none or it has gone), commands (count as qint32, then one
    reference each), index (qint32). The toolpath course link is not saved:
    a loaded link has none.
*/
class ZELKINEMATICS_EXPORT ZELKinCourseLink : public ZELKinScript
{
    Q_OBJECT

public:
    //! Loading constructor: no procedure, index 0 and no commands until Load.
    Q_INVOKABLE ZELKinCourseLink(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinCourseLink() override;

    //! The procedure that holds the link; null if it has none or it has gone.
    ZELKinRollLayupProcedure* GetProcedure() const;
    //! The procedure's program; null without a procedure.
    ZELKinProgram* GetProgram() const override;
    //! The link's index in the procedure's link list.
    int GetIndex() const;
    //! The course the link comes from: course GetIndex() - 1; null for the
    //! first link, without a procedure, or once that course has gone.
    //! Throws the procedure's ZELSysOutOfBoundsException when that course
    //! does not exist (two links in a row, which a complete procedure never
    //! has).
    ZELKinCourse* GetFromCourse() const;
    //! The course the link goes to: course GetIndex(); null when the
    //! procedure has no course of that index, without a procedure, or once
    //! that course has gone.
    ZELKinCourse* GetToCourse() const;
    //! Always false, whatever commands the link holds, tool changes
    //! included; no kind of link answers otherwise.
    bool IsRollerChange() const;

    //! The list size, commands that have gone included.
    int GetNumCommands() const override;
    //! The command at `index`; null if it has been destroyed. The index is
    //! not checked against the list: callers stay within
    //! 0..GetNumCommands() - 1, and an index outside it reads null.
    ZELKinCommand* GetCommand(int index) const override;

    //! The toolpath course link this one was translated from; null for a
    //! link made without one or once it has gone.
    const ZELTPCourseLink* GetToolPathCourseLink() const;
    //! Links the toolpath course link (null allowed) with a counted link.
    void SetToolPathCourseLink(const ZELTPCourseLink* link);

    void Save(ZELGeoStream& stream) const override;
    //! Throws ZELGeoGeometryNotFoundException when the saved procedure or a
    //! saved command names no such object in the container being loaded.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinCourseLink(ZELKinCourseLinkPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    //! Creates an empty link in the procedure's container, links the
    //! procedure and appends the link to the procedure's link list, keeping
    //! the index it gets there. A null procedure gives a link outside any
    //! container and any procedure, of index 0.
    explicit ZELKinCourseLink(ZELKinRollLayupProcedure* procedure);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinCourseLink)
};

#endif // ZELKINCOURSELINK_H
