#include "zeltprolllayupprocedure.h"
#include "zeltprolllayupprocedure_p.h"

#include "zeltpindex_p.h"
#include "zeltprecord_p.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>

ZELGEO_REGISTER_CLASS(ZELTPRollLayupProcedure)

ZELTPRollLayupProcedure::ZELTPRollLayupProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPRollLayupProcedure(new ZELTPRollLayupProcedurePrivate(this), container, reference)
{
}

ZELTPRollLayupProcedure::ZELTPRollLayupProcedure(ZELGeoContainer* container, const QString& name)
    : ZELTPRollLayupProcedure(new ZELTPRollLayupProcedurePrivate(this), container, name)
{
}

ZELTPRollLayupProcedure::ZELTPRollLayupProcedure(ZELTPRollLayupProcedurePrivate* d, ZELGeoContainer* container,
                                                 const ZELGeoGeometryRef& reference)
    : ZELTPProcedure(d, container, reference)
{
}

ZELTPRollLayupProcedure::ZELTPRollLayupProcedure(ZELTPRollLayupProcedurePrivate* d, ZELGeoContainer* container,
                                                 const QString& name)
    : ZELTPProcedure(d, container, name)
{
}

ZELTPRollLayupProcedure::~ZELTPRollLayupProcedure() = default;

void ZELTPRollLayupProcedure::_constructor_checker()
{
    ZELTPRollLayupProcedure checker(nullptr, ZELGeoGeometryRef());
}

double ZELTPRollLayupProcedure::GetAddingFeedrate() const
{
    Q_D(const ZELTPRollLayupProcedure);
    return d->addingFeedrate;
}

void ZELTPRollLayupProcedure::SetAddingFeedrate(double feedrate)
{
    Q_D(ZELTPRollLayupProcedure);
    AboutToChange();
    d->addingFeedrate = feedrate;
}

double ZELTPRollLayupProcedure::GetCuttingFeedrate() const
{
    Q_D(const ZELTPRollLayupProcedure);
    return d->cuttingFeedrate;
}

void ZELTPRollLayupProcedure::SetCuttingFeedrate(double feedrate)
{
    Q_D(ZELTPRollLayupProcedure);
    AboutToChange();
    d->cuttingFeedrate = feedrate;
}

ZELTPMaterialDescription ZELTPRollLayupProcedure::GetMaterialDescription() const
{
    Q_D(const ZELTPRollLayupProcedure);
    return d->material;
}

void ZELTPRollLayupProcedure::SetMaterialDescription(const ZELTPMaterialDescription& material)
{
    Q_D(ZELTPRollLayupProcedure);
    AboutToChange();
    d->material = material;
}

double ZELTPRollLayupProcedure::GetTotalMaterialLength() const
{
    Q_D(const ZELTPRollLayupProcedure);
    return d->totalMaterialLength;
}

void ZELTPRollLayupProcedure::SetTotalMaterialLength(double length)
{
    Q_D(ZELTPRollLayupProcedure);
    AboutToChange();
    d->totalMaterialLength = length;
}

void ZELTPRollLayupProcedure::AddPlyDescription(const ZELTPPlyDescription& ply)
{
    Q_D(ZELTPRollLayupProcedure);
    AboutToChange();
    d->plies.append(ply);
}

int ZELTPRollLayupProcedure::GetNumPlyDescriptions() const
{
    Q_D(const ZELTPRollLayupProcedure);
    return int(d->plies.size());
}

ZELTPPlyDescription ZELTPRollLayupProcedure::GetPlyDescription(int index) const
{
    Q_D(const ZELTPRollLayupProcedure);
    ZELTPIndex::Check(index, d->plies.size());
    return d->plies.at(index);
}

QList<ZELTPPlyDescription> ZELTPRollLayupProcedure::GetPlyDescriptions() const
{
    Q_D(const ZELTPRollLayupProcedure);
    return d->plies;
}

ZELTPCourseLink* ZELTPRollLayupProcedure::GetApproachLink() const
{
    Q_D(const ZELTPRollLayupProcedure);
    return d->approachLink.Get();
}

void ZELTPRollLayupProcedure::SetApproachLink(ZELTPCourseLink* link)
{
    Q_D(ZELTPRollLayupProcedure);
    AboutToChange();
    d->approachLink.Set(link);
}

void ZELTPRollLayupProcedure::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPRollLayupProcedure);
    ZELTPProcedure::Save(stream);
    stream << d->addingFeedrate << d->cuttingFeedrate << d->material << d->totalMaterialLength;
    ZELTPRecord::WriteList(stream, d->plies);
    d->approachLink.Save(stream);
}

void ZELTPRollLayupProcedure::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPRollLayupProcedure);
    ZELTPProcedure::Load(stream);
    stream >> d->addingFeedrate >> d->cuttingFeedrate >> d->material >> d->totalMaterialLength;
    d->plies = ZELTPRecord::ReadList<ZELTPPlyDescription>(stream);
    d->approachLink.Load(stream);
}
