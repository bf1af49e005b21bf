#ifndef ZELKINSOLUTIONSERIES_H
#define ZELKINSOLUTIONSERIES_H

#include "zelkinematics_export.h"
#include "zelkinsolution.h"

#include <QExplicitlySharedDataPointer>
#include <QList>

#include <functional>

class ZELKinCommand;
class ZELKinSolutionSeriesPrivate;

/*!
    The solutions chosen along one procedure: a sequence of entries, each a
    command (a position of the procedure, in path order, not owned) with the
    solution chosen for it, together with the accumulated cost of the moves
    between them and a random 32-bit id that names the series in diagnostics.

    A series is a value type with copy-on-write sharing: copies share one
    body through an atomic reference count, and every modifying call first
    gives the series a body of its own. A copy keeps the id and the cost;
    a new series (empty, or with one entry) draws a new id from the
    process-wide 64-bit random generator. Copies may be read from several
    threads, and different copies may be extended from different threads;
    one instance must not be modified from two threads at once.

    Storage. Path solving keeps many live series that share their history:
    each step copies a series and appends one entry to the copy. So that
    this costs O(1) and not a copy of the history, the body only holds the
    series' length, cost and id, and the entries live in a store that the
    copies share:

    - The store is append-only and chunked: entries sit in chunks of 64,
      chunks in pages of 64 (4096 entries), pages in a table whose size is
      fixed when the store is made. Entry i is found with three array
      lookups, and no table ever moves, so readers of one part of a store
      are safe while another part is written. Chunks, pages and stores are
      counted; freeing one frees at most a fixed depth of parts below it,
      never a chain.
    - A series appends in place when its length equals the store's length:
      it claims that slot with an atomic compare-and-swap on the store's
      length, so of two copies that extend the same store (on one thread or
      on several), exactly one writes the slot.
    - Any other append forks: a new store that shares every page and chunk
      lying wholly within the series' length, and copies only the partly
      used page (at most 63 chunk pointers) and chunk (at most 63 entries),
      plus the page table (one pointer per 4096 entries). When the page
      table is full, the fork doubles it, so its cost is amortised.
    - InsertBeside rebuilds the store from the insertion point on; the
      entries before it stay shared.

    Entries a dropped copy appended stay in the store until the last series
    that uses the store goes.
*/
class ZELKINEMATICS_EXPORT ZELKinSolutionSeries
{
public:
    //! No entries, cost 0.0, a new id.
    ZELKinSolutionSeries();
    //! As the empty series, then Append(command, solution).
    ZELKinSolutionSeries(ZELKinCommand* command, const ZELKinSolution& solution);
    //! Shares the entries; keeps the id and the cost.
    ZELKinSolutionSeries(const ZELKinSolutionSeries& other);
    ZELKinSolutionSeries& operator=(const ZELKinSolutionSeries& other);
    ~ZELKinSolutionSeries();

    //! Adds the entry at the end.
    void Append(ZELKinCommand* command, const ZELKinSolution& solution);
    /*!
        Inserts `command` with a copy of the solution of `existing` (its
        first entry), right before `existing`, or right after it when
        `after` is true. Throws ZELSysOutOfBoundsException(-1, 0,
        count - 1, true, true) when `existing` is not in the series, which
        is then left as it was.
    */
    void InsertBeside(ZELKinCommand* existing, ZELKinCommand* command, bool after);

    //! The solution of the last entry; an empty solution when there is none.
    ZELKinSolution GetLastSolution() const;
    //! The solution of entry `index`. Throws ZELSysOutOfBoundsException(index,
    //! 0, count - 1, true, true) when the index is outside the series.
    ZELKinSolution GetSolution(int index) const;
    //! The command of entry `index`. Throws as GetSolution.
    ZELKinCommand* GetCommand(int index) const;
    //! The commands and the solutions of all entries, in order.
    QList<ZELKinCommand*> GetCommands() const;
    QList<ZELKinSolution> GetSolutions() const;
    int GetCount() const;
    bool IsEmpty() const;

    //! Hands each entry to `use`, in order, and leaves the series empty; its
    //! id and cost stay. Each run of 4 096 entries that no other series
    //! shares is released once it has been handed on, so that a
    //! procedure's solutions and what they are turned into need not all
    //! be held at once. What `use` throws leaves the series empty.
    using EntryUse = std::function<void(ZELKinCommand* command, const ZELKinSolution& solution)>;
    void TakeEntries(const EntryUse& use);

    //! Accumulated cost of the moves along the series; 0.0 for a new series.
    double GetCost() const;
    void SetCost(double cost);

    quint32 GetId() const;
    //! Draws a new id, to tell apart copies of one series.
    void RenewId();

private:
    QExplicitlySharedDataPointer<ZELKinSolutionSeriesPrivate> d_ptr;
    Q_DECLARE_PRIVATE(ZELKinSolutionSeries)
};

Q_DECLARE_TYPEINFO(ZELKinSolutionSeries, Q_RELOCATABLE_TYPE);

#endif // ZELKINSOLUTIONSERIES_H
