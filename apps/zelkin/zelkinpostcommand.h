#ifndef ZELKINPOSTCOMMAND_H
#define ZELKINPOSTCOMMAND_H

#include "zelkincommand.h"

class ZELKinArguments;

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

private:
    //! What a post is asked to write, once its arguments are checked.
    struct Posting
    {
        const ZELKinArguments& parsed;
        QString output;
        QString format;
        QString options;
        QString ply;
    };
    //! Reads, solves and writes one procedure after another, holding no
    //! more than a few (ZELKinStreamingPostJob).
    int PostProcedureByProcedure(const Posting& posting) const;
    //! Holds the whole program: for the line trace, the solving
    //! diagnostics and inputs that cannot be read twice.
    int PostWholeProgram(const Posting& posting) const;
};

#endif // ZELKINPOSTCOMMAND_H
