#ifndef ZELTPOFFPARTPOINT_H
#define ZELTPOFFPARTPOINT_H

#include "zeltppoint.h"

class ZELTPOffPartPointPrivate;

/*!
    A toolpath point away from the part: on an approach, retract, link or
    probing move, where the roller does not touch the surface. Its frame is
    where the tool is to pass and how it is turned; its index stays -1 unless
    it is set.

    Record: that of ZELTPPoint (frame, then index).
*/
class ZELTOOLPATH_EXPORT ZELTPOffPartPoint : public ZELTPPoint
{
    Q_OBJECT

public:
    //! Loading constructor: the world frame and index -1 until Load.
    Q_INVOKABLE ZELTPOffPartPoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creates the point in `container` (null for one outside any container),
    //! with index -1.
    ZELTPOffPartPoint(ZELGeoContainer* container, const ZELMathAxis& toolFrame);
    ~ZELTPOffPartPoint() override;

protected:
    ZELTPOffPartPoint(ZELTPOffPartPointPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELTPOffPartPoint)
};

#endif // ZELTPOFFPARTPOINT_H
