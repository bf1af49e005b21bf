#ifndef ZELTPCOURSELINK_H
#define ZELTPCOURSELINK_H

#include "zeltpobject.h"

class ZELTPCourseLinkPrivate;

/*!
    One off-part move of a toolpath procedure between two courses (approach,
    retract, transfer or tool change). The kinematic course link translated
    from it links back to it.

    Record: that of ZELTPObject (the name).
*/
class ZELTOOLPATH_EXPORT ZELTPCourseLink : public ZELTPObject
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed object to be filled by Load.
    Q_INVOKABLE ZELTPCourseLink(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the object in `container` (null for one outside any container).
    ZELTPCourseLink(ZELGeoContainer* container, const QString& name);
    ~ZELTPCourseLink() override;

protected:
    ZELTPCourseLink(ZELTPCourseLinkPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELTPCourseLink(ZELTPCourseLinkPrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPCourseLink)
};

#endif // ZELTPCOURSELINK_H
