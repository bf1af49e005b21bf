#include "zelkinverificationjob.h"

#include "zelkinarguments.h"
#include "zelkincommand.h"
#include "zelkinconsole.h"
#include "zelkininputfile.h"
#include "zelkinmachinefile.h"
#include "zelkinprogressdisplay.h"
#include "zelkintranslationjob.h"

#include <zelgeocontainer.h>
#include <zelkinafpmachine.h>
#include <zelkinncreplay.h>
#include <zeltpprogram.h>
#include <zeltpprogramstream.h>

#include <QtGlobal>
#include <QtMath>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

const QString MachineOption = QStringLiteral("machine");
const QString ToolpathOption = QStringLiteral("toolpath");
const QString NCOption = QStringLiteral("nc");
const QString FlipOption = QStringLiteral("flip-angle");
const QString SingularityOption = QStringLiteral("singularity-angle");

double AngleOption(const ZELKinArguments& parsed, const QString& option, double fallback, const QString& command)
{
    if (!parsed.IsSet(option))
        return fallback;
    bool ok = false;
    const double degrees = parsed.GetValue(option).toDouble(&ok);
    if (!ok || !std::isfinite(degrees) || degrees <= 0.0 || degrees >= 180.0)
        throw ZELKinUsageError(QStringLiteral("--%1 takes an angle in degrees above 0 and below 180, not '%2'")
                                   .arg(option, parsed.GetValue(option)),
                               command);
    return qDegreesToRadians(degrees);
}

// While it lives, a fatal message of the libraries (the machine loader ends
// the process this way on some broken descriptions) ends zelkin as an input
// that cannot be read, not as a failed check.
class FatalMeansUnreadable
{
public:
    FatalMeansUnreadable() { s_previous = qInstallMessageHandler(Handle); }
    ~FatalMeansUnreadable() { qInstallMessageHandler(s_previous); }
    FatalMeansUnreadable(const FatalMeansUnreadable&) = delete;
    FatalMeansUnreadable& operator=(const FatalMeansUnreadable&) = delete;

private:
    static void Handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (type != QtFatalMsg) {
            s_previous(type, context, message);
            return;
        }
        ZELKinConsole::Diagnose(QStringLiteral("error"), message);
        std::fflush(stdout);
        std::_Exit(ZELKinVerificationJob::UnreadableInput);
    }

    static inline QtMessageHandler s_previous = nullptr;
};

template <typename Read> auto ReadInput(const Read& read)
{
    try {
        return read();
    } catch (const std::exception& error) {
        throw ZELKinUnreadableInputError(error.what());
    }
}

// Kept, still reachable, until the process ends: the tool exits right after
// its report, and deleting a toolpath of millions of points one by one
// would take about as long as checking it.
void KeepUntilExit(std::unique_ptr<ZELGeoContainer> container)
{
    static auto* const kept = new std::vector<std::unique_ptr<ZELGeoContainer>>;
    kept->push_back(std::move(container));
}

void RequireProceduresOfAtMost(const ZELTPProgramStream& stream, qint64 maximumBytes)
{
    const qint64 largest = stream.GetProcedureBytes(stream.GetLargestProcedure());
    if (largest > maximumBytes)
        throw ZELKinUnreadableInputError(
            QStringLiteral("%1: a procedure of %2 bytes is larger than %3 bytes, the most that is checked at once")
                .arg(stream.GetFileName(), QString::number(largest), QString::number(maximumBytes))
                .toStdString());
}

} // namespace

QList<ZELKinOption> ZELKinVerificationJob::GetOptions()
{
    return {ZELKinOption(MachineOption, ZELKinOption::Value::Input),
            ZELKinOption(ToolpathOption, ZELKinOption::Value::Input),
            ZELKinOption(NCOption, ZELKinOption::Value::Path),
            ZELKinOption(FlipOption, ZELKinOption::Value::Text),
            ZELKinOption(SingularityOption, ZELKinOption::Value::Text),
            ZELKinOption(ZELKinProgressDisplay::QuietOption, ZELKinOption::Value::None)};
}

QStringList ZELKinVerificationJob::GetFileOptions()
{
    return {MachineOption, ToolpathOption, NCOption};
}

ZELKinVerificationJob::Input ZELKinVerificationJob::GetInput(const ZELKinArguments& parsed, const QString& command)
{
    parsed.RequirePaths(GetFileOptions());
    Input input{parsed.GetRequiredValue(MachineOption), parsed.GetRequiredValue(ToolpathOption),
                parsed.GetRequiredValue(NCOption), ZELKinVerifyGates()};
    input.gates.flip = AngleOption(parsed, FlipOption, input.gates.flip, command);
    input.gates.singularity = AngleOption(parsed, SingularityOption, input.gates.singularity, command);
    input.quiet = parsed.IsSet(ZELKinProgressDisplay::QuietOption);
    return input;
}

ZELKinVerificationJob::ZELKinVerificationJob(const Input& input)
    : m_container(std::make_unique<ZELGeoContainer>())
{
    {
        const FatalMeansUnreadable fatal;
        m_machine = ReadInput([&] { return ZELKinMachineFile::Load(m_container.get(), input.machinePath); });
    }
    const auto verifier = ReadInput([&] { return std::make_unique<ZELKinVerifier>(*m_machine, input.gates); });
    verifier->SetKeepLines(bool(input.onPly));
    // One procedure of the toolpath and one ply of the posted NC are held
    // at a time: no larger one than a post on this machine could take.
    const qint64 maximumBytes = ZELKinTranslationJob::GetMaximumToolpathBytes();
    const ZELKinVerifier::ToolpathSource toolpath = ReadToolpath(input.toolpathPath, maximumBytes);
    const ZELKinVerifier::NCSource nc = ReadNC(input.ncPath, maximumBytes);
    const ZELKinVerifier::PlyHandler handOnAndDropLines = [&](int index, ZELKinVerifiedPly& ply,
                                                              const QList<ZELKinVerifyFinding>& findings) {
        if (input.onPly)
            input.onPly(*m_machine, index, ply, findings);
        ply.lines.clear();
    };
    m_verification = ReadInput([&] { return verifier->Verify(toolpath, nc, handOnAndDropLines); });
}

ZELKinVerifier::ToolpathSource ZELKinVerificationJob::ReadToolpath(const QString& path, qint64 maximumBytes)
{
    if (!ZELKinInputFile::CanBeReadAgain(path))
        return ZELKinVerifier::ToolpathSource::Whole(
            *ReadInput([&] { return ZELKinInputFile::ReadToolpath(m_container.get(), path, maximumBytes); }));
    // Standard input, a pipe or a device is read once, whole, above.
    ReadInput([&] { ZELKinInputFile::OpenToolpath(m_toolpathStream, path); });
    RequireProceduresOfAtMost(m_toolpathStream, maximumBytes);
    return ZELKinVerifier::ToolpathSource::ByProcedure(m_toolpathStream);
}

ZELKinVerifier::NCSource ZELKinVerificationJob::ReadNC(const QString& path, qint64 maximumBytes)
{
    m_replay = std::make_unique<ZELKinNCReplay>(*m_machine);
    m_replay->SetMaximumLength(maximumBytes);
    if (!ZELKinInputFile::CanBeReadAgain(path)) {
        m_wholeNC = ReadInput([&] { return m_replay->Read(path); });
        return ZELKinVerifier::NCSource::Whole(m_wholeNC);
    }
    return ReadInput([&] { return ZELKinVerifier::NCSource::ByPly(*m_replay, path); });
}

int ZELKinVerificationJob::Run(const Input& input, const std::function<int(const ZELKinVerificationJob&)>& use)
{
    const ZELKinProgressDisplay display(ZELKinProgressDisplay::ChooseMode(input.quiet));
    std::unique_ptr<const ZELKinVerificationJob> job;
    try {
        job = std::make_unique<const ZELKinVerificationJob>(input);
    } catch (const ZELKinUnreadableInputError& error) {
        ZELKinConsole::Diagnose(QStringLiteral("error"), QString::fromUtf8(error.what()));
        return UnreadableInput;
    }
    return use(*job);
}

ZELKinVerificationJob::~ZELKinVerificationJob()
{
    KeepUntilExit(std::move(m_container));
}
