// A host that posts a toolpath as docs/library.md shows it: it reads the
// toolpath, translates it, sets what the translator leaves to its caller,
// writes the NC, takes the library's progress lines itself and has the
// writer's file errors thrown instead of ending the process.

#include "posting.h"

#include <ZELKinematics/zelgeocontainer.h>
#include <ZELKinematics/zelkinafpmachine.h>
#include <ZELKinematics/zelkinmachineloader.h>
#include <ZELKinematics/zelkinprogram.h>
#include <ZELKinematics/zelkinprogramcheck.h>
#include <ZELKinematics/zelkinsolver.h>
#include <ZELKinematics/zelkinstreamingpost.h>
#include <ZELKinematics/zelkintranslator.h>
#include <ZELKinematics/zelkinwriter.h>
#include <ZELKinematics/zelsysexception.h>
#include <ZELKinematics/zelsysprogress.h>
#include <ZELKinematics/zeltpprogram.h>
#include <ZELKinematics/zeltpprogramreader.h>
#include <ZELKinematics/zeltpprogramstream.h>

#include <QFile>

#include <memory>

QStringList PostToolpath(const QString& machinePath, const QString& toolpathPath, const QString& output)
{
    QStringList lines;
    ZELSysProgress::SetLineHandler([&lines](const QString& line) { lines.append(line); });

    // One container per job: it owns the machine, the toolpath and the
    // program, and deletes them all when the job is done.
    ZELGeoContainer container;
    QFile machineFile(machinePath);
    if (!machineFile.open(QIODevice::ReadOnly))
        throw ZELSysException(QStringLiteral("cannot open %1").arg(machinePath));
    ZELKinMachine* machine = ZELKinMachineLoader(&container).LoadFromXML(&machineFile);
    if (!machine)
        throw ZELSysException(QStringLiteral("%1 is not an AFP machine").arg(machinePath));
    const ZELTPProgram* toolpath = ZELTPProgramReader(&container).Read(toolpathPath);

    // The host owns the solver; it must outlive the translation and the check.
    const std::unique_ptr<ZELKinSolver> solver(machine->CreateSolver());
    ZELKinTranslator translator(solver.get());
    ZELKinProgram* program = translator.Translate(toolpath);
    // The translator leaves the program's name and revision to its caller:
    // the files are named after the one and print the other.
    program->SetOriginalFileName(toolpath->GetName());
    program->SetRevisionNumber(toolpath->GetRevision());

    const ZELKinProgramCheck::Findings findings
        = ZELKinProgramCheck(solver.get()).Check(program, translator.GetOmissions());
    if (!findings.IsClean())
        throw ZELSysException(findings.first.first().GetText());

    ZELKinWriter writer(program);
    writer.SetFileErrorMode(ZELKinWriter::FileErrorThrows);
    writer.Write(output, QStringLiteral("AFPGCode"), QString());

    ZELSysProgress::SetLineHandler(ZELSysProgress::LineHandler());
    return lines;
}

void PostToolpathByProcedure(const QString& machinePath, const QString& toolpathPath, const QString& output)
{
    ZELTPProgramStream toolpath;
    toolpath.Open(toolpathPath);
    // Each procedure is solved for a machine of its own, in its own container.
    const auto loadMachine = [machinePath](ZELGeoContainer* container) {
        QFile file(machinePath);
        if (!file.open(QIODevice::ReadOnly))
            throw ZELSysException(QStringLiteral("cannot open %1").arg(machinePath));
        return qobject_cast<ZELKinAFPMachine*>(ZELKinMachineLoader(container).LoadFromXML(&file));
    };
    ZELKinStreamingPost post(loadMachine, &toolpath);
    post.SetThreadCount(2);
    ZELKinWriter writer;
    writer.SetFileErrorMode(ZELKinWriter::FileErrorThrows);
    const ZELKinProgramCheck::Findings findings = post.Post(writer, output, QStringLiteral("AFPGCode"), QString());
    if (!findings.IsClean())
        throw ZELSysException(findings.first.first().GetText());
}
