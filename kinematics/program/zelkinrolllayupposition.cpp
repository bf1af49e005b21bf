#include "zelkinrolllayupposition.h"
#include "zelkinrolllayupposition_p.h"

#include "zelkincourse.h"

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELKinRollLayupPosition)

ZELKinRollLayupPosition::ZELKinRollLayupPosition(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinRollLayupPosition(new ZELKinRollLayupPositionPrivate(this), container, reference)
{
}

ZELKinRollLayupPosition::ZELKinRollLayupPosition(ZELKinRollLayupPositionPrivate* d, ZELGeoContainer* container,
                                                 const ZELGeoGeometryRef& reference)
    : ZELKinPosition(d, container, reference)
{
}

ZELKinRollLayupPosition::ZELKinRollLayupPosition(ZELKinCourse* course)
    : ZELKinPosition(new ZELKinRollLayupPositionPrivate(this), course, -1)
{
}

ZELKinRollLayupPosition::~ZELKinRollLayupPosition() = default;

void ZELKinRollLayupPosition::_constructor_checker()
{
    ZELKinRollLayupPosition checker(nullptr, ZELGeoGeometryRef());
}

ZELKinCourse* ZELKinRollLayupPosition::GetCourse() const
{
    return qobject_cast<ZELKinCourse*>(GetScript());
}

double ZELKinRollLayupPosition::GetPAngle() const
{
    Q_D(const ZELKinRollLayupPosition);
    return d->pAngle;
}

void ZELKinRollLayupPosition::SetPAngle(double angle)
{
    Q_D(ZELKinRollLayupPosition);
    AboutToChange();
    d->pAngle = angle;
}

double ZELKinRollLayupPosition::GetQAngle() const
{
    Q_D(const ZELKinRollLayupPosition);
    return d->qAngle;
}

void ZELKinRollLayupPosition::SetQAngle(double angle)
{
    Q_D(ZELKinRollLayupPosition);
    AboutToChange();
    d->qAngle = angle;
}

double ZELKinRollLayupPosition::GetSmoothAngle() const
{
    Q_D(const ZELKinRollLayupPosition);
    return d->smoothAngle;
}

void ZELKinRollLayupPosition::SetSmoothAngle(double angle)
{
    Q_D(ZELKinRollLayupPosition);
    AboutToChange();
    d->smoothAngle = angle;
}

int ZELKinRollLayupPosition::GetNIndex() const
{
    Q_D(const ZELKinRollLayupPosition);
    return d->nIndex;
}

void ZELKinRollLayupPosition::SetNIndex(int index)
{
    Q_D(ZELKinRollLayupPosition);
    AboutToChange();
    d->nIndex = index;
}

void ZELKinRollLayupPosition::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinRollLayupPosition);
    ZELKinPosition::Save(stream);
    stream << d->pAngle << d->qAngle << qint32(d->nIndex);
}

void ZELKinRollLayupPosition::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinRollLayupPosition);
    // Save, not Load, on purpose (see the class documentation): the reading
    // stream discards the writes, and the position's fields keep their defaults.
    ZELKinPosition::Save(stream);
    qint32 nIndex = 0;
    stream >> d->pAngle >> d->qAngle >> nIndex;
    d->nIndex = nIndex;
}
