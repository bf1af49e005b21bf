#ifndef ZELTPPROCEDURE_H
#define ZELTPPROCEDURE_H

#include "zeltpobject.h"

class ZELTPProcedurePrivate;

/*!
    One procedure of a toolpath program: a roll layup or a probing sequence,
    run by the machine as one unit. The kinematic procedure translated from
    it links back to it.

    Record: that of ZELTPObject (the name).
*/
class ZELTOOLPATH_EXPORT ZELTPProcedure : public ZELTPObject
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed object to be filled by Load.
    Q_INVOKABLE ZELTPProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the object in `container` (null for one outside any container).
    ZELTPProcedure(ZELGeoContainer* container, const QString& name);
    ~ZELTPProcedure() override;

protected:
    ZELTPProcedure(ZELTPProcedurePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELTPProcedure(ZELTPProcedurePrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPProcedure)
};

#endif // ZELTPPROCEDURE_H
