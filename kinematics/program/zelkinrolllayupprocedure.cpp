#include "zelkinrolllayupprocedure.h"
#include "zelkinrolllayupprocedure_p.h"

#include <zelgeocontainer.h>
#include <zelsysoutofboundsexception.h>

#include <algorithm>

ZELGEO_REGISTER_CLASS(ZELKinRollLayupProcedure)

namespace {

void CheckIndex(int index, int count)
{
    if (index < 0 || index >= count)
        throw ZELSysOutOfBoundsException(index, 0, count - 1, true, true);
}

} // namespace

int ZELKinRollLayupProcedurePrivate::AppendCourse(ZELKinCourse* course)
{
    Q_Q(ZELKinRollLayupProcedure);
    q->AboutToChange();
    courses.Append(course);
    return courses.GetCount() - 1;
}

int ZELKinRollLayupProcedurePrivate::AppendCourseLink(ZELKinCourseLink* link)
{
    Q_Q(ZELKinRollLayupProcedure);
    q->AboutToChange();
    courseLinks.Append(link);
    return courseLinks.GetCount() - 1;
}

QList<ZELKinScript*> ZELKinRollLayupProcedurePrivate::GetChildrenInCommandOrder() const
{
    const int numCourses = courses.GetCount();
    const int numLinks = courseLinks.GetCount();
    QList<ZELKinScript*> children;
    children.reserve(numCourses + std::max(numLinks, numCourses));
    int course = 0;
    int link = 0;
    // A link leads into the course of its own index, so on a tie the link
    // comes first. Reading a missing link gives null, which holds no commands.
    while (course < numCourses || link < numLinks) {
        if (course >= link || course >= numCourses)
            children.append(courseLinks.At(link++));
        else
            children.append(courses.At(course++));
    }
    return children;
}

ZELKinRollLayupProcedure::ZELKinRollLayupProcedure(ZELGeoContainer* container, const ZELGeoGeometryRef& reference)
    : ZELKinRollLayupProcedure(new ZELKinRollLayupProcedurePrivate(this), container, reference)
{
}

ZELKinRollLayupProcedure::ZELKinRollLayupProcedure(ZELKinRollLayupProcedurePrivate* d, ZELGeoContainer* container,
                                                   const ZELGeoGeometryRef& reference)
    : ZELKinProcedure(d, container, reference)
{
}

ZELKinRollLayupProcedure::ZELKinRollLayupProcedure(ZELKinProgram* program, double addFeedrate, double cutFeedrate)
    : ZELKinProcedure(new ZELKinRollLayupProcedurePrivate(this), program)
{
    Q_D(ZELKinRollLayupProcedure);
    d->addFeedrate = addFeedrate;
    d->cutFeedrate = cutFeedrate;
}

ZELKinRollLayupProcedure::~ZELKinRollLayupProcedure() = default;

void ZELKinRollLayupProcedure::_constructor_checker()
{
    ZELKinRollLayupProcedure checker(nullptr, ZELGeoGeometryRef());
}

double ZELKinRollLayupProcedure::GetAddFeedrate() const
{
    Q_D(const ZELKinRollLayupProcedure);
    return d->addFeedrate;
}

double ZELKinRollLayupProcedure::GetCutFeedrate() const
{
    Q_D(const ZELKinRollLayupProcedure);
    return d->cutFeedrate;
}

int ZELKinRollLayupProcedure::GetNumCourses() const
{
    Q_D(const ZELKinRollLayupProcedure);
    return d->courses.GetCount();
}

ZELKinCourse* ZELKinRollLayupProcedure::GetCourse(int index) const
{
    Q_D(const ZELKinRollLayupProcedure);
    CheckIndex(index, d->courses.GetCount());
    return d->courses.At(index);
}

QList<ZELKinCourse*> ZELKinRollLayupProcedure::GetCourses() const
{
    Q_D(const ZELKinRollLayupProcedure);
    return d->courses.GetList();
}

int ZELKinRollLayupProcedure::GetNumCourseLinks() const
{
    Q_D(const ZELKinRollLayupProcedure);
    return d->courseLinks.GetCount();
}

ZELKinCourseLink* ZELKinRollLayupProcedure::GetCourseLink(int index) const
{
    Q_D(const ZELKinRollLayupProcedure);
    CheckIndex(index, d->courseLinks.GetCount());
    return d->courseLinks.At(index);
}

QList<ZELKinCourseLink*> ZELKinRollLayupProcedure::GetCourseLinks() const
{
    Q_D(const ZELKinRollLayupProcedure);
    return d->courseLinks.GetList();
}

int ZELKinRollLayupProcedure::GetNumPlies() const
{
    Q_D(const ZELKinRollLayupProcedure);
    return int(d->plies.size());
}

void ZELKinRollLayupProcedure::AddPlyDefinition(const ZELKinPlyDescription& ply)
{
    Q_D(ZELKinRollLayupProcedure);
    AboutToChange();
    d->plies.append(ply);
}

ZELKinPlyDescription ZELKinRollLayupProcedure::GetPlyDefinition(int index) const
{
    Q_D(const ZELKinRollLayupProcedure);
    CheckIndex(index, int(d->plies.size()));
    return d->plies.at(index);
}

void ZELKinRollLayupProcedure::SetPlyDefinition(int index, const ZELKinPlyDescription& ply)
{
    Q_D(ZELKinRollLayupProcedure);
    CheckIndex(index, int(d->plies.size()));
    AboutToChange();
    d->plies[index] = ply;
}

int ZELKinRollLayupProcedure::GetPlyIndex(const QString& name) const
{
    Q_D(const ZELKinRollLayupProcedure);
    for (int index = 0; index < d->plies.size(); ++index) {
        if (d->plies.at(index).GetName() == name)
            return index;
    }
    return -1;
}

int ZELKinRollLayupProcedure::GetNumCommands() const
{
    Q_D(const ZELKinRollLayupProcedure);
    return ZELKinScriptPrivate::CountCommands(d->courses.GetList())
           + ZELKinScriptPrivate::CountCommands(d->courseLinks.GetList());
}

ZELKinCommand* ZELKinRollLayupProcedure::GetCommand(int index) const
{
    Q_D(const ZELKinRollLayupProcedure);
    return ZELKinScriptPrivate::CommandAt(*this, d->GetChildrenInCommandOrder(), index);
}

QList<ZELKinScript*> ZELKinRollLayupProcedure::GetScriptsInCommandOrder() const
{
    Q_D(const ZELKinRollLayupProcedure);
    return d->GetChildrenInCommandOrder();
}

bool ZELKinRollLayupProcedure::VisitCommands(const CommandVisitor& visit, WalkOrder order) const
{
    Q_D(const ZELKinRollLayupProcedure);
    return ZELKinScriptPrivate::VisitChildren(d->GetChildrenInCommandOrder(), visit, order);
}

void ZELKinRollLayupProcedure::Save(ZELGeoStream& stream) const
{
    Q_D(const ZELKinRollLayupProcedure);
    ZELKinProcedure::Save(stream);
    d->courses.Save(stream);
    d->courseLinks.Save(stream);
    stream << qint32(d->plies.size());
    for (const ZELKinPlyDescription& ply : d->plies)
        stream << ply;
}

void ZELKinRollLayupProcedure::Load(ZELGeoStream& stream)
{
    Q_D(ZELKinRollLayupProcedure);
    ZELKinProcedure::Load(stream);
    d->courses.Load(stream);
    d->courseLinks.Load(stream);
    qint32 count = 0;
    stream >> count;
    d->plies.clear();
    for (qint32 index = 0; index < count && !stream.atEnd(); ++index) {
        ZELKinPlyDescription ply;
        stream >> ply;
        d->plies.append(ply);
    }
}
