// The scanner that locates the first syntax error of a document simdjson
// refused: its byte, its JSON path and what was expected there, and no error
// at all for JSON that is sound.

#include <zeltpjsonsyntaxscanner_p.h>

#include <zeltestsupport.h>

#include <QByteArray>

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace {

struct ScanCase
{
    const char* name;
    QByteArray document;
    std::size_t start;
    // Both empty for a sound document.
    QString path;
    QString problem;
};
ZELTEST_PRINT_CASE_BY_NAME(ScanCase);

ScanCase Sound(const char* name, const QByteArray& document, std::size_t start = 0)
{
    return ScanCase{name, document, start, QString(), QString()};
}

ScanCase Broken(const char* name, const QByteArray& document, const QString& path, const QString& problem,
                std::size_t start = 0)
{
    return ScanCase{name, document, start, path, problem};
}

QString Repeated(char character, int count)
{
    return QString(count, QLatin1Char(character));
}

class ZELTPJsonSyntaxScannerDocument : public ::testing::TestWithParam<ScanCase>
{
};

} // namespace

TEST_P(ZELTPJsonSyntaxScannerDocument, ReportsTheFirstErrorAtItsByteAndPathOrNoneForSoundJson)
{
    const ScanCase& c = GetParam();
    const std::string_view text(c.document.constData(), std::size_t(c.document.size()));
    const std::optional<ZELTPReading::Problem> problem = ZELTPReading::SyntaxScanner(text).FindError(c.start);
    if (c.problem.isEmpty()) {
        EXPECT_FALSE(problem.has_value()) << problem->location.toStdString() << ": " << problem->text.toStdString();
        return;
    }
    ASSERT_TRUE(problem.has_value());
    EXPECT_EQ(problem->location, c.path);
    EXPECT_EQ(problem->text, c.problem);
}

INSTANTIATE_TEST_SUITE_P(
    Documents, ZELTPJsonSyntaxScannerDocument,
    ::testing::Values(
        Sound("EveryKindOfValue", R"({"a": [1, 2.5e3, -0, true, false, null, "\u00e9\ud83d\ude00\n"], "b": {}})"),
        Sound("FourByteUtf8InAString", "[\"\xF0\x9F\x98\x80\"]"),
        Sound("NumberTooSmallForADoubleReadsAsZero", "[1e-400]"),
        Sound("FiniteNumberWrittenWithAnExponentPastThatOfTheLargestDouble", "[0.01e310]"),
        Sound("Smallest64BitAndLargestUnsigned64BitIntegers", "[-9223372036854775808, 18446744073709551615]"),
        Sound("BytesBeforeTheStartAreNotScanned", "xx[1]", 2),

        Broken("OffsetCountsFromTheTextNotFromTheStart", "\xEF\xBB\xBF[1,]", QStringLiteral("$[1]"),
               QStringLiteral("invalid JSON at byte 6: expected a value, found ']'"), 3),
        Broken("OnlyWhitespaceAfterTheStart", "\xEF\xBB\xBF \n", QStringLiteral("$"),
               QStringLiteral("invalid JSON at byte 5: the document is empty"), 3),
        Broken("ClosedArraysAndObjectsLeaveThePath", R"([[1], {"a": 1}, 2 3])", QStringLiteral("$[2]"),
               QStringLiteral("invalid JSON at byte 18: expected ',' or ']', found '3'")),
        Broken("KeyWithASpaceIsQuotedInThePath", R"({"x y": tru})", QStringLiteral("$['x y']"),
               QStringLiteral("invalid JSON at byte 8: expected a value, found 'tru'")),
        Broken("KeyStartingWithADigitIsQuotedInThePath", R"({"2nd": [null, nul]})", QStringLiteral("$['2nd'][1]"),
               QStringLiteral("invalid JSON at byte 15: expected a value, found 'nul'")),
        Broken("EmptyKeyIsQuotedInThePath", R"({"": x})", QStringLiteral("$['']"),
               QStringLiteral("invalid JSON at byte 5: expected a value, found 'x'")),
        Broken("KeyOfFortyCharactersStaysPlainInThePath", "{\"" + QByteArray(40, 'k') + "\": x}",
               QStringLiteral("$.") + Repeated('k', 40),
               QStringLiteral("invalid JSON at byte 45: expected a value, found 'x'")),
        Broken("KeyOfFortyOneCharactersIsCutInThePath", "{\"" + QByteArray(41, 'k') + "\": x}",
               QStringLiteral("$['") + Repeated('k', 40) + QStringLiteral("...']"),
               QStringLiteral("invalid JSON at byte 46: expected a value, found 'x'")),
        Broken("UnknownWordIsQuotedUpToFortyCharacters", "[" + QByteArray(50, 'x') + "]", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 1: expected a value, found '") + Repeated('x', 40)
                   + QLatin1Char('\'')),
        Broken("SecondValueAfterTheDocument", "{} {}", QStringLiteral("$"),
               QStringLiteral("invalid JSON at byte 3: expected the end of the document, found '{'")),
        Broken("EndRightAfterAColon", R"({"a":)", QStringLiteral("$.a"),
               QStringLiteral("invalid JSON at byte 5: unexpected end of the document")),
        Broken("NonAsciiByteOutsideAString", "[\xC3\xA9]", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 1: expected a value, found byte 0xC3")),
        Broken("DeleteCharacterOutsideAString", "[\x7F]", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 1: expected a value, found byte 0x7F")),
        Broken("LineFeedInAString", "{\"a\":\"x\ny\"}", QStringLiteral("$.a"),
               QStringLiteral("invalid JSON at byte 7: unescaped control character 0x0A in a string")),
        Broken("OverlongUtf8InAString", "[\"\xC0\xAF\"]", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 2: invalid UTF-8 in a string")),
        Broken("Utf8EncodedSurrogateInAString", "[\"a\xED\xA0\x80\"]", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 3: invalid UTF-8 in a string")),
        Broken("UnicodeEscapeWithANonHexDigit", R"(["\u12G4"])", QStringLiteral("$[0]"),
               QStringLiteral(R"(invalid JSON at byte 2: invalid escape '\u12G4' in a string)")),
        Broken("LoneLowSurrogateAtItsBackslash", R"({"s": "ab\udc00"})", QStringLiteral("$.s"),
               QStringLiteral("invalid JSON at byte 9: unpaired surrogate in a string")),
        Broken("HighSurrogateFollowedByAnotherEscape", R"(["\ud83d\u0041"])", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 2: unpaired surrogate in a string")),
        Broken("MinusWithoutDigits", "[-]", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 1: invalid number '-'")),
        Broken("PointWithoutDigits", "[1.e5]", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 1: invalid number '1.e5'")),
        Broken("IntegerBelowSigned64Bits", "[-9223372036854775809]", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 1: number '-9223372036854775809' is out of range")),
        Broken("NumberPastTheLargestDouble", "[10e308]", QStringLiteral("$[0]"),
               QStringLiteral("invalid JSON at byte 1: number '10e308' is out of range"))),
    [](const ::testing::TestParamInfo<ScanCase>& info) { return info.param.name; });
