#ifndef ZELKINAFPGCODEPROGRAMSET_P_H
#define ZELKINAFPGCODEPROGRAMSET_P_H

#include "zelkinplydescription.h"

#include <QDateTime>
#include <QList>
#include <QString>

class ZELKinNCStream;
class ZELKinProgram;

/*!
    The program-set file (".PPSF", or the first section of a bundle): the
    identification of the program set, the machine and head description
    that the controller expects, the program's distances, the list of ply
    programs and the ply table.

    The machine style, head, limits, priorities and placement parameters
    are the dialect's fixed values, whatever the machine model holds: the
    controller reads them as they are. Only the identification, the dates,
    the add, cut and head travel distances (written in inches) and the two
    per-ply lists come from the model. The program's machine must be a
    ZELKinAFPMachine, and its roll layup procedures numbered
    (ZELKinAFPGCodePlies::Number).

    What the file says is held as values (Contents), so that a program
    written one procedure at a time leaves behind no more than that.
*/
class ZELKinAFPGCodeProgramSet
{
public:
    //! One ply program: its padded number, its procedure's name and plies.
    struct PlyProgram
    {
        QString number;
        QString procedure;
        QList<ZELKinPlyDescription> plies;
    };
    struct Contents
    {
        QString name;
        QString revision;
        QString author;
        QDateTime date;
        //! The machine's add, cut and head travel distances (mm).
        double addDistance = 0.0;
        double cutDistance = 0.0;
        double headTravel = 0.0;
        QList<PlyProgram> plyPrograms;
    };

    //! What the file says of `program`'s identification and machine, and
    //! of its numbered roll layup procedures.
    static Contents Describe(const ZELKinProgram* program);
    //! Appends the numbered roll layup procedures of `program` to `contents`.
    static void AddPlyPrograms(Contents& contents, const ZELKinProgram* program);

    //! `now` is printed as the time the file was made.
    ZELKinAFPGCodeProgramSet(const ZELKinProgram* program, const QDateTime& now);
    ZELKinAFPGCodeProgramSet(Contents contents, const QDateTime& now);

    void Write(ZELKinNCStream& out) const;

private:
    void WriteIdentification(ZELKinNCStream& out) const;
    static void WriteMachineDescription(ZELKinNCStream& out);
    void WriteConfigParameters(ZELKinNCStream& out) const;
    void WritePlyPrograms(ZELKinNCStream& out) const;
    void WritePlyTable(ZELKinNCStream& out) const;

    const Contents contents;
    const QDateTime now;
};

#endif // ZELKINAFPGCODEPROGRAMSET_P_H
