#include <zelsysjsontext.h>

#include <zeltestsupport.h>

namespace {

struct JsonTextCase
{
    const char* name;
    QString text;
    ZELSysJsonText::Embedding embedding;
    QString json;
};

void PrintTo(const JsonTextCase& testCase, std::ostream* os)
{
    *os << testCase.name;
}

using Embedding = ZELSysJsonText::Embedding;

// Every expectation is the JSON grammar's own spelling of the text.
const JsonTextCase kCases[] = {
    {"PlainTextStaysAsItIs", QStringLiteral("Ply 1 +45"), Embedding::Plain, QStringLiteral("\"Ply 1 +45\"")},
    {"EmptyTextIsTwoQuotes", QString(), Embedding::Plain, QStringLiteral("\"\"")},
    {"QuoteAndBackslashAreEscaped", QStringLiteral("a\"b\\c"), Embedding::Plain, QStringLiteral("\"a\\\"b\\\\c\"")},
    {"ControlCharactersWithAShortFormUseIt", QStringLiteral("\b\f\n\r\t"), Embedding::Plain,
     QStringLiteral("\"\\b\\f\\n\\r\\t\"")},
    {"OtherControlCharactersAreLowercaseUnicodeEscapes", QStringLiteral("x") + QChar(0x01) + QChar(0x1f) + QChar(0),
     Embedding::Plain, QStringLiteral("\"x\\u0001\\u001f\\u0000\"")},
    {"DeleteAndNonAsciiStayAsTheyAre", QStringLiteral("\u007f\u00e9\u2028"), Embedding::Plain,
     QStringLiteral("\"\u007f\u00e9\u2028\"")},
    {"LessThanStaysInPlainJson", QStringLiteral("</script>"), Embedding::Plain, QStringLiteral("\"</script>\"")},
    {"LessThanIsEscapedInsideAScript", QStringLiteral("</script>"), Embedding::HtmlScript,
     QStringLiteral("\"\\u003c/script>\"")},
    {"LineAndParagraphSeparatorsAreEscapedInsideAScript", QStringLiteral("a\u2028b\u2029c"), Embedding::HtmlScript,
     QStringLiteral("\"a\\u2028b\\u2029c\"")},
    {"ControlCharactersInsideAScriptAsInPlainJson", QStringLiteral("\n") + QChar(0x02), Embedding::HtmlScript,
     QStringLiteral("\"\\n\\u0002\"")},
};

class ZELSysJsonTextTest : public ::testing::TestWithParam<JsonTextCase>
{
};

} // namespace

TEST_P(ZELSysJsonTextTest, QuotesTheTextAsAJsonString)
{
    const JsonTextCase& testCase = GetParam();
    EXPECT_EQ(ZELSysJsonText::Quoted(testCase.text, testCase.embedding), testCase.json);
}

TEST_P(ZELSysJsonTextTest, AppendsToWhatIsAlreadyWritten)
{
    const JsonTextCase& testCase = GetParam();
    QString json = QStringLiteral("[1,");
    ZELSysJsonText::AppendString(json, testCase.text, testCase.embedding);
    EXPECT_EQ(json, QStringLiteral("[1,") + testCase.json);
}

INSTANTIATE_TEST_SUITE_P(Texts, ZELSysJsonTextTest, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<JsonTextCase>& info) {
                             return std::string(info.param.name);
                         });
