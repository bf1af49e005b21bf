// One line of NC text taken apart into a G-code record, and every query of
// the record. No input may crash it; none reaches a fatal message.

#include "zelkinfuzz.h"

#include <zelkingcoderecord.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    const ZELKinGCodeRecord record(1, QString::fromUtf8(ZELKinFuzz::Bytes(data, size)));
    qsizetype seen = record.GetComment().size() + record.GetGCodes().size() + record.GetMCodes().size();
    for (const QString& name : record.GetVariables()) {
        seen += record.GetVariableValue(name).size() + record.GetVariableValues(name).size();
        seen += record.IsVariable(name) ? 1 : 0;
    }
    return seen < 0 ? 1 : 0;
}
