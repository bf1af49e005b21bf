#ifndef ZELTPTEXT_H
#define ZELTPTEXT_H

#include "zeltoolpath_export.h"

#include <QString>

/*!
    The rule for the texts of a toolpath that a posted program may quote in
    its NC lines (names, the revision, the material, the roller and head):
    such a text stays on its line and inside the double quotes it is written
    between. It holds no line end (U+000A to U+000D, U+0085, U+2028,
    U+2029), no other control character (U+0000 to U+001F, U+007F to
    U+009F) and no double quote. Nothing declared here throws.
*/
class ZELTOOLPATH_EXPORT ZELTPText
{
public:
    ZELTPText() = delete;

    //! What makes `text` unfit, as a sentence about the text ("text contains
    //! the line end U+000A", "text contains a double quote", "text contains
    //! a NUL character", "text contains the control character U+001B");
    //! empty when the text is fit. The first unfit character is named.
    static QString GetProblem(const QString& text);
    //! The first unfit character of `text` as a problem phrase (as
    //! DescribeUnfitCharacter gives it); empty when the text is fit.
    static QString DescribeFirstUnfitCharacter(const QString& text);
    static bool IsValid(const QString& text) { return GetProblem(text).isEmpty(); }

    //! `character` as a problem phrase ("the line end U+000A", "a double
    //! quote", "a NUL character", "the control character U+001B"); empty
    //! when it may stand in a text.
    static QString DescribeUnfitCharacter(QChar character);
};

#endif // ZELTPTEXT_H
