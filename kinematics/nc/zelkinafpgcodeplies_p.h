#ifndef ZELKINAFPGCODEPLIES_P_H
#define ZELKINAFPGCODEPLIES_P_H

#include "zelkinncstream_p.h"

#include <zelcompstrategy.h>

#include <QList>
#include <QString>

class ZELKinProcedure;
class ZELKinProgram;
class ZELKinRollLayupProcedure;

/*!
    Ply numbers and ply labels as the AFP G-code files print them.

    Before writing, every roll layup procedure of the program gets the
    dynamic property "PlyNum": 101, 102, ... in program order, procedures of
    other kinds skipped. File names, markers and NC text print it padded
    with "0" to at least four digits (0101).
*/
class ZELKinAFPGCodePlies
{
public:
    ZELKinAFPGCodePlies() = delete;

    //! The number of a program's first ply.
    static constexpr int FirstPlyNumber = 101;
    //! Numbers the roll layup procedures of `program` from `first` on (101
    //! for a whole program); returns the number the next ply would get.
    static int Number(const ZELKinProgram* program, int first = FirstPlyNumber);
    //! The roll layup procedures of `program`, in program order.
    static QList<const ZELKinRollLayupProcedure*> RollLayupProceduresOf(const ZELKinProgram* program);
    //! The "PlyNum" of `procedure`; 0 when it has none.
    static int PlyNumberOf(const ZELKinProcedure* procedure);
    //! The ply number padded to four digits ("0101").
    static QString PaddedPlyNumberOf(const ZELKinProcedure* procedure);
    //! "A-ANGLE", "A-OFFSET" and "G-OFFSET" for the first three modes, the
    //! composites library's label for the others.
    static QString MethodLabel(ZELCompStrategy::PropagationMode mode);
    //! A ply angle (rad) in degrees with three decimals, padded on the left
    //! to nine characters: "  -45.000".
    static ZELKinNCStream::Fixed AngleField(double radians);
};

#endif // ZELKINAFPGCODEPLIES_P_H
