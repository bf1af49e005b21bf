#include <zeltpfilename.h>

#include <zeltestsupport.h>

#include <gtest/gtest.h>

namespace {

struct NameCase
{
    const char* name;
    QString value;
    const char* problem; // empty for a name fit for files
};
ZELTEST_PRINT_CASE_BY_NAME(NameCase);

class ZELTPFileNameRule : public ::testing::TestWithParam<NameCase>
{
};

} // namespace

TEST_P(ZELTPFileNameRule, NamesTheProblemOfANameThatCannotStayOneFileName)
{
    const NameCase& c = GetParam();
    EXPECT_EQ(ZELTPFileName::GetProblem(c.value), QString::fromUtf8(c.problem));
    EXPECT_EQ(ZELTPFileName::IsValid(c.value), QByteArray(c.problem).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Names, ZELTPFileNameRule,
    ::testing::Values(
        NameCase{"Plain", QStringLiteral("wing-skin"), ""},
        NameCase{"SpacesAndDots", QStringLiteral("wing skin v1.2"), ""},
        NameCase{"OneDotAlone", QStringLiteral("."), ""},
        NameCase{"NonAscii", QString::fromUtf8("\xC3\xA9paisseur \xE5\xB1\xA4"), ""},
        NameCase{"Empty", QString(), "name is empty"},
        NameCase{"Slash", QStringLiteral("wing/skin"), "name contains the path separator '/'"},
        NameCase{"Backslash", QStringLiteral("wing\\skin"), "name contains the path separator '\\'"},
        NameCase{"ParentStep", QStringLiteral(".."), "name contains '..'"},
        NameCase{"ParentStepInside", QStringLiteral("a..b"), "name contains '..'"},
        NameCase{"Nul", QString(QChar(0)) + QStringLiteral("wing"), "name contains a NUL character"},
        NameCase{"Escape", QStringLiteral("wing\x1B[2J"), "name contains the control character U+001B"},
        NameCase{"Tab", QStringLiteral("wing\tskin"), "name contains the control character U+0009"},
        NameCase{"Delete", QStringLiteral("wing\x7F"), "name contains the control character U+007F"},
        NameCase{"NextLine", QString(QChar(0x85)), "name contains the line end U+0085"},
        NameCase{"LineFeed", QStringLiteral("wing\nskin"), "name contains the line end U+000A"},
        NameCase{"CarriageReturn", QStringLiteral("wing\rskin"), "name contains the line end U+000D"},
        NameCase{"LineSeparator", QStringLiteral("wing") + QChar(0x2028), "name contains the line end U+2028"},
        NameCase{"DoubleQuote", QStringLiteral("wing\"skin"), "name contains a double quote"},
        NameCase{"SingleQuote", QStringLiteral("wing's skin"), ""},
        // The first problem in reading order is the one named.
        NameCase{"SlashThenControl", QStringLiteral("../\x01"), "name contains the path separator '/'"}),
    [](const ::testing::TestParamInfo<NameCase>& info) { return std::string(info.param.name); });
