#include "zelkincourse.h"
#include "zelkincourse_p.h"

#include "zelkinrolllayupprocedure_p.h"

ZELKinCourse::ZELKinCourse(ZELKinCoursePrivate* d, ZELKinRollLayupProcedure* procedure)
    : ZELKinScript(d, ZELKinScriptPrivate::ContainerOf(procedure), ZELGeoGeometryRef())
{
    d->procedure.Set(procedure);
    if (procedure)
        d->index = ZELKinRollLayupProcedurePrivate::get(procedure)->AppendCourse(this);
}

ZELKinCourse::ZELKinCourse(ZELKinCoursePrivate* d, ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinScript(d, container, reference)
{
}

ZELKinCourse::~ZELKinCourse() = default;

ZELKinRollLayupProcedure* ZELKinCourse::GetProcedure() const
{
    Q_D(const ZELKinCourse);
    return d->procedure.Get();
}

ZELKinProgram* ZELKinCourse::GetProgram() const
{
    const ZELKinRollLayupProcedure* procedure = GetProcedure();
    return procedure ? procedure->GetProgram() : nullptr;
}

int ZELKinCourse::GetIndex() const
{
    Q_D(const ZELKinCourse);
    return d->index;
}

ZELKinCourseLink* ZELKinCourse::GetApproachLink() const
{
    const ZELKinRollLayupProcedure* procedure = GetProcedure();
    return procedure ? procedure->GetCourseLink(GetIndex()) : nullptr;
}

ZELKinCourseLink* ZELKinCourse::GetRetractLink() const
{
    const ZELKinRollLayupProcedure* procedure = GetProcedure();
    return procedure ? procedure->GetCourseLink(GetIndex() + 1) : nullptr;
}

QString ZELKinCourse::GetRoller() const
{
    Q_D(const ZELKinCourse);
    return d->roller;
}

void ZELKinCourse::SetRoller(const QString& roller)
{
    Q_D(ZELKinCourse);
    AboutToChange();
    d->roller = roller;
}

QString ZELKinCourse::GetMaterial() const
{
    Q_D(const ZELKinCourse);
    return d->material;
}

void ZELKinCourse::SetMaterial(const QString& material)
{
    Q_D(ZELKinCourse);
    AboutToChange();
    d->material = material;
}

const ZELTPCourse* ZELKinCourse::GetToolPathCourse() const
{
    Q_D(const ZELKinCourse);
    return d->toolPathCourse.Get();
}

void ZELKinCourse::SetToolPathCourse(const ZELTPCourse* course)
{
    Q_D(ZELKinCourse);
    AboutToChange();
    d->toolPathCourse.Set(course);
}

void ZELKinCourse::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinCourse);
    ZELKinScript::Save(stream);
    d->procedure.Save(stream);
    stream << qint32(d->index) << d->roller << d->material;
}

void ZELKinCourse::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinCourse);
    ZELKinScript::Load(stream);
    d->procedure.Load(stream);
    qint32 index = 0;
    stream >> index >> d->roller >> d->material;
    d->index = index;
}
