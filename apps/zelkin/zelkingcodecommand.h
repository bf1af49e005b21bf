#ifndef ZELKINGCODECOMMAND_H
#define ZELKINGCODECOMMAND_H

#include "zelkincommand.h"

/*!
    "zelkin gcode FILE|-": reads NC text line by line and prints each line
    taken apart into its words, as the library's G-code record reads it, one
    JSON object a line (JSON Lines). It answers "what does a host that reads
    this program back see in each line?".

    Lines are read and printed one at a time, so that a program of any
    length needs no more memory than its longest line, which is bounded.
*/
class ZELKinGCodeCommand : public ZELKinCommand
{
public:
    QString GetName() const override;
    QString GetSummary() const override;
    QString GetSynopsis() const override;
    QString GetDescription() const override;
    QList<ZELKinOption> GetOptions() const override;
    ZELKinOption GetPositional() const override;
    //! Throws ZELSysException "cannot read <file>: <reason>" when the file
    //! cannot be opened, a read fails, or a line is one no NC text has (see
    //! ZELKinNCLineReader); the lines before it have been printed by then.
    int Run(const QStringList& arguments) override;
};

#endif // ZELKINGCODECOMMAND_H
