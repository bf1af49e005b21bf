#ifndef ZELKINSOLVECOMMAND_H
#define ZELKINSOLVECOMMAND_H

#include "zelkincommand.h"

class ZELKinArguments;
class ZELKinProgram;

/*!
    "zelkin solve --machine M.xml --toolpath T.json [--csv FILE]": translates
    a toolpath for a machine and solves it, as posting would, and writes the
    axis values chosen for every position as CSV. It answers "where will the
    machine's axes be?" before any NC code is written.
*/
class ZELKinSolveCommand : public ZELKinCommand
{
public:
    QString GetName() const override;
    QString GetSummary() const override;
    QString GetSynopsis() const override;
    QString GetDescription() const override;
    QList<ZELKinOption> GetOptions() const override;
    int Run(const QStringList& arguments) override;

private:
    //! To the --csv file, or to standard output after the progress lines.
    static void WriteCsv(const ZELKinProgram& program, const ZELKinArguments& parsed);
};

#endif // ZELKINSOLVECOMMAND_H
