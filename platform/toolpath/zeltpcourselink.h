#ifndef ZELTPCOURSELINK_H
#define ZELTPCOURSELINK_H

#include "zeltpobject.h"

#include <QList>

class ZELTPCourse;
class ZELTPCourseLinkPrivate;
class ZELTPPoint;
class ZELTPTrajectory;

/*!
    One off-part move of a toolpath procedure between two courses (approach,
    retract, transfer or tool change). The kinematic course link translated
    from it links back to it.

    Its points detail says how closely the machine has to follow the tool
    frames of the link's points, from the positions alone (the head may turn
    in any way between the courses) up to every frame as exactly as on a
    course.

    The link's points lie on its trajectories, which it owns (it deletes
    them). Its to-course is the course it leads to; the retract link of that
    course leads on. The last link of a procedure leads to no course.

    Record: that of ZELTPObject (the name), then the points detail (qint32),
    the trajectories (count as qint32, then per trajectory its class tag
    (qint32: 0 plain, 1 on-part, 2 tow), feed rate, own fields, point count
    (qint32) and point references) and the to-course (ZELGeoGeometryRef,
    empty for none).
*/
class ZELTOOLPATH_EXPORT ZELTPCourseLink : public ZELTPObject
{
    Q_OBJECT

public:
    //! How closely the machine follows the tool frames of the link's points.
    enum PointsDetail : qint32 {
        //! Only the positions of the points count; the head turns freely
        //! between the courses.
        PointsDetailLow = 0,
        //! The head turns smoothly from the course before to the course
        //! after, without turning over, but need not meet each frame.
        PointsDetailMedium = 1,
        //! Every frame is met, as on a course.
        PointsDetailFull = 2
    };
    Q_ENUM(PointsDetail)

    //! Loading constructor: an unnamed object of full detail without
    //! trajectories or to-course, to be filled by Load.
    Q_INVOKABLE ZELTPCourseLink(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the object in `container` (null for one outside any
    //! container), of full detail, without trajectories or to-course.
    ZELTPCourseLink(ZELGeoContainer* container, const QString& name);
    //! Deletes the link's trajectories.
    ~ZELTPCourseLink() override;

    //! The points detail; PointsDetailFull by default. A value outside the
    //! enumeration (read from a record) is kept as it is.
    PointsDetail GetPointsDetail() const;
    void SetPointsDetail(PointsDetail detail);

    //! Appends `trajectory` and takes ownership of it. Throws ZELSysException
    //! "cannot add a null trajectory" for null and "trajectory already has an
    //! owner" for one that a geometry owns already; nothing changes then.
    void AddTrajectory(ZELTPTrajectory* trajectory);
    int GetNumTrajectories() const;
    //! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true)
    //! outside the trajectories.
    ZELTPTrajectory* GetTrajectory(int index) const;

    //! The points of every trajectory, trajectory after trajectory, as one
    //! list: a point that two trajectories share is in it twice.
    int GetNumPoints() const;
    //! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true)
    //! outside the points.
    ZELTPPoint* GetPoint(int index) const;
    QList<ZELTPPoint*> GetPoints() const;

    //! The course the link leads to; null for none (the procedure's last
    //! link) and once that course is destroyed.
    ZELTPCourse* GetToCourse() const;
    void SetToCourse(ZELTPCourse* course);

    void Save(ZELGeoStream& stream) const override;
    //! Counts larger than the entries present stop at the end of the record.
    //! Throws ZELSysException "unknown trajectory kind <tag>" for a class tag
    //! outside 0..2, and ZELGeoGeometryNotFoundException when a saved point
    //! or the to-course names no object of its class in the container being
    //! loaded.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPCourseLink(ZELTPCourseLinkPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELTPCourseLink(ZELTPCourseLinkPrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPCourseLink)
};

#endif // ZELTPCOURSELINK_H
