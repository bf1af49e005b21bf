// A course's own field beside its name: the retract link. The name is tested
// with the other named objects in tst_zeltpobject.cpp.

#include "zeltptestsupport.h"

#include <zeltpcourse.h>
#include <zeltpcourselink.h>
#include <zeltppoint.h>

#include <zelgeogeometrynotfoundexception.h>
#include <zelgeostream.h>

#include <zeltestsupport.h>

TEST(ZELTPCourse, HasNoRetractLinkAfterEitherConstruction)
{
    const ZELTPCourse loading(nullptr, ZELGeoGeometryRef());
    const ZELTPCourse creating(nullptr, QStringLiteral("course 1"));
    EXPECT_EQ(loading.GetRetractLink(), nullptr);
    EXPECT_EQ(creating.GetRetractLink(), nullptr);
}

TEST(ZELTPCourse, SetRetractLinkKeepsTheLinkAndMarksTheContainerModified)
{
    ZELGeoContainer container;
    auto* course = new ZELTPCourse(&container, QStringLiteral("course 1"));
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("retract 1"));
    container.SetModified(false);
    course->SetRetractLink(link);
    EXPECT_EQ(course->GetRetractLink(), link);
    EXPECT_TRUE(container.IsModified());
    course->SetRetractLink(nullptr);
    EXPECT_EQ(course->GetRetractLink(), nullptr);
}

TEST(ZELTPCourse, RetractLinkReadsNullOnceTheLinkIsDestroyed)
{
    ZELGeoContainer container;
    auto* course = new ZELTPCourse(&container, QStringLiteral("course 1"));
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("retract 1"));
    course->SetRetractLink(link);
    container.DeleteGeometry(link);
    EXPECT_EQ(course->GetRetractLink(), nullptr);
    const QByteArray expected = ZELTPTest::Record(
        [](ZELGeoStream& s) { s << QStringLiteral("course 1") << ZELGeoGeometryRef(); });
    EXPECT_EQ(course->GetCurrentState(), expected);
}

TEST(ZELTPCourse, RecordIsTheNameThenTheRetractLinkReference)
{
    ZELGeoContainer container;
    auto* course = new ZELTPCourse(&container, QStringLiteral("course 1"));
    auto* link = new ZELTPCourseLink(&container, QStringLiteral("retract 1"));
    course->SetRetractLink(link);
    const QByteArray expected = ZELTPTest::Record(
        [&](ZELGeoStream& s) { s << QStringLiteral("course 1") << link->GetReference(); });
    EXPECT_EQ(course->GetCurrentState(), expected);
}

TEST(ZELTPCourse, RetractLinkSurvivesSaveAndLoadWhicheverComesFirst)
{
    ZELGeoContainer source;
    auto* linkFirst = new ZELTPCourseLink(&source, QStringLiteral("retract A"));
    auto* courseA = new ZELTPCourse(&source, QStringLiteral("A"));
    auto* courseB = new ZELTPCourse(&source, QStringLiteral("B"));
    auto* linkLast = new ZELTPCourseLink(&source, QStringLiteral("retract B"));
    courseA->SetRetractLink(linkFirst);
    courseB->SetRetractLink(linkLast);

    ZELGeoContainer target;
    const QList<ZELGeoGeometry*> loaded = ZELTPTest::CopyContainer(source, target);
    const QList<ZELTPCourse*> courses = ZELTPTest::AllOf<ZELTPCourse>(loaded);
    const QList<ZELTPCourseLink*> links = ZELTPTest::AllOf<ZELTPCourseLink>(loaded);
    ASSERT_EQ(courses.size(), 2);
    ASSERT_EQ(links.size(), 2);
    EXPECT_EQ(courses.at(0)->GetRetractLink(), links.at(0));
    EXPECT_EQ(courses.at(1)->GetRetractLink(), links.at(1));
}

TEST(ZELTPCourse, ARetractLinkThatNamesNothingThrowsNotFound)
{
    ZELGeoContainer container;
    auto* course = new ZELTPCourse(&container, QStringLiteral("course 1"));
    const QByteArray record =
        ZELTPTest::Record([](ZELGeoStream& s) { s << QStringLiteral("course 1") << ZELGeoGeometryRef(99); });
    EXPECT_THROW_MESSAGE(course->SetCurrentState(record), ZELGeoGeometryNotFoundException,
                         "no geometry of class ZELTPCourseLink with reference 99");
}

TEST(ZELTPCourse, ARetractLinkThatNamesAnotherClassThrowsNotFound)
{
    ZELGeoContainer container;
    auto* course = new ZELTPCourse(&container, QStringLiteral("course 1"));
    auto* point = new ZELTPPoint(&container, ZELMathAxis());
    const QByteArray record = ZELTPTest::Record(
        [&](ZELGeoStream& s) { s << QStringLiteral("course 1") << point->GetReference(); });
    EXPECT_THROW_MESSAGE(course->SetCurrentState(record), ZELGeoGeometryNotFoundException,
                         QStringLiteral("no geometry of class ZELTPCourseLink with reference %1")
                             .arg(point->GetReference().GetIdentity()));
}

TEST(ZELTPCourse, ARecordThatEndsAfterTheNameLoadsWithoutRetractLink)
{
    ZELGeoContainer container;
    auto* course = new ZELTPCourse(&container, QStringLiteral("old"));
    course->SetRetractLink(new ZELTPCourseLink(&container, QStringLiteral("retract")));
    course->SetCurrentState(ZELTPTest::Record([](ZELGeoStream& s) { s << QStringLiteral("new"); }));
    EXPECT_EQ(course->GetName(), QStringLiteral("new"));
    EXPECT_EQ(course->GetRetractLink(), nullptr);
}
