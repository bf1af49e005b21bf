#include "zelkintranslationjoint.h"
#include "zelkintranslationjoint_p.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>

ZELGEO_REGISTER_CLASS(ZELKinTranslationJoint)

ZELKinTranslationJoint::ZELKinTranslationJoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinTranslationJoint(new ZELKinTranslationJointPrivate(this), container, reference)
{
}

ZELKinTranslationJoint::ZELKinTranslationJoint(ZELKinTranslationJointPrivate* d, ZELGeoContainer* container,
                                               const ZELGeoGeometryRef& reference)
    : ZELKinJoint(d, container, reference)
{
}

ZELKinTranslationJoint::ZELKinTranslationJoint(const QString& name, ZELKinMachine* machine,
                                               ZELKinVariable* variable, ZELKinJoint::Priority priority,
                                               const ZELMathVector& vector, ZELKinJoint* parent)
    : ZELKinJoint(new ZELKinTranslationJointPrivate(this), name, machine, {variable}, priority, parent)
{
    Q_D(ZELKinTranslationJoint);
    d->vector = vector;
    if (!variable || variable->GetType() != ZELKinVariable::Linear)
        throw ZELSysException(tr("Translation joint requires linear variable"));
}

ZELKinTranslationJoint::~ZELKinTranslationJoint() = default;

void ZELKinTranslationJoint::_constructor_checker()
{
    ZELKinTranslationJoint checker(nullptr, ZELGeoGeometryRef());
}

ZELMathVector ZELKinTranslationJoint::GetVector() const
{
    Q_D(const ZELKinTranslationJoint);
    return d->vector;
}

void ZELKinTranslationJoint::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinTranslationJoint);
    ZELKinJoint::Save(stream);
    stream << d->vector;
}

void ZELKinTranslationJoint::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinTranslationJoint);
    ZELKinJoint::Load(stream);
    stream >> d->vector;
}
