#ifndef ZELKINROLLLAYUPPROCEDURE_H
#define ZELKINROLLLAYUPPROCEDURE_H

#include "zelkinplydescription.h"
#include "zelkinprocedure.h"

#include <QList>

class ZELKinCourse;
class ZELKinCourseLink;
class ZELKinRollLayupProcedurePrivate;
class ZELKinScript;

/*!
    The procedure that lays material: its courses (the on-part passes) and
    its course links (the off-part moves between them), the feedrates used
    while tows are added and cut, and the plies its courses belong to.

    Link i leads into course i and link i + 1 leads out of it, so a complete
    procedure has one link more than it has courses, and never fewer links
    than courses. Courses and links join the procedure in their own
    constructors, at the end of their list, in laying order; they are never
    moved. Commands go into the courses and links: inserting one into the
    procedure itself throws ZELSysNotImplementedException.

    The flat command index runs over the children interleaved as link 0,
    course 0, link 1, course 1, and so on; links left after the last course
    follow at the end. Where a course has no link before it (a procedure
    that is not complete), it follows the course before it.

    Record (after the procedure's): courses (count as qint32, then one
    reference each), course links (likewise), ply definitions (count as
    qint32, then each in its stream form). The add and cut feedrates are not
    saved: a loaded procedure has NaN for both.
*/
class ZELKINEMATICS_EXPORT ZELKinRollLayupProcedure : public ZELKinProcedure
{
    Q_OBJECT

public:
    //! Loading constructor: no program, courses, links or plies, NaN
    //! feedrates, until Load.
    Q_INVOKABLE ZELKinRollLayupProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinRollLayupProcedure() override;

    //! The feedrate while tows are being added (mm/min); NaN after a load.
    double GetAddFeedrate() const;
    //! The feedrate while tows are being cut (mm/min); NaN after a load.
    double GetCutFeedrate() const;

    //! The list size, courses that have gone included.
    int GetNumCourses() const;
    //! The course at `index`; null if it has been destroyed. Throws
    //! ZELSysOutOfBoundsException(index, 0, count - 1, true, true) outside
    //! the list.
    ZELKinCourse* GetCourse(int index) const;
    //! A copy of the list in order (null where a course has gone).
    QList<ZELKinCourse*> GetCourses() const;

    //! The list size, links that have gone included.
    int GetNumCourseLinks() const;
    //! The link at `index`; null if it has been destroyed. Throws
    //! ZELSysOutOfBoundsException(index, 0, count - 1, true, true) outside
    //! the list.
    ZELKinCourseLink* GetCourseLink(int index) const;
    //! A copy of the list in order (null where a link has gone).
    QList<ZELKinCourseLink*> GetCourseLinks() const;

    int GetNumPlies() const;
    //! Appends the ply, without checking it for validity or duplicates.
    void AddPlyDefinition(const ZELKinPlyDescription& ply);
    //! A copy of the ply at `index`. Throws ZELSysOutOfBoundsException(index,
    //! 0, count - 1, true, true) outside the list.
    ZELKinPlyDescription GetPlyDefinition(int index) const;
    //! Replaces the ply at `index`; throws as GetPlyDefinition does and then
    //! changes nothing.
    void SetPlyDefinition(int index, const ZELKinPlyDescription& ply);
    //! The index of the first ply whose name is exactly `name` (case
    //! sensitive); -1 when there is none.
    int GetPlyIndex(const QString& name) const;

    //! The sum of the courses' and the links' command counts (a child that
    //! has gone counts none).
    int GetNumCommands() const override;
    /*!
        The command at a flat index over the links and courses interleaved
        (link 0, course 0, link 1, ...). Throws ZELSysOutOfBoundsException
        with bounds 0 and GetNumCommands(), both inclusive: for a negative
        index its value is the index; for an index at or past the end it is
        what remains of the index once every child's count has been taken
        off it.
    */
    ZELKinCommand* GetCommand(int index) const override;
    //! The links and courses in the order of their commands: link 0,
    //! course 0, link 1, ...; a course without a link before it comes after
    //! a null entry, and a child that has gone is null. Walking these visits
    //! every command once, where GetCommand(i) for every i walks the
    //! children again for each.
    QList<ZELKinScript*> GetScriptsInCommandOrder() const;

    void Save(ZELGeoStream& stream) const override;
    //! Throws ZELGeoGeometryNotFoundException when the saved program, a
    //! saved course or a saved link names no such object in the container
    //! being loaded. A ply count larger than the plies present stops at the
    //! end of the record.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinRollLayupProcedure(ZELKinRollLayupProcedurePrivate* d, ZELGeoContainer* container,
                             const ZELGeoGeometryRef& reference);

    bool VisitCommands(const CommandVisitor& visit, WalkOrder order) const override;

private:
    friend class ZELKinTranslator;
    friend class ZELKinTestAccess;

    //! Creates an empty procedure in the program's container and appends it
    //! to the program, with the feedrates (mm/min) used while tows are added
    //! and cut. A null program gives a procedure outside any container and
    //! any program.
    ZELKinRollLayupProcedure(ZELKinProgram* program, double addFeedrate, double cutFeedrate);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinRollLayupProcedure)
};

#endif // ZELKINROLLLAYUPPROCEDURE_H
