#include "zelkinverifyplan_p.h"

#include <zelcomptowmask.h>
#include <zeltpcourselink.h>
#include <zeltponparttrajectory.h>
#include <zeltppoint.h>
#include <zeltpprogram.h>
#include <zeltprolllayupprocedure.h>
#include <zeltptowcourse.h>
#include <zeltptowtrajectory.h>

#include <QHash>
#include <QSet>

#include <optional>

namespace {

QList<int> TowsOf(const ZELCompTowMask& mask)
{
    QList<int> tows;
    for (int tow = 1; tow <= mask.GetNumTows(); ++tow) {
        if (mask.IsTowEnabled(tow))
            tows.append(tow);
    }
    return tows;
}

void AppendTowEvents(QList<ZELKinVerifyTowEvent>& events, const QString& code, const ZELCompTowMask& mask,
                     double length)
{
    for (const int tow : TowsOf(mask))
        events.append(ZELKinVerifyTowEvent{code, tow, length});
}

// Tows are added where a tow trajectory lays more tows than the one before
// it, cut where it lays fewer, and the rest are cut where the roll-out
// begins.
QList<ZELKinVerifyTowEvent> ExpectedTowEvents(const ZELTPTowCourse& course,
                                              const QHash<const ZELTPPoint*, double>& lengths)
{
    QList<ZELKinVerifyTowEvent> events;
    if (!course.GetRollInTrajectory())
        return events;
    const ZELTPTrajectory* rollOut = course.GetRollOutTrajectory();
    std::optional<ZELCompTowMask> laid;
    for (const ZELTPTrajectory* trajectory = course.GetNextTrajectory(course.GetRollInTrajectory());
         trajectory && trajectory != rollOut; trajectory = course.GetNextTrajectory(trajectory)) {
        const auto* tows = dynamic_cast<const ZELTPTowTrajectory*>(trajectory);
        if (!tows || tows->GetNumPoints() == 0)
            continue;
        const ZELCompTowMask mask = tows->GetTowMask();
        const ZELCompTowMask before = laid.value_or(ZELCompTowMask(mask.GetNumTows(), false));
        const double length = lengths.value(tows->GetPoint(0));
        AppendTowEvents(events, QStringLiteral("A/B"), mask - before, length);
        AppendTowEvents(events, QStringLiteral("C/B"), before - mask, length);
        laid = mask;
    }
    if (laid && rollOut && rollOut->GetNumPoints() > 0)
        AppendTowEvents(events, QStringLiteral("C/B"), *laid, lengths.value(rollOut->GetPoint(0)));
    return events;
}

ZELMathPoint RollerCentreOf(const ZELMathAxis& frame, double rollerRadius)
{
    return frame.GetOrigin() + rollerRadius * frame.GetWDirection();
}

// The material is counted, as the post counts it, along the path through
// the course's points from its first.
ZELKinCoursePlan PlanCourse(const ZELTPTowCourse& course, double rollerRadius)
{
    ZELKinCoursePlan plan;
    // A ply's targets are most of what a verification holds: growing the
    // list would leave up to half of it unused.
    qsizetype points = 0;
    for (int i = 0; i < course.GetNumTrajectories(); ++i)
        points += course.GetTrajectory(i)->GetNumPoints();
    plan.targets.reserve(points);
    QHash<const ZELTPPoint*, double> lengths;
    const ZELTPPoint* last = nullptr;
    double length = 0.0;
    for (int i = 0; i < course.GetNumTrajectories(); ++i) {
        for (const ZELTPPoint* point : course.GetTrajectory(i)->GetPoints()) {
            if (point == last)
                continue;
            if (last)
                length += point->GetTipCoordinates().GetDistanceTo(last->GetTipCoordinates());
            last = point;
            const int number = int(plan.targets.size()) + 1;
            const ZELMathAxis frame = point->GetToolFrame();
            plan.targets.append(ZELKinVerifyTarget{number, length, frame, RollerCentreOf(frame, rollerRadius)});
            if (!lengths.contains(point))
                lengths.insert(point, length);
            if (point == course.GetRollInPoint() && plan.rollIn == 0)
                plan.rollIn = number;
            if (point == course.GetRollOutPoint() && plan.rollOut == 0)
                plan.rollOut = number;
        }
    }
    plan.walked = plan.rollOut > 0 ? plan.rollOut : int(plan.targets.size());
    plan.towEvents = ExpectedTowEvents(course, lengths);
    return plan;
}

QList<ZELMathPoint> RollerCentresOf(const ZELTPCourseLink& link, double rollerRadius)
{
    QList<ZELMathPoint> centres;
    for (const ZELTPPoint* point : link.GetPoints())
        centres.append(RollerCentreOf(point->GetToolFrame(), rollerRadius));
    return centres;
}

} // namespace

ZELKinProcedurePlan ZELKinVerifyPlan::PlanProcedure(const ZELTPRollLayupProcedure& procedure, double rollerRadius)
{
    ZELKinProcedurePlan plan;
    QSet<const ZELTPCourse*> walked;
    for (const ZELTPCourseLink* link = procedure.GetApproachLink(); link;) {
        plan.links.append(RollerCentresOf(*link, rollerRadius));
        const ZELTPCourse* course = link->GetToCourse();
        if (!course || walked.contains(course))
            break;
        walked.insert(course);
        const auto* tows = qobject_cast<const ZELTPTowCourse*>(course);
        plan.courses.append(tows ? PlanCourse(*tows, rollerRadius) : ZELKinCoursePlan());
        link = course->GetRetractLink();
    }
    return plan;
}

QList<const ZELTPRollLayupProcedure*> ZELKinVerifyPlan::LayupProceduresOf(const ZELTPProgram& toolpath)
{
    QList<const ZELTPRollLayupProcedure*> procedures;
    for (const ZELTPProcedure* procedure : toolpath.GetProcedures()) {
        if (const auto* layup = qobject_cast<const ZELTPRollLayupProcedure*>(procedure))
            procedures.append(layup);
    }
    return procedures;
}

const ZELTPRollLayupProcedure* ZELKinVerifyPlan::ProcedureNamed(const ZELTPProgram& toolpath, const QString& name)
{
    for (const ZELTPRollLayupProcedure* procedure : LayupProceduresOf(toolpath)) {
        if (procedure->GetName() == name)
            return procedure;
    }
    return nullptr;
}
