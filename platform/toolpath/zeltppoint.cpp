#include "zeltppoint.h"
#include "zeltppoint_p.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>

ZELGEO_REGISTER_CLASS(ZELTPPoint)

ZELTPPoint::ZELTPPoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPPoint(new ZELTPPointPrivate(this), container, reference)
{
}

ZELTPPoint::ZELTPPoint(ZELGeoContainer* container, const ZELMathAxis& toolFrame)
    : ZELTPPoint(new ZELTPPointPrivate(this), container, ZELGeoGeometryRef())
{
    Q_D(ZELTPPoint);
    d->toolFrame = toolFrame;
}

ZELTPPoint::ZELTPPoint(ZELTPPointPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELGeoGeometry(container, reference)
    , d_ptr(d)
{
}

ZELTPPoint::~ZELTPPoint() = default;

void ZELTPPoint::_constructor_checker()
{
    ZELTPPoint checker(nullptr, ZELGeoGeometryRef());
}

ZELMathAxis ZELTPPoint::GetToolFrame() const
{
    Q_D(const ZELTPPoint);
    return d->toolFrame;
}

void ZELTPPoint::SetToolFrame(const ZELMathAxis& toolFrame)
{
    Q_D(ZELTPPoint);
    AboutToChange();
    d->toolFrame = toolFrame;
}

void ZELTPPoint::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPPoint);
    ZELGeoGeometry::Save(stream);
    stream << d->toolFrame;
}

void ZELTPPoint::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPPoint);
    ZELGeoGeometry::Load(stream);
    stream >> d->toolFrame;
}
