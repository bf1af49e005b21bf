#include "zelkinnctextcheck_p.h"

#include "zelkinafpgcodeplies_p.h"
#include "zelkinprogram.h"
#include "zelkinrolllayupprocedure.h"

#include <zelsysexception.h>
#include <zeltptext.h>

void ZELKinNCTextCheck::Check(const ZELKinProgram* program)
{
    CheckField(QStringLiteral("program name"), program->GetOriginalFileName());
    CheckField(QStringLiteral("revision"), program->GetRevisionNumber());
    CheckField(QStringLiteral("author"), program->GetAuthor());
    int number = 0;
    for (const ZELKinRollLayupProcedure* procedure : ZELKinAFPGCodePlies::RollLayupProceduresOf(program))
        CheckProcedure(procedure, ++number);
}

void ZELKinNCTextCheck::CheckProcedure(const ZELKinRollLayupProcedure* procedure, int number)
{
    CheckField(QStringLiteral("name of layup procedure %1").arg(number), procedure->objectName());
    const QString name = procedure->objectName();
    for (int i = 0; i < procedure->GetNumPlies(); ++i) {
        const ZELKinPlyDescription ply = procedure->GetPlyDefinition(i);
        CheckField(QStringLiteral("ply name of procedure '%1'").arg(name), ply.GetName());
        CheckField(QStringLiteral("material of procedure '%1'").arg(name), ply.GetMaterial());
    }
}

void ZELKinNCTextCheck::CheckField(const QString& field, const QString& text)
{
    const QString problem = ZELTPText::DescribeFirstUnfitCharacter(text);
    if (!problem.isEmpty())
        throw ZELSysException(QStringLiteral("cannot write the NC: the %1 contains %2").arg(field, problem));
}
