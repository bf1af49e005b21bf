#ifndef ZELKINPROGRAMTEXT_P_H
#define ZELKINPROGRAMTEXT_P_H

#include <QString>

/*!
    The rule for a text that a program carries into its NC files (its name,
    revision and author, procedure and ply names, materials): one line, and
    nothing that ends the quoted strings of the NC dialect. Such a text holds
    no line end (U+000A to U+000D, U+0085, U+2028, U+2029), no other control
    character and no double quote. Nothing declared here throws.
*/
class ZELKinProgramText
{
public:
    ZELKinProgramText() = delete;

    //! What keeps `text` out of the NC, as what the text contains: "the
    //! line end U+000A", "the control character U+001B", "a double quote";
    //! the first such character counts. Empty when the text is fit.
    static QString GetProblem(const QString& text);
};

#endif // ZELKINPROGRAMTEXT_P_H
