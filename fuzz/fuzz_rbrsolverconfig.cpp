// The roll-bend-roll solver of the example machine configured with a text,
// then asked for the candidates of a few tool frames and a blend between
// two of them. Bad configurations end in ZELSysException or in no
// candidates; any other way out is a finding.
//
// A vector key ("first-roll-reference", "bend-reference",
// "second-roll-reference", "tip-point") whose value is not three parts
// separated by ',' ends the process on purpose: such texts are rejected
// first, read item by item as the solver reads them.

#include "zelkinfuzz.h"

#include <zelgeocontainer.h>
#include <zelkinafpmachine.h>
#include <zelkinmachineloader.h>
#include <zelkinsolver.h>
#include <zelmathaxis.h>
#include <zelsysexception.h>

#include <QFile>
#include <QStringList>

#include <memory>

namespace {

ZELKinAFPMachine* ExampleMachine()
{
    static ZELGeoContainer container;
    static ZELKinAFPMachine* const machine = [] {
        QFile file(QStringLiteral(ZELKIN_EXAMPLE_MACHINE));
        file.open(QIODevice::ReadOnly);
        return qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(&container).LoadFromXML(&file));
    }();
    return machine;
}

bool ReachesAFatalMessage(const QString& config)
{
    static const QStringList vectorKeys{QStringLiteral("first-roll-reference"), QStringLiteral("bend-reference"),
                                        QStringLiteral("second-roll-reference"), QStringLiteral("tip-point")};
    for (const QString& item : config.split(QLatin1Char(';'))) {
        const QStringList parts = item.split(QLatin1Char(':'));
        if (vectorKeys.contains(parts.at(0).simplified())
            && parts.value(1).simplified().split(QLatin1Char(',')).size() != 3)
            return true;
    }
    return false;
}

ZELMathAxis Frame(double x, double y, double z, const ZELMathVector& travel, const ZELMathVector& normal)
{
    return ZELMathAxis(ZELMathPoint(x, y, z), travel, normal.Cross(travel), normal);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    ZELKinAFPMachine* machine = ExampleMachine();
    const QString config = QString::fromUtf8(ZELKinFuzz::Bytes(data, size));
    if (!machine || ReachesAFatalMessage(config))
        return -1;
    try {
        const std::unique_ptr<ZELKinSolver> solver(machine->CreateSolver());
        solver->Configure(config);
        const ZELMathAxis frames[] = {
            Frame(3000, 3500, -1500, ZELMathVector(1, 0, 0), ZELMathVector(0, 0, 1)),
            Frame(3000, 3500, -1500, ZELMathVector(0, 1, 0), ZELMathVector(0, -0.5, 0.8660254037844386)),
            Frame(3000, 3500, -1500, ZELMathVector(0, 0, -1), ZELMathVector(1, 0, 0))};
        QList<ZELKinSolution> last;
        for (const ZELMathAxis& frame : frames) {
            const QList<ZELKinSolution> candidates = solver->Solve(frame, false);
            if (!candidates.isEmpty() && !last.isEmpty())
                solver->Solve(frame, 0.5, last.first(), candidates.first());
            last = candidates;
        }
    } catch (const ZELSysException&) {
    }
    return 0;
}
