#include "zelkinafpmachine.h"
#include "zelkinafpmachine_p.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>

ZELGEO_REGISTER_CLASS(ZELKinAFPMachine)

namespace {

// Head dimensions below this are taken as unset (mm).
constexpr double LengthThreshold = 0.001;

} // namespace

ZELKinAFPMachine::ZELKinAFPMachine(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinAFPMachine(new ZELKinAFPMachinePrivate(this), container, reference)
{
}

ZELKinAFPMachine::ZELKinAFPMachine(ZELKinAFPMachinePrivate* d, ZELGeoContainer* container,
                                   const ZELGeoGeometryRef& reference)
    : ZELKinMachine(d, container, reference)
{
}

ZELKinAFPMachine::ZELKinAFPMachine(ZELGeoContainer* container, const QString& label, const QString& ncCodeFormat,
                                   const QString& ncCodeConfig, const QString& solver, const QString& solverConfig,
                                   const ZELCompTowMask& maximumMask, double rollerRadius,
                                   const QString& materialVariable, double towWidth, double addDistance,
                                   double addPinch, double cutDistance, double headTravel)
    : ZELKinMachine(new ZELKinAFPMachinePrivate(this), container, label, ncCodeFormat, ncCodeConfig, solver,
                    solverConfig)
{
    Q_D(ZELKinAFPMachine);
    // A mask is refused only when both counts are negative, as an invalid mask reports them.
    if (maximumMask.GetNumTows() < 0 && maximumMask.GetNumEnabled() < 0)
        throw ZELSysException(tr("maximum mask is invalid"));
    if (rollerRadius < LengthThreshold)
        throw ZELSysException(tr("roller radius must be greater than zero"));
    if (materialVariable.isEmpty())
        throw ZELSysException(tr("material variable is not defined"));
    if (towWidth < LengthThreshold)
        throw ZELSysException(tr("tow width must be greater than zero"));
    if (addDistance < LengthThreshold)
        throw ZELSysException(tr("add distance must be greater than zero"));
    if (addPinch < -LengthThreshold)
        throw ZELSysException(tr("add pinch distance must not be negative"));
    if (cutDistance < LengthThreshold)
        throw ZELSysException(tr("cut distance must be greater than zero"));
    if (headTravel < LengthThreshold)
        throw ZELSysException(tr("head travel must be greater than zero"));

    d->maximumMask = maximumMask;
    d->rollerRadius = rollerRadius;
    d->materialVariable = materialVariable;
    d->towWidth = towWidth;
    d->addDistance = addDistance;
    d->addPinch = addPinch;
    d->cutDistance = cutDistance;
    d->headTravel = headTravel;
}

ZELKinAFPMachine::~ZELKinAFPMachine() = default;

void ZELKinAFPMachine::_constructor_checker()
{
    ZELKinAFPMachine checker(nullptr, ZELGeoGeometryRef());
}

ZELCompTowMask ZELKinAFPMachine::GetMaximumMask() const
{
    Q_D(const ZELKinAFPMachine);
    return d->maximumMask;
}

double ZELKinAFPMachine::GetRollerRadius() const
{
    Q_D(const ZELKinAFPMachine);
    return d->rollerRadius;
}

double ZELKinAFPMachine::GetTowWidth() const
{
    Q_D(const ZELKinAFPMachine);
    return d->towWidth;
}

double ZELKinAFPMachine::GetAddDistance() const
{
    Q_D(const ZELKinAFPMachine);
    return d->addDistance;
}

double ZELKinAFPMachine::GetPinchDistance() const
{
    Q_D(const ZELKinAFPMachine);
    return d->addPinch;
}

double ZELKinAFPMachine::GetCutDistance() const
{
    Q_D(const ZELKinAFPMachine);
    return d->cutDistance;
}

double ZELKinAFPMachine::GetHeadTravel() const
{
    Q_D(const ZELKinAFPMachine);
    return d->headTravel;
}

ZELKinVariable* ZELKinAFPMachine::GetMaterialVariable() const
{
    Q_D(const ZELKinAFPMachine);
    return GetVariable(d->materialVariable);
}

QString ZELKinAFPMachine::GetMaterialVariableName() const
{
    Q_D(const ZELKinAFPMachine);
    return d->materialVariable;
}

void ZELKinAFPMachine::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinAFPMachine);
    ZELKinMachine::Save(stream);
    stream << d->maximumMask << d->rollerRadius << d->materialVariable << d->towWidth << d->addDistance
           << d->addPinch << d->cutDistance << d->headTravel;
}

void ZELKinAFPMachine::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinAFPMachine);
    ZELKinMachine::Load(stream);
    stream >> d->maximumMask >> d->rollerRadius >> d->materialVariable >> d->towWidth >> d->addDistance
        >> d->addPinch >> d->cutDistance >> d->headTravel;
}
