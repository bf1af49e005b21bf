#include "zelkinprogramcheck.h"
#include "zelkinprogramcheck_p.h"

#include "zelkincourse.h"
#include "zelkincourselink.h"
#include "zelkinjoint.h"
#include "zelkinmachine.h"
#include "zelkinposition.h"
#include "zelkinprobeprocedure.h"
#include "zelkinprogram.h"
#include "zelkinrolllayupprocedure.h"
#include "zelkinsolution.h"
#include "zelkinsolver.h"
#include "zelkinvariable.h"

#include <zeltpprocedure.h>

#include <QSet>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <deque>
#include <future>

namespace {

// What the arithmetic of a conversion may add to a value that the solver
// put right at a limit (mm or rad).
constexpr double kLimitSlack = 1e-9;

// The variables that some joint of the machine moves, in the machine's order.
QList<ZELKinVariable*> DrivingVariables(const ZELKinMachine* machine)
{
    if (!machine)
        return {};
    QSet<const ZELKinVariable*> driving;
    for (const ZELKinJoint* joint : machine->GetJoints()) {
        for (int i = 0; joint && i < joint->GetDegreesOfFreedom(); ++i)
            driving.insert(joint->GetVariable(i));
    }
    QList<ZELKinVariable*> ordered;
    for (ZELKinVariable* variable : machine->GetVariables()) {
        if (variable && driving.contains(variable))
            ordered.append(variable);
    }
    return ordered;
}

QString NameOf(const ZELKinProcedure* procedure)
{
    const ZELTPProcedure* source = procedure->GetToolPathProcedure();
    return source ? source->GetName() : procedure->objectName();
}

QString ScriptName(const ZELKinScript* script)
{
    if (const auto* course = qobject_cast<const ZELKinCourse*>(script))
        return ZELKinProgramCheck::tr("course %1").arg(course->GetIndex() + 1);
    if (const auto* link = qobject_cast<const ZELKinCourseLink*>(script))
        return ZELKinProgramCheck::tr("course link %1").arg(link->GetIndex() + 1);
    return QString();
}

QString Number(double value)
{
    return QString::number(value, 'f', 4);
}

bool IsBelow(double value, double minimum)
{
    return !std::isnan(minimum) && value < minimum - kLimitSlack;
}

bool IsAbove(double value, double maximum)
{
    return !std::isnan(maximum) && value > maximum + kLimitSlack;
}

} // namespace

QString ZELKinProgramCheck::Problem::GetText() const
{
    QString text = ZELKinProgramCheck::tr("procedure '%1'").arg(procedure);
    if (!script.isEmpty())
        text += QStringLiteral(", ") + script;
    if (point > 0)
        text += ZELKinProgramCheck::tr(", point %1").arg(point);
    return text + QStringLiteral(": ") + message;
}

void ZELKinProgramCheckPrivate::Gathering::Add(const ZELKinProgramCheck::Problem& problem)
{
    if (findings.first.size() < listed)
        findings.first.append(problem);
    ++findings.count;
    if (findings.procedures.isEmpty() || findings.procedures.last() != problem.procedure)
        findings.procedures.append(problem.procedure);
}

void ZELKinProgramCheckPrivate::Gathering::Merge(const Gathering& later)
{
    findings.Append(later.findings, listed);
}

void ZELKinProgramCheck::Findings::RemoveProceduresFrom(ZELKinProgram* program) const
{
    for (ZELKinProcedure* procedure : program->GetProcedures()) {
        const ZELTPProcedure* source = procedure ? procedure->GetToolPathProcedure() : nullptr;
        if (source && procedures.contains(source->GetName()))
            program->RemoveProcedure(procedure);
    }
}

void ZELKinProgramCheck::Findings::Append(const Findings& later, int listed)
{
    for (const ZELKinProgramCheck::Problem& problem : later.first) {
        if (first.size() < listed)
            first.append(problem);
    }
    count += later.count;
    for (const QString& procedure : later.procedures) {
        if (procedures.isEmpty() || procedures.last() != procedure)
            procedures.append(procedure);
    }
}

ZELKinProgramCheck::Problem ZELKinProgramCheckPrivate::OmissionProblem(const ZELKinTranslator::Omission& omission)
{
    ZELKinProgramCheck::Problem problem{omission.procedure, QString(), omission.point, QString()};
    if (omission.script <= 0) {
        problem.message = ZELKinProgramCheck::tr("no position of the procedure could be solved");
        return problem;
    }
    problem.script = omission.onLink ? ZELKinProgramCheck::tr("course link %1").arg(omission.script)
                                     : ZELKinProgramCheck::tr("course %1").arg(omission.script);
    problem.message = omission.reachable
        ? ZELKinProgramCheck::tr("the wrist cannot reach this point from the one before without a flip: the "
                                 "procedure cannot be solved")
        : ZELKinProgramCheck::tr("no wrist configuration within the machine's limits reaches this point: the "
                                 "procedure cannot be solved");
    return problem;
}

ZELKinProgramCheckPrivate::Gathering ZELKinProgramCheckPrivate::CheckProcedure(const ZELKinProcedure* procedure,
                                                                                int listed) const
{
    Gathering gathering;
    gathering.listed = listed;
    if (const auto* layup = qobject_cast<const ZELKinRollLayupProcedure*>(procedure))
        CheckLayup(layup, gathering);
    else if (const auto* probing = qobject_cast<const ZELKinProbeProcedure*>(procedure))
        CheckProbing(probing, gathering);
    return gathering;
}

void ZELKinProgramCheckPrivate::CheckLayup(const ZELKinRollLayupProcedure* procedure, Gathering& gathering) const
{
    // The translator lays the scripts out link, course, link, ..., link.
    const QString name = NameOf(procedure);
    const int links = procedure->GetNumCourseLinks();
    const int courses = procedure->GetNumCourses();
    for (int i = 0; i < std::max(links, courses); ++i) {
        if (i < links)
            CheckScript(procedure->GetCourseLink(i), name, gathering);
        if (i < courses)
            CheckScript(procedure->GetCourse(i), name, gathering);
    }
}

void ZELKinProgramCheckPrivate::CheckScript(const ZELKinScript* script, const QString& procedure,
                                            Gathering& gathering) const
{
    if (!script)
        return;
    Place place{procedure, ScriptName(script), 0};
    for (int i = 0; i < script->GetNumCommands(); ++i) {
        if (auto* position = qobject_cast<ZELKinPosition*>(script->GetCommand(i))) {
            ++place.point;
            CheckLayupPosition(position, place, gathering);
        }
    }
}

void ZELKinProgramCheckPrivate::CheckProbing(const ZELKinProbeProcedure* procedure, Gathering& gathering) const
{
    Place place{NameOf(procedure), QString(), 0};
    for (int i = 0; i < procedure->GetNumCommands(); ++i) {
        const auto* position = qobject_cast<const ZELKinPosition*>(procedure->GetCommand(i));
        if (!position)
            continue;
        ++place.point;
        if (!std::isfinite(position->GetFeedrate()))
            gathering.Add({place.procedure, place.script, place.point,
                           ZELKinProgramCheck::tr("the feed rate is not a finite number")});
        CheckLimits(position, place, gathering);
    }
}

void ZELKinProgramCheckPrivate::CheckLayupPosition(ZELKinPosition* position, const Place& place,
                                                   Gathering& gathering) const
{
    // Each value is read once: a position holds no NaN, so NaN reads as no
    // value at all.
    QStringList missing;
    QStringList notFinite;
    ZELKinSolution values;
    for (ZELKinVariable* variable : driving) {
        const double value = position->GetVariableValue(variable);
        if (std::isnan(value))
            missing.append(variable->GetLabel());
        else if (!std::isfinite(value))
            notFinite.append(variable->GetLabel());
        values.SetVariableValue(variable, value);
    }
    const auto add = [&](const QString& message) {
        gathering.Add({place.procedure, place.script, place.point, message});
    };
    if (!missing.isEmpty())
        add(ZELKinProgramCheck::tr("the position has no value for %1").arg(missing.join(QStringLiteral(", "))));
    if (!notFinite.isEmpty())
        add(ZELKinProgramCheck::tr("the value of %1 is not a finite number").arg(notFinite.join(QStringLiteral(", "))));
    if (!std::isfinite(position->GetFeedrate()))
        add(ZELKinProgramCheck::tr("the feed rate is not a finite number"));
    if (!missing.isEmpty() || !notFinite.isEmpty())
        return;
    if (!position->IsTraori() || !solver) {
        CheckLimits(position, place, gathering);
        return;
    }
    // Under TRAORI the linear words place the tool tip; the slides stand
    // where the solver's conversion puts them.
    values.SetTraori(true);
    const ZELKinSolution slides = solver->FromTraori(values);
    for (ZELKinVariable* variable : driving)
        CheckLimit(variable, slides.GetVariableValue(variable), variable->GetType() == ZELKinVariable::Linear, place,
                   gathering);
}

void ZELKinProgramCheckPrivate::CheckLimits(const ZELKinPosition* position, const Place& place,
                                            Gathering& gathering) const
{
    for (const ZELKinVariable* variable : variables) {
        const double value = position->GetVariableValue(variable);
        if (!std::isnan(value))
            CheckLimit(variable, value, false, place, gathering);
    }
}

void ZELKinProgramCheckPrivate::CheckLimit(const ZELKinVariable* variable, double value, bool slide, const Place& place,
                                           Gathering& gathering) const
{
    const bool below = IsBelow(value, variable->GetMinimum());
    const bool above = IsAbove(value, variable->GetMaximum());
    if (!below && !above && std::isfinite(value))
        return;
    const bool rotary = variable->GetType() == ZELKinVariable::Rotary;
    const double scale = rotary ? qRadiansToDegrees(1.0) : 1.0;
    const QString unit = rotary ? QStringLiteral("deg") : QStringLiteral("mm");
    const QString label = variable->GetLabel();
    QString message;
    if (!std::isfinite(value)) {
        message = slide ? ZELKinProgramCheck::tr("the slide position of %1 is not a finite number").arg(label)
                        : ZELKinProgramCheck::tr("the value of %1 is not a finite number").arg(label);
    } else {
        const double limit = below ? variable->GetMinimum() : variable->GetMaximum();
        message = ZELKinProgramCheck::tr("%1 at %2 %3%4 is beyond its %5 of %6 %3")
                      .arg(label, Number(value * scale), unit,
                           slide ? ZELKinProgramCheck::tr(" (slide position)") : QString(),
                           below ? ZELKinProgramCheck::tr("minimum") : ZELKinProgramCheck::tr("maximum"),
                           Number(limit * scale));
    }
    gathering.Add({place.procedure, place.script, place.point, message});
}

ZELKinProgramCheck::ZELKinProgramCheck(const ZELKinSolver* solver)
    : ZELKinProgramCheck(new ZELKinProgramCheckPrivate(this, solver))
{
}

ZELKinProgramCheck::ZELKinProgramCheck(ZELKinProgramCheckPrivate* d)
    : d_ptr(d)
{
    const ZELKinMachine* machine = d->solver ? d->solver->GetMachine() : nullptr;
    d->driving = DrivingVariables(machine);
    if (machine) {
        for (ZELKinVariable* variable : machine->GetVariables()) {
            if (variable)
                d->variables.append(variable);
        }
    }
}

ZELKinProgramCheck::~ZELKinProgramCheck() = default;

void ZELKinProgramCheck::SetThreadCount(int count)
{
    Q_D(ZELKinProgramCheck);
    d->threadCount = std::max(1, count);
}

ZELKinProgramCheck::Findings ZELKinProgramCheck::Check(const ZELKinProgram* program,
                                                       const QList<ZELKinTranslator::Omission>& omissions,
                                                       int listed) const
{
    Q_D(const ZELKinProgramCheck);
    ZELKinProgramCheckPrivate::Gathering gathering;
    gathering.listed = listed;
    for (const ZELKinTranslator::Omission& omission : omissions)
        gathering.Add(ZELKinProgramCheckPrivate::OmissionProblem(omission));
    const QList<ZELKinProcedure*> procedures = program ? program->GetProcedures() : QList<ZELKinProcedure*>();
    // Up to threadCount procedures are checked at once; their problems are
    // gathered in the procedures' order.
    std::deque<std::future<ZELKinProgramCheckPrivate::Gathering>> running;
    qsizetype next = 0;
    while (next < procedures.size() || !running.empty()) {
        while (next < procedures.size() && running.size() < std::size_t(d->threadCount)) {
            const ZELKinProcedure* procedure = procedures.at(next++);
            running.push_back(std::async(d->threadCount > 1 ? std::launch::async : std::launch::deferred,
                                         [d, procedure, listed] { return d->CheckProcedure(procedure, listed); }));
        }
        gathering.Merge(running.front().get());
        running.pop_front();
    }
    return gathering.findings;
}
