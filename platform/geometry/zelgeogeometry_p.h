#ifndef ZELGEOGEOMETRY_P_H
#define ZELGEOGEOMETRY_P_H

#include "zelgeogeometry.h"

class ZELGeoGeometryPrivate
{
public:
    virtual ~ZELGeoGeometryPrivate() = default;

    ZELGeoContainer* container = nullptr;
    ZELGeoGeometryRef reference;
    mutable int referenceCount = 0;
    bool initialized = false;
};

#endif // ZELGEOGEOMETRY_P_H
