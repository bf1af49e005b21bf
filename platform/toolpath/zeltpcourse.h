#ifndef ZELTPCOURSE_H
#define ZELTPCOURSE_H

#include "zeltpobject.h"

class ZELTPCoursePrivate;

/*!
    One on-part pass of a toolpath procedure, along which the head lays
    material. The kinematic course translated from it links back to it.

    Record: that of ZELTPObject (the name).
*/
class ZELTOOLPATH_EXPORT ZELTPCourse : public ZELTPObject
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed object to be filled by Load.
    Q_INVOKABLE ZELTPCourse(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the object in `container` (null for one outside any container).
    ZELTPCourse(ZELGeoContainer* container, const QString& name);
    ~ZELTPCourse() override;

protected:
    ZELTPCourse(ZELTPCoursePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELTPCourse(ZELTPCoursePrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPCourse)
};

#endif // ZELTPCOURSE_H
