#include "zelkinapplication.h"
#include "zelkincommandregistry.h"
#include "zelkincompletioncommand.h"
#include "zelkinconsole.h"
#include "zelkingcodecommand.h"
#include "zelkingeneratetoolpathcommand.h"
#include "zelkinhelpcommand.h"
#include "zelkinmachinecommand.h"
#include "zelkinpostcommand.h"
#include "zelkinreportcommand.h"
#include "zelkinsolvecommand.h"
#include "zelkinverifycommand.h"

#include <QCoreApplication>

#include <memory>

int main(int argc, char* argv[])
{
    // Before anything opens a file that could take a descriptor left free.
    ZELKinConsole::KeepStandardStreamsOpen();
    // Before anything can log: the loader reports some broken descriptions
    // through Qt's messages.
    ZELKinConsole::InstallMessageHandler();
    const QCoreApplication application(argc, argv);

    ZELKinCommandRegistry registry;
    registry.Add(std::make_unique<ZELKinHelpCommand>(registry));
    registry.Add(std::make_unique<ZELKinMachineCommand>());
    registry.Add(std::make_unique<ZELKinGenerateToolpathCommand>());
    registry.Add(std::make_unique<ZELKinSolveCommand>());
    registry.Add(std::make_unique<ZELKinPostCommand>());
    registry.Add(std::make_unique<ZELKinGCodeCommand>());
    registry.Add(std::make_unique<ZELKinVerifyCommand>());
    registry.Add(std::make_unique<ZELKinReportCommand>());
    registry.Add(std::make_unique<ZELKinCompletionCommand>(registry));

    return ZELKinApplication(registry, QStringLiteral(ZELKIN_VERSION)).Run(QCoreApplication::arguments().mid(1));
}
