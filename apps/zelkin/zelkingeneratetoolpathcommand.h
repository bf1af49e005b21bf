#ifndef ZELKINGENERATETOOLPATHCOMMAND_H
#define ZELKINGENERATETOOLPATHCOMMAND_H

#include "zelkincommand.h"

/*!
    "zelkin generate-toolpath --part flat|cylinder|dome --plies A,B,...
    [--courses N] [--points-per-course M] [--name NAME] -o FILE.json": writes
    a fibre placement toolpath program for a part on the example gantry, as a
    toolpath document, to try the tool's later stages on realistic input of
    any size. The file appears whole or not at all: it is written beside its
    place and moved there once complete.
*/
class ZELKinGenerateToolpathCommand : public ZELKinCommand
{
public:
    QString GetName() const override;
    QString GetSummary() const override;
    QString GetSynopsis() const override;
    QString GetDescription() const override;
    QList<ZELKinOption> GetOptions() const override;
    int Run(const QStringList& arguments) override;
};

#endif // ZELKINGENERATETOOLPATHCOMMAND_H
