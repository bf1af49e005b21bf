#include "zelcomptowmask.h"

#include "zelsysexception.h"
#include "zelsysoutofboundsexception.h"
#include "zeltestsupport.h"

#include <QDataStream>
#include <QIODevice>
#include <QVariant>

#include <initializer_list>
#include <limits>
#include <ostream>
#include <string>

// Lets GoogleTest show a mask in a failure message instead of its bytes.
void PrintTo(const ZELCompTowMask& mask, std::ostream* os)
{
    *os << "ZELCompTowMask(" << mask.GetNumTows() << " tows, 0x" << std::hex << mask.GetRawValue()
        << std::dec << ")";
}

namespace {

constexpr quint64 kAllBits = std::numeric_limits<quint64>::max();
constexpr quint64 kTow64Bit = quint64(1) << 63;

ZELCompTowMask MaskWithTows(int numTows, std::initializer_list<int> enabledTows)
{
    ZELCompTowMask mask(numTows, false);
    for (const int tow : enabledTows)
        mask.SetTowEnabled(tow, true);
    return mask;
}

const ZELCompTowMask kInvalidMask(ZELCompTowMask::MaximumTows + 1, true);

template <typename Case>
std::string CaseName(const ::testing::TestParamInfo<Case>& info)
{
    return info.param.name;
}

QByteArray Serialized(const ZELCompTowMask& mask)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << mask;
    return bytes;
}

QByteArray HandMadeStream(qint32 numTows, quint64 bits)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << numTows << bits;
    return bytes;
}

ZELCompTowMask Deserialized(const QByteArray& bytes, QDataStream::Status* status = nullptr)
{
    // Starts from a mask unlike any written, so a read that changes nothing shows.
    ZELCompTowMask mask(7, true);
    QDataStream stream(bytes);
    stream >> mask;
    if (status)
        *status = stream.status();
    return mask;
}

} // namespace

TEST(ZELCompTowMaskTest, DefaultMaskIsValidWithNoTows)
{
    const ZELCompTowMask mask;
    EXPECT_TRUE(mask.IsValid());
    EXPECT_EQ(mask.GetNumTows(), 0);
    EXPECT_EQ(mask.GetNumEnabled(), 0);
    EXPECT_EQ(mask.GetRawValue(), 0u);
}

struct ConstructionCase {
    const char* name;
    int numTows;
    bool enabled;
    bool valid;
    int expectedNumTows;
    int expectedNumEnabled;
    quint64 expectedRawValue;
};
ZELTEST_PRINT_CASE_BY_NAME(ConstructionCase);

class ZELCompTowMaskConstructionTest : public ::testing::TestWithParam<ConstructionCase> {};

TEST_P(ZELCompTowMaskConstructionTest, GivesCountEnabledTowsAndValidity)
{
    const ConstructionCase& c = GetParam();
    const ZELCompTowMask mask(c.numTows, c.enabled);
    EXPECT_EQ(mask.IsValid(), c.valid);
    EXPECT_EQ(mask.GetNumTows(), c.expectedNumTows);
    EXPECT_EQ(mask.GetNumEnabled(), c.expectedNumEnabled);
    EXPECT_EQ(mask.GetRawValue(), c.expectedRawValue);
}

INSTANTIATE_TEST_SUITE_P(
    Counts, ZELCompTowMaskConstructionTest,
    ::testing::Values(ConstructionCase{"NoTowsEnabled", 0, true, true, 0, 0, 0},
                      ConstructionCase{"NoTowsDisabled", 0, false, true, 0, 0, 0},
                      ConstructionCase{"OneTowEnabled", 1, true, true, 1, 1, 0x1},
                      ConstructionCase{"SixteenTowsEnabled", 16, true, true, 16, 16, 0xFFFF},
                      ConstructionCase{"SixteenTowsDisabled", 16, false, true, 16, 0, 0},
                      ConstructionCase{"SixtyFourTowsEnabledSetsEveryBit", 64, true, true, 64, 64, kAllBits},
                      ConstructionCase{"SixtyFourTowsDisabled", 64, false, true, 64, 0, 0},
                      ConstructionCase{"NegativeCountIsInvalid", -1, true, false, -1, -1, 0},
                      ConstructionCase{"NegativeCountDisabledIsInvalid", -1, false, false, -1, -1, 0},
                      ConstructionCase{"CountAboveMaximumIsInvalid", 65, true, false, -1, -1, 0},
                      ConstructionCase{"CountAboveMaximumDisabledIsInvalid", 65, false, false, -1, -1, 0}),
    CaseName<ConstructionCase>);

TEST(ZELCompTowMaskTest, SetTowEnabledSwitchesOnlyThatTow)
{
    ZELCompTowMask mask(12, false);
    mask.SetTowEnabled(3, true);
    EXPECT_TRUE(mask.IsTowEnabled(3));
    EXPECT_FALSE(mask.IsTowEnabled(2));
    EXPECT_FALSE(mask.IsTowEnabled(4));
    EXPECT_EQ(mask.GetRawValue(), 0x4u);
    EXPECT_EQ(mask.GetNumEnabled(), 1);
}

TEST(ZELCompTowMaskTest, SetTowDisabledClearsTheHighestTowOfAFullHead)
{
    ZELCompTowMask mask(64, true);
    mask.SetTowEnabled(64, false);
    EXPECT_FALSE(mask.IsTowEnabled(64));
    EXPECT_TRUE(mask.IsTowEnabled(63));
    EXPECT_EQ(mask.GetRawValue(), kAllBits >> 1);
    EXPECT_EQ(mask.GetNumEnabled(), 63);
}

struct TowOutOfBoundsCase {
    const char* name;
    ZELCompTowMask mask;
    int tow;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(TowOutOfBoundsCase);

class ZELCompTowMaskTowOutOfBoundsTest : public ::testing::TestWithParam<TowOutOfBoundsCase> {};

TEST_P(ZELCompTowMaskTowOutOfBoundsTest, IsTowEnabledThrows)
{
    const TowOutOfBoundsCase& c = GetParam();
    EXPECT_THROW_MESSAGE(c.mask.IsTowEnabled(c.tow), ZELSysOutOfBoundsException, c.message);
}

TEST_P(ZELCompTowMaskTowOutOfBoundsTest, SetTowEnabledThrowsAndLeavesMaskUnchanged)
{
    const TowOutOfBoundsCase& c = GetParam();
    ZELCompTowMask mask = c.mask;
    EXPECT_THROW_MESSAGE(mask.SetTowEnabled(c.tow, false), ZELSysOutOfBoundsException, c.message);
    EXPECT_EQ(mask, c.mask);
}

INSTANTIATE_TEST_SUITE_P(
    Tows, ZELCompTowMaskTowOutOfBoundsTest,
    ::testing::Values(
        TowOutOfBoundsCase{"TowZero", ZELCompTowMask(16, true), 0, "value 0 is out of bounds [1, 16]"},
        TowOutOfBoundsCase{"NegativeTow", ZELCompTowMask(16, true), -3, "value -3 is out of bounds [1, 16]"},
        TowOutOfBoundsCase{"TowBeyondCount", ZELCompTowMask(16, true), 17, "value 17 is out of bounds [1, 16]"},
        TowOutOfBoundsCase{"TowBeyondFullHead", ZELCompTowMask(64, true), 65, "value 65 is out of bounds [1, 64]"},
        TowOutOfBoundsCase{"AnyTowOfAnEmptyHead", ZELCompTowMask(0, true), 1, "value 1 is out of bounds [1, 0]"},
        TowOutOfBoundsCase{"AnyTowOfAnInvalidMask", kInvalidMask, 1, "value 1 is out of bounds [1, -1]"}),
    CaseName<TowOutOfBoundsCase>);

struct TextCase {
    const char* name;
    ZELCompTowMask mask;
    const char* text;
};
ZELTEST_PRINT_CASE_BY_NAME(TextCase);

class ZELCompTowMaskTextTest : public ::testing::TestWithParam<TextCase> {};

TEST_P(ZELCompTowMaskTextTest, HexadecimalStringIsPaddedToTheTowCount)
{
    const TextCase& c = GetParam();
    EXPECT_EQ(c.mask.GetHexadecimalString(), QString::fromLatin1(c.text));
}

TEST_P(ZELCompTowMaskTextTest, StringIsTheSameTextAsBytes)
{
    const TextCase& c = GetParam();
    EXPECT_EQ(c.mask.GetString(), QByteArray(c.text));
}

TEST_P(ZELCompTowMaskTextTest, SetStringReadsTheWrittenTextBack)
{
    const TextCase& c = GetParam();
    ZELCompTowMask mask(c.mask.GetNumTows(), true);
    mask.SetString(c.mask.GetString());
    EXPECT_EQ(mask, c.mask);
}

INSTANTIATE_TEST_SUITE_P(
    Counts, ZELCompTowMaskTextTest,
    ::testing::Values(TextCase{"NoTows", ZELCompTowMask(0, true), "0"},
                      TextCase{"OneTowEnabled", ZELCompTowMask(1, true), "1"},
                      TextCase{"OneTowDisabled", ZELCompTowMask(1, false), "0"},
                      TextCase{"FourTowsEnabled", ZELCompTowMask(4, true), "F"},
                      TextCase{"FiveTowsFirstOnly", MaskWithTows(5, {1}), "01"},
                      TextCase{"FiveTowsLastOnly", MaskWithTows(5, {5}), "10"},
                      TextCase{"TwelveTowsFirstOnly", MaskWithTows(12, {1}), "001"},
                      TextCase{"TwelveTowsMixed", MaskWithTows(12, {2, 4, 10, 12}), "A0A"},
                      TextCase{"SixteenTowsEnabled", ZELCompTowMask(16, true), "FFFF"},
                      TextCase{"SixteenTowsLastOnly", MaskWithTows(16, {16}), "8000"},
                      TextCase{"SixtyFourTowsEnabled", ZELCompTowMask(64, true), "FFFFFFFFFFFFFFFF"},
                      TextCase{"SixtyFourTowsFirstOnly", MaskWithTows(64, {1}), "0000000000000001"},
                      TextCase{"SixtyFourTowsLastOnly", MaskWithTows(64, {64}), "8000000000000000"}),
    CaseName<TextCase>);

TEST(ZELCompTowMaskTest, InvalidMaskHasNoText)
{
    EXPECT_TRUE(kInvalidMask.GetHexadecimalString().isEmpty());
    EXPECT_TRUE(kInvalidMask.GetString().isEmpty());
}

struct AcceptedTextCase {
    const char* name;
    int numTows;
    const char* text;
    quint64 expectedRawValue;
};
ZELTEST_PRINT_CASE_BY_NAME(AcceptedTextCase);

class ZELCompTowMaskAcceptedTextTest : public ::testing::TestWithParam<AcceptedTextCase> {};

TEST_P(ZELCompTowMaskAcceptedTextTest, SetStringSetsTheTowsAndKeepsTheCount)
{
    const AcceptedTextCase& c = GetParam();
    ZELCompTowMask mask(c.numTows, true);
    mask.SetString(c.text);
    EXPECT_EQ(mask.GetNumTows(), c.numTows);
    EXPECT_EQ(mask.GetRawValue(), c.expectedRawValue);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ZELCompTowMaskAcceptedTextTest,
    ::testing::Values(AcceptedTextCase{"LowerCase", 16, "a0f1", 0xA0F1},
                      AcceptedTextCase{"MixedCase", 16, "1a2B", 0x1A2B},
                      AcceptedTextCase{"LowerCasePrefix", 16, "0xFFFF", 0xFFFF},
                      AcceptedTextCase{"UpperCasePrefix", 16, "0X00ff", 0xFF},
                      AcceptedTextCase{"SurroundingWhiteSpace", 16, " \t0x12\r\n ", 0x12},
                      AcceptedTextCase{"FewerDigitsThanTheWidth", 12, "1", 0x1},
                      AcceptedTextCase{"ManyLeadingZeros", 16, "00000000000000000000000000008001", 0x8001},
                      AcceptedTextCase{"ZeroDisablesEveryTow", 16, "0", 0},
                      AcceptedTextCase{"FullHead", 64, "ffffffffffffffff", kAllBits},
                      AcceptedTextCase{"HighestTowOfAFullHead", 64, "0x8000000000000000", kTow64Bit},
                      AcceptedTextCase{"EmptyHeadWithZeros", 0, "000", 0}),
    CaseName<AcceptedTextCase>);

struct RejectedTextCase {
    const char* name;
    ZELCompTowMask mask;
    const char* text;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(RejectedTextCase);

class ZELCompTowMaskRejectedTextTest : public ::testing::TestWithParam<RejectedTextCase> {};

TEST_P(ZELCompTowMaskRejectedTextTest, SetStringThrowsAndLeavesMaskUnchanged)
{
    const RejectedTextCase& c = GetParam();
    ZELCompTowMask mask = c.mask;
    EXPECT_THROW_MESSAGE(mask.SetString(c.text), ZELSysException, c.message);
    EXPECT_EQ(mask, c.mask);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ZELCompTowMaskRejectedTextTest,
    ::testing::Values(
        RejectedTextCase{"Empty", MaskWithTows(16, {2}), "", "tow mask text '' is not hexadecimal"},
        RejectedTextCase{"OnlyWhiteSpace", MaskWithTows(16, {2}), "  ", "tow mask text '  ' is not hexadecimal"},
        RejectedTextCase{"LonePrefix", MaskWithTows(16, {2}), "0x", "tow mask text '0x' is not hexadecimal"},
        RejectedTextCase{"NonHexadecimalDigit", MaskWithTows(16, {2}), "FG",
                         "tow mask text 'FG' is not hexadecimal"},
        RejectedTextCase{"MinusSign", MaskWithTows(16, {2}), "-1", "tow mask text '-1' is not hexadecimal"},
        RejectedTextCase{"PlusSign", MaskWithTows(16, {2}), "+1", "tow mask text '+1' is not hexadecimal"},
        RejectedTextCase{"SpaceAfterPrefix", MaskWithTows(16, {2}), "0x 1",
                         "tow mask text '0x 1' is not hexadecimal"},
        RejectedTextCase{"InnerSpace", MaskWithTows(16, {2}), "1 2", "tow mask text '1 2' is not hexadecimal"},
        RejectedTextCase{"DoublePrefix", MaskWithTows(16, {2}), "0x0x1",
                         "tow mask text '0x0x1' is not hexadecimal"},
        RejectedTextCase{"ValueWiderThan64Bits", ZELCompTowMask(64, true), "10000000000000000",
                         "tow mask text '10000000000000000' is not hexadecimal"},
        RejectedTextCase{"PrefixedValueWiderThan64Bits", ZELCompTowMask(64, true), "0x1FFFFFFFFFFFFFFFF",
                         "tow mask text '0x1FFFFFFFFFFFFFFFF' is not hexadecimal"},
        RejectedTextCase{"BadTextOnAnInvalidMask", kInvalidMask, "xyz", "tow mask text 'xyz' is not hexadecimal"},
        RejectedTextCase{"TowBeyondCount", MaskWithTows(16, {2}), "1FFFF",
                         "tow mask text '1FFFF' enables tows beyond tow 16"},
        RejectedTextCase{"TowBeyondCountQuotedUntrimmed", MaskWithTows(5, {2}), " 0x20 ",
                         "tow mask text ' 0x20 ' enables tows beyond tow 5"},
        RejectedTextCase{"AnyTowOfAnEmptyHead", ZELCompTowMask(0, true), "1",
                         "tow mask text '1' enables tows beyond tow 0"}),
    CaseName<RejectedTextCase>);

TEST(ZELCompTowMaskTest, SetStringOnInvalidMaskAcceptsGoodTextAndStaysInvalid)
{
    for (const int badCount : {-1, 65}) {
        ZELCompTowMask mask(badCount, true);
        mask.SetString("0xFFFF");
        EXPECT_FALSE(mask.IsValid()) << "count " << badCount;
        EXPECT_EQ(mask.GetNumTows(), -1) << "count " << badCount;
        EXPECT_EQ(mask.GetNumEnabled(), -1) << "count " << badCount;
        EXPECT_EQ(mask.GetRawValue(), 0u) << "count " << badCount;
    }
}

struct SetOperationCase {
    const char* name;
    ZELCompTowMask left;
    ZELCompTowMask right;
    ZELCompTowMask expectedUnion;
    ZELCompTowMask expectedIntersection;
    ZELCompTowMask expectedDifference;
};
ZELTEST_PRINT_CASE_BY_NAME(SetOperationCase);

class ZELCompTowMaskSetOperationTest : public ::testing::TestWithParam<SetOperationCase> {};

TEST_P(ZELCompTowMaskSetOperationTest, UnionKeepsTheLeftTowCount)
{
    const SetOperationCase& c = GetParam();
    EXPECT_EQ(c.left | c.right, c.expectedUnion);
    ZELCompTowMask assigned = c.left;
    assigned |= c.right;
    EXPECT_EQ(assigned, c.expectedUnion);
}

TEST_P(ZELCompTowMaskSetOperationTest, IntersectionKeepsTheLeftTowCount)
{
    const SetOperationCase& c = GetParam();
    EXPECT_EQ(c.left & c.right, c.expectedIntersection);
    ZELCompTowMask assigned = c.left;
    assigned &= c.right;
    EXPECT_EQ(assigned, c.expectedIntersection);
}

TEST_P(ZELCompTowMaskSetOperationTest, DifferenceKeepsTheLeftTowCount)
{
    const SetOperationCase& c = GetParam();
    EXPECT_EQ(c.left - c.right, c.expectedDifference);
    ZELCompTowMask assigned = c.left;
    assigned -= c.right;
    EXPECT_EQ(assigned, c.expectedDifference);
}

INSTANTIATE_TEST_SUITE_P(
    Operands, ZELCompTowMaskSetOperationTest,
    ::testing::Values(
        SetOperationCase{"SameCount", MaskWithTows(8, {1, 2, 3}), MaskWithTows(8, {3, 4}),
                         MaskWithTows(8, {1, 2, 3, 4}), MaskWithTows(8, {3}), MaskWithTows(8, {1, 2})},
        SetOperationCase{"WiderRightDropsItsExtraTows", MaskWithTows(4, {1, 4}), MaskWithTows(8, {4, 5, 8}),
                         MaskWithTows(4, {1, 4}), MaskWithTows(4, {4}), MaskWithTows(4, {1})},
        SetOperationCase{"NarrowerRightKeepsTheLeftCount", MaskWithTows(8, {1, 8}), MaskWithTows(4, {1, 2}),
                         MaskWithTows(8, {1, 2, 8}), MaskWithTows(8, {1}), MaskWithTows(8, {8})},
        SetOperationCase{"FullHeads", MaskWithTows(64, {64}), MaskWithTows(64, {1, 64}),
                         MaskWithTows(64, {1, 64}), MaskWithTows(64, {64}), MaskWithTows(64, {})},
        SetOperationCase{"EmptyLeftHead", ZELCompTowMask(0, true), ZELCompTowMask(16, true),
                         ZELCompTowMask(0, true), ZELCompTowMask(0, true), ZELCompTowMask(0, true)},
        SetOperationCase{"InvalidLeft", kInvalidMask, ZELCompTowMask(16, true), kInvalidMask, kInvalidMask,
                         kInvalidMask},
        SetOperationCase{"InvalidRight", MaskWithTows(16, {1}), kInvalidMask, kInvalidMask, kInvalidMask,
                         kInvalidMask}),
    CaseName<SetOperationCase>);

struct SingleTowCase {
    const char* name;
    int numTows;
    int tow;
    quint64 expectedRawValue;
};
ZELTEST_PRINT_CASE_BY_NAME(SingleTowCase);

class ZELCompTowMaskSingleTowTest : public ::testing::TestWithParam<SingleTowCase> {};

TEST_P(ZELCompTowMaskSingleTowTest, EnablesOnlyThatTow)
{
    const SingleTowCase& c = GetParam();
    const ZELCompTowMask mask = ZELCompTowMask::GetSingleTowMask(c.numTows, c.tow);
    EXPECT_EQ(mask.GetNumTows(), c.numTows);
    EXPECT_EQ(mask.GetNumEnabled(), 1);
    EXPECT_TRUE(mask.IsTowEnabled(c.tow));
    EXPECT_EQ(mask.GetRawValue(), c.expectedRawValue);
}

INSTANTIATE_TEST_SUITE_P(Tows, ZELCompTowMaskSingleTowTest,
                         ::testing::Values(SingleTowCase{"OnlyTowOfOne", 1, 1, 0x1},
                                           SingleTowCase{"MiddleTow", 12, 5, 0x10},
                                           SingleTowCase{"LastOfSixteen", 16, 16, 0x8000},
                                           SingleTowCase{"FirstOfSixtyFour", 64, 1, 0x1},
                                           SingleTowCase{"Tow64", 64, 64, kTow64Bit}),
                         CaseName<SingleTowCase>);

TEST(ZELCompTowMaskTest, SingleTowMaskOfABadCountIsInvalid)
{
    for (const int badCount : {-1, 65}) {
        const ZELCompTowMask mask = ZELCompTowMask::GetSingleTowMask(badCount, 1);
        EXPECT_FALSE(mask.IsValid()) << "count " << badCount;
        EXPECT_EQ(mask, kInvalidMask) << "count " << badCount;
    }
}

struct SingleTowOutOfBoundsCase {
    const char* name;
    int numTows;
    int tow;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(SingleTowOutOfBoundsCase);

class ZELCompTowMaskSingleTowOutOfBoundsTest : public ::testing::TestWithParam<SingleTowOutOfBoundsCase> {};

TEST_P(ZELCompTowMaskSingleTowOutOfBoundsTest, GetSingleTowMaskThrows)
{
    const SingleTowOutOfBoundsCase& c = GetParam();
    EXPECT_THROW_MESSAGE(ZELCompTowMask::GetSingleTowMask(c.numTows, c.tow), ZELSysOutOfBoundsException,
                         c.message);
}

INSTANTIATE_TEST_SUITE_P(
    Tows, ZELCompTowMaskSingleTowOutOfBoundsTest,
    ::testing::Values(SingleTowOutOfBoundsCase{"TowZero", 16, 0, "value 0 is out of bounds [1, 16]"},
                      SingleTowOutOfBoundsCase{"TowBeyondCount", 16, 17, "value 17 is out of bounds [1, 16]"},
                      SingleTowOutOfBoundsCase{"TowBeyondFullHead", 64, 65, "value 65 is out of bounds [1, 64]"},
                      SingleTowOutOfBoundsCase{"AnyTowOfAnEmptyHead", 0, 1, "value 1 is out of bounds [1, 0]"}),
    CaseName<SingleTowOutOfBoundsCase>);

struct EqualityCase {
    const char* name;
    ZELCompTowMask left;
    ZELCompTowMask right;
    bool equal;
};
ZELTEST_PRINT_CASE_BY_NAME(EqualityCase);

class ZELCompTowMaskEqualityTest : public ::testing::TestWithParam<EqualityCase> {};

TEST_P(ZELCompTowMaskEqualityTest, ComparesValidityCountAndTows)
{
    const EqualityCase& c = GetParam();
    EXPECT_EQ(c.left == c.right, c.equal);
    EXPECT_EQ(c.left != c.right, !c.equal);
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, ZELCompTowMaskEqualityTest,
    ::testing::Values(
        EqualityCase{"SameCountAndTows", MaskWithTows(16, {1, 9}), MaskWithTows(16, {1, 9}), true},
        EqualityCase{"DifferentTows", MaskWithTows(16, {1, 9}), MaskWithTows(16, {1, 10}), false},
        EqualityCase{"DifferentCountsSameTows", MaskWithTows(16, {1}), MaskWithTows(8, {1}), false},
        EqualityCase{"InvalidMasksFromDifferentCounts", ZELCompTowMask(-1, false), ZELCompTowMask(65, true), true},
        EqualityCase{"InvalidAgainstEmptyHead", kInvalidMask, ZELCompTowMask(0, false), false}),
    CaseName<EqualityCase>);

struct StreamRoundTripCase {
    const char* name;
    ZELCompTowMask mask;
};
ZELTEST_PRINT_CASE_BY_NAME(StreamRoundTripCase);

class ZELCompTowMaskStreamRoundTripTest : public ::testing::TestWithParam<StreamRoundTripCase> {};

TEST_P(ZELCompTowMaskStreamRoundTripTest, ReadsBackTheWrittenMask)
{
    const StreamRoundTripCase& c = GetParam();
    QDataStream::Status status = QDataStream::ReadCorruptData;
    EXPECT_EQ(Deserialized(Serialized(c.mask), &status), c.mask);
    EXPECT_EQ(status, QDataStream::Ok);
}

INSTANTIATE_TEST_SUITE_P(Masks, ZELCompTowMaskStreamRoundTripTest,
                         ::testing::Values(StreamRoundTripCase{"NoTows", ZELCompTowMask(0, false)},
                                           StreamRoundTripCase{"SixteenTowsMixed", MaskWithTows(16, {1, 16})},
                                           StreamRoundTripCase{"SixtyFourTowsEnabled", ZELCompTowMask(64, true)},
                                           StreamRoundTripCase{"SixtyFourTowsLastOnly", MaskWithTows(64, {64})},
                                           StreamRoundTripCase{"Invalid", kInvalidMask}),
                         CaseName<StreamRoundTripCase>);

TEST(ZELCompTowMaskTest, StreamFormIsCountThenRawValue)
{
    EXPECT_EQ(Serialized(MaskWithTows(16, {1, 16})), HandMadeStream(16, 0x8001));
    EXPECT_EQ(Serialized(kInvalidMask), HandMadeStream(-1, 0));
}

struct UntrustedStreamCase {
    const char* name;
    qint32 numTows;
    quint64 bits;
    ZELCompTowMask expected;
};
ZELTEST_PRINT_CASE_BY_NAME(UntrustedStreamCase);

class ZELCompTowMaskUntrustedStreamTest : public ::testing::TestWithParam<UntrustedStreamCase> {};

TEST_P(ZELCompTowMaskUntrustedStreamTest, ReadGivesOnlyWhatTheCountAllows)
{
    const UntrustedStreamCase& c = GetParam();
    EXPECT_EQ(Deserialized(HandMadeStream(c.numTows, c.bits)), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Streams, ZELCompTowMaskUntrustedStreamTest,
    ::testing::Values(UntrustedStreamCase{"CountAboveMaximumIsInvalid", 70, 0xFF, kInvalidMask},
                      UntrustedStreamCase{"NegativeCountIsInvalid", -5, 0xFF, kInvalidMask},
                      UntrustedStreamCase{"BitsBeyondCountAreDropped", 4, 0xFF, ZELCompTowMask(4, true)},
                      UntrustedStreamCase{"BitsOfAnEmptyHeadAreDropped", 0, 0x1, ZELCompTowMask(0, false)},
                      UntrustedStreamCase{"FullHeadKeepsEveryBit", 64, kAllBits, ZELCompTowMask(64, true)}),
    CaseName<UntrustedStreamCase>);

TEST(ZELCompTowMaskTest, TruncatedStreamReadsAsInvalid)
{
    const QByteArray countOnly = HandMadeStream(16, 0xFFFF).left(int(sizeof(qint32)));
    QDataStream::Status status = QDataStream::Ok;
    EXPECT_EQ(Deserialized(countOnly, &status), kInvalidMask);
    EXPECT_EQ(status, QDataStream::ReadPastEnd);
}

TEST(ZELCompTowMaskTest, TravelsInAVariant)
{
    const ZELCompTowMask mask = MaskWithTows(12, {3, 7});
    const QVariant variant = QVariant::fromValue(mask);
    EXPECT_EQ(variant.metaType(), QMetaType::fromType<ZELCompTowMask>());
    EXPECT_EQ(variant.value<ZELCompTowMask>(), mask);
}
