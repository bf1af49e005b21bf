#ifndef ZELKINCOURSE_H
#define ZELKINCOURSE_H

#include "zelkinscript.h"

#include <QString>

class ZELKinCourseLink;
class ZELKinCoursePrivate;
class ZELKinRollLayupProcedure;
class ZELTPCourse;

/*!
    The base of an on-part pass of a roll layup procedure, along which the
    head lays material: it knows its procedure, its index in the
    procedure's course list, the roller and the material it uses and the
    toolpath course it was translated from. The tow course is its concrete
    kind, which keeps the commands.

    A course joins its procedure in its constructor, at the end of the
    course list, and keeps that index for life. Its approach link is the
    procedure's link of the same index, its retract link the next one.

    Record (after the geometry part): procedure (reference, empty when the
    course has none or it has gone), index (qint32), roller (QString),
    material (QString). The toolpath course is not saved: a loaded course
    has none.
*/
class ZELKINEMATICS_EXPORT ZELKinCourse : public ZELKinScript
{
    Q_OBJECT

public:
    ~ZELKinCourse() override;

    //! The procedure that holds the course; null if it has none or it has gone.
    ZELKinRollLayupProcedure* GetProcedure() const;
    //! The procedure's program; null without a procedure.
    ZELKinProgram* GetProgram() const override;
    //! The course's index in the procedure's course list; 0 for a loaded
    //! course until Load.
    int GetIndex() const;
    //! The link that leads into the course: the procedure's link
    //! GetIndex(). Null without a procedure; throws the procedure's
    //! ZELSysOutOfBoundsException when that link does not exist.
    ZELKinCourseLink* GetApproachLink() const;
    //! The link that leads out of the course: the procedure's link
    //! GetIndex() + 1. Null without a procedure; throws the procedure's
    //! ZELSysOutOfBoundsException when that link does not exist (the last
    //! course before its retract link has been made).
    ZELKinCourseLink* GetRetractLink() const;

    //! The roller used for this course; empty until set.
    QString GetRoller() const;
    void SetRoller(const QString& roller);
    //! The material the course lays; empty until set.
    QString GetMaterial() const;
    void SetMaterial(const QString& material);

    //! The toolpath course this one was translated from; null for a course
    //! made without one or once it has gone.
    const ZELTPCourse* GetToolPathCourse() const;
    //! Links the toolpath course (null allowed) with a counted link.
    void SetToolPathCourse(const ZELTPCourse* course);

    void Save(ZELGeoStream& stream) const override;
    //! Throws ZELGeoGeometryNotFoundException when the saved procedure
    //! reference names no roll layup procedure of the container being
    //! loaded; the course is then without a procedure.
    void Load(ZELGeoStream& stream) override;

protected:
    /*!
        Creates the course in the procedure's container, links the procedure
        and appends the course to the procedure's course list, keeping the
        index it gets there. A null procedure gives a course outside any
        container and any procedure, of index 0.
    */
    ZELKinCourse(ZELKinCoursePrivate* d, ZELKinRollLayupProcedure* procedure);
    //! Loading form: no procedure until Load.
    ZELKinCourse(ZELKinCoursePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    Q_DECLARE_PRIVATE(ZELKinCourse)
};

#endif // ZELKINCOURSE_H
