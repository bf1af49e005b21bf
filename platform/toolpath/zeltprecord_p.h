#ifndef ZELTPRECORD_P_H
#define ZELTPRECORD_P_H

#include <QDataStream>
#include <QList>

namespace ZELTPRecord {

//! Writes the entry count (qint32), then each entry in its stream form.
template <typename T>
void WriteList(QDataStream& stream, const QList<T>& entries)
{
    stream << qint32(entries.size());
    for (const T& entry : entries)
        stream << entry;
}

//! Reads what WriteList wrote. A count larger than the entries present stops
//! at the end of the data, and nothing is reserved from the count: it is not
//! trusted (QDataStream's own list reading would reserve it).
template <typename T>
QList<T> ReadList(QDataStream& stream)
{
    qint32 count = 0;
    stream >> count;
    QList<T> entries;
    for (qint32 index = 0; index < count && !stream.atEnd(); ++index) {
        T entry{};
        stream >> entry;
        entries.append(entry);
    }
    return entries;
}

} // namespace ZELTPRecord

#endif // ZELTPRECORD_P_H
