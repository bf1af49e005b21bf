#include "zeltpprogram.h"
#include "zeltpprogram_p.h"

#include "zeltpindex_p.h"

#include <zelgeocontainer.h>
#include <zelgeostream.h>
#include <zelsysexception.h>

ZELGEO_REGISTER_CLASS(ZELTPProgram)

ZELTPProgram::ZELTPProgram(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPProgram(new ZELTPProgramPrivate(this), container, reference)
{
}

ZELTPProgram::ZELTPProgram(ZELGeoContainer* container, const QString& name)
    : ZELTPProgram(new ZELTPProgramPrivate(this), container, name)
{
}

ZELTPProgram::ZELTPProgram(ZELTPProgramPrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELTPObject(d, container, reference)
{
}

ZELTPProgram::ZELTPProgram(ZELTPProgramPrivate* d, ZELGeoContainer* container, const QString& name)
    : ZELTPObject(d, container, name)
{
}

ZELTPProgram::~ZELTPProgram() = default;

void ZELTPProgram::_constructor_checker()
{
    ZELTPProgram checker(nullptr, ZELGeoGeometryRef());
}

QString ZELTPProgram::GetRevision() const
{
    Q_D(const ZELTPProgram);
    return d->revision;
}

void ZELTPProgram::SetRevision(const QString& revision)
{
    Q_D(ZELTPProgram);
    AboutToChange();
    d->revision = revision;
}

void ZELTPProgram::AddProcedure(ZELTPProcedure* procedure)
{
    Q_D(ZELTPProgram);
    if (!procedure)
        throw ZELSysException(QStringLiteral("cannot add a null procedure"));
    AboutToChange();
    d->procedures.append(ZELTPLink<ZELTPProcedure>(procedure));
}

int ZELTPProgram::GetNumProcedures() const
{
    Q_D(const ZELTPProgram);
    return int(d->procedures.size());
}

ZELTPProcedure* ZELTPProgram::GetProcedure(int index) const
{
    Q_D(const ZELTPProgram);
    ZELTPIndex::Check(index, d->procedures.size());
    return d->procedures.at(index).Get();
}

QList<ZELTPProcedure*> ZELTPProgram::GetProcedures() const
{
    Q_D(const ZELTPProgram);
    QList<ZELTPProcedure*> procedures;
    procedures.reserve(d->procedures.size());
    for (const ZELTPLink<ZELTPProcedure>& procedure : d->procedures)
        procedures.append(procedure.Get());
    return procedures;
}

void ZELTPProgram::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELTPProgram);
    ZELTPObject::Save(stream);
    stream << d->revision << qint32(d->procedures.size());
    for (const ZELTPLink<ZELTPProcedure>& procedure : d->procedures)
        procedure.Save(stream);
}

void ZELTPProgram::Load(ZELGeoStream& stream)
{
    Q_D(ZELTPProgram);
    ZELTPObject::Load(stream);
    qint32 count = 0;
    stream >> d->revision >> count;
    d->procedures.clear();
    for (qint32 index = 0; index < count && !stream.atEnd(); ++index)
        d->procedures.append(ZELTPLink<ZELTPProcedure>(ZELGeoLinks::Read<ZELTPProcedure>(stream)));
}
