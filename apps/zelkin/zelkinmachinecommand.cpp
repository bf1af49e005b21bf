#include "zelkinmachinecommand.h"

#include "zelkinarguments.h"
#include "zelkinconsole.h"
#include "zelkinmachinefile.h"
#include "zelkinmachinejson.h"
#include "zelkinmachinesummary.h"

#include <zelgeocontainer.h>
#include <zelkinafpmachine.h>

#include <QJsonDocument>

namespace {

const QString JsonOption = QStringLiteral("json");

} // namespace

QString ZELKinMachineCommand::GetName() const
{
    return QStringLiteral("machine");
}

QString ZELKinMachineCommand::GetSummary() const
{
    return QStringLiteral("Load a machine description and show the machine");
}

QString ZELKinMachineCommand::GetSynopsis() const
{
    return QStringLiteral("FILE.xml [--json]");
}

QString ZELKinMachineCommand::GetDescription() const
{
    return QStringLiteral(
        "Loads the machine description FILE.xml and shows the machine built from it:\n"
        "its solver and NC settings, the head values, the variables with their limits,\n"
        "speeds and accelerations, and the joint tree with each joint under its parent.\n"
        "Values are shown in the description's units (mm, deg; m/min, deg/min;\n"
        "m/s^2, deg/s^2). Warnings of the loader appear on stderr and the command goes on.\n"
        "\n"
        "Options:\n"
        "  --json  Print one JSON object instead, in the library's units (mm, rad,\n"
        "          per second); a missing limit is null.\n");
}

QList<ZELKinOption> ZELKinMachineCommand::GetOptions() const
{
    return {ZELKinOption(JsonOption, ZELKinOption::Value::None)};
}

ZELKinOption ZELKinMachineCommand::GetPositional() const
{
    return ZELKinOption::Positional(ZELKinOption::Value::Input);
}

int ZELKinMachineCommand::Run(const QStringList& arguments)
{
    const ZELKinArguments parsed(GetName(), arguments, GetOptions());
    const QString path = parsed.GetSingleInput(QStringLiteral("machine description file"));

    ZELGeoContainer container;
    const ZELKinAFPMachine* machine = ZELKinMachineFile::Load(&container, path);
    if (parsed.IsSet(JsonOption))
        ZELKinConsole::Print(QString::fromUtf8(QJsonDocument(ZELKinMachineJson::ToJson(*machine)).toJson()));
    else
        ZELKinConsole::Print(ZELKinMachineSummary::ToText(*machine));
    return ZELKinExitStatus::Success;
}
