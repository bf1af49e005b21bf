#include <zelsysnotimplementedexception.h>

#include <zeltestsupport.h>

TEST(ZELSysNotImplementedException, NamesTheOperationWhenGiven)
{
    const ZELSysNotImplementedException exception(QStringLiteral("ToTraori"));
    EXPECT_EQ(exception.GetMessage(), QStringLiteral("'ToTraori' is not implemented"));
    EXPECT_EQ(exception.GetOperation(), QStringLiteral("ToTraori"));
}

TEST(ZELSysNotImplementedException, SaysNotImplementedWithoutAnOperation)
{
    const ZELSysNotImplementedException exception;
    EXPECT_EQ(exception.GetMessage(), QStringLiteral("not implemented"));
    EXPECT_TRUE(exception.GetOperation().isEmpty());
}

TEST(ZELSysNotImplementedException, IsAZELSysException)
{
    EXPECT_THROW_MESSAGE(throw ZELSysNotImplementedException(), ZELSysException, "not implemented");
}
