#ifndef ZELGEOCONTAINER_P_H
#define ZELGEOCONTAINER_P_H

#include "zelgeocontainer.h"

#include <QHash>
#include <QList>

#include <vector>

/*
    Identities are handed out one after the other, so a geometry lives in the
    slot of its identity less one: registering, finding and listing millions
    of geometries costs no hashing and no sorting. An identity that a caller
    asks for far beyond the slots goes to a side table instead, so that one
    odd identity cannot make the slots huge.
*/
class ZELGeoContainerPrivate
{
public:
    static ZELGeoContainerPrivate* get(ZELGeoContainer* container) { return container->d_func(); }

    ZELGeoGeometryRef Register(ZELGeoGeometry* geometry, const ZELGeoGeometryRef& requested);
    void Unregister(const ZELGeoGeometryRef& reference);
    ZELGeoGeometry* Find(quint64 identity) const;
    QList<ZELGeoGeometry*> InIdentityOrder() const;
    //! Forgets every geometry without deleting any.
    void Clear();

    std::vector<ZELGeoGeometry*> inSlots;
    QHash<quint64, ZELGeoGeometry*> distant;
    qsizetype count = 0;
    quint64 nextIdentity = 1;
    bool modified = false;

private:
    bool IsInSlots(quint64 identity) const { return identity - 1 < inSlots.size(); }
    bool FitsSlots(quint64 identity) const;
};

#endif // ZELGEOCONTAINER_P_H
