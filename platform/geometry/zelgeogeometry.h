#ifndef ZELGEOGEOMETRY_H
#define ZELGEOGEOMETRY_H

#include "zelgeometry_export.h"
#include "zelgeogeometryref.h"

#include <QByteArray>
#include <QObject>

#include <memory>

class ZELGeoContainer;
class ZELGeoGeometryPrivate;
class ZELGeoStream;

/*!
    The base class of everything that lives in a geometry container.

    A geometry registers with its container when it is constructed and gets
    its identity there (or keeps the one it was built with); it unregisters
    when it is destroyed, whatever destroys it, in constant time. The
    container owns its geometries but is not their QObject parent. A geometry
    built with a null container has no identity and is owned by its creator.

    Reference counting is bookkeeping for the objects that link to a geometry
    (AddReference, RemoveReference); nothing is deleted when a count drops to
    zero.

    Persistence: Save writes the geometry's record into a ZELGeoStream and
    Load reads it back. The base record is empty: ZELGeoGeometry::Save writes
    nothing and ZELGeoGeometry::Load reads nothing, so a derived record starts
    with the derived class's own fields.
*/
class ZELGEOMETRY_EXPORT ZELGeoGeometry : public QObject
{
    Q_OBJECT

public:
    ~ZELGeoGeometry() override;

    //! Writes the geometry's record. The base writes nothing.
    virtual void Save(ZELGeoStream& stream) const;
    //! Reads the record that Save wrote. The base reads nothing.
    virtual void Load(ZELGeoStream& stream);
    //! Replaces the geometry's fields with a record made by GetCurrentState:
    //! BeginStateLoad, Load from the record (references taken as they stand),
    //! EndStateLoad. Throws what Load throws.
    virtual void SetCurrentState(const QByteArray& state);
    //! Called once by the creator when the geometry is complete (the machine
    //! loader after construction, the container after loading it). The base
    //! marks the geometry initialised.
    virtual void Initialize();
    //! Called by ZELGeoContainer::DeleteGeometry just before the geometry is
    //! deleted. The base does nothing.
    virtual void Remove();
    //! Brackets every Load that the container or SetCurrentState runs. The
    //! base does nothing.
    virtual void BeginStateLoad();
    virtual void EndStateLoad();
    //! Called by the container once every geometry of a load has read its
    //! record, to let a geometry repair state the load left dangling; returns
    //! whether it changed anything. The base changes nothing and returns false.
    virtual bool Cleanup();

    //! The container the geometry lives in; null for a geometry built without one.
    ZELGeoContainer* GetContainer() const;
    //! The geometry's identity in its container; empty without a container.
    ZELGeoGeometryRef GetReference() const;
    //! The record that Save writes, as bytes.
    QByteArray GetCurrentState() const;
    bool IsInitialized() const;

    //! Reference bookkeeping; both work on const geometries.
    void AddReference() const;
    void RemoveReference() const;
    int GetReferenceCount() const;

    //! Tells the container that this geometry is about to change: the
    //! container then reports itself modified.
    void AboutToChange();

protected:
    //! Registers with `container` under `reference`, or under a new identity
    //! when the reference is empty. Throws ZELSysException "geometry identity
    //! %1 is already in use" when the reference is taken.
    ZELGeoGeometry(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ZELGeoGeometry(ZELGeoGeometryPrivate& dd, ZELGeoContainer* container,
                   const ZELGeoGeometryRef& reference);

    std::unique_ptr<ZELGeoGeometryPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELGeoGeometry)
    Q_DISABLE_COPY_MOVE(ZELGeoGeometry)
};

#endif // ZELGEOGEOMETRY_H
