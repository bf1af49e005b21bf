#ifndef ZELTPFILENAME_H
#define ZELTPFILENAME_H

#include "zeltoolpath_export.h"

#include <QString>

/*!
    The rule for names that become part of file names when a program is
    posted (a program's name, a procedure's): one path component that stays
    in the folder it is written to. Such a name is not empty and holds no
    path separator ('/' or '\') and no ".."; since the NC programs quote
    it, it is also a text fit for them (ZELTPText): no line end, no other
    control character and no double quote. Nothing declared here throws.
*/
class ZELTOOLPATH_EXPORT ZELTPFileName
{
public:
    ZELTPFileName() = delete;

    //! What makes `name` unfit, as a sentence about the name ("name is
    //! empty", "name contains '..'", "name contains the path separator
    //! '/'", "name contains a NUL character", "name contains the line end
    //! U+000A", "name contains the control character U+001B", "name
    //! contains a double quote"); empty when the name is fit. Of several
    //! unfit characters the first is named.
    static QString GetProblem(const QString& name);
    static bool IsValid(const QString& name) { return GetProblem(name).isEmpty(); }
};

#endif // ZELTPFILENAME_H
