// The buffered stream of NC text: the bytes a text stream would write, in
// blocks, and no number that is not finite.

#include <zelkinncformat_p.h>
#include <zelkinncstream_p.h>

#include <zelsysexception.h>

#include <zeltestsupport.h>

#include <QBuffer>
#include <QByteArray>
#include <QTextStream>

#include <limits>

namespace {

// The bytes that a QTextStream at its defaults writes for `write`.
template <typename Write>
QByteArray TextStreamBytes(Write write)
{
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    QTextStream out(&device);
    write(out);
    out.flush();
    return bytes;
}

// The bytes that the NC stream writes for `write`.
template <typename Write>
QByteArray NCStreamBytes(Write write, qsizetype blockSize = ZELKinNCStream::DefaultBlockSize)
{
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    {
        ZELKinNCStream out(&device, blockSize);
        write(out);
    }
    return bytes;
}

struct TextCase
{
    const char* name;
    QString text;
    const char* utf8;
};
ZELTEST_PRINT_CASE_BY_NAME(TextCase);

class ZELKinNCStreamTextTest : public ::testing::TestWithParam<TextCase>
{
};

const TextCase kTextCases[] = {
    {"Ascii", QStringLiteral("Ply A"), "Ply A"},
    {"Empty", QString(), ""},
    {"Latin1Letters", QString::fromUtf8("J\xC3\xA9r\xC3\xB4me"), "J\xC3\xA9r\xC3\xB4me"},
    {"CjkLetters", QString::fromUtf8("\xE5\xB1\xA4 1"), "\xE5\xB1\xA4 1"},
    {"OutsideTheBasicPlane", QString::fromUtf8("\xF0\x9F\x9B\xA9"), "\xF0\x9F\x9B\xA9"},
    {"LoneSurrogateBecomesReplacementCharacter", QString(QChar(0xD800)) + QLatin1Char('x'), "\xEF\xBF\xBDx"},
    {"LoneSurrogateAtTheEnd", QLatin1String("x") + QChar(0xDC00), "x\xEF\xBF\xBD"},
};

} // namespace

TEST_P(ZELKinNCStreamTextTest, StringsAreWrittenInUtf8AsATextStreamWritesThem)
{
    const QString text = GetParam().text;
    const QByteArray bytes = NCStreamBytes([&](ZELKinNCStream& out) { out << text << '\n'; });
    EXPECT_EQ(bytes, QByteArray(GetParam().utf8) + '\n');
    EXPECT_EQ(bytes, TextStreamBytes([&](QTextStream& out) { out << text << '\n'; }));
}

INSTANTIATE_TEST_SUITE_P(Values, ZELKinNCStreamTextTest, ::testing::ValuesIn(kTextCases));

TEST(ZELKinNCStream, IntegersAreWrittenInDecimalAsATextStreamWritesThem)
{
    const auto write = [](auto& out) {
        out << 0 << ',' << -17 << ',' << std::numeric_limits<int>::min() << ','
            << std::numeric_limits<qint64>::min() << ',' << std::numeric_limits<quint64>::max();
    };
    const QByteArray bytes = NCStreamBytes(write);
    EXPECT_EQ(bytes, QByteArray("0,-17,-2147483648,-9223372036854775808,18446744073709551615"));
    EXPECT_EQ(bytes, TextStreamBytes(write));
}

TEST(ZELKinNCStream, DoublesAreWrittenWithSixSignificantDigitsInPlainNotation)
{
    const QByteArray bytes = NCStreamBytes([](ZELKinNCStream& out) {
        out << 100.0 << ' ' << 39.37007874015748 << ' ' << -1234567.0 << ' ' << 0.0000433 << ' ' << 0.5;
    });
    EXPECT_EQ(bytes, QByteArray("100 39.3701 -1234570 0.0000433 0.5"));
}

TEST(ZELKinNCStream, FixedNumbersHaveTheDecimalsAsked)
{
    const QByteArray bytes = NCStreamBytes([](ZELKinNCStream& out) {
        out << "X" << ZELKinNCStream::Fixed{10.0, 4} << "Y" << ZELKinNCStream::Fixed{-0.125, 2} << "U"
            << ZELKinNCStream::Fixed{-0.00001, 4} << "R" << ZELKinNCStream::Fixed{2.5, 0};
    });
    EXPECT_EQ(bytes, QByteArray("X10.0000Y-0.13U-0.0000R3"));
}

TEST(ZELKinNCStream, AFixedNumberWithAWidthIsPaddedOnTheLeftAndNeverCut)
{
    const QByteArray bytes = NCStreamBytes([](ZELKinNCStream& out) {
        out << ',' << ZELKinNCStream::Fixed{-45.0, 3, 9} << ',' << ZELKinNCStream::Fixed{90.0, 3, 9} << ','
            << ZELKinNCStream::Fixed{-123456.0, 3, 9} << ',';
    });
    EXPECT_EQ(bytes, QByteArray(",  -45.000,   90.000,-123456.000,"));
}

// Numbers that are not finite

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct NonFiniteCase
{
    const char* name;
    //! Written before the number.
    const char* before;
    double value;
    //! Whether the number is written in fixed notation.
    bool fixed;
    const char* message;
};
ZELTEST_PRINT_CASE_BY_NAME(NonFiniteCase);

class ZELKinNCStreamNonFiniteTest : public ::testing::TestWithParam<NonFiniteCase>
{
};

const NonFiniteCase kNonFiniteCases[] = {
    {"FeedAfterALetterCode", "N56G1X1.0000\nN57G1F", kNaN, false, "the F of line 2 is nan, not a finite number"},
    {"AxisWithALongLabel", "N1G1X1.0000C1=", kInfinity, true, "the C1 of line 1 is inf, not a finite number"},
    {"LongLabelAfterCodes", "N7G1G641 ADIS=OFF_PART M5M18C1=", kNaN, true,
     "the C1 of line 1 is nan, not a finite number"},
    {"NameEndingInDigits", ";[TOW LENGTH]T1=1.00,T12=", kNaN, true, "the T12 of line 1 is nan, not a finite number"},
    {"NamedValue", ";[RETRACT MODEL] OPMM=SPECIFIED,RetractFeedrate=", -kInfinity, true,
     "the RetractFeedrate of line 1 is -inf, not a finite number"},
    {"NameWithAnUnderscore", " AVERAGE_ADD_DISTANCE=", kNaN, true,
     "the AVERAGE_ADD_DISTANCE of line 1 is nan, not a finite number"},
    {"LetterAfterAFixedNumber", "G1X1.0000Y", kNaN, true, "the Y of line 1 is nan, not a finite number"},
    {"NumberWithoutAnAddress", "A\nB\nPRB_SPH (GUD_PROBED_X, ", kNaN, true,
     "the number after \"PRB_SPH (GUD_PROBED_X, \" on line 3 is nan, not a finite number"},
    {"NumberAtTheStartOfALine", "M02\n", -kInfinity, false,
     "the number after \"\" on line 2 is -inf, not a finite number"},
};

} // namespace

TEST_P(ZELKinNCStreamNonFiniteTest, IsRefusedNamingItsWordAndLine)
{
    const NonFiniteCase& testCase = GetParam();
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    {
        ZELKinNCStream out(&device);
        out << testCase.before;
        if (testCase.fixed)
            EXPECT_THROW_MESSAGE((out << ZELKinNCStream::Fixed{testCase.value, 4}), ZELSysException, testCase.message);
        else
            EXPECT_THROW_MESSAGE(out << testCase.value, ZELSysException, testCase.message);
    }
    // Nothing of the number reaches the device.
    EXPECT_EQ(bytes, QByteArray(testCase.before));
}

INSTANTIATE_TEST_SUITE_P(Values, ZELKinNCStreamNonFiniteTest, ::testing::ValuesIn(kNonFiniteCases));

TEST(ZELKinNCStream, AWordHandedToTheDeviceInPartIsNamedWhole)
{
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    // Blocks of 16 bytes: the first part of the word goes to the device
    // when its second part does not fit the block.
    ZELKinNCStream out(&device, 16);
    out << "N1G1X1.0000\n";
    out << ";[RETRACT MODEL] Retract";
    out << "Feedrate=";
    ASSERT_TRUE(bytes.endsWith("Retract"));
    EXPECT_THROW_MESSAGE((out << ZELKinNCStream::Fixed{kNaN, 6}), ZELSysException,
                         "the RetractFeedrate of line 2 is nan, not a finite number");
}

TEST(ZELKinNCStream, ANumberWithoutAnAddressIsNamedByTheLastEightyCharactersOfItsLine)
{
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    ZELKinNCStream out(&device, 16);
    out << "M02\n";
    // Longer than a block.
    out << QByteArray(100, 'x').constData() << ", ";
    EXPECT_THROW_MESSAGE(out << kInfinity, ZELSysException,
                         QStringLiteral("the number after \"%1, \" on line 2 is inf, not a finite number")
                             .arg(QString(78, QLatin1Char('x'))));
}

TEST(ZELKinNCStream, TextWaitsInTheBufferUntilABlockIsFull)
{
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    ZELKinNCStream out(&device, 16);
    out << "0123456789";
    EXPECT_TRUE(bytes.isEmpty());
    // Ten more bytes do not fit the block: the first ten go to the device.
    out << "abcdefghij";
    EXPECT_EQ(bytes, QByteArray("0123456789"));
    out.Flush();
    EXPECT_EQ(bytes, QByteArray("0123456789abcdefghij"));
}

TEST(ZELKinNCStream, NoMoreThanABlockIsHeldBack)
{
    constexpr qsizetype kBlockSize = 64;
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    ZELKinNCStream out(&device, kBlockSize);
    QByteArray expected;
    for (int line = 0; line < 1000; ++line) {
        out << 'N' << line << "G1X" << ZELKinNCStream::Fixed{line * 0.5, 4} << '\n';
        expected += 'N' + QByteArray::number(line) + "G1X" + QByteArray::number(line * 0.5, 'f', 4) + '\n';
        ASSERT_GE(bytes.size(), expected.size() - kBlockSize) << "line " << line;
    }
    out.Flush();
    EXPECT_EQ(bytes, expected);
}

TEST(ZELKinNCStream, ATextLongerThanABlockIsWrittenWhole)
{
    const QString longText = QString(40, QChar(0x00E9)) + QLatin1Char('!');
    const QByteArray bytes = NCStreamBytes([&](ZELKinNCStream& out) { out << "<" << longText << ">"; }, 16);
    EXPECT_EQ(bytes, "<" + longText.toUtf8() + ">");
}

TEST(ZELKinNCStream, DestroyingTheStreamWritesWhatIsLeft)
{
    const QByteArray bytes = NCStreamBytes([](ZELKinNCStream& out) { out << "M02\n"; });
    EXPECT_EQ(bytes, QByteArray("M02\n"));
}

TEST(ZELKinNCStream, LineNumbersCountTheLineEndsWrittenAcrossBlocks)
{
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    // Blocks of 16 bytes: most lines end after the first block has gone.
    ZELKinNCStream out(&device, 16);
    EXPECT_EQ(out.GetLineNumber(), 1);
    for (int line = 1; line <= 100; ++line) {
        ASSERT_EQ(out.GetLineNumber(), line);
        out << "N" << line << "G1X1.0000\n";
    }
    EXPECT_EQ(out.GetLineNumber(), 101);
    out << "no line end";
    EXPECT_EQ(out.GetLineNumber(), 101);
}

TEST(ZELKinNCStream, ATraceIsToldTheLineOfEachPositionAndNeverANullOne)
{
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    ZELKinNCStream out(&device, 16);
    QList<std::pair<qint64, const ZELKinPosition*>> told;
    out.SetPositionTrace([&told](qint64 line, const ZELKinPosition* position) { told.append({line, position}); });
    // Only the address matters to the trace.
    const auto* first = reinterpret_cast<const ZELKinPosition*>(&bytes);
    const auto* second = reinterpret_cast<const ZELKinPosition*>(&device);
    out << "COURSE_MODE\n";
    out.TracePosition(first);
    out << "N1G1X1.0000\nM69\n";
    out.TracePosition(nullptr);
    out.TracePosition(second);
    out << "N2G1X2.0000\n";
    const QList<std::pair<qint64, const ZELKinPosition*>> expected{{2, first}, {4, second}};
    EXPECT_EQ(told, expected);
}

TEST(ZELKinNCStream, WithoutATraceTracingAPositionDoesNothing)
{
    const QByteArray bytes = NCStreamBytes([](ZELKinNCStream& out) {
        out << "A\n";
        out.TracePosition(reinterpret_cast<const ZELKinPosition*>(&out));
        out << "B\n";
    });
    EXPECT_EQ(bytes, QByteArray("A\nB\n"));
}
