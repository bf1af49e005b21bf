#ifndef ZELKINTRANSLATIONJOINT_H
#define ZELKINTRANSLATIONJOINT_H

#include "zelkinjoint.h"

#include <zelmathvector.h>

class ZELKinTranslationJointPrivate;

/*!
    A joint that slides along a direction (stored as given, not normalised),
    driven by one linear variable.

    Record (after the joint's): vector.
*/
class ZELKINEMATICS_EXPORT ZELKinTranslationJoint : public ZELKinJoint
{
    Q_OBJECT

public:
    Q_INVOKABLE ZELKinTranslationJoint(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    ~ZELKinTranslationJoint() override;

    //! The direction of travel, as given.
    ZELMathVector GetVector() const;

    void Save(ZELGeoStream& stream) const override;
    void Load(ZELGeoStream& stream) override;

protected:
    ZELKinTranslationJoint(ZELKinTranslationJointPrivate* d, ZELGeoContainer* container,
                           const ZELGeoGeometryRef& reference);

private:
    friend class ZELKinMachineLoader;
    friend class ZELKinTestAccess;

    //! Registers the joint with its machine and parent, then throws
    //! ZELSysException "Translation joint requires linear variable" unless
    //! the variable is linear.
    ZELKinTranslationJoint(const QString& name, ZELKinMachine* machine, ZELKinVariable* variable,
                           ZELKinJoint::Priority priority, const ZELMathVector& vector, ZELKinJoint* parent);
    void _constructor_checker();

    Q_DECLARE_PRIVATE(ZELKinTranslationJoint)
};

#endif // ZELKINTRANSLATIONJOINT_H
