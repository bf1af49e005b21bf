#include <zelkinafpmachine.h>
#include <zelkinobject.h>
#include <zelkinresource.h>
#include <zelkinrotaryjoint.h>
#include <zelkintranslationjoint.h>
#include <zelkinvariable.h>

#include <zelgeocontainer.h>

#include <zeltestsupport.h>

#include <QMetaMethod>
#include <QMetaObject>
#include <QPointer>

#include <ostream>

namespace {

const QMetaObject* const ConcreteClasses[] = {&ZELKinAFPMachine::staticMetaObject, &ZELKinVariable::staticMetaObject,
                                              &ZELKinRotaryJoint::staticMetaObject,
                                              &ZELKinTranslationJoint::staticMetaObject};
const QMetaObject* const AbstractClasses[] = {&ZELKinObject::staticMetaObject, &ZELKinResource::staticMetaObject,
                                              &ZELKinMachine::staticMetaObject, &ZELKinJoint::staticMetaObject};

class ZELKinConcreteClass : public ::testing::TestWithParam<const QMetaObject*>
{
};

class ZELKinAbstractClass : public ::testing::TestWithParam<const QMetaObject*>
{
};

std::string ClassName(const ::testing::TestParamInfo<const QMetaObject*>& info)
{
    return info.param->className();
}

} // namespace

// Prints a class parameter as its class name rather than its address, which
// changes from run to run. In the global namespace, where argument-dependent
// lookup looks for a QMetaObject pointer.
void PrintTo(const QMetaObject* metaObject, std::ostream* os)
{
    *os << (metaObject ? metaObject->className() : "nullptr");
}

TEST_P(ZELKinConcreteClass, DeclaresTheLoadingConstructorAsConstructorZero)
{
    const QMetaObject* metaObject = GetParam();
    ASSERT_EQ(metaObject->constructorCount(), 1);
    const QMetaMethod constructor = metaObject->constructor(0);
    EXPECT_EQ(constructor.parameterTypes(), QList<QByteArray>({"ZELGeoContainer*", "ZELGeoGeometryRef"}));
    EXPECT_EQ(constructor.parameterNames(), QList<QByteArray>({"container", "reference"}));
}

TEST_P(ZELKinConcreteClass, IsCreatedByTheContainerFromItsClassName)
{
    const QMetaObject* metaObject = GetParam();
    EXPECT_EQ(ZELGeoContainer::FindClass(metaObject->className()), metaObject);

    ZELGeoContainer container;
    QObject* object = metaObject->newInstance(Q_ARG(ZELGeoContainer*, &container),
                                              Q_ARG(ZELGeoGeometryRef, ZELGeoGeometryRef()));
    ASSERT_NE(object, nullptr);
    EXPECT_STREQ(object->metaObject()->className(), metaObject->className());
    EXPECT_EQ(container.GetNumGeometries(), 1);
    EXPECT_EQ(object->parent(), nullptr);
}

TEST_P(ZELKinConcreteClass, DescendsFromTheKinematicResource)
{
    EXPECT_TRUE(GetParam()->inherits(&ZELKinResource::staticMetaObject));
    EXPECT_TRUE(GetParam()->inherits(&ZELKinObject::staticMetaObject));
    EXPECT_TRUE(GetParam()->inherits(&ZELGeoGeometry::staticMetaObject));
}

INSTANTIATE_TEST_SUITE_P(Machine, ZELKinConcreteClass, ::testing::ValuesIn(ConcreteClasses), ClassName);

TEST_P(ZELKinAbstractClass, CannotBeCreatedByTheContainer)
{
    const QMetaObject* metaObject = GetParam();
    EXPECT_EQ(metaObject->constructorCount(), 0);
    EXPECT_EQ(ZELGeoContainer::FindClass(metaObject->className()), nullptr);
    ZELGeoContainer container;
    EXPECT_EQ(metaObject->newInstance(Q_ARG(ZELGeoContainer*, &container),
                                      Q_ARG(ZELGeoGeometryRef, ZELGeoGeometryRef())),
              nullptr);
    EXPECT_EQ(container.GetNumGeometries(), 0);
}

INSTANTIATE_TEST_SUITE_P(Machine, ZELKinAbstractClass, ::testing::ValuesIn(AbstractClasses), ClassName);

TEST(ZELKinObject, EachClassHasItsOwnMetaObjectNamedAfterIt)
{
    EXPECT_STREQ(ZELKinObject::staticMetaObject.className(), "ZELKinObject");
    EXPECT_EQ(ZELKinObject::staticMetaObject.superClass(), &ZELGeoGeometry::staticMetaObject);
    EXPECT_EQ(ZELKinResource::staticMetaObject.superClass(), &ZELKinObject::staticMetaObject);
    EXPECT_EQ(ZELKinAFPMachine::staticMetaObject.superClass(), &ZELKinMachine::staticMetaObject);
    EXPECT_EQ(ZELKinRotaryJoint::staticMetaObject.superClass(), &ZELKinJoint::staticMetaObject);
}

TEST(ZELKinObject, TranslatesInItsOwnContextAndFallsBackToTheSourceText)
{
    EXPECT_EQ(ZELKinObject::tr("head travel must be greater than zero"),
              QStringLiteral("head travel must be greater than zero"));
}

TEST(ZELKinObject, LoadingConstructionWithoutAContainerGivesAnObjectOwnedByItsCreator)
{
    QPointer<ZELKinVariable> variable = new ZELKinVariable(nullptr, ZELGeoGeometryRef());
    EXPECT_EQ(variable->GetContainer(), nullptr);
    EXPECT_FALSE(variable->GetReference().IsValid());
    delete variable;
    EXPECT_TRUE(variable.isNull());
}
