#include "zelkinsolutionseries.h"
#include "zelkinsolutionseries_p.h"

#include <zelsysoutofboundsexception.h>

#include <QRandomGenerator64>

#include <algorithm>
#include <utility>

namespace {

using Chunk = ZELKinSolutionSeriesChunk;
using Book = ZELKinSolutionSeriesBook;
using Store = ZELKinSolutionSeriesStore;

// Books needed for `entries` entries.
int BooksFor(int entries)
{
    return (entries + Book::kEntries - 1) / Book::kEntries;
}

} // namespace

QExplicitlySharedDataPointer<Chunk> Chunk::Head(int length) const
{
    QExplicitlySharedDataPointer<Chunk> head(new Chunk);
    std::copy_n(entries.cbegin(), length, head->entries.begin());
    return head;
}

Store::ZELKinSolutionSeriesStore(int bookCapacity)
    : books(std::size_t(bookCapacity))
{
}

int Store::GetCapacity() const
{
    return int(books.size()) * Book::kEntries;
}

const ZELKinSolutionSeriesEntry& Store::At(int index) const
{
    return books[std::size_t(index / Book::kEntries)]->At(index % Book::kEntries);
}

bool Store::Claim(int index)
{
    if (index >= GetCapacity())
        return false;
    int expected = index;
    return claimed.compare_exchange_strong(expected, index + 1, std::memory_order_acq_rel);
}

void Store::Write(int index, ZELKinCommand* command, const ZELKinSolution& solution)
{
    // Only the claimant of a book's, page's or chunk's first slot creates
    // it; the claimants of the later slots come after it.
    QExplicitlySharedDataPointer<Book>& book = books[std::size_t(index / Book::kEntries)];
    if (!book)
        book.reset(new Book);
    ZELKinSolutionSeriesEntry& entry = book->Make(index % Book::kEntries);
    entry.command = command;
    entry.solution = solution;
}

void Store::Drain(int count, const ZELKinSolutionSeries::EntryUse& use)
{
    using Page = ZELKinSolutionSeriesPage;
    for (int index = 0; index < count; ++index) {
        const ZELKinSolutionSeriesEntry& entry = At(index);
        use(entry.command, entry.solution);
        const bool pageUsed = (index + 1) % Page::kEntries == 0 || index + 1 == count;
        if (!pageUsed || ref.loadRelaxed() != 1)
            continue;
        // Another series may share the page itself, not the book that this
        // store alone holds: dropping the book's hold on it is safe.
        QExplicitlySharedDataPointer<Book>& book = books[std::size_t(index / Book::kEntries)];
        if (book->ref.loadRelaxed() == 1)
            book->parts[std::size_t(index % Book::kEntries / Page::kEntries)].reset();
    }
}

QExplicitlySharedDataPointer<Store> Store::Fork(int length, int room) const
{
    // Doubling the table of books when it has to grow keeps its copying
    // amortised over the appends that filled it.
    const int capacity = int(books.size());
    const int needed = BooksFor(room);
    QExplicitlySharedDataPointer<Store> fork(new Store(needed <= capacity ? capacity : std::max(2 * capacity, needed)));
    const int fullBooks = length / Book::kEntries;
    std::copy_n(books.cbegin(), fullBooks, fork->books.begin());
    if (const int rest = length % Book::kEntries)
        fork->books[std::size_t(fullBooks)] = books[std::size_t(fullBooks)]->Head(rest);
    fork->claimed.store(length, std::memory_order_relaxed);
    return fork;
}

ZELKinSolutionSeriesPrivate::ZELKinSolutionSeriesPrivate()
    : id(NewId())
{
}

quint32 ZELKinSolutionSeriesPrivate::NewId()
{
    return quint32(QRandomGenerator64::global()->generate());
}

const ZELKinSolutionSeriesEntry& ZELKinSolutionSeriesPrivate::At(int index) const
{
    return store->At(index);
}

void ZELKinSolutionSeriesPrivate::CheckIndex(int index) const
{
    if (index < 0 || index >= count)
        throw ZELSysOutOfBoundsException(index, 0, count - 1, true, true);
}

int ZELKinSolutionSeriesPrivate::IndexOf(const ZELKinCommand* command) const
{
    for (int index = 0; index < count; ++index) {
        if (At(index).command == command)
            return index;
    }
    return -1;
}

void ZELKinSolutionSeriesPrivate::Append(ZELKinCommand* command, const ZELKinSolution& solution)
{
    if (!store || !store->Claim(count)) {
        store = store ? store->Fork(count, count + 1) : QExplicitlySharedDataPointer<Store>(new Store(1));
        // The new store is this series' alone, so its next slot is free.
        store->Claim(count);
    }
    store->Write(count, command, solution);
    ++count;
}

void ZELKinSolutionSeriesPrivate::Insert(int index, ZELKinCommand* command, const ZELKinSolution& solution)
{
    const QExplicitlySharedDataPointer<Store> old = store;
    const int oldCount = count;
    store = old->Fork(index, oldCount + 1);
    count = index;
    Append(command, solution);
    for (int i = index; i < oldCount; ++i) {
        const ZELKinSolutionSeriesEntry& entry = old->At(i);
        Append(entry.command, entry.solution);
    }
}

ZELKinSolutionSeries::ZELKinSolutionSeries()
    : d_ptr(new ZELKinSolutionSeriesPrivate)
{
}

ZELKinSolutionSeries::ZELKinSolutionSeries(ZELKinCommand* command, const ZELKinSolution& solution)
    : ZELKinSolutionSeries()
{
    Append(command, solution);
}

ZELKinSolutionSeries::ZELKinSolutionSeries(const ZELKinSolutionSeries& other) = default;

ZELKinSolutionSeries& ZELKinSolutionSeries::operator=(const ZELKinSolutionSeries& other) = default;

ZELKinSolutionSeries::~ZELKinSolutionSeries() = default;

void ZELKinSolutionSeries::Append(ZELKinCommand* command, const ZELKinSolution& solution)
{
    d_ptr.detach();
    Q_D(ZELKinSolutionSeries);
    d->Append(command, solution);
}

void ZELKinSolutionSeries::InsertBeside(ZELKinCommand* existing, ZELKinCommand* command, bool after)
{
    const int index = d_func()->IndexOf(existing);
    const ZELKinSolution solution = GetSolution(index);
    d_ptr.detach();
    Q_D(ZELKinSolutionSeries);
    d->Insert(after ? index + 1 : index, command, solution);
}

void ZELKinSolutionSeries::TakeEntries(const EntryUse& use)
{
    d_ptr.detach();
    Q_D(ZELKinSolutionSeries);
    QExplicitlySharedDataPointer<Store> store;
    store.swap(d->store);
    const int count = std::exchange(d->count, 0);
    if (store)
        store->Drain(count, use);
}

ZELKinSolution ZELKinSolutionSeries::GetLastSolution() const
{
    Q_D(const ZELKinSolutionSeries);
    return d->count > 0 ? d->At(d->count - 1).solution : ZELKinSolution();
}

ZELKinSolution ZELKinSolutionSeries::GetSolution(int index) const
{
    Q_D(const ZELKinSolutionSeries);
    d->CheckIndex(index);
    return d->At(index).solution;
}

ZELKinCommand* ZELKinSolutionSeries::GetCommand(int index) const
{
    Q_D(const ZELKinSolutionSeries);
    d->CheckIndex(index);
    return d->At(index).command;
}

QList<ZELKinCommand*> ZELKinSolutionSeries::GetCommands() const
{
    Q_D(const ZELKinSolutionSeries);
    QList<ZELKinCommand*> commands;
    commands.reserve(d->count);
    for (int index = 0; index < d->count; ++index)
        commands.append(d->At(index).command);
    return commands;
}

QList<ZELKinSolution> ZELKinSolutionSeries::GetSolutions() const
{
    Q_D(const ZELKinSolutionSeries);
    QList<ZELKinSolution> solutions;
    solutions.reserve(d->count);
    for (int index = 0; index < d->count; ++index)
        solutions.append(d->At(index).solution);
    return solutions;
}

int ZELKinSolutionSeries::GetCount() const
{
    Q_D(const ZELKinSolutionSeries);
    return d->count;
}

bool ZELKinSolutionSeries::IsEmpty() const
{
    Q_D(const ZELKinSolutionSeries);
    return d->count == 0;
}

double ZELKinSolutionSeries::GetCost() const
{
    Q_D(const ZELKinSolutionSeries);
    return d->cost;
}

void ZELKinSolutionSeries::SetCost(double cost)
{
    d_ptr.detach();
    Q_D(ZELKinSolutionSeries);
    d->cost = cost;
}

quint32 ZELKinSolutionSeries::GetId() const
{
    Q_D(const ZELKinSolutionSeries);
    return d->id;
}

void ZELKinSolutionSeries::RenewId()
{
    d_ptr.detach();
    Q_D(ZELKinSolutionSeries);
    d->id = ZELKinSolutionSeriesPrivate::NewId();
}
