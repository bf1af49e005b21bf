#ifndef ZELGEOCONTAINER_P_H
#define ZELGEOCONTAINER_P_H

#include "zelgeocontainer.h"

#include <QHash>

class ZELGeoContainerPrivate
{
public:
    static ZELGeoContainerPrivate* get(ZELGeoContainer* container) { return container->d_func(); }

    ZELGeoGeometryRef Register(ZELGeoGeometry* geometry, const ZELGeoGeometryRef& requested);
    void Unregister(const ZELGeoGeometryRef& reference);

    QHash<quint64, ZELGeoGeometry*> geometries;
    quint64 nextIdentity = 1;
    bool modified = false;
};

#endif // ZELGEOCONTAINER_P_H
