#ifndef ZELTPCOURSELINK_H
#define ZELTPCOURSELINK_H

#include "zeltpobject.h"

class ZELTPCourseLinkPrivate;

/*!
    One off-part move of a toolpath procedure between two courses (approach,
    retract, transfer or tool change). The kinematic course link translated
    from it links back to it.

    Its points detail says how closely the machine has to follow the tool
    frames of the link's points, from the positions alone (the head may turn
    in any way between the courses) up to every frame as exactly as on a
    course.

    Record: that of ZELTPObject (the name), then the points detail (qint32).
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

    //! Loading constructor: an unnamed object of full detail, to be filled
    //! by Load.
    Q_INVOKABLE ZELTPCourseLink(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the object in `container` (null for one outside any
    //! container), of full detail.
    ZELTPCourseLink(ZELGeoContainer* container, const QString& name);
    ~ZELTPCourseLink() override;

    //! The points detail; PointsDetailFull by default. A value outside the
    //! enumeration (read from a record) is kept as it is.
    PointsDetail GetPointsDetail() const;
    void SetPointsDetail(PointsDetail detail);

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPCourseLink(ZELTPCourseLinkPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELTPCourseLink(ZELTPCourseLinkPrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPCourseLink)
};

#endif // ZELTPCOURSELINK_H
