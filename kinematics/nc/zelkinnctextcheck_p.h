#ifndef ZELKINNCTEXTCHECK_P_H
#define ZELKINNCTEXTCHECK_P_H

#include "zelkinematics_export.h"

#include <QString>

class ZELKinProgram;
class ZELKinRollLayupProcedure;

/*!
    The writer's last look at the texts a program puts into its NC files,
    before any file is opened: the program's name (its original file name),
    revision and author, and of each roll layup procedure its name and its
    plies' names and materials. A line end in one of them would start a
    line the controller runs as a block of its own; a double quote would end
    a quoted string (GUD_EID="...") early. The rule is the toolpath
    reader's own (ZELTPText).
*/
class ZELKINEMATICS_EXPORT ZELKinNCTextCheck
{
public:
    ZELKinNCTextCheck() = delete;

    //! Throws ZELSysException "cannot write the NC: the <field> contains
    //! <problem>" for the first text that breaks the rule, fields in the
    //! order above: "the author contains the line end U+000A", "the name of
    //! layup procedure 2 contains a double quote" (counting the roll layup
    //! procedures from 1, since that name cannot be shown), "the ply name of
    //! procedure 'P1' contains the control character U+001B", "the material
    //! of procedure 'P1' ...".
    static void Check(const ZELKinProgram* program);

private:
    static void CheckProcedure(const ZELKinRollLayupProcedure* procedure, int number);
    //! Throws when `text`, the NC's `field`, breaks the rule.
    static void CheckField(const QString& field, const QString& text);
};

#endif // ZELKINNCTEXTCHECK_P_H
