#ifndef ZELTPPROCEDURE_H
#define ZELTPPROCEDURE_H

#include "zeltpobject.h"

#include <zelmathplane.h>

class ZELTPProcedurePrivate;

/*!
    One procedure of a toolpath program: a roll layup
    (ZELTPRollLayupProcedure) or a probing sequence (ZELTPProbingProcedure),
    run by the machine as one unit. The kinematic procedure translated from
    it links back to it.

    Record: that of ZELTPObject (the name), then the safety plane
    (ZELMathPlane stream form: origin, normal, x direction, y direction).
*/
class ZELTOOLPATH_EXPORT ZELTPProcedure : public ZELTPObject
{
    Q_OBJECT

public:
    //! Loading constructor: an unnamed object with the default safety plane,
    //! to be filled by Load.
    Q_INVOKABLE ZELTPProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the object in `container` (null for one outside any
    //! container), with the default safety plane.
    ZELTPProcedure(ZELGeoContainer* container, const QString& name);
    ~ZELTPProcedure() override;

    //! The retract plane (mm) that the head withdraws to between moves; the
    //! world xy plane through the origin by default.
    ZELMathPlane GetSafetyPlane() const;
    //! Keeps a copy of the plane as it is given.
    void SetSafetyPlane(const ZELMathPlane& plane);

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELTPProcedure(ZELTPProcedurePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELTPProcedure(ZELTPProcedurePrivate* d, ZELGeoContainer* container, const QString& name);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPProcedure)
};

#endif // ZELTPPROCEDURE_H
