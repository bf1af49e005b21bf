#ifndef ZELKINROTARYJOINT_H
#define ZELKINROTARYJOINT_H

#include "zelkinjoint.h"

#include <zelmathpoint.h>
#include <zelmathvector.h>

class ZELKinRotaryJointPrivate;

/*!
    A joint that turns about an axis: the axis direction (stored as given,
    not normalised) and a pivot point on the axis (mm), driven by one rotary
    variable.

    Record (after the joint's): vector, then pivot.
*/
class ZELKINEMATICS_EXPORT ZELKinRotaryJoint : public ZELKinJoint
{
    Q_OBJECT

public:
    Q_INVOKABLE ZELKinRotaryJoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinRotaryJoint() override;

    //! The direction of the rotation axis, as given.
    ZELMathVector GetVector() const;
    //! A point on the rotation axis (mm).
    ZELMathPoint GetPivot() const;

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinRotaryJoint(ZELKinRotaryJointPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinMachineLoader;
    friend class ZELKinTestAccess;

    //! Registers the joint with its machine and parent, then throws
    //! ZELSysException "Rotary joint requires rotary variable." unless the
    //! variable is rotary.
    ZELKinRotaryJoint(const QString& name, ZELKinMachine* machine, ZELKinVariable* variable,
                      ZELKinJoint::Priority priority, const ZELMathVector& vector, const ZELMathPoint& pivot,
                      ZELKinJoint* parent);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinRotaryJoint)
};

#endif // ZELKINROTARYJOINT_H
