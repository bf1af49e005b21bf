#include "zelkintoolchange.h"
#include "zelkintoolchange_p.h"

#include "zelkincourselink.h"

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELKinToolChange)

ZELKinToolChange::ZELKinToolChange(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinToolChange(new ZELKinToolChangePrivate(this), container, reference)
{
}

ZELKinToolChange::ZELKinToolChange(ZELKinToolChangePrivate* d, ZELGeoContainer* container,
                                   const ZELGeoGeometryRef& reference)
    : ZELKinCommand(d, container, reference)
{
}

ZELKinToolChange::ZELKinToolChange(ZELKinCourseLink* link, const QString& newRoller, const QString& newHead)
    : ZELKinCommand(new ZELKinToolChangePrivate(this), link, -1)
{
    Q_D(ZELKinToolChange);
    d->newHead = newHead;
    d->newRoller = newRoller;
}

ZELKinToolChange::~ZELKinToolChange() = default;

void ZELKinToolChange::_constructor_checker()
{
    ZELKinToolChange checker(nullptr, ZELGeoGeometryRef());
}

QString ZELKinToolChange::GetNewHead() const
{
    Q_D(const ZELKinToolChange);
    return d->newHead;
}

QString ZELKinToolChange::GetNewRoller() const
{
    Q_D(const ZELKinToolChange);
    return d->newRoller;
}

void ZELKinToolChange::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinToolChange);
    ZELKinCommand::Save(stream);
    stream << d->newHead << d->newRoller;
}

void ZELKinToolChange::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinToolChange);
    ZELKinCommand::Load(stream);
    stream >> d->newHead >> d->newRoller;
}
