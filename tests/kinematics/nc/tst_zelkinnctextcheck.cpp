// The texts a program puts into its NC files: a line end, another control
// character or a double quote in any of them is refused, naming the field.

#include "zelkinnctestprograms.h"

#include <zelkinnctextcheck_p.h>

#include <zelsysexception.h>

#include <vector>

using ZELTest::NCFixture;

namespace {

enum class Field { ProgramName, Revision, Author, ProcedureName, PlyName, Material };

struct SpoiledTextCase
{
    std::string name;
    Field field;
    QString text;
    QString message;
};
ZELTEST_PRINT_CASE_BY_NAME(SpoiledTextCase);

// Puts `text` into the field of the part's program: a procedure's name into
// the second layup procedure, ply texts into a ply added to "Ply A".
void Spoil(NCFixture& f, Field field, const QString& text)
{
    auto* plyA = qobject_cast<ZELKinRollLayupProcedure*>(f.program->GetProcedure(0));
    auto* plyB = qobject_cast<ZELKinRollLayupProcedure*>(f.program->GetProcedure(2));
    const QString ply = field == Field::PlyName ? text : QStringLiteral("P3");
    const QString material = field == Field::Material ? text : QStringLiteral("T35");
    switch (field) {
    case Field::ProgramName:
        f.program->SetOriginalFileName(text);
        break;
    case Field::Revision:
        f.program->SetRevisionNumber(text);
        break;
    case Field::Author:
        f.program->SetAuthor(text);
        break;
    case Field::ProcedureName:
        plyB->setObjectName(text);
        break;
    case Field::PlyName:
    case Field::Material:
        plyA->AddPlyDefinition(NCFixture::Ply(ply, material, 0.0, ZELCompStrategy::Angle, 1.0));
        break;
    }
}

QString With(const char* before, char16_t character, const char* after)
{
    return QString::fromLatin1(before) + QChar(character) + QString::fromLatin1(after);
}

const std::vector<SpoiledTextCase> kSpoiledTextCases{
    {"LineFeedInTheProgramName", Field::ProgramName, With("PA", u'\n', "RT"),
     "cannot write the NC: the program name contains the line end U+000A"},
    {"CarriageReturnInTheRevision", Field::Revision, With("B", u'\r', ""),
     "cannot write the NC: the revision contains the line end U+000D"},
    {"VerticalTabInTheAuthor", Field::Author, With("j", 0x000B, "doe"),
     "cannot write the NC: the author contains the line end U+000B"},
    {"FormFeedInAPlyName", Field::PlyName, With("P", 0x000C, "3"),
     "cannot write the NC: the ply name of procedure 'Ply A' contains the line end U+000C"},
    {"NextLineInTheAuthor", Field::Author, With("jdoe", 0x0085, ""),
     "cannot write the NC: the author contains the line end U+0085"},
    {"LineSeparatorInAProcedureName", Field::ProcedureName, With("Ply", 0x2028, "B"),
     "cannot write the NC: the name of layup procedure 2 contains the line end U+2028"},
    {"ParagraphSeparatorInAMaterial", Field::Material, With("T35", 0x2029, ""),
     "cannot write the NC: the material of procedure 'Ply A' contains the line end U+2029"},
    {"EscapeInAMaterial", Field::Material, With("IM", 0x001B, "7"),
     "cannot write the NC: the material of procedure 'Ply A' contains the control character U+001B"},
    {"NulInTheRevision", Field::Revision, With("B", 0x0000, ""),
     "cannot write the NC: the revision contains a NUL character"},
    {"TabInAPlyName", Field::PlyName, With("P", u'\t', "3"),
     "cannot write the NC: the ply name of procedure 'Ply A' contains the control character U+0009"},
    {"DeleteInTheProgramName", Field::ProgramName, With("PART", 0x007F, ""),
     "cannot write the NC: the program name contains the control character U+007F"},
    {"C1ControlInAProcedureName", Field::ProcedureName, With("Ply ", 0x009B, "B"),
     "cannot write the NC: the name of layup procedure 2 contains the control character U+009B"},
    {"DoubleQuoteInTheProgramName", Field::ProgramName, QStringLiteral("PA\"RT"),
     "cannot write the NC: the program name contains a double quote"},
    {"DoubleQuoteInAPlyName", Field::PlyName, QStringLiteral("P\"3"),
     "cannot write the NC: the ply name of procedure 'Ply A' contains a double quote"},
    {"DoubleQuoteInTheAuthor", Field::Author, QStringLiteral("\"jdoe\""),
     "cannot write the NC: the author contains a double quote"},
};

class ZELKinNCTextCheckRefuses : public ::testing::TestWithParam<SpoiledTextCase>
{
};

} // namespace

TEST_P(ZELKinNCTextCheckRefuses, NamesTheFieldAndWhatItContains)
{
    const SpoiledTextCase& c = GetParam();
    NCFixture f;
    f.BuildPart();
    Spoil(f, c.field, c.text);
    EXPECT_THROW_MESSAGE(ZELKinNCTextCheck::Check(f.program), ZELSysException, c.message);
}

INSTANTIATE_TEST_SUITE_P(Table, ZELKinNCTextCheckRefuses, ::testing::ValuesIn(kSpoiledTextCases),
                         [](const auto& info) { return info.param.name; });

TEST(ZELKinNCTextCheck, ThePartPasses)
{
    NCFixture f;
    f.BuildPart();
    EXPECT_NO_THROW(ZELKinNCTextCheck::Check(f.program));
}

TEST(ZELKinNCTextCheck, TextsOutsideAsciiQuotesAndBlanksPass)
{
    NCFixture f;
    f.BuildPart();
    f.program->SetAuthor(QStringLiteral("J\u00f6rg O'Neil"));
    f.program->SetRevisionNumber(QStringLiteral("B | 2 \\ 3"));
    Spoil(f, Field::PlyName, QStringLiteral("P3 \u00b145\u00b0 \u4e2d"));
    EXPECT_NO_THROW(ZELKinNCTextCheck::Check(f.program));
}

TEST(ZELKinNCTextCheck, FirstBadFieldInWritingOrderIsNamed)
{
    NCFixture f;
    f.BuildPart();
    Spoil(f, Field::Material, QStringLiteral("IM\"7"));
    Spoil(f, Field::Author, QStringLiteral("j\ndoe"));
    EXPECT_THROW_MESSAGE(ZELKinNCTextCheck::Check(f.program), ZELSysException,
                         "cannot write the NC: the author contains the line end U+000A");
}

TEST(ZELKinNCTextCheck, TextsOfProceduresOfOtherKindsAreNotPrintedAndPass)
{
    NCFixture f;
    f.BuildPart();
    f.program->GetProcedure(1)->setObjectName(QStringLiteral("probe\n\"1\""));
    EXPECT_NO_THROW(ZELKinNCTextCheck::Check(f.program));
}
