#ifndef ZELKINRESOURCE_H
#define ZELKINRESOURCE_H

#include "zelkinobject.h"

#include <QString>

#include <memory>

class ZELKinResourcePrivate;

/*!
    The base of the machine-side objects (machine, variables, joints): a
    kinematic object with a label, its name.

    ZELKinResource owns the private object of the whole class tree: the
    most-derived constructor allocates its own private class and hands it down
    through the protected constructors, and ZELKinResource deletes it before
    the geometry part goes.

    Record: the geometry part, then the label (QString).
*/
class ZELKINEMATICS_EXPORT ZELKinResource : public ZELKinObject
{
    Q_OBJECT

public:
    ~ZELKinResource() override;

    //! The name; fixed at creation or by Load, empty by default.
    QString GetLabel() const;

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    //! Loading form: the label stays empty until Load.
    ZELKinResource(ZELKinResourcePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Creating form: the container assigns the identity.
    ZELKinResource(ZELKinResourcePrivate* d, ZELGeoContainer* container, const QString& label);

    std::unique_ptr<ZELKinResourcePrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinResource)
    Q_DISABLE_COPY_MOVE(ZELKinResource)
};

#endif // ZELKINRESOURCE_H
