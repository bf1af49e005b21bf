#ifndef ZELKINVARIABLE_H
#define ZELKINVARIABLE_H

#include "zelkinresource.h"

class ZELKinMachine;
class ZELKinVariablePrivate;

/*!
    One axis of a machine, linear or rotary: the joint-space coordinate that
    joints are driven by and that solutions are made of.

    Values are in internal units: a linear variable in mm, mm/s and mm/s²; a
    rotary one in rad, rad/s and rad/s². A NaN limit means no limit on that
    side. Variables are created by the machine loader and belong to one
    machine.

    Record (after the label): machine (weak link), type (qint32), minimum,
    maximum, max velocity, max acceleration (doubles).
*/
class ZELKINEMATICS_EXPORT ZELKinVariable : public ZELKinResource
{
    Q_OBJECT

public:
    enum VariableType : qint32 { Linear = 0, Rotary = 1 };
    Q_ENUM(VariableType)

    //! Loading constructor: every field at its default until Load.
    Q_INVOKABLE ZELKinVariable(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinVariable() override;

    //! The machine the variable belongs to, or null if it has gone.
    ZELKinMachine* GetMachine() const;
    VariableType GetType() const;
    double GetMinimum() const;
    double GetMaximum() const;
    double GetMaxVelocity() const;
    double GetMaxAcceleration() const;
    //! True when both limits are NaN (an endless axis); one NaN limit alone
    //! does not make the variable infinite.
    bool IsInfinite() const;

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinVariable(ZELKinVariablePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinMachineLoader;
    friend class ZELKinTestAccess;

    //! Appends the variable to the machine's variable list, then throws
    //! ZELSysException "variable minimum is greater than maximum for '%1'"
    //! when minimum > maximum (a NaN on either side passes), or "variable
    //! '%1' needs a machine" for a null machine.
    ZELKinVariable(ZELKinMachine* machine, const QString& name, VariableType type, double minimum,
                   double maximum, double maxVelocity, double maxAcceleration);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinVariable)
};

#endif // ZELKINVARIABLE_H
