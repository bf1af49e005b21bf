#include "zelkinstreamingpostjob.h"

#include "zelkincommand.h"
#include "zelkininputfile.h"
#include "zelkinmachinefile.h"
#include "zelkinpostmemory.h"
#include "zelkintowwidthwarning.h"
#include "zelkintranslationjob.h"

#include <zelkinafpmachine.h>
#include <zelkinsolver.h>
#include <zelkinstreamingpost.h>
#include <zelsysexception.h>
#include <zelsysprogress.h>

#include <QThread>

#include <algorithm>
#include <memory>

bool ZELKinStreamingPostJob::CanStream(const QString& machinePath, const QString& toolpathPath)
{
    return ZELKinInputFile::CanBeReadAgain(machinePath) && ZELKinInputFile::CanBeReadAgain(toolpathPath);
}

ZELKinStreamingPostJob::ZELKinStreamingPostJob(const Input& input)
    : m_input(input)
    , m_machine(ZELKinMachineFile::Load(&m_container, input.machinePath))
{
    // A machine whose solver zelkin does not know is refused with the
    // solver's name before the toolpath is opened.
    const std::unique_ptr<ZELKinSolver> solver(ZELKinTranslationJob::CreateSolver(*m_machine));
    ZELKinInputFile::OpenToolpath(m_toolpath, input.toolpathPath);
    const int largest = m_toolpath.GetLargestProcedure();
    m_inFlight = ZELKinPostMemory::ChooseProceduresInFlight(
        ZELKinPostMemory::ToolpathSizes{ZELKinInputFile::GetName(input.toolpathPath), m_toolpath.GetFileBytes(),
                                        largest, m_toolpath.GetProcedureBytes(largest)},
        ZELKinPostMemory::GetPhysicalMemory(), QThread::idealThreadCount());
}

void ZELKinStreamingPostJob::Post(ZELKinWriter& writer, const QDateTime& now, const QString& path,
                                  const QString& format, const QString& options)
{
    const QString machinePath = m_input.machinePath;
    ZELKinStreamingPost post(
        [machinePath](ZELGeoContainer* container) { return ZELKinMachineFile::Load(container, machinePath); },
        &m_toolpath);
    post.SetCurrentDateTime(now);
    post.SetThreadCount(m_inFlight);
    post.SetKeepGoing(m_input.keepGoing);
    ZELKinTowWidthWarning towWidth(m_machine->GetTowWidth());
    post.SetProcedureInspection(
        [&towWidth](int index, const ZELTPProcedure* procedure) { towWidth.Inspect(index, procedure); });
    m_findings = ZELKinInputFile::NamingTheFile([&] { return post.Post(writer, path, format, options); });
    m_positions = post.GetPositionsByProcedure();
    ZELSysProgress::WriteLine(
        QStringLiteral("Posted one procedure at a time, at most %1 held at once").arg(m_inFlight));
    towWidth.Warn();
    if (!m_input.keepGoing)
        ZELKinTranslationJob::ThrowIfUndeliverable(m_findings);
}

void ZELKinStreamingPostJob::ThrowIfIncomplete() const
{
    ZELKinTranslationJob::ThrowIfIncomplete(m_findings);
}
