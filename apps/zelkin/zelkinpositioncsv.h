#ifndef ZELKINPOSITIONCSV_H
#define ZELKINPOSITIONCSV_H

#include <QByteArray>
#include <QHash>

class QIODevice;
class ZELKinPosition;
class ZELKinProgram;

/*!
    The axis values of every position of a program as CSV (RFC 4180, "\n"
    line ends), one row per position in the order the machine runs them:

        procedure,script,index,X,Y,Z,C,A,C1,U

    "script" is "link <n>" or "course <n>" (counted from 1, as the solver's
    messages count them) in a roll layup procedure and "probing" in a probe
    procedure; "index" is the command's index within its script (from 0).
    Then one column per machine variable in the machine's order, headed by
    its label: linear axes in mm, rotary axes in degrees, written with six
    decimals; empty where the position does not define the variable. Under
    TRAORI the X, Y and Z of a layup position are the roller centre.
*/
namespace ZELKinPositionCsv {

//! Writes the CSV of `program` to `device`. Returns false when the device
//! refuses the data.
bool Write(const ZELKinProgram& program, QIODevice* device);

//! The first three fields of each position's row, "procedure,script,index",
//! as Write writes them, for tables that refer to the positions.
QHash<const ZELKinPosition*, QByteArray> GetKeys(const ZELKinProgram& program);

//! `text` as one CSV field: quoted when it holds a comma, a quote or a line
//! break, its quotes doubled.
QByteArray Field(const QString& text);

} // namespace ZELKinPositionCsv

#endif // ZELKINPOSITIONCSV_H
