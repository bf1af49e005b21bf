#include "zelkinverifier.h"
#include "zelkinverifier_p.h"

#include "zelkinplycheck_p.h"
#include "zelkinverifyplan_p.h"

#include <zelgeocontainer.h>
#include <zelkinncreplay.h>
#include <zelsysheap.h>
#include <zelsysprogress.h>
#include <zeltpprocedure.h>
#include <zeltpprogram.h>
#include <zeltpprogramstream.h>
#include <zeltprolllayupprocedure.h>

#include <QSet>
#include <QVector>

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

ZELKinVerifyFinding LaysAnAbsentProcedure(const ZELKinNCPlyListing& ply)
{
    return ProgramFinding(QStringLiteral("program"), ply.procedure, ZELKinVerifyPlace{0, 0, ply.path, 0}, QString(),
                          QStringLiteral("ply %1 lays the procedure '%2', which the toolpath does not have")
                              .arg(ply.plyNumber, ply.procedure));
}

ZELKinVerifyFinding LaysALaidProcedure(const ZELKinNCPlyListing& ply, const ZELKinNCPlyListing& first)
{
    return ProgramFinding(QStringLiteral("program"), ply.procedure, ZELKinVerifyPlace{0, 0, ply.path, 0}, QString(),
                          QStringLiteral("ply %1 lays the procedure '%2', which ply %3 lays already")
                              .arg(ply.plyNumber, ply.procedure, first.plyNumber));
}

ZELKinVerifyFinding HasNoPlyFile(const ZELTPRollLayupProcedure& procedure)
{
    return ProgramFinding(QStringLiteral("missing"), procedure.GetName(), ZELKinVerifyPlace(), QString(),
                          QStringLiteral("the NC has no ply file for the procedure '%1'").arg(procedure.GetName()));
}

// The plies that name `procedure`, in ply number order.
QList<int> PliesLaying(const ZELKinNCPlySet& plySet, const QString& procedure)
{
    QList<int> plies;
    for (int i = 0; i < plySet.plies.size(); ++i) {
        if (plySet.plies.at(i).procedure == procedure)
            plies.append(i);
    }
    return plies;
}

} // namespace

ZELKinVerifier::ToolpathSource ZELKinVerifier::ToolpathSource::Whole(const ZELTPProgram& toolpath)
{
    return ToolpathSource{
        toolpath.GetNumProcedures(),
        [&toolpath](int index, ZELGeoContainer*) -> const ZELTPProcedure* { return toolpath.GetProcedure(index); }};
}

ZELKinVerifier::ToolpathSource ZELKinVerifier::ToolpathSource::ByProcedure(const ZELTPProgramStream& stream)
{
    return ToolpathSource{stream.GetNumProcedures(),
                          [&stream](int index, ZELGeoContainer* container) -> const ZELTPProcedure* {
                              return stream.ReadProcedure(index, container)->GetProcedure(0);
                          }};
}

ZELKinVerifier::NCSource ZELKinVerifier::NCSource::Whole(const ZELKinNCProgram& nc)
{
    NCSource source;
    source.plySet.irregularities = nc.irregularities;
    for (const ZELKinNCPlyFile& ply : nc.plies)
        source.plySet.plies.append(ZELKinNCPlyListing{ply.path, ply.name, ply.plyNumber, ply.procedure, 0});
    source.readPly = [&nc](int index) { return nc.plies.at(index); };
    return source;
}

ZELKinVerifier::NCSource ZELKinVerifier::NCSource::ByPly(const ZELKinNCReplay& replay, const QString& path)
{
    NCSource source;
    source.plySet = replay.ReadPlySet(path);
    source.readPly = [&replay, plies = source.plySet.plies](int index) { return replay.ReadPly(plies.at(index)); };
    return source;
}

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

void ZELKinVerifierPrivate::CheckPly(const ZELKinVerifier::NCSource& nc, int index, const ZELKinProcedurePlan* plan,
                                     const ZELKinVerifyFinding* pairing, const ZELKinVerifyAxes& axes,
                                     const ZELKinVerifier::PlyHandler& handler, CheckedPly& checked) const
{
    {
        const ZELKinNCPlyFile ply = nc.readPly(index);
        ZELSysProgress progress(QStringLiteral("Checking the NC"), QStringLiteral("lines"), ply.motions.size());
        progress.SetItem(ply.name);
        if (pairing)
            checked.findings.append(*pairing);
        // The estimate's own arrays go before the check's paths come.
        const ZELKinPlyRunTime estimate = runTime.Estimate(ply);
        ZELKinPlyCheck check(axes, head, gates, ply, checked.findings);
        checked.ply = check.Run(plan, keepLines);
        AddRunTime(checked.ply, estimate);
        progress.Advance(ply.motions.size());
        if (handler)
            handler(index, checked.ply, checked.findings);
        checked.isChecked = true;
    }
    // The next procedure's model would not fit the holes the ply's lines leave.
    ZELSysHeap::ReturnFreePages();
}

void ZELKinVerifier::SetKeepLines(bool keep)
{
    Q_D(ZELKinVerifier);
    d->keepLines = keep;
}

bool ZELKinVerifier::GetKeepLines() const
{
    Q_D(const ZELKinVerifier);
    return d->keepLines;
}

ZELKinVerification ZELKinVerifier::Verify(const ZELTPProgram& toolpath, const ZELKinNCProgram& nc) const
{
    return Verify(ToolpathSource::Whole(toolpath), NCSource::Whole(nc));
}

ZELKinVerification ZELKinVerifier::Verify(const ToolpathSource& toolpath, const NCSource& nc,
                                          const PlyHandler& handler) const
{
    Q_D(const ZELKinVerifier);
    using CheckedPly = ZELKinVerifierPrivate::CheckedPly;
    const QList<ZELKinNCPlyListing>& plies = nc.plySet.plies;
    const ZELKinVerifyAxes axes(d->machine, d->head.GetSlideVariables());
    QVector<CheckedPly> checked(plies.size());
    QList<ZELKinVerifyFinding> missing;
    QSet<QString> paired;
    for (int index = 0; index < toolpath.numProcedures; ++index) {
        std::optional<ZELKinProcedurePlan> plan;
        QList<int> laying;
        {
            ZELGeoContainer container;
            const auto* procedure
                = qobject_cast<const ZELTPRollLayupProcedure*>(toolpath.readProcedure(index, &container));
            if (!procedure)
                continue;
            laying = PliesLaying(nc.plySet, procedure->GetName());
            if (laying.isEmpty())
                missing.append(HasNoPlyFile(*procedure));
            // A ply lays the first procedure of its name.
            if (laying.isEmpty() || paired.contains(procedure->GetName()))
                continue;
            paired.insert(procedure->GetName());
            plan = ZELKinVerifyPlan::PlanProcedure(*procedure, d->head.GetRollerRadius());
        }
        // The procedure's model is gone; the ply's lines would not fit its holes.
        ZELSysHeap::ReturnFreePages();
        d->CheckPly(nc, laying.first(), &*plan, nullptr, axes, handler, checked[laying.first()]);
        for (const int other : laying.mid(1)) {
            const ZELKinVerifyFinding twice = LaysALaidProcedure(plies.at(other), plies.at(laying.first()));
            d->CheckPly(nc, other, nullptr, &twice, axes, handler, checked[other]);
        }
    }
    for (int index = 0; index < plies.size(); ++index) {
        if (checked.at(index).isChecked)
            continue;
        const ZELKinVerifyFinding absent = LaysAnAbsentProcedure(plies.at(index));
        d->CheckPly(nc, index, nullptr, &absent, axes, handler, checked[index]);
    }

    ZELKinVerification verification;
    verification.gates = d->gates;
    for (const ZELKinNCIrregularity& irregularity : nc.plySet.irregularities)
        verification.findings.append(ProgramFinding(irregularity.check, QString(),
                                                    ZELKinVerifyPlace{0, 0, irregularity.file, irregularity.line},
                                                    irregularity.subject, irregularity.message));
    for (const CheckedPly& ply : std::as_const(checked)) {
        verification.runTime.Add(ply.ply.runTime);
        verification.plies.append(ply.ply);
        verification.findings.append(ply.findings);
    }
    verification.findings.append(missing);
    return verification;
}
