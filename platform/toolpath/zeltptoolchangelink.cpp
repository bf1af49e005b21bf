#include "zeltptoolchangelink.h"
#include "zeltptoolchangelink_p.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>

ZELGEO_REGISTER_CLASS(ZELTPToolChangeLink)

ZELTPToolChangeLink::ZELTPToolChangeLink(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPToolChangeLink(new ZELTPToolChangeLinkPrivate(this), container, reference)
{
}

ZELTPToolChangeLink::ZELTPToolChangeLink(ZELGeoContainer* container, const QString& name)
    : ZELTPToolChangeLink(new ZELTPToolChangeLinkPrivate(this), container, name)
{
}

ZELTPToolChangeLink::ZELTPToolChangeLink(ZELTPToolChangeLinkPrivate* d, ZELGeoContainer* container,
                                         const ZELGeoGeometryRef& reference)
    : ZELTPCourseLink(d, container, reference)
{
}

ZELTPToolChangeLink::ZELTPToolChangeLink(ZELTPToolChangeLinkPrivate* d, ZELGeoContainer* container,
                                         const QString& name)
    : ZELTPCourseLink(d, container, name)
{
}

ZELTPToolChangeLink::~ZELTPToolChangeLink() = default;

void ZELTPToolChangeLink::_constructor_checker()
{
    ZELTPToolChangeLink checker(nullptr, ZELGeoGeometryRef());
}

ZELTPPoint* ZELTPToolChangeLink::GetToolRemovePoint() const
{
    Q_D(const ZELTPToolChangeLink);
    return d->toolRemovePoint.Get();
}

void ZELTPToolChangeLink::SetToolRemovePoint(ZELTPPoint* point)
{
    Q_D(ZELTPToolChangeLink);
    AboutToChange();
    d->toolRemovePoint.Set(point);
}

ZELTPMachineConfiguration ZELTPToolChangeLink::GetPreviousMachineConfiguration() const
{
    Q_D(const ZELTPToolChangeLink);
    return d->previousConfiguration;
}

void ZELTPToolChangeLink::SetPreviousMachineConfiguration(const ZELTPMachineConfiguration& configuration)
{
    Q_D(ZELTPToolChangeLink);
    AboutToChange();
    d->previousConfiguration = configuration;
}

ZELTPMachineConfiguration ZELTPToolChangeLink::GetNextMachineConfiguration() const
{
    Q_D(const ZELTPToolChangeLink);
    return d->nextConfiguration;
}

void ZELTPToolChangeLink::SetNextMachineConfiguration(const ZELTPMachineConfiguration& configuration)
{
    Q_D(ZELTPToolChangeLink);
    AboutToChange();
    d->nextConfiguration = configuration;
}

void ZELTPToolChangeLink::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPToolChangeLink);
    ZELTPCourseLink::Save(stream);
    d->toolRemovePoint.Save(stream);
    stream << d->previousConfiguration << d->nextConfiguration;
}

void ZELTPToolChangeLink::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPToolChangeLink);
    ZELTPCourseLink::Load(stream);
    d->toolRemovePoint.Load(stream);
    stream >> d->previousConfiguration >> d->nextConfiguration;
}
