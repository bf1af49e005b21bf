#include "zelkincourselink.h"
#include "zelkincourselink_p.h"

#include "zelkincommandinsertion_p.h"
#include "zelkincourse.h"
#include "zelkinrolllayupprocedure_p.h"

#include <zelgeocontainer.h>

ZELGEO_REGISTER_CLASS(ZELKinCourseLink)

int ZELKinCourseLinkPrivate::InsertCommand(ZELKinCommand* command, int index)
{
    return ZELKinCommandInsertion::ByCommonRule(q_ptr, commands, command, index);
}

int ZELKinCourseLinkPrivate::IndexOfCommand(ZELKinCommand* command) const
{
    return commands.IndexOf(command);
}

ZELKinCourseLink::ZELKinCourseLink(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinCourseLink(new ZELKinCourseLinkPrivate(this), container, reference)
{
}

ZELKinCourseLink::ZELKinCourseLink(ZELKinCourseLinkPrivate* d, ZELGeoContainer* container,
                                   const ZELGeoGeometryRef& reference)
    : ZELKinScript(d, container, reference)
{
}

ZELKinCourseLink::ZELKinCourseLink(ZELKinRollLayupProcedure* procedure)
    : ZELKinCourseLink(new ZELKinCourseLinkPrivate(this), ZELKinScriptPrivate::ContainerOf(procedure),
                       ZELGeoGeometryRef())
{
    Q_D(ZELKinCourseLink);
    d->procedure.Set(procedure);
    if (procedure)
        d->index = ZELKinRollLayupProcedurePrivate::get(procedure)->AppendCourseLink(this);
}

ZELKinCourseLink::~ZELKinCourseLink() = default;

void ZELKinCourseLink::_constructor_checker()
{
    ZELKinCourseLink checker(nullptr, ZELGeoGeometryRef());
}

ZELKinRollLayupProcedure* ZELKinCourseLink::GetProcedure() const
{
    Q_D(const ZELKinCourseLink);
    return d->procedure.Get();
}

ZELKinProgram* ZELKinCourseLink::GetProgram() const
{
    const ZELKinRollLayupProcedure* procedure = GetProcedure();
    return procedure ? procedure->GetProgram() : nullptr;
}

int ZELKinCourseLink::GetIndex() const
{
    Q_D(const ZELKinCourseLink);
    return d->index;
}

ZELKinCourse* ZELKinCourseLink::GetFromCourse() const
{
    const ZELKinRollLayupProcedure* procedure = GetProcedure();
    if (!procedure || GetIndex() < 1)
        return nullptr;
    return procedure->GetCourse(GetIndex() - 1);
}

ZELKinCourse* ZELKinCourseLink::GetToCourse() const
{
    const ZELKinRollLayupProcedure* procedure = GetProcedure();
    const int index = GetIndex();
    if (!procedure || index >= procedure->GetNumCourses())
        return nullptr;
    return procedure->GetCourse(index);
}

bool ZELKinCourseLink::IsRollerChange() const
{
    return false;
}

int ZELKinCourseLink::GetNumCommands() const
{
    Q_D(const ZELKinCourseLink);
    return d->commands.GetCount();
}

ZELKinCommand* ZELKinCourseLink::GetCommand(int index) const
{
    Q_D(const ZELKinCourseLink);
    return d->commands.At(index);
}

const ZELTPCourseLink* ZELKinCourseLink::GetToolPathCourseLink() const
{
    Q_D(const ZELKinCourseLink);
    return d->toolPathCourseLink.Get();
}

void ZELKinCourseLink::SetToolPathCourseLink(const ZELTPCourseLink* link)
{
    Q_D(ZELKinCourseLink);
    AboutToChange();
    d->toolPathCourseLink.Set(link);
}

void ZELKinCourseLink::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinCourseLink);
    ZELKinScript::Save(stream);
    d->procedure.Save(stream);
    d->commands.Save(stream);
    stream << qint32(d->index);
}

void ZELKinCourseLink::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinCourseLink);
    ZELKinScript::Load(stream);
    d->procedure.Load(stream);
    d->commands.Load(stream);
    qint32 index = 0;
    stream >> index;
    d->index = index;
}
