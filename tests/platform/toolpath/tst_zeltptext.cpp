#include <zeltptext.h>

#include <zeltestsupport.h>

#include <gtest/gtest.h>

namespace {

struct TextCase
{
    const char* name;
    QString value;
    const char* problem; // empty for a text fit for a quoted NC line
};
ZELTEST_PRINT_CASE_BY_NAME(TextCase);

class ZELTPTextRule : public ::testing::TestWithParam<TextCase>
{
};

QString With(char16_t character)
{
    return QStringLiteral("T35") + QChar(character) + QStringLiteral("8552");
}

} // namespace

TEST_P(ZELTPTextRule, NamesTheFirstCharacterThatWouldLeaveTheLineOrItsQuotes)
{
    const TextCase& c = GetParam();
    EXPECT_EQ(ZELTPText::GetProblem(c.value), QString::fromUtf8(c.problem));
    EXPECT_EQ(ZELTPText::IsValid(c.value), QByteArray(c.problem).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ZELTPTextRule,
    ::testing::Values(TextCase{"Empty", QString(), ""},
                      TextCase{"Plain", QStringLiteral("T35-E120-6.35"), ""},
                      TextCase{"SpacesSlashesAndSingleQuotes", QStringLiteral("T35/E120 1/4' tow (A)"), ""},
                      TextCase{"NonAscii", QString::fromUtf8("\xC3\xA9paisseur \xE5\xB1\xA4"), ""},
                      TextCase{"LineFeed", With(0x0A), "text contains the line end U+000A"},
                      TextCase{"VerticalTab", With(0x0B), "text contains the line end U+000B"},
                      TextCase{"FormFeed", With(0x0C), "text contains the line end U+000C"},
                      TextCase{"CarriageReturn", With(0x0D), "text contains the line end U+000D"},
                      TextCase{"NextLine", With(0x85), "text contains the line end U+0085"},
                      TextCase{"LineSeparator", With(0x2028), "text contains the line end U+2028"},
                      TextCase{"ParagraphSeparator", With(0x2029), "text contains the line end U+2029"},
                      TextCase{"Nul", With(0x00), "text contains a NUL character"},
                      TextCase{"Tab", With(0x09), "text contains the control character U+0009"},
                      TextCase{"Escape", With(0x1B), "text contains the control character U+001B"},
                      TextCase{"UnitSeparator", With(0x1F), "text contains the control character U+001F"},
                      TextCase{"Delete", With(0x7F), "text contains the control character U+007F"},
                      TextCase{"LastC1Control", With(0x9F), "text contains the control character U+009F"},
                      TextCase{"NoBreakSpaceAfterTheControls", With(0xA0), ""},
                      TextCase{"DoubleQuote", With(u'"'), "text contains a double quote"},
                      // The first unfit character in reading order is the one named.
                      TextCase{"QuoteThenLineFeed", QStringLiteral("a\"\nb"), "text contains a double quote"},
                      TextCase{"LineFeedThenQuote", QStringLiteral("a\n\"b"), "text contains the line end U+000A"}),
    [](const ::testing::TestParamInfo<TextCase>& info) { return std::string(info.param.name); });

TEST(ZELTPText, CharacterFitForATextHasNoDescription)
{
    EXPECT_EQ(ZELTPText::DescribeUnfitCharacter(QLatin1Char('A')), QString());
    EXPECT_EQ(ZELTPText::DescribeUnfitCharacter(QLatin1Char('\'')), QString());
    EXPECT_EQ(ZELTPText::DescribeUnfitCharacter(QLatin1Char('"')), QStringLiteral("a double quote"));
    EXPECT_EQ(ZELTPText::DescribeUnfitCharacter(QChar(0x2029)), QStringLiteral("the line end U+2029"));
}
