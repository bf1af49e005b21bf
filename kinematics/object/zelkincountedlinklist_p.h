#ifndef ZELKINCOUNTEDLINKLIST_P_H
#define ZELKINCOUNTEDLINKLIST_P_H

#include "zelkinweaklink_p.h"

#include <QIODevice>
#include <QList>

#include <algorithm>

/*!
    A list of links that each hold one container reference on their target:
    AddReference when an entry is appended or inserted, RemoveReference when
    the list releases it (RemoveAt, Clear, Load, destruction) and the target
    still exists. Entries read as null once their target is destroyed; a null
    entry keeps its place.

    Record: the entry count (qint32), then one reference per entry (an empty
    one for a null entry).
*/
template <typename T>
class ZELKinCountedLinkList
{
public:
    ZELKinCountedLinkList() = default;
    ~ZELKinCountedLinkList() { Clear(); }
    Q_DISABLE_COPY_MOVE(ZELKinCountedLinkList)

    void Append(T* object) { Insert(GetCount(), object); }

    //! Puts `object` before the entry at `index`; an index equal to the count
    //! appends. The caller keeps the index within 0..GetCount().
    void Insert(int index, T* object)
    {
        Q_ASSERT(index >= 0 && index <= GetCount());
        if (object)
            object->AddReference();
        m_entries.insert(index, object);
    }

    //! Releases the entry at `index` and closes the gap. The caller keeps the
    //! index within 0..GetCount() - 1.
    void RemoveAt(int index)
    {
        Q_ASSERT(index >= 0 && index < GetCount());
        if (T* target = m_entries.at(index).data())
            target->RemoveReference();
        m_entries.removeAt(index);
    }

    //! The index of the first entry whose target is `object` (by identity),
    //! or -1. Null matches nothing: a null entry has no target to compare.
    int IndexOf(const T* object) const
    {
        if (!object)
            return -1;
        for (int index = 0; index < GetCount(); ++index) {
            if (m_entries.at(index).data() == object)
                return index;
        }
        return -1;
    }

    void Clear()
    {
        for (const ZELGeoLinks::Guarded<T>& entry : std::as_const(m_entries)) {
            if (entry)
                entry->RemoveReference();
        }
        m_entries.clear();
    }

    int GetCount() const { return int(m_entries.size()); }
    //! The entry at `index`, or null when its target has gone or the index is
    //! outside the list.
    T* At(int index) const { return index >= 0 && index < GetCount() ? m_entries.at(index).data() : nullptr; }

    //! The first live entry whose label is exactly `label`; null if none.
    T* FindByLabel(const QString& label) const
    {
        for (const ZELGeoLinks::Guarded<T>& entry : m_entries) {
            if (entry && entry->GetLabel() == label)
                return entry.data();
        }
        return nullptr;
    }

    QList<T*> GetList() const
    {
        QList<T*> list;
        list.reserve(m_entries.size());
        for (const ZELGeoLinks::Guarded<T>& entry : m_entries)
            list.append(entry.data());
        return list;
    }

    void Save(ZELGeoStream& stream) const
    {
        stream << qint32(m_entries.size());
        for (const ZELGeoLinks::Guarded<T>& entry : m_entries)
            stream << ZELGeoGeometryRef(entry.data());
    }

    //! Replaces the entries with the saved ones. A count larger than the
    //! entries present stops at the end of the record. Throws
    //! ZELGeoGeometryNotFoundException when a saved reference names no object
    //! of class T.
    void Load(ZELGeoStream& stream)
    {
        Clear();
        qint32 count = 0;
        stream >> count;
        if (count > 0)
            m_entries.reserve(std::min<qint64>(count, stream.device()->bytesAvailable() / qint64(sizeof(quint64))));
        for (qint32 index = 0; index < count; ++index) {
            ZELGeoGeometryRef saved;
            stream >> saved;
            T* object = ZELGeoLinks::Resolve<T>(stream, saved);
            ZELGeoLinks::ExpectResolved(object, saved);
            Append(object);
            if (stream.atEnd())
                break;
        }
    }

private:
    QList<ZELGeoLinks::Guarded<T>> m_entries;
};

#endif // ZELKINCOUNTEDLINKLIST_P_H
