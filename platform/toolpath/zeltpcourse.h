#ifndef ZELTPCOURSE_H
#define ZELTPCOURSE_H

#include "zeltpobject.h"

class ZELTPCourseLink;
class ZELTPCoursePrivate;

/*!
    One on-part pass of a toolpath procedure, along which the head lays
    material. The kinematic course translated from it links back to it.

    A procedure's scripts chain: a link leads to a course (its to-course),
    and the course is left by its retract link, which leads to the next
    course, and so on.

    Record: that of ZELTPObject (the name), then the retract link
    (ZELGeoGeometryRef, empty for none).
*/
class ZELTOOLPATH_EXPORT ZELTPCourse : public ZELTPObject
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed object without retract link, to be
    //! filled by Load.
    Q_INVOKABLE ZELTPCourse(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the object in `container` (null for one outside any
    //! container), without retract link.
    ZELTPCourse(ZELGeoContainer* container, const QString& name);
    ~ZELTPCourse() override;

    //! The link that leaves the course; null when not set or destroyed.
    ZELTPCourseLink* GetRetractLink() const;
    void SetRetractLink(ZELTPCourseLink* link);

    void Save(ZELGeoStream& stream) const override;
    //! Throws ZELGeoGeometryNotFoundException when the saved retract link
    //! names no ZELTPCourseLink of the container being loaded.
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPCourse(ZELTPCoursePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELTPCourse(ZELTPCoursePrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPCourse)
};

#endif // ZELTPCOURSE_H
