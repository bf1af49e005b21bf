#ifndef ZELKINMACHINECOMMAND_H
#define ZELKINMACHINECOMMAND_H

#include "zelkincommand.h"

/*!
    "zelkin machine FILE.xml [--json]": loads a machine description and shows
    the machine the library built from it, as a summary for reading or as
    JSON for scripts. It answers "does the library read my description the
    way I meant it?" before any toolpath is posted.
*/
class ZELKinMachineCommand : public ZELKinCommand
{
public:
    QString GetName() const override;
    QString GetSummary() const override;
    QString GetSynopsis() const override;
    QString GetDescription() const override;
    QList<ZELKinOption> GetOptions() const override;
    ZELKinOption GetPositional() const override;
    int Run(const QStringList& arguments) override;
};

#endif // ZELKINMACHINECOMMAND_H
