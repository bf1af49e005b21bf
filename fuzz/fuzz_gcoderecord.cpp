// One line of NC text taken apart into a G-code record, and every query of
// the record. No input may crash it; none reaches a fatal message. The
// queries by name go through the whole line each, so they are asked for the
// first few names only: a line of many names would otherwise take the
// square of its length, where the record itself must take time in
// proportion to it (the corpus holds a line of 250 000 words).

#include "zelkinfuzz.h"

#include <zelkingcoderecord.h>

#include <QSet>

namespace {

constexpr qsizetype kNamesAsked = 64;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    const ZELKinGCodeRecord record(1, QString::fromUtf8(ZELKinFuzz::Bytes(data, size)));
    qsizetype seen = record.GetComment().size() + record.GetGCodes().size() + record.GetMCodes().size()
        + record.GetVariables().size() + record.GetWords().size();
    QSet<QString> asked;
    for (const QString& name : record.GetVariables()) {
        if (asked.size() == kNamesAsked)
            break;
        if (asked.contains(name))
            continue;
        asked.insert(name);
        seen += record.GetVariableValue(name).size() + record.GetVariableValues(name).size();
        seen += record.IsVariable(name) ? 1 : 0;
    }
    return seen < 0 ? 1 : 0;
}
