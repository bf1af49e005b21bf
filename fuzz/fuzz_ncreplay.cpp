// Posted NC read back as verify reads it: one input is the text of a bundle
// (the program-set file and the ply files, each between a ">>>>> Filename|
// NAME| <<<<<" line and a ">>>>> End of File <<<<<" line), split into its
// files and each ply file replayed line by line for the example machine.
// Any text is read into a program or refused with ZELSysException (no
// program-set file, a line too long); no input reaches a fatal message. What
// is read must hold together: every motion carries a value, a start and a
// written flag for each of the machine's variables, and the lines of a ply
// file come in the order of the file.

#include "zelkinfuzz.h"

#include <zelgeocontainer.h>
#include <zelkinafpmachine.h>
#include <zelkinmachineloader.h>
#include <zelkinncreplay.h>
#include <zelsysexception.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

struct Replay
{
    Replay()
    {
        QFile file(QStringLiteral(ZELKIN_EXAMPLE_MACHINE));
        file.open(QIODevice::ReadOnly);
        machine = qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(&container).LoadFromXML(&file));
        variables = machine->GetVariables().size();
    }

    ZELGeoContainer container;
    ZELKinAFPMachine* machine = nullptr;
    qsizetype variables = 0;
    QTemporaryDir folder;
};

void Require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "replayed NC does not hold together: %s\n", what);
    std::abort();
}

void RequireWhole(const ZELKinNCPlyFile& ply, qsizetype variables)
{
    unsigned previousLine = 0;
    for (const ZELKinNCMotion& motion : ply.motions) {
        Require(motion.values.size() == variables, "a motion without a value for each variable");
        Require(motion.starts.size() == variables, "a motion without a start for each variable");
        Require(motion.written.size() == variables, "a motion without a written flag for each variable");
        Require(motion.line > previousLine, "motions out of the order of their file");
        previousLine = motion.line;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    static Replay replay;
    const QString bundle = QDir(replay.folder.path()).filePath(QStringLiteral("fuzz.bun"));
    QFile file(bundle);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        || file.write(reinterpret_cast<const char*>(data), qint64(size)) != qint64(size))
        return -1;
    file.close();
    try {
        const ZELKinNCProgram program = ZELKinNCReplay(*replay.machine).Read(bundle);
        for (const ZELKinNCPlyFile& ply : program.plies)
            RequireWhole(ply, replay.variables);
    } catch (const ZELSysException&) {
        // Text that holds no posted program, or that no NC holds, is refused.
    }
    return 0;
}
