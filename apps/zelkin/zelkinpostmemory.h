#ifndef ZELKINPOSTMEMORY_H
#define ZELKINPOSTMEMORY_H

#include <QString>
#include <QtGlobal>

/*!
    What a post holds in memory, and how much it may hold. A post takes
    about PerToolpathByte bytes at its peak for each byte of toolpath text
    it holds at once (docs/performance.md): the toolpath model, the solved
    program and the axis values. A post that reads the toolpath whole holds
    all of it; one that reads it one procedure at a time holds a few
    procedures.
*/
namespace ZELKinPostMemory {

constexpr qint64 PerToolpathByte = 8;

//! The machine's physical memory in bytes; 0 when it cannot be told.
qint64 GetPhysicalMemory();
//! Bytes in GiB with one decimal, as the memory messages give them.
QString InGiB(qint64 bytes);

//! The toolpath's sizes that bound a post's memory.
struct ToolpathSizes
{
    //! How messages name the file.
    QString name;
    qint64 fileBytes = 0;
    //! The index of its largest procedure (-1 without any) and its bytes.
    int largest = -1;
    qint64 largestBytes = 0;
};

//! How many procedures a post may hold at once: `cores`, or as many of the
//! largest as fit `availableMemory` (bytes; 0 when it cannot be told),
//! whichever is fewer, and at least one. Throws ZELSysException "<name>:
//! its largest procedure, $.program.procedures[<i>], <n> GiB of the file's
//! <m> GiB, needs about <k> GiB of memory to post, more than this
//! machine's <t> GiB" when not even one fits.
int ChooseProceduresInFlight(const ToolpathSizes& sizes, qint64 availableMemory, int cores);

} // namespace ZELKinPostMemory

#endif // ZELKINPOSTMEMORY_H
