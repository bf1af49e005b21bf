#ifndef ZELKINPOSTCOMMAND_H
#define ZELKINPOSTCOMMAND_H

#include "zelkincommand.h"

/*!
    "zelkin post --machine M.xml --toolpath T.json --output PATH ...": the
    whole job of a post-processor. The machine and the toolpath go in, the
    toolpath is translated and solved for the machine, and the NC files come
    out: a directory of program-set, ply and probing files, or one bundle.
*/
class ZELKinPostCommand : public ZELKinCommand
{
public:
    QString GetName() const override;
    QString GetSummary() const override;
    QString GetSynopsis() const override;
    QString GetDescription() const override;
    QList<ZELKinOption> GetOptions() const override;
    int Run(const QStringList& arguments) override;
};

#endif // ZELKINPOSTCOMMAND_H
