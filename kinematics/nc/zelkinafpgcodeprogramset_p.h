#ifndef ZELKINAFPGCODEPROGRAMSET_P_H
#define ZELKINAFPGCODEPROGRAMSET_P_H

#include <QDateTime>

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
*/
class ZELKinAFPGCodeProgramSet
{
public:
    //! `now` is printed as the time the file was made.
    ZELKinAFPGCodeProgramSet(const ZELKinProgram* program, const QDateTime& now);

    void Write(ZELKinNCStream& out) const;

private:
    void WriteIdentification(ZELKinNCStream& out) const;
    static void WriteMachineDescription(ZELKinNCStream& out);
    void WriteConfigParameters(ZELKinNCStream& out) const;
    void WritePlyPrograms(ZELKinNCStream& out) const;
    void WritePlyTable(ZELKinNCStream& out) const;

    const ZELKinProgram* const program;
    const QDateTime now;
};

#endif // ZELKINAFPGCODEPROGRAMSET_P_H
