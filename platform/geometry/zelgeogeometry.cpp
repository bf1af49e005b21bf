#include "zelgeogeometry.h"
#include "zelgeogeometry_p.h"

#include "zelgeocontainer.h"
#include "zelgeocontainer_p.h"
#include "zelgeostream.h"

ZELGeoGeometry::ZELGeoGeometry(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELGeoGeometry(*new ZELGeoGeometryPrivate, container, reference)
{
}

ZELGeoGeometry::ZELGeoGeometry(ZELGeoGeometryPrivate& dd, ZELGeoContainer* container,
                               const ZELGeoGeometryRef& reference)
    : d_ptr(&dd)
{
    Q_D(ZELGeoGeometry);
    if (container) {
        d->reference = ZELGeoContainerPrivate::get(container)->Register(this, reference);
        d->container = container;
    }
}

ZELGeoGeometry::~ZELGeoGeometry()
{
    Q_D(ZELGeoGeometry);
    if (d->container)
        ZELGeoContainerPrivate::get(d->container)->Unregister(d->reference);
}

void ZELGeoGeometry::Save(ZELGeoStream&) const
{
}

void ZELGeoGeometry::Load(ZELGeoStream&)
{
}

void ZELGeoGeometry::SetCurrentState(const QByteArray& state)
{
    ZELGeoStream stream(state, GetContainer());
    BeginStateLoad();
    Load(stream);
    EndStateLoad();
}

void ZELGeoGeometry::Initialize()
{
    Q_D(ZELGeoGeometry);
    d->initialized = true;
}

void ZELGeoGeometry::Remove()
{
}

void ZELGeoGeometry::BeginStateLoad()
{
}

void ZELGeoGeometry::EndStateLoad()
{
}

bool ZELGeoGeometry::Cleanup()
{
    return false;
}

ZELGeoContainer* ZELGeoGeometry::GetContainer() const
{
    Q_D(const ZELGeoGeometry);
    return d->container;
}

ZELGeoGeometryRef ZELGeoGeometry::GetReference() const
{
    Q_D(const ZELGeoGeometry);
    return d->reference;
}

QByteArray ZELGeoGeometry::GetCurrentState() const
{
    QByteArray state;
    ZELGeoStream stream(&state, GetContainer());
    Save(stream);
    return state;
}

bool ZELGeoGeometry::IsInitialized() const
{
    Q_D(const ZELGeoGeometry);
    return d->initialized;
}

void ZELGeoGeometry::AddReference() const
{
    Q_D(const ZELGeoGeometry);
    ++d->referenceCount;
}

void ZELGeoGeometry::RemoveReference() const
{
    Q_D(const ZELGeoGeometry);
    --d->referenceCount;
}

int ZELGeoGeometry::GetReferenceCount() const
{
    Q_D(const ZELGeoGeometry);
    return d->referenceCount;
}

void ZELGeoGeometry::AboutToChange()
{
    Q_D(ZELGeoGeometry);
    if (d->container)
        d->container->SetModified(true);
}
