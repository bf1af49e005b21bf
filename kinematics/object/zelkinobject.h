#ifndef ZELKINOBJECT_H
#define ZELKINOBJECT_H

#include "zelkinematics_export.h"

#include <zelgeogeometry.h>

/*!
    The common base of every kinematic object: a geometry of the host's
    container. It adds no data; it gives the kinematic classes their own place
    in the meta-object tree and their translation context.

    Kinematic objects never own each other: the container owns them all, and
    they refer to each other through weak links (back references) and counted
    links (lists that hold a container reference on each entry).
*/
class ZELKINEMATICS_EXPORT ZELKinObject : public ZELGeoGeometry
{
    Q_OBJECT

public:
    ~ZELKinObject() override;

protected:
    ZELKinObject(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
};

#endif // ZELKINOBJECT_H
