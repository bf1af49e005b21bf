#ifndef ZELKINSOLUTIONSERIES_P_H
#define ZELKINSOLUTIONSERIES_P_H

#include "zelkinsolutionseries.h"

#include "zelkinsolution.h"

#include <QSharedData>

#include <array>
#include <algorithm>
#include <atomic>
#include <type_traits>
#include <vector>

//! A command of a series with the solution chosen for it.
struct ZELKinSolutionSeriesEntry
{
    ZELKinCommand* command = nullptr;
    ZELKinSolution solution;
};

/*!
    A run of consecutive entries. A chunk that lies wholly within a series'
    length is never written again and may be shared by many stores; the
    chunk a store is filling belongs to that store alone.
*/
class ZELKinSolutionSeriesChunk : public QSharedData
{
public:
    static constexpr int kSize = 64;
    static constexpr int kEntries = kSize;

    //! A new chunk holding copies of the first `length` entries.
    QExplicitlySharedDataPointer<ZELKinSolutionSeriesChunk> Head(int length) const;

    const ZELKinSolutionSeriesEntry& At(int index) const { return entries[std::size_t(index)]; }
    ZELKinSolutionSeriesEntry& At(int index) { return entries[std::size_t(index)]; }

    std::array<ZELKinSolutionSeriesEntry, kSize> entries;
};

/*!
    A run of consecutive parts (chunks, or nodes of chunks), shared on the
    same terms as a chunk. Nodes stack into a tree of fixed fan-out, so
    that forking a series copies a few pointers a level, however long the
    series.
*/
template <typename Part>
class ZELKinSolutionSeriesNode : public QSharedData
{
public:
    static constexpr int kSize = 64;
    static constexpr int kEntries = kSize * Part::kEntries;

    //! A new node holding the first `length` entries: it shares the parts
    //! that lie wholly within them and copies the one that is partly used.
    QExplicitlySharedDataPointer<ZELKinSolutionSeriesNode> Head(int length) const
    {
        QExplicitlySharedDataPointer<ZELKinSolutionSeriesNode> head(new ZELKinSolutionSeriesNode);
        const int fullParts = length / Part::kEntries;
        std::copy_n(parts.cbegin(), fullParts, head->parts.begin());
        if (const int rest = length % Part::kEntries)
            head->parts[std::size_t(fullParts)] = parts[std::size_t(fullParts)]->Head(rest);
        return head;
    }

    const ZELKinSolutionSeriesEntry& At(int index) const
    {
        return parts[std::size_t(index / Part::kEntries)]->At(index % Part::kEntries);
    }

    //! The entry, making the parts on the way to it that do not exist yet.
    ZELKinSolutionSeriesEntry& Make(int index)
    {
        QExplicitlySharedDataPointer<Part>& part = parts[std::size_t(index / Part::kEntries)];
        if (!part)
            part.reset(new Part);
        if constexpr (std::is_same_v<Part, ZELKinSolutionSeriesChunk>)
            return part->At(index % Part::kEntries);
        else
            return part->Make(index % Part::kEntries);
    }

    std::array<QExplicitlySharedDataPointer<Part>, kSize> parts;
};

//! 4 096 entries.
using ZELKinSolutionSeriesPage = ZELKinSolutionSeriesNode<ZELKinSolutionSeriesChunk>;
//! 262 144 entries.
using ZELKinSolutionSeriesBook = ZELKinSolutionSeriesNode<ZELKinSolutionSeriesPage>;

/*!
    The append-only entries that copies of one series share. Its length is
    the number of slots claimed so far; a series whose own length equals it
    may claim the next slot and write it. The table of books keeps its size
    for the life of the store, so that one thread may write a slot while
    others read the slots before it.
*/
class ZELKinSolutionSeriesStore : public QSharedData
{
public:
    explicit ZELKinSolutionSeriesStore(int bookCapacity);

    const ZELKinSolutionSeriesEntry& At(int index) const;
    //! Claims slot `index` for the caller when it is the next free slot and
    //! the page table has room for it; false otherwise.
    bool Claim(int index);
    //! Fills slot `index`, which the caller has claimed.
    void Write(int index, ZELKinCommand* command, const ZELKinSolution& solution);
    //! Hands the first `count` entries to `use` in order, and lets go of
    //! each page once it is used whenever this store and the page's book
    //! are held nowhere else. The store is of no use afterwards.
    void Drain(int count, const ZELKinSolutionSeries::EntryUse& use);
    //! A new store of length `length` holding the first `length` entries of
    //! this one, with room for at least `room` entries.
    QExplicitlySharedDataPointer<ZELKinSolutionSeriesStore> Fork(int length, int room) const;

private:
    int GetCapacity() const;

    //! The store's length: slots below it are taken.
    std::atomic<int> claimed{0};
    std::vector<QExplicitlySharedDataPointer<ZELKinSolutionSeriesBook>> books;
};

class ZELKinSolutionSeriesPrivate : public QSharedData
{
public:
    //! An empty series with a new id.
    ZELKinSolutionSeriesPrivate();

    static quint32 NewId();

    const ZELKinSolutionSeriesEntry& At(int index) const;
    //! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true)
    //! when the index is outside the series.
    void CheckIndex(int index) const;
    //! The index of the first entry of `command`, or -1.
    int IndexOf(const ZELKinCommand* command) const;
    void Append(ZELKinCommand* command, const ZELKinSolution& solution);
    void Insert(int index, ZELKinCommand* command, const ZELKinSolution& solution);

    //! Null while the series has never had an entry.
    QExplicitlySharedDataPointer<ZELKinSolutionSeriesStore> store;
    //! The series' entries are the first `count` entries of the store.
    int count = 0;
    double cost = 0.0;
    quint32 id;
};

#endif // ZELKINSOLUTIONSERIES_P_H
