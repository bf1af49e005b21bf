#include "zelkinprogram.h"
#include "zelkinprogram_p.h"

#include "zelkinrolllayupprocedure.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>
#include <zelsysnotimplementedexception.h>
#include <zelsysoutofboundsexception.h>
#include <zeltpprocedure.h>

ZELGEO_REGISTER_CLASS(ZELKinProgram)

int ZELKinProgramPrivate::InsertCommand(ZELKinCommand*, int)
{
    throw ZELSysNotImplementedException(QStringLiteral("InsertCommand"));
}

int ZELKinProgramPrivate::IndexOfCommand(ZELKinCommand*) const
{
    throw ZELSysNotImplementedException(QStringLiteral("IndexOfCommand"));
}

void ZELKinProgramPrivate::AppendProcedure(ZELKinProcedure* procedure)
{
    Q_Q(ZELKinProgram);
    if (procedure->GetProgram() != q)
        throw ZELSysException(ZELKinProgram::tr("program mismatch"));
    q->AboutToChange();
    procedures.Append(procedure);
}

ZELKinProgram::ZELKinProgram(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinProgram(new ZELKinProgramPrivate(this), container, reference)
{
}

ZELKinProgram::ZELKinProgram(ZELKinProgramPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinScript(d, container, reference)
{
}

ZELKinProgram::ZELKinProgram(ZELKinMachine* machine)
    : ZELKinProgram(new ZELKinProgramPrivate(this), ZELKinScriptPrivate::ContainerOf(machine), ZELGeoGeometryRef())
{
    Q_D(ZELKinProgram);
    d->machine.Set(machine);
}

ZELKinProgram::~ZELKinProgram() = default;

void ZELKinProgram::_constructor_checker()
{
    ZELKinProgram checker(nullptr, ZELGeoGeometryRef());
}

ZELKinMachine* ZELKinProgram::GetMachine() const
{
    Q_D(const ZELKinProgram);
    return d->machine.Get();
}

int ZELKinProgram::GetNumProcedures() const
{
    Q_D(const ZELKinProgram);
    return d->procedures.GetCount();
}

ZELKinProcedure* ZELKinProgram::GetProcedure(int index) const
{
    Q_D(const ZELKinProgram);
    const int count = d->procedures.GetCount();
    if (index < 0 || index >= count)
        throw ZELSysOutOfBoundsException(index, 0, count - 1, true, true);
    return d->procedures.At(index);
}

QList<ZELKinProcedure*> ZELKinProgram::GetProcedures() const
{
    Q_D(const ZELKinProgram);
    return d->procedures.GetList();
}

void ZELKinProgram::RemoveProcedure(ZELKinProcedure* procedure)
{
    Q_D(ZELKinProgram);
    const int index = d->procedures.IndexOf(procedure);
    if (index < 0)
        throw ZELSysException(tr("procedure does not belong to this program"));
    AboutToChange();
    d->procedures.RemoveAt(index);
}

int ZELKinProgram::GetNumCommands() const
{
    Q_D(const ZELKinProgram);
    return ZELKinScriptPrivate::CountCommands(d->procedures.GetList());
}

ZELKinCommand* ZELKinProgram::GetCommand(int index) const
{
    Q_D(const ZELKinProgram);
    return ZELKinScriptPrivate::CommandAt(*this, d->procedures.GetList(), index);
}

ZELKinProgram* ZELKinProgram::GetProgram() const
{
    return const_cast<ZELKinProgram*>(this);
}

bool ZELKinProgram::VisitCommands(const CommandVisitor& visit, WalkOrder order) const
{
    Q_D(const ZELKinProgram);
    return ZELKinScriptPrivate::VisitChildren(d->procedures.GetList(), visit, order);
}

QString ZELKinProgram::GetAuthor() const
{
    Q_D(const ZELKinProgram);
    return d->author;
}

void ZELKinProgram::SetAuthor(const QString& author)
{
    Q_D(ZELKinProgram);
    AboutToChange();
    d->author = author;
}

QDateTime ZELKinProgram::GetDate() const
{
    Q_D(const ZELKinProgram);
    return d->date;
}

void ZELKinProgram::SetDate(const QDateTime& date)
{
    Q_D(ZELKinProgram);
    AboutToChange();
    d->date = date;
}

QString ZELKinProgram::GetOriginalFileName() const
{
    Q_D(const ZELKinProgram);
    return d->originalFileName;
}

void ZELKinProgram::SetOriginalFileName(const QString& name)
{
    Q_D(ZELKinProgram);
    AboutToChange();
    d->originalFileName = name;
}

QHash<QString, qint64> ZELKinProgram::GetPositionsByProcedure() const
{
    QHash<QString, qint64> positions;
    for (const ZELKinProcedure* procedure : GetProcedures()) {
        const auto* layup = qobject_cast<const ZELKinRollLayupProcedure*>(procedure);
        const ZELTPProcedure* source = layup ? layup->GetToolPathProcedure() : nullptr;
        if (source)
            positions.insert(source->GetName(), layup->GetNumPositions());
    }
    return positions;
}

QString ZELKinProgram::GetRevisionNumber() const
{
    Q_D(const ZELKinProgram);
    return d->revisionNumber;
}

void ZELKinProgram::SetRevisionNumber(const QString& revision)
{
    Q_D(ZELKinProgram);
    AboutToChange();
    d->revisionNumber = revision;
}

void ZELKinProgram::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinProgram);
    ZELKinScript::Save(stream);
    d->machine.Save(stream);
    d->procedures.Save(stream);
    stream << d->date << d->author;
}

void ZELKinProgram::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinProgram);
    ZELKinScript::Load(stream);
    d->machine.Load(stream);
    d->procedures.Load(stream);
    stream >> d->date >> d->author;
}
