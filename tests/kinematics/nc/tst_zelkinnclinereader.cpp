// NC text read line by line: line ends, encodings, blocks and what no NC
// program holds, from files and from a pipe.

#include <zelkinnclinereader.h>

#include <zelsysexception.h>
#include <zeltestnamedpipe.h>
#include <zeltestsupport.h>

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

namespace {

// Every line `reader` gives, with the line number it reports after each.
struct ReadText
{
    QStringList lines;
    QList<unsigned> numbers;
};

ReadText ReadAll(ZELKinNCLineReader& reader)
{
    ReadText text;
    QString line;
    while (reader.ReadLine(line)) {
        text.lines.append(line);
        text.numbers.append(reader.GetLineNumber());
    }
    return text;
}

class ZELKinNCLineReaderTest : public ::testing::Test
{
protected:
    // Writes `bytes` to a file and opens it for reading.
    QFile& FileOf(const QByteArray& bytes)
    {
        m_file.setFileName(QDir(m_folder.path()).filePath(QStringLiteral("program.nc")));
        EXPECT_TRUE(m_file.open(QIODevice::WriteOnly));
        EXPECT_EQ(m_file.write(bytes), bytes.size());
        m_file.close();
        EXPECT_TRUE(m_file.open(QIODevice::ReadOnly));
        return m_file;
    }

    QStringList LinesOf(const QByteArray& bytes)
    {
        ZELKinNCLineReader reader(FileOf(bytes), QStringLiteral("program.nc"));
        return ReadAll(reader).lines;
    }

    QTemporaryDir m_folder;
    QFile m_file;
};

TEST_F(ZELKinNCLineReaderTest, LinesComeInOrderNumberedFromOne)
{
    ZELKinNCLineReader reader(FileOf("G1 X1\nX2\n\nM30\n"), QStringLiteral("program.nc"));
    EXPECT_EQ(reader.GetLineNumber(), 0u);
    const ReadText text = ReadAll(reader);
    EXPECT_EQ(text.lines,
              QStringList({QStringLiteral("G1 X1"), QStringLiteral("X2"), QString(), QStringLiteral("M30")}));
    EXPECT_EQ(text.numbers, QList<unsigned>({1, 2, 3, 4}));
    EXPECT_EQ(reader.GetLineNumber(), 4u);
}

TEST_F(ZELKinNCLineReaderTest, EmptyTextHasNoLine)
{
    EXPECT_EQ(LinesOf(QByteArray()), QStringList());
}

TEST_F(ZELKinNCLineReaderTest, LastLineWithoutALineEndIsALine)
{
    EXPECT_EQ(LinesOf("X1\nX2"), QStringList({QStringLiteral("X1"), QStringLiteral("X2")}));
}

TEST_F(ZELKinNCLineReaderTest, OneCarriageReturnBeforeALineEndOrTheEndIsTakenOffWithIt)
{
    EXPECT_EQ(LinesOf("G1\rX2\r\r\nX3\r\n\r"),
              QStringList({QStringLiteral("G1\rX2\r"), QStringLiteral("X3"), QString()}));
}

TEST_F(ZELKinNCLineReaderTest, Utf8ByteOrderMarkIsSkipped)
{
    EXPECT_EQ(LinesOf("\xef\xbb\xbfG1 ;\xc3\xa4\n"), QStringList({QStringLiteral("G1 ;\u00e4")}));
}

TEST_F(ZELKinNCLineReaderTest, Utf16ByteOrderMarkChoosesUtf16)
{
    EXPECT_EQ(LinesOf(QByteArray("\xff\xfeG\0001\000\n\000X\0002\000", 12)),
              QStringList({QStringLiteral("G1"), QStringLiteral("X2")}));
}

TEST_F(ZELKinNCLineReaderTest, BytesThatAreNotUtf8ReadAsReplacementCharacters)
{
    EXPECT_EQ(LinesOf("caf\xe9\n\xff\xfeG2\n"),
              QStringList({QStringLiteral("caf\ufffd"), QStringLiteral("\ufffd\ufffdG2")}));
}

// Blocks of the file end inside these characters' bytes and inside the
// line; each character is read whole and the line comes out as one.
TEST_F(ZELKinNCLineReaderTest, CharactersAndLinesAcrossBlocksAreReadWhole)
{
    constexpr int kCharacters = 100000;
    QByteArray bytes("G1 ;");
    for (int i = 0; i < kCharacters; ++i)
        bytes += "\xe2\x82\xac";
    bytes += "\r\nX1";
    EXPECT_EQ(LinesOf(bytes),
              QStringList({QStringLiteral("G1 ;") + QString(kCharacters, QChar(0x20ac)), QStringLiteral("X1")}));
}

TEST_F(ZELKinNCLineReaderTest, ManyShortLinesAreAllRead)
{
    constexpr int kLines = 50000;
    QByteArray bytes;
    for (int i = 1; i <= kLines; ++i)
        bytes += "N" + QByteArray::number(i) + "\n";
    const QStringList lines = LinesOf(bytes);
    ASSERT_EQ(lines.size(), kLines);
    EXPECT_EQ(lines.first(), QStringLiteral("N1"));
    EXPECT_EQ(lines.at(kLines / 2), QStringLiteral("N%1").arg(kLines / 2 + 1));
    EXPECT_EQ(lines.last(), QStringLiteral("N%1").arg(kLines));
}

TEST_F(ZELKinNCLineReaderTest, NulCharacterInAFileIsPartOfItsLine)
{
    EXPECT_EQ(LinesOf(QByteArray("X2\0Y3\n", 6)),
              QStringList({QStringLiteral("X2") + QChar(0) + QStringLiteral("Y3")}));
}

TEST_F(ZELKinNCLineReaderTest, NulCharacterFromAPipeIsAnErrorAfterTheLinesBeforeIt)
{
    const ZELTest::NamedPipe pipe(m_folder.path(), QStringLiteral("pipe"), QByteArray("G1 X1\nX2\0Y3\nG2\n", 16));
    ASSERT_TRUE(pipe.IsCreated());
    QFile file(pipe.GetPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ZELKinNCLineReader reader(file, QStringLiteral("standard input"));
    QString line;
    ASSERT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(line, QStringLiteral("G1 X1"));
    EXPECT_THROW_MESSAGE(reader.ReadLine(line), ZELSysException,
                         QStringLiteral("cannot read standard input: line 2 holds a NUL character, which no NC text "
                                        "holds"));
}

TEST_F(ZELKinNCLineReaderTest, TextFromAPipeReadsAsFromAFile)
{
    const QByteArray bytes("\xef\xbb\xbfN1 G1\r\nN2 X\xe2\x82\xac\nN3");
    const ZELTest::NamedPipe pipe(m_folder.path(), QStringLiteral("pipe"), bytes);
    ASSERT_TRUE(pipe.IsCreated());
    QFile file(pipe.GetPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ZELKinNCLineReader reader(file, QStringLiteral("standard input"));
    EXPECT_EQ(ReadAll(reader).lines, LinesOf(bytes));
}

} // namespace
