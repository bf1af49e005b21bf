#ifndef ZELTPOBJECT_H
#define ZELTPOBJECT_H

#include "zeltoolpath_export.h"

#include <zelgeogeometry.h>

#include <QString>

#include <memory>

class ZELTPObjectPrivate;

/*!
    The base of the named parts of a toolpath (the program, its procedures,
    courses and course links): a geometry of the host's container with a name
    that the programmer gave it.

    ZELTPObject owns the private object of its whole class tree: the
    most-derived constructor allocates its own private class and hands it down
    through the protected constructors.

    Record: the geometry part, then the name (QString).
*/
class ZELTOOLPATH_EXPORT ZELTPObject : public ZELGeoGeometry
{
    Q_OBJECT

public:
    ~ZELTPObject() override;

    //! The name; empty by default. Names need not be unique.
    QString GetName() const;
    void SetName(const QString& name);

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    //! Loading form: the name stays empty until Load.
    ZELTPObject(ZELTPObjectPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creating form: the container assigns the identity.
    ZELTPObject(ZELTPObjectPrivate* d, ZELGeoContainer* container, const QString& name);

    std::unique_ptr<ZELTPObjectPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELTPObject)
    Q_DISABLE_COPY_MOVE(ZELTPObject)
};

#endif // ZELTPOBJECT_H
