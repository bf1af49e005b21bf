#include <zelgeogeometrynotfoundexception.h>

#include <zeltestsupport.h>

TEST(ZELGeoGeometryNotFoundException, NamesTheReference)
{
    const ZELGeoGeometryNotFoundException exception(ZELGeoGeometryRef(17));
    EXPECT_EQ(exception.GetMessage(), QStringLiteral("no geometry with reference 17"));
    EXPECT_EQ(exception.GetReference(), ZELGeoGeometryRef(17));
    EXPECT_TRUE(exception.GetExpectedClass().isEmpty());
}

TEST(ZELGeoGeometryNotFoundException, NamesTheExpectedClassWhenGiven)
{
    const ZELGeoGeometryNotFoundException exception(ZELGeoGeometryRef(3), QStringLiteral("ZELKinJoint"));
    EXPECT_EQ(exception.GetMessage(), QStringLiteral("no geometry of class ZELKinJoint with reference 3"));
    EXPECT_EQ(exception.GetExpectedClass(), QStringLiteral("ZELKinJoint"));
}

TEST(ZELGeoGeometryNotFoundException, IsCaughtAsZELSysExceptionAndStdException)
{
    EXPECT_THROW_MESSAGE(throw ZELGeoGeometryNotFoundException(ZELGeoGeometryRef(1)), ZELSysException,
                         "no geometry with reference 1");
    EXPECT_THROW_MESSAGE(throw ZELGeoGeometryNotFoundException(ZELGeoGeometryRef(1)), std::exception,
                         "no geometry with reference 1");
}
