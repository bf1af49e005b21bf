// A machine description checked as zelkin checks it and loaded into a fresh
// container. Bad descriptions end in ZELSysException or in no machine; any
// other way out is a finding. A machine built from a description the check
// passed has finite, positive speeds and accelerations and variables of
// distinct names.
//
// The loader ends the process on purpose when a description has not exactly
// one <variables> or <joints> element, or a variable without "max-accel".
// Descriptions within the loader's size and depth bounds that parse are
// checked for those three first and rejected; the rest go to the loader,
// which refuses what is over its bounds before parsing.

#include "zelkinfuzz.h"

#include <zelgeocontainer.h>
#include <zelkinmachine.h>
#include <zelkinmachinedescriptioncheck.h>
#include <zelkinmachineloader.h>
#include <zelkinvariable.h>
#include <zelsysexception.h>

#include <QBuffer>
#include <QDomDocument>
#include <QSet>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

bool IsWithinBounds(const QByteArray& bytes)
{
    try {
        ZELKinMachineLoader::CheckBounds(bytes);
        return true;
    } catch (const ZELSysException&) {
        return false;
    }
}

bool ReachesAFatalMessage(const QByteArray& bytes)
{
    QDomDocument document;
    if (!document.setContent(bytes, false))
        return false;
    const QDomElement root = document.documentElement();
    if (root.attribute(QStringLiteral("type")) != QLatin1String("AFP"))
        return false;
    const QDomNodeList variables = root.elementsByTagName(QStringLiteral("variables"));
    if (variables.size() != 1 || root.elementsByTagName(QStringLiteral("joints")).size() != 1)
        return true;
    const QDomNodeList each = variables.at(0).toElement().elementsByTagName(QStringLiteral("variable"));
    for (int i = 0; i < each.size(); ++i) {
        if (!each.at(i).toElement().hasAttribute(QStringLiteral("max-accel")))
            return true;
    }
    return false;
}

bool PassesTheDescriptionCheck(const QByteArray& bytes)
{
    try {
        ZELKinMachineDescriptionCheck().Check(bytes);
        return true;
    } catch (const ZELSysException&) {
        return false;
    }
}

void RequireAMachineOfNumbers(const ZELKinMachine& machine)
{
    QSet<QString> names;
    for (const ZELKinVariable* variable : machine.GetVariables()) {
        const bool holds = std::isfinite(variable->GetMaxVelocity()) && variable->GetMaxVelocity() > 0
                           && std::isfinite(variable->GetMaxAcceleration()) && variable->GetMaxAcceleration() > 0
                           && !names.contains(variable->GetLabel());
        if (!holds) {
            std::fprintf(stderr, "a checked description built variable '%s' that no machine has\n",
                         qPrintable(variable->GetLabel()));
            std::abort();
        }
        names.insert(variable->GetLabel());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    QByteArray bytes = ZELKinFuzz::Bytes(data, size);
    if (IsWithinBounds(bytes) && ReachesAFatalMessage(bytes))
        return -1;
    ZELGeoContainer container;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    const bool checked = PassesTheDescriptionCheck(bytes);
    try {
        const ZELKinMachine* machine = ZELKinMachineLoader(&container).LoadFromXML(&buffer);
        if (machine && checked)
            RequireAMachineOfNumbers(*machine);
        return 0;
    } catch (const ZELSysException&) {
        return 0;
    }
}
