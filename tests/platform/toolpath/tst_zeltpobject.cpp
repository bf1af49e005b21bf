// The named toolpath objects (program, procedures, courses, course links)
// share their name and its place at the head of their record through
// ZELTPObject; each case runs for every one of them.

#include "zeltptestsupport.h"

#include <zeltpcourse.h>
#include <zeltpcourselink.h>
#include <zeltpprobingprocedure.h>
#include <zeltpprocedure.h>
#include <zeltpprogram.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptoolchangelink.h>
#include <zeltptowcourse.h>

#include <zelgeostream.h>

#include <zeltestsupport.h>

template <typename T>
class ZELTPObjectName : public ::testing::Test
{
};

using NamedClasses =
    ::testing::Types<ZELTPProgram, ZELTPProcedure, ZELTPRollLayupProcedure, ZELTPProbingProcedure, ZELTPCourse,
                     ZELTPTowCourse, ZELTPCourseLink, ZELTPToolChangeLink>;

class ClassName
{
public:
    template <typename T>
    static std::string GetName(int)
    {
        return T::staticMetaObject.className();
    }
};

TYPED_TEST_SUITE(ZELTPObjectName, NamedClasses, ClassName);

TYPED_TEST(ZELTPObjectName, IsEmptyAfterLoadingConstruction)
{
    const TypeParam object(nullptr, ZELGeoGeometryRef());
    EXPECT_TRUE(object.GetName().isEmpty());
    EXPECT_EQ(object.GetContainer(), nullptr);
}

TYPED_TEST(ZELTPObjectName, IsStoredByTheCreatingConstructorInTheGivenContainer)
{
    ZELGeoContainer container;
    const TypeParam* object = new TypeParam(&container, QStringLiteral("Ply 45"));
    EXPECT_EQ(object->GetName(), QStringLiteral("Ply 45"));
    EXPECT_EQ(object->GetContainer(), &container);
    EXPECT_TRUE(object->GetReference().IsValid());
}

TYPED_TEST(ZELTPObjectName, IsReplacedBySetNameWhichMarksTheContainerModified)
{
    ZELGeoContainer container;
    TypeParam* object = new TypeParam(&container, QStringLiteral("first"));
    container.SetModified(false);
    object->SetName(QStringLiteral("second"));
    EXPECT_EQ(object->GetName(), QStringLiteral("second"));
    EXPECT_TRUE(container.IsModified());
}

TYPED_TEST(ZELTPObjectName, OpensTheRecord)
{
    const TypeParam object(nullptr, QStringLiteral("Lage 1"));
    ZELGeoStream record(object.GetCurrentState(), nullptr);
    QString name;
    record >> name;
    EXPECT_EQ(name, QStringLiteral("Lage 1"));
}

TYPED_TEST(ZELTPObjectName, SurvivesSaveAndLoadWithItsClassAndNonAsciiCharacters)
{
    ZELGeoContainer source;
    new TypeParam(&source, QStringLiteral("Übergang ø 12 — ★"));
    new TypeParam(&source, QString());

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(source, target);
    ASSERT_EQ(loaded.size(), 2);
    const auto* named = qobject_cast<const TypeParam*>(loaded.at(0));
    const auto* unnamed = qobject_cast<const TypeParam*>(loaded.at(1));
    ASSERT_NE(named, nullptr);
    ASSERT_NE(unnamed, nullptr);
    EXPECT_EQ(named->GetName(), QStringLiteral("Übergang ø 12 — ★"));
    EXPECT_TRUE(unnamed->GetName().isEmpty());
}

TYPED_TEST(ZELTPObjectName, IsReplacedWhenALoadedStateIsSet)
{
    TypeParam object(nullptr, QStringLiteral("old"));
    const TypeParam other(nullptr, QStringLiteral("new"));
    object.SetCurrentState(other.GetCurrentState());
    EXPECT_EQ(object.GetName(), QStringLiteral("new"));
}
