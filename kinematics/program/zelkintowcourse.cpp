#include "zelkintowcourse.h"
#include "zelkintowcourse_p.h"

#include "zelkinafpmachine.h"
#include "zelkinprogram.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>
#include <zelsysoutofboundsexception.h>

ZELGEO_REGISTER_CLASS(ZELKinTowCourse)

namespace {

void CheckIndex(int index, int count)
{
    if (index < 0 || index >= count)
        throw ZELSysOutOfBoundsException(index, 0, count - 1, true, true);
}

} // namespace

int ZELKinTowCoursePrivate::InsertCommand(ZELKinCommand* command, int index)
{
    Q_Q(ZELKinTowCourse);
    if (command->GetScript() != q)
        throw ZELSysException(ZELKinTowCourse::tr("command does not belong to course"));
    const int count = commands.GetCount();
    if (index > count)
        throw ZELSysOutOfBoundsException(index, -1, count, true, true);
    q->AboutToChange();
    if (index < 0) {
        commands.Append(command);
        return count;
    }
    commands.Insert(index, command);
    return index;
}

int ZELKinTowCoursePrivate::IndexOfCommand(ZELKinCommand* command) const
{
    return commands.IndexOf(command);
}

ZELKinAFPMachine* ZELKinTowCoursePrivate::MachineOf(const ZELKinCourse* course)
{
    const ZELKinProgram* program = course ? course->GetProgram() : nullptr;
    return program ? qobject_cast<ZELKinAFPMachine*>(program->GetMachine()) : nullptr;
}

ZELKinTowCourse::ZELKinTowCourse(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinTowCourse(new ZELKinTowCoursePrivate(this), container, reference)
{
}

ZELKinTowCourse::ZELKinTowCourse(ZELKinTowCoursePrivate* d, ZELGeoContainer* container,
                                 const ZELGeoGeometryRef& reference)
    : ZELKinCourse(d, container, reference)
{
}

ZELKinTowCourse::ZELKinTowCourse(ZELKinRollLayupProcedure* procedure, const ZELCompTowMask& mask)
    : ZELKinCourse(new ZELKinTowCoursePrivate(this), procedure)
{
    Q_D(ZELKinTowCourse);
    const ZELKinAFPMachine* machine = ZELKinTowCoursePrivate::MachineOf(this);
    if (!machine)
        throw ZELSysException(tr("tow course added to program without AFP machine"));
    if (mask.GetNumTows() != machine->GetMaximumMask().GetNumTows())
        throw ZELSysException(tr("tow mask size does not match machine tow mask size"));
    d->towMask = mask;
    d->towLengths.fill(0.0, mask.GetNumTows());
}

ZELKinTowCourse::~ZELKinTowCourse() = default;

void ZELKinTowCourse::_constructor_checker()
{
    ZELKinTowCourse checker(nullptr, ZELGeoGeometryRef());
}

int ZELKinTowCourse::GetNumCommands() const
{
    Q_D(const ZELKinTowCourse);
    return d->commands.GetCount();
}

ZELKinCommand* ZELKinTowCourse::GetCommand(int index) const
{
    Q_D(const ZELKinTowCourse);
    CheckIndex(index, d->commands.GetCount());
    return d->commands.At(index);
}

ZELCompTowMask ZELKinTowCourse::GetTowMask() const
{
    Q_D(const ZELKinTowCourse);
    return d->towMask;
}

double ZELKinTowCourse::GetTowLength(int tow) const
{
    Q_D(const ZELKinTowCourse);
    CheckIndex(tow, int(d->towLengths.size()));
    return d->towLengths.at(tow);
}

void ZELKinTowCourse::SetTowLength(int tow, double length)
{
    Q_D(ZELKinTowCourse);
    CheckIndex(tow, int(d->towLengths.size()));
    AboutToChange();
    d->towLengths[tow] = length;
}

int ZELKinTowCourse::GetRollerTows() const
{
    Q_D(const ZELKinTowCourse);
    return d->rollerTows;
}

void ZELKinTowCourse::SetRollerTows(int tows)
{
    Q_D(ZELKinTowCourse);
    AboutToChange();
    d->rollerTows = tows;
}

void ZELKinTowCourse::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinTowCourse);
    ZELKinCourse::Save(stream);
    d->commands.Save(stream);
    stream << d->towMask << qint32(d->towLengths.size());
    for (const double length : d->towLengths)
        stream << length;
}

void ZELKinTowCourse::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinTowCourse);
    ZELKinCourse::Load(stream);
    d->commands.Load(stream);
    qint32 count = 0;
    stream >> d->towMask >> count;
    d->towLengths.clear();
    for (qint32 tow = 0; tow < count && !stream.atEnd(); ++tow) {
        double length = 0.0;
        stream >> length;
        d->towLengths.append(length);
    }
}
