#include <zelkingcoderecord.h>
#include <zelkintestaccess.h>

#include <zeltestsupport.h>

#include <QRegularExpression>

#include <algorithm>
#include <initializer_list>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

// Names and values as standard strings, so that a failure prints them.
using WordList = std::vector<std::pair<std::string, std::string>>;
using WordsByName = std::map<std::string, std::vector<std::string>>;

// Every name with its values in the order of the line.
WordsByName GroupByName(const WordList& words)
{
    WordsByName grouped;
    for (const auto& [name, value] : words)
        grouped[name].push_back(value);
    return grouped;
}

// What the record holds, each name's values in the order of the line.
WordsByName WordsOf(const ZELKinGCodeRecord& record)
{
    QStringList names = record.GetVariables();
    for (const QString& code : {QStringLiteral("G"), QStringLiteral("M")}) {
        if (record.IsVariable(code))
            names.append(code);
    }
    names.removeDuplicates();
    WordsByName grouped;
    for (const QString& name : names) {
        for (const QString& value : record.GetVariableValues(name))
            grouped[name.toStdString()].push_back(value.toStdString());
    }
    return grouped;
}

// Every word of the record in the order of the line.
WordList WordsInLineOrder(const ZELKinGCodeRecord& record)
{
    WordList words;
    for (const auto& [name, value] : record.GetWords())
        words.emplace_back(name.toStdString(), value.toStdString());
    return words;
}

std::vector<std::string> Sorted(const QStringList& names)
{
    std::vector<std::string> sorted;
    for (const QString& name : names)
        sorted.push_back(name.toStdString());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

// The names of `words` other than G and M, once per occurrence.
std::vector<std::string> SortedVariableNames(const WordList& words)
{
    std::vector<std::string> names;
    for (const auto& [name, value] : words) {
        if (name != "G" && name != "M")
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// The words of `line` as the word pattern finds them, matched globally over
// the text before the first semicolon: the reference the record's own
// scanner must agree with on every line.
WordList PatternWords(const QString& line)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"re(([A-Z_]+(?:\d(?=\=))?)\=?\(?\"?((?:[^\"\r\n]+(?=\"))|(?:-?\d+(?:\.\d+)?))?)re"));
    const qsizetype semicolon = line.indexOf(QLatin1Char(';'));
    const QString code = semicolon < 0 ? line : line.left(semicolon);
    WordList words;
    QRegularExpressionMatchIterator matches = pattern.globalMatch(code);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        words.emplace_back(match.captured(1).toStdString(), match.captured(2).toStdString());
    }
    return words;
}

// Why the record of `line` differs from the word pattern; empty when it
// does not.
std::string DifferenceFromPattern(const QString& line)
{
    const ZELKinGCodeRecord record(1, line);
    const WordList expected = PatternWords(line);
    if (WordsOf(record) != GroupByName(expected))
        return "words differ";
    if (Sorted(record.GetVariables()) != SortedVariableNames(expected))
        return "variables differ";
    for (const auto& [name, values] : GroupByName(expected)) {
        if (record.GetVariableValue(QString::fromStdString(name)).toStdString() != values.back())
            return "last value of " + name + " differs";
    }
    return std::string();
}

struct LineCase
{
    const char* name;
    QString line;
    //! Every word in the order of the line.
    WordList words;
    QString comment;
};
ZELTEST_PRINT_CASE_BY_NAME(LineCase);

class ZELKinGCodeRecordLine : public ::testing::TestWithParam<LineCase>
{
};

TEST_P(ZELKinGCodeRecordLine, HoldsEveryWordWithItsValuesInLineOrder)
{
    const ZELKinGCodeRecord record(7, GetParam().line);
    EXPECT_EQ(WordsOf(record), GroupByName(GetParam().words));
}

TEST_P(ZELKinGCodeRecordLine, GivesEveryWordInLineOrder)
{
    EXPECT_EQ(WordsInLineOrder(ZELKinGCodeRecord(7, GetParam().line)), GetParam().words);
}

TEST_P(ZELKinGCodeRecordLine, ListsEveryVariableOncePerOccurrence)
{
    const ZELKinGCodeRecord record(7, GetParam().line);
    EXPECT_EQ(Sorted(record.GetVariables()), SortedVariableNames(GetParam().words));
}

TEST_P(ZELKinGCodeRecordLine, GivesTheLastValueOfEachName)
{
    const ZELKinGCodeRecord record(7, GetParam().line);
    for (const auto& [name, values] : GroupByName(GetParam().words)) {
        const QString qName = QString::fromStdString(name);
        EXPECT_TRUE(record.IsVariable(qName)) << name;
        EXPECT_EQ(record.GetVariableValue(qName).toStdString(), values.back()) << name;
    }
}

TEST_P(ZELKinGCodeRecordLine, KeepsTheComment)
{
    const ZELKinGCodeRecord record(7, GetParam().line);
    EXPECT_EQ(record.GetComment().toStdString(), GetParam().comment.toStdString());
}

TEST_P(ZELKinGCodeRecordLine, KeepsTheGivenLineNumber)
{
    EXPECT_EQ(ZELKinGCodeRecord(7, GetParam().line).GetLineNumber(), 7u);
}

TEST_P(ZELKinGCodeRecordLine, AgreesWithTheWordPattern)
{
    EXPECT_EQ(DifferenceFromPattern(GetParam().line), std::string());
}

const LineCase LineCases[] = {
    {"MotionLineWithComment",
     QStringLiteral("N100 G1 X-12.5 Y3 F2000 ;move"),
     {{"N", "100"}, {"G", "1"}, {"X", "-12.5"}, {"Y", "3"}, {"F", "2000"}},
     QStringLiteral("move")},
    {"WithoutSemicolonTheWholeLineIsAlsoTheComment",
     QStringLiteral("N100 G1 X-12.5"),
     {{"N", "100"}, {"G", "1"}, {"X", "-12.5"}},
     QStringLiteral("N100 G1 X-12.5")},
    {"CommentIsTheTextAfterTheFirstSemicolonAsItStands",
     QStringLiteral("G1 X5; tows 1;2 ; X7"),
     {{"G", "1"}, {"X", "5"}},
     QStringLiteral(" tows 1;2 ; X7")},
    {"SemicolonFirstLeavesNoWords", QStringLiteral(";X5 G1"), {}, QStringLiteral("X5 G1")},
    {"SemicolonLastLeavesAnEmptyComment", QStringLiteral("M30;"), {{"M", "30"}}, QString()},
    {"EmptyLine", QString(), {}, QString()},
    {"DigitBeforeEqualsBelongsToTheName", QStringLiteral("R1=16"), {{"R1", "16"}}, QStringLiteral("R1=16")},
    {"NameWithDigitAndSignedFraction", QStringLiteral("R7=-2.25"), {{"R7", "-2.25"}}, QStringLiteral("R7=-2.25")},
    {"DigitWithoutEqualsIsTheValue", QStringLiteral("X12"), {{"X", "12"}}, QStringLiteral("X12")},
    // Only one digit can join the name: "R1" then "2=" does not fit, so the
    // name is R and 12 its value; "=5" is skipped.
    {"SecondDigitBeforeEqualsIsNotPartOfTheName", QStringLiteral("R12=5"), {{"R", "12"}}, QStringLiteral("R12=5")},
    {"EqualsWithoutDigit", QStringLiteral("X=5"), {{"X", "5"}}, QStringLiteral("X=5")},
    {"UnderscoresAndLettersMakeOneName",
     QStringLiteral("GUD_TOW_MASK=255 _A1=2"),
     {{"GUD_TOW_MASK", "255"}, {"_A1", "2"}},
     QStringLiteral("GUD_TOW_MASK=255 _A1=2")},
    {"LettersThenDigitMakeNameAndValue", QStringLiteral("TRAORI1"), {{"TRAORI", "1"}}, QStringLiteral("TRAORI1")},
    // The code part ends at the semicolon, quotes or not: the quote is never
    // closed there.
    {"SemicolonInsideQuotesStillEndsTheCode",
     QStringLiteral("MSG(\"Ply 101; course 3\")"),
     {{"MSG", ""}, {"P", ""}},
     QStringLiteral(" course 3\")")},
    {"QuotedTextAfterParenthesisIsTheValueWithoutQuotes",
     QStringLiteral("MSG(\"Ply 101 course 3\")"),
     {{"MSG", "Ply 101 course 3"}},
     QStringLiteral("MSG(\"Ply 101 course 3\")")},
    {"QuotedTextAfterEquals",
     QStringLiteral("GUD_PLY=\"P-101 0deg\" X1"),
     {{"GUD_PLY", "P-101 0deg"}, {"X", "1"}},
     QStringLiteral("GUD_PLY=\"P-101 0deg\" X1")},
    {"EmptyQuotesGiveAnEmptyValue", QStringLiteral("MSG(\"\")"), {{"MSG", ""}}, QStringLiteral("MSG(\"\")")},
    // Without a closing quote the text is no value; its capitals are words of
    // their own.
    {"UnclosedQuoteGivesAnEmptyValue",
     QStringLiteral("MSG(\"PLY X"),
     {{"MSG", ""}, {"PLY", ""}, {"X", ""}},
     QStringLiteral("MSG(\"PLY X")},
    // The quoted-text value needs no opening quote: an unquoted name takes
    // everything up to a later quote on the line.
    {"ValueRunsToALaterQuote",
     QStringLiteral("G1 X5 MSG(\"HI\")"),
     {{"G", "1 X5 MSG("}, {"HI", ""}},
     QStringLiteral("G1 X5 MSG(\"HI\")")},
    {"CarriageReturnEndsAQuotedValue",
     QStringLiteral("MSG(\"A\rB\")"),
     {{"MSG", ""}, {"A", ""}, {"B", ""}},
     QStringLiteral("MSG(\"A\rB\")")},
    {"NumberInParentheses", QStringLiteral("F(100)"), {{"F", "100"}}, QStringLiteral("F(100)")},
    {"NameWithoutValue", QStringLiteral("G X5"), {{"G", ""}, {"X", "5"}}, QStringLiteral("G X5")},
    {"BlankBetweenNameAndValueLeavesTheValueEmpty",
     QStringLiteral("X 5"),
     {{"X", ""}},
     QStringLiteral("X 5")},
    {"FractionWithoutLeadingDigitIsNoValue",
     QStringLiteral("X.5 Y-.5"),
     {{"X", ""}, {"Y", ""}},
     QStringLiteral("X.5 Y-.5")},
    {"PointWithoutFollowingDigitsEndsTheNumber",
     QStringLiteral("X1. Y2"),
     {{"X", "1"}, {"Y", "2"}},
     QStringLiteral("X1. Y2")},
    {"PlusSignIsNoPartOfTheValue", QStringLiteral("X+5"), {{"X", ""}}, QStringLiteral("X+5")},
    {"LowerCaseWordsAreNotRecognised", QStringLiteral("g1 x5 m3"), {}, QStringLiteral("g1 x5 m3")},
    {"LowerCaseLettersBetweenWordsAreSkipped",
     QStringLiteral("Xa5 Yb"),
     {{"X", ""}, {"Y", ""}},
     QStringLiteral("Xa5 Yb")},
    {"WordsNeedNoBlanksBetweenThem",
     QStringLiteral("G1X5Y-3"),
     {{"G", "1"}, {"X", "5"}, {"Y", "-3"}},
     QStringLiteral("G1X5Y-3")},
    {"RepeatedNamesKeepEveryValue",
     QStringLiteral("G1 G64 M3 X1 X2"),
     {{"G", "1"}, {"G", "64"}, {"M", "3"}, {"X", "1"}, {"X", "2"}},
     QStringLiteral("G1 G64 M3 X1 X2")},
    {"RepeatedEqualValuesAreAllKept", QStringLiteral("X1 X1"), {{"X", "1"}, {"X", "1"}}, QStringLiteral("X1 X1")},
    {"NonAsciiLettersAreSkipped",
     QStringLiteral("\u00c4X1 \u00dcBER=2"),
     {{"X", "1"}, {"BER", "2"}},
     QStringLiteral("\u00c4X1 \u00dcBER=2")},
    {"TrailingCarriageReturnStaysInTheComment", QStringLiteral("G1\r"), {{"G", "1"}}, QStringLiteral("G1\r")},
    {"MinusWithoutDigitsIsNoValue", QStringLiteral("X- Y1"), {{"X", ""}, {"Y", "1"}}, QStringLiteral("X- Y1")},
    {"DigitBeforeEqualsAtTheEndLeavesAnEmptyValue", QStringLiteral("R1="), {{"R1", ""}}, QStringLiteral("R1=")},
    {"SecondPointEndsTheNumber", QStringLiteral("X1.5.3"), {{"X", "1.5"}}, QStringLiteral("X1.5.3")},
    {"LineFeedEndsAQuotedValue",
     QStringLiteral("MSG(\"A\nB\")"),
     {{"MSG", ""}, {"A", ""}, {"B", ""}},
     QStringLiteral("MSG(\"A\nB\")")},
    {"QuoteRightAfterTheNameOpensTheValue", QStringLiteral("X\"5\" Y2"), {{"X", "5"}, {"Y", "2"}},
     QStringLiteral("X\"5\" Y2")},
    {"DigitBeforeEqualsThenQuotedText", QStringLiteral("R2=\"A B\""), {{"R2", "A B"}}, QStringLiteral("R2=\"A B\"")},
};

INSTANTIATE_TEST_SUITE_P(Lines, ZELKinGCodeRecordLine, ::testing::ValuesIn(LineCases),
                         [](const ::testing::TestParamInfo<LineCase>& info) { return std::string(info.param.name); });

struct CodesCase
{
    const char* name;
    QString line;
    QList<unsigned> gCodes;
    QList<unsigned> mCodes;
};
ZELTEST_PRINT_CASE_BY_NAME(CodesCase);

class ZELKinGCodeRecordCodes : public ::testing::TestWithParam<CodesCase>
{
};

TEST_P(ZELKinGCodeRecordCodes, AreTheLastOnTheLineFirst)
{
    const ZELKinGCodeRecord record(1, GetParam().line);
    EXPECT_EQ(record.GetGCodes(), GetParam().gCodes);
    EXPECT_EQ(record.GetMCodes(), GetParam().mCodes);
}

const CodesCase CodesCases[] = {
    {"ReverseOrderOfTheLine", QStringLiteral("G1 G64 M3"), {64, 1}, {3}},
    {"UnsortedAndDuplicatesKept", QStringLiteral("M30 M3 M5 G1 G1"), {1, 1}, {5, 3, 30}},
    {"LeadingZeroIsDecimal", QStringLiteral("G01 M08"), {1}, {8}},
    {"NoDigitsGiveZero", QStringLiteral("G M"), {0}, {0}},
    {"SignedValueGivesZero", QStringLiteral("G-1 M-3"), {0}, {0}},
    {"FractionalValueGivesZero", QStringLiteral("G1.5 M3.0"), {0}, {0}},
    {"LargestUnsignedConverts", QStringLiteral("G4294967295"), {4294967295u}, {}},
    {"BeyondTheLargestUnsignedGivesZero", QStringLiteral("G4294967296"), {0}, {}},
    {"QuotedNumberConverts", QStringLiteral("G(\"17\")"), {17}, {}},
    {"QuotedTextGivesZero", QStringLiteral("M(\"STOP\")"), {}, {0}},
    {"CodesInTheCommentAreNotCodes", QStringLiteral("G1 ;G2 M3"), {1}, {}},
    {"LowerCaseCodesAreNotCodes", QStringLiteral("g1 m3"), {}, {}},
    {"NamesStartingWithGOrMAreVariables", QStringLiteral("GUD_X=1 MSG(\"A\")"), {}, {}},
};

INSTANTIATE_TEST_SUITE_P(Codes, ZELKinGCodeRecordCodes, ::testing::ValuesIn(CodesCases),
                         [](const ::testing::TestParamInfo<CodesCase>& info) { return std::string(info.param.name); });

TEST_P(ZELKinGCodeRecordCodes, AgreeWithTheWordPattern)
{
    EXPECT_EQ(DifferenceFromPattern(GetParam().line), std::string());
}

// A line of up to 40 characters drawn from those that decide where words and
// values start and end.
QString RandomLine(std::mt19937& generator)
{
    static const QString alphabet = QStringLiteral("ABGMRXYZ__0123456789==((\"\"--.. ;\r\ngx\u00c4");
    std::uniform_int_distribution<int> length(0, 40);
    std::uniform_int_distribution<qsizetype> pick(0, alphabet.size() - 1);
    QString line;
    for (int n = length(generator); n > 0; --n)
        line.append(alphabet.at(pick(generator)));
    return line;
}

TEST(ZELKinGCodeRecord, AgreesWithTheWordPatternOnRandomLines)
{
    constexpr int kLines = 100000;
    std::mt19937 generator(20261122u);
    int differing = 0;
    for (int i = 0; i < kLines; ++i) {
        const QString line = RandomLine(generator);
        const std::string difference = DifferenceFromPattern(line);
        if (!difference.empty() && ++differing <= 5)
            ADD_FAILURE() << difference << " on line " << i << ": " << ::testing::PrintToString(line.toStdString());
    }
    EXPECT_EQ(differing, 0);
}

TEST(ZELKinGCodeRecord, WordsInLineOrderAgreeWithTheWordPatternOnRandomLines)
{
    constexpr int kLines = 20000;
    std::mt19937 generator(20261124u);
    int differing = 0;
    for (int i = 0; i < kLines; ++i) {
        const QString line = RandomLine(generator);
        if (WordsInLineOrder(ZELKinGCodeRecord(1, line)) != PatternWords(line) && ++differing <= 5)
            ADD_FAILURE() << "line " << i << ": " << ::testing::PrintToString(line.toStdString());
    }
    EXPECT_EQ(differing, 0);
}

} // namespace

TEST(ZELKinGCodeRecord, GAndMAreWordsButNotVariables)
{
    const ZELKinGCodeRecord record(1, QStringLiteral("G1 M3 X5"));
    EXPECT_TRUE(record.IsVariable(QStringLiteral("G")));
    EXPECT_TRUE(record.IsVariable(QStringLiteral("M")));
    EXPECT_EQ(record.GetVariables(), QStringList({QStringLiteral("X")}));
    EXPECT_EQ(record.GetVariableValue(QStringLiteral("G")), QStringLiteral("1"));
}

TEST(ZELKinGCodeRecord, LastOccurrenceOfANameIsItsValue)
{
    const ZELKinGCodeRecord record(1, QStringLiteral("G1 G64 X1 X2 X3"));
    EXPECT_EQ(record.GetVariableValue(QStringLiteral("X")), QStringLiteral("3"));
    EXPECT_EQ(record.GetVariableValue(QStringLiteral("G")), QStringLiteral("64"));
}

TEST(ZELKinGCodeRecord, UnknownNameHasAnEmptyValue)
{
    const ZELKinGCodeRecord record(1, QStringLiteral("G1 X5"));
    EXPECT_FALSE(record.IsVariable(QStringLiteral("Y")));
    EXPECT_TRUE(record.GetVariableValue(QStringLiteral("Y")).isEmpty());
    // Names are case-sensitive.
    EXPECT_FALSE(record.IsVariable(QStringLiteral("x")));
}

TEST(ZELKinGCodeRecord, WordWithoutValueExistsWithAnEmptyValue)
{
    const ZELKinGCodeRecord record(1, QStringLiteral("X Y2"));
    EXPECT_TRUE(record.IsVariable(QStringLiteral("X")));
    EXPECT_TRUE(record.GetVariableValue(QStringLiteral("X")).isEmpty());
}

TEST(ZELKinGCodeRecord, DefaultRecordAnswersNothing)
{
    const ZELKinGCodeRecord record;
    EXPECT_EQ(record.GetLineNumber(), 0u);
    EXPECT_TRUE(record.GetComment().isEmpty());
    EXPECT_TRUE(record.GetGCodes().isEmpty());
    EXPECT_TRUE(record.GetMCodes().isEmpty());
    EXPECT_TRUE(record.GetVariables().isEmpty());
    for (const QString& name : {QStringLiteral("G"), QStringLiteral("M"), QStringLiteral("X"), QString()}) {
        EXPECT_FALSE(record.IsVariable(name)) << name.toStdString();
        EXPECT_TRUE(record.GetVariableValue(name).isEmpty()) << name.toStdString();
    }
}

TEST(ZELKinGCodeRecord, LineNumberIsTheGivenOneNotTheNWord)
{
    const ZELKinGCodeRecord record(42, QStringLiteral("N100 G1"));
    EXPECT_EQ(record.GetLineNumber(), 42u);
    EXPECT_EQ(record.GetVariableValue(QStringLiteral("N")), QStringLiteral("100"));
    EXPECT_EQ(ZELKinGCodeRecord(4294967295u, QString()).GetLineNumber(), 4294967295u);
}

TEST(ZELKinGCodeRecord, CopySharesTheBody)
{
    const ZELKinGCodeRecord record(3, QStringLiteral("G1 X5 ;start"));
    const ZELKinGCodeRecord copy(record);
    EXPECT_EQ(ZELKinTestAccess::BodyOf(copy), ZELKinTestAccess::BodyOf(record));
    EXPECT_EQ(ZELKinTestAccess::BodyOf(record)->ref.loadRelaxed(), 2);
}

TEST(ZELKinGCodeRecord, AssignmentSharesTheBodyAndReleasesTheOldOne)
{
    const ZELKinGCodeRecord first(1, QStringLiteral("X1"));
    const ZELKinGCodeRecord second(2, QStringLiteral("Y2"));
    ZELKinGCodeRecord target = second;
    target = first;
    EXPECT_EQ(ZELKinTestAccess::BodyOf(target), ZELKinTestAccess::BodyOf(first));
    EXPECT_EQ(ZELKinTestAccess::BodyOf(first)->ref.loadRelaxed(), 2);
    EXPECT_EQ(ZELKinTestAccess::BodyOf(second)->ref.loadRelaxed(), 1);
    EXPECT_EQ(target.GetLineNumber(), 1u);
    EXPECT_EQ(target.GetVariableValue(QStringLiteral("X")), QStringLiteral("1"));
    EXPECT_FALSE(target.IsVariable(QStringLiteral("Y")));
    // The record assigned from keeps its own words.
    EXPECT_EQ(second.GetVariableValue(QStringLiteral("Y")), QStringLiteral("2"));
}

TEST(ZELKinGCodeRecord, AssignmentToItselfChangesNothing)
{
    ZELKinGCodeRecord record(5, QStringLiteral("G1 X5 ;start"));
    const ZELKinGCodeRecordPrivate* body = ZELKinTestAccess::BodyOf(record);
    ZELKinGCodeRecord& alias = record;
    record = alias;
    EXPECT_EQ(ZELKinTestAccess::BodyOf(record), body);
    EXPECT_EQ(body->ref.loadRelaxed(), 1);
    EXPECT_EQ(record.GetLineNumber(), 5u);
    EXPECT_EQ(record.GetComment(), QStringLiteral("start"));
    EXPECT_EQ(record.GetVariableValue(QStringLiteral("X")), QStringLiteral("5"));
}

TEST(ZELKinGCodeRecord, CopyOutlivesTheRecordItWasCopiedFrom)
{
    auto original = std::make_unique<ZELKinGCodeRecord>(9, QStringLiteral("N9 G1 G64 M3 X-1.5 ;keep"));
    const ZELKinGCodeRecord copy(*original);
    ZELKinGCodeRecord assigned;
    assigned = *original;
    original.reset();

    for (const ZELKinGCodeRecord* record : std::initializer_list<const ZELKinGCodeRecord*>{&copy, &assigned}) {
        EXPECT_EQ(record->GetLineNumber(), 9u);
        EXPECT_EQ(record->GetComment(), QStringLiteral("keep"));
        EXPECT_EQ(record->GetGCodes(), QList<unsigned>({64, 1}));
        EXPECT_EQ(record->GetMCodes(), QList<unsigned>({3}));
        EXPECT_EQ(record->GetVariableValue(QStringLiteral("X")), QStringLiteral("-1.5"));
        EXPECT_EQ(Sorted(record->GetVariables()), std::vector<std::string>({"N", "X"}));
    }
    EXPECT_EQ(ZELKinTestAccess::BodyOf(copy)->ref.loadRelaxed(), 2);
}

TEST(ZELKinGCodeRecord, DefaultRecordsShareOneBodyThatParsingLeavesAlone)
{
    const ZELKinGCodeRecord before;
    const ZELKinGCodeRecord parsed(1, QStringLiteral("G1 X5 ;comment"));
    const ZELKinGCodeRecord after;
    EXPECT_EQ(ZELKinTestAccess::BodyOf(before), ZELKinTestAccess::BodyOf(after));
    EXPECT_NE(ZELKinTestAccess::BodyOf(parsed), ZELKinTestAccess::BodyOf(before));
    EXPECT_FALSE(after.IsVariable(QStringLiteral("G")));
    EXPECT_TRUE(after.GetComment().isEmpty());
    EXPECT_EQ(after.GetLineNumber(), 0u);
}

TEST(ZELKinGCodeRecord, ReservedTextStaysEmpty)
{
    const ZELKinGCodeRecord parsed(1, QStringLiteral("G1 X5 ;comment"));
    EXPECT_TRUE(ZELKinTestAccess::BodyOf(parsed)->secondText.isEmpty());
    EXPECT_TRUE(ZELKinTestAccess::BodyOf(ZELKinGCodeRecord())->secondText.isEmpty());
}

// A reader that went through the rest of the line once a word would take
// hours here; one that reads the line once takes a fraction of a second.
TEST(ZELKinGCodeRecord, LineOfAMillionWordsIsReadWordForWord)
{
    constexpr int kWords = 1000000;
    QString line = QStringLiteral("N0");
    for (int i = 1; i < kWords - 1; ++i)
        line += i % 4 == 0 ? QStringLiteral(" G1") : QStringLiteral(" X%1").arg(i % 1000);
    line += QStringLiteral(" M30 ;end");

    const ZELKinGCodeRecord record(1, line);
    const QList<QPair<QString, QString>> words = record.GetWords();
    ASSERT_EQ(words.size(), kWords);
    EXPECT_EQ(words.first(), qMakePair(QStringLiteral("N"), QStringLiteral("0")));
    EXPECT_EQ(words.at(1), qMakePair(QStringLiteral("X"), QStringLiteral("1")));
    EXPECT_EQ(words.at(kWords - 2), qMakePair(QStringLiteral("X"), QStringLiteral("998")));
    EXPECT_EQ(words.last(), qMakePair(QStringLiteral("M"), QStringLiteral("30")));
    EXPECT_EQ(record.GetGCodes().size(), (kWords - 2) / 4);
    EXPECT_EQ(record.GetVariables().size(), kWords - 1 - (kWords - 2) / 4);
    EXPECT_EQ(record.GetComment(), QStringLiteral("end"));
}

TEST(ZELKinGCodeRecord, LinesParsedOnSeveralThreadsAtOnceGiveTheSameWords)
{
    constexpr int kThreads = 4;
    constexpr int kLines = 500;
    std::vector<std::vector<std::string>> failures(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &failures] {
            for (int i = 0; i < kLines; ++i) {
                const QString x = QString::number(t * kLines + i);
                const ZELKinGCodeRecord record(i, QStringLiteral("R1=\"T%1\" N%1 G1 G64 X%2 ;c%1").arg(i).arg(x));
                const bool same = record.GetGCodes() == QList<unsigned>({64, 1})
                    && record.GetVariableValue(QStringLiteral("X")) == x
                    && record.GetVariableValue(QStringLiteral("R1")) == QStringLiteral("T%1").arg(i)
                    && record.GetComment() == QStringLiteral("c%1").arg(i);
                if (!same)
                    failures[t].push_back(QStringLiteral("thread %1 line %2").arg(t).arg(i).toStdString());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const std::vector<std::string>& failed : failures)
        EXPECT_TRUE(failed.empty()) << failed.front();
}
