// One line of NC text taken apart into a G-code record, and every query of
// the record. No input may crash it; none reaches a fatal message. A query
// by name goes through the whole line, so those are asked name after name
// only while they come to no more than a million words in all: every name
// of an ordinary line, a few of a line of many words (the corpus holds one
// of 250 000), which must take time in proportion to its length.

#include "zelkinfuzz.h"

#include <zelkingcoderecord.h>

#include <QSet>

namespace {

constexpr qsizetype kWordsAskedByName = qsizetype(1) << 20;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    const ZELKinGCodeRecord record(1, QString::fromUtf8(ZELKinFuzz::Bytes(data, size)));
    const QList<QPair<QString, QString>> words = record.GetWords();
    const QStringList variables = record.GetVariables();
    qsizetype seen = record.GetComment().size() + record.GetGCodes().size() + record.GetMCodes().size()
        + variables.size() + words.size();
    QSet<QString> asked;
    for (const QString& name : variables) {
        if (asked.contains(name))
            continue;
        if ((asked.size() + 1) * words.size() > kWordsAskedByName)
            break;
        asked.insert(name);
        seen += record.GetVariableValue(name).size() + record.GetVariableValues(name).size();
        seen += record.IsVariable(name) ? 1 : 0;
    }
    return seen < 0 ? 1 : 0;
}
