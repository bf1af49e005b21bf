#include "zelkinverifier.h"
#include "zelkinverifier_p.h"

#include "zelkinplycheck_p.h"
#include "zelkinverifyplan_p.h"

#include <zelkinncreplay.h>
#include <zelsysprogress.h>
#include <zeltpprogram.h>
#include <zeltprolllayupprocedure.h>

#include <QHash>

#include <optional>

namespace {

ZELKinVerifyFinding ProgramFinding(const QString& check, const QString& procedure, const ZELKinVerifyPlace& place,
                                   const QString& subject, const QString& message)
{
    return ZELKinVerifyFinding{check, QString(), procedure, place, subject, 0.0, 0.0, message, false};
}

// Each course's run time goes with its checks; lines before the first
// course record count for the ply alone, as they do for the checks.
void AddRunTime(ZELKinVerifiedPly& ply, const ZELKinPlyRunTime& runTime)
{
    ply.runTime = runTime;
    for (ZELKinVerifiedCourse& course : ply.courseTallies) {
        for (const ZELKinCourseRunTime& timed : runTime.courses) {
            if (timed.course == course.course)
                course.runTime = timed;
        }
    }
}

} // namespace

ZELKinVerifierPrivate::ZELKinVerifierPrivate(ZELKinVerifier* q, const ZELKinAFPMachine& machine,
                                             const ZELKinVerifyGates& gates)
    : q_ptr(q)
    , head(machine)
    , machine(machine)
    , gates(gates)
    , runTime(machine)
{
}

ZELKinVerifier::ZELKinVerifier(const ZELKinAFPMachine& machine, const ZELKinVerifyGates& gates)
    : ZELKinVerifier(new ZELKinVerifierPrivate(this, machine, gates))
{
}

ZELKinVerifier::ZELKinVerifier(ZELKinVerifierPrivate* d)
    : d_ptr(d)
{
}

ZELKinVerifier::~ZELKinVerifier() = default;

ZELKinVerification ZELKinVerifier::Verify(const ZELTPProgram& toolpath, const ZELKinNCProgram& nc) const
{
    Q_D(const ZELKinVerifier);
    ZELKinVerification verification;
    verification.gates = d->gates;
    for (const ZELKinNCIrregularity& irregularity : nc.irregularities)
        verification.findings.append(ProgramFinding(irregularity.check, QString(),
                                                    ZELKinVerifyPlace{0, 0, irregularity.file, irregularity.line},
                                                    irregularity.subject, irregularity.message));
    const ZELKinVerifyAxes axes(d->machine, d->head.GetSlideVariables());
    QHash<QString, QString> laidBy;
    qint64 lines = 0;
    for (const ZELKinNCPlyFile& ply : nc.plies)
        lines += ply.motions.size();
    ZELSysProgress progress(QStringLiteral("Checking the NC"), QStringLiteral("lines"), lines);
    for (const ZELKinNCPlyFile& ply : nc.plies) {
        progress.SetItem(ply.name);
        const ZELTPRollLayupProcedure* procedure = ZELKinVerifyPlan::ProcedureNamed(toolpath, ply.procedure);
        ZELKinPlyCheck check(axes, d->head, d->gates, ply, verification.findings);
        const std::optional<ZELKinProcedurePlan> plan = procedure && !laidBy.contains(ply.procedure)
            ? std::optional<ZELKinProcedurePlan>(ZELKinVerifyPlan::PlanProcedure(*procedure, d->head.GetRollerRadius()))
            : std::nullopt;
        if (!procedure)
            verification.findings.append(ProgramFinding(
                QStringLiteral("program"), ply.procedure, ZELKinVerifyPlace{0, 0, ply.path, 0}, QString(),
                QStringLiteral("ply %1 lays the procedure '%2', which the toolpath does not have")
                    .arg(ply.plyNumber, ply.procedure)));
        else if (laidBy.contains(ply.procedure))
            verification.findings.append(ProgramFinding(
                QStringLiteral("program"), ply.procedure, ZELKinVerifyPlace{0, 0, ply.path, 0}, QString(),
                QStringLiteral("ply %1 lays the procedure '%2', which ply %3 lays already")
                    .arg(ply.plyNumber, ply.procedure, laidBy.value(ply.procedure))));
        laidBy.insert(ply.procedure, laidBy.value(ply.procedure, ply.plyNumber));
        ZELKinVerifiedPly verified = check.Run(plan ? &*plan : nullptr);
        AddRunTime(verified, d->runTime.Estimate(ply));
        verification.runTime.Add(verified.runTime);
        verification.plies.append(verified);
        progress.Advance(ply.motions.size());
    }
    for (const ZELTPRollLayupProcedure* procedure : ZELKinVerifyPlan::LayupProceduresOf(toolpath)) {
        if (!laidBy.contains(procedure->GetName()))
            verification.findings.append(ProgramFinding(
                QStringLiteral("missing"), procedure->GetName(), ZELKinVerifyPlace(), QString(),
                QStringLiteral("the NC has no ply file for the procedure '%1'").arg(procedure->GetName())));
    }
    return verification;
}
