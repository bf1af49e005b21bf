#include <zelsysexception.h>

#include <zeltestsupport.h>

TEST(ZELSysException, KeepsTheMessageVerbatim)
{
    const ZELSysException exception(QStringLiteral("roller radius must be greater than zero"));
    EXPECT_EQ(exception.GetMessage(), QStringLiteral("roller radius must be greater than zero"));
    EXPECT_STREQ(exception.what(), "roller radius must be greater than zero");
}

TEST(ZELSysException, WhatIsUtf8ForNonAsciiText)
{
    const QString message = QStringLiteral("Gelenk 'Kopfdrehung \u00b0' fehlt");
    const ZELSysException exception(message);
    EXPECT_EQ(QString::fromUtf8(exception.what()), message);
    EXPECT_EQ(exception.GetMessage(), message);
}

TEST(ZELSysException, IsCaughtAsStdException)
{
    EXPECT_THROW_MESSAGE(throw ZELSysException(QStringLiteral("boom")), std::exception, "boom");
    EXPECT_THROW_MESSAGE(throw ZELSysException(QStringLiteral("boom")), std::runtime_error, "boom");
}

TEST(ZELSysException, CopiesKeepTheMessage)
{
    const ZELSysException original(QStringLiteral("first"));
    ZELSysException copy(QStringLiteral("second"));
    copy = original;
    EXPECT_EQ(copy.GetMessage(), QStringLiteral("first"));
}
