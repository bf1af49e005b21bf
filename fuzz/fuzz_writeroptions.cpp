// The writer's options text, used to post the shipped minimal toolpath
// (a course and a probing procedure) for the example machine into a
// temporary folder. Every text must post; options that are not numbers read
// as 0. A tooling retract that reads as a NaN or an infinity ("nan", "inf",
// "1e400") is the one input the writer refuses, with the ZELSysException of
// a number that is not finite; any other exception is a finding. No input
// reaches a fatal message: the folder is always writable.

#include "zelkinfuzz.h"

#include <zelgeocontainer.h>
#include <zelkinafpmachine.h>
#include <zelkinmachineloader.h>
#include <zelkinprogram.h>
#include <zelkinsolver.h>
#include <zelkintranslator.h>
#include <zelkinwriter.h>
#include <zelsysexception.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

namespace {

struct Posting
{
    Posting()
    {
        QFile file(QStringLiteral(ZELKIN_EXAMPLE_MACHINE));
        file.open(QIODevice::ReadOnly);
        auto* machine = qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(&container).LoadFromXML(&file));
        solver.reset(machine->CreateSolver());
        const ZELTPProgram* toolpath = ZELTPProgramReader(&container).Read(QStringLiteral(ZELKIN_MINIMAL_TOOLPATH));
        program = ZELKinTranslator(solver.get()).Translate(toolpath);
        program->SetOriginalFileName(toolpath->GetName());
    }

    ZELGeoContainer container;
    std::unique_ptr<ZELKinSolver> solver;
    ZELKinProgram* program = nullptr;
    QTemporaryDir output;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    static Posting posting;
    ZELKinWriter writer(posting.program);
    writer.SetCurrentDateTime(QDateTime(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC));
    try {
        writer.Write(posting.output.path(), QStringLiteral("AFPGCode"),
                     QString::fromUtf8(ZELKinFuzz::Bytes(data, size)));
    } catch (const ZELSysException& error) {
        if (!error.GetMessage().endsWith(QLatin1String(", not a finite number")))
            throw;
    }
    return 0;
}
