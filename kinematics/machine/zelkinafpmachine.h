#ifndef ZELKINAFPMACHINE_H
#define ZELKINAFPMACHINE_H

#include "zelkinmachine.h"

#include <zelcomptowmask.h>

class ZELKinAFPMachinePrivate;

/*!
    An automated fibre placement machine: a machine with the parameters of
    its fibre placement head. Lengths are in mm, as the machine description
    gives them.

    Record (after the machine's): maximum mask, roller radius, material
    variable name (QString), tow width, add distance, add pinch distance,
    cut distance, head travel (doubles).
*/
class ZELKINEMATICS_EXPORT ZELKinAFPMachine : public ZELKinMachine
{
    Q_OBJECT

public:
    Q_INVOKABLE ZELKinAFPMachine(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinAFPMachine() override;

    //! The tows available on the head.
    ZELCompTowMask GetMaximumMask() const;
    //! Radius of the compaction roller (mm).
    double GetRollerRadius() const;
    //! Width of one tow (mm).
    double GetTowWidth() const;
    //! Distance used when tows are added (mm).
    double GetAddDistance() const;
    //! Pinch distance when tows are added (mm); may be zero.
    double GetPinchDistance() const;
    //! Distance used when tows are cut (mm).
    double GetCutDistance() const;
    //! Travel of the head (mm).
    double GetHeadTravel() const;
    //! The machine variable that drives the material (the tow feed axis):
    //! the variable whose label is the stored name, or null.
    ZELKinVariable* GetMaterialVariable() const;
    //! The stored label of the material variable.
    QString GetMaterialVariableName() const;

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinAFPMachine(ZELKinAFPMachinePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinMachineLoader;
    friend class ZELKinTestAccess;

    //! Validates the head parameters, stopping at the first failure with a
    //! ZELSysException: "maximum mask is invalid", "roller radius must be
    //! greater than zero", "material variable is not defined", "tow width must
    //! be greater than zero", "add distance must be greater than zero", "add
    //! pinch distance must not be negative", "cut distance must be greater
    //! than zero", "head travel must be greater than zero". The thresholds are
    //! 0.001 mm (-0.001 mm for the pinch); a NaN passes every check.
    ZELKinAFPMachine(ZELGeoContainer* container, const QString& label, const QString& ncCodeFormat,
                     const QString& ncCodeConfig, const QString& solver, const QString& solverConfig,
                     const ZELCompTowMask& maximumMask, double rollerRadius, const QString& materialVariable,
                     double towWidth, double addDistance, double addPinch, double cutDistance, double headTravel);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinAFPMachine)
};

#endif // ZELKINAFPMACHINE_H
