#include "zelkinpostmemory.h"

#include <zelsysexception.h>

#include <unistd.h>

#include <algorithm>

qint64 ZELKinPostMemory::GetPhysicalMemory()
{
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? qint64(pages) * qint64(pageSize) : 0;
}

QString ZELKinPostMemory::InGiB(qint64 bytes)
{
    return QString::number(double(bytes) / double(qint64(1) << 30), 'f', 1);
}

int ZELKinPostMemory::ChooseProceduresInFlight(const ToolpathSizes& sizes, qint64 availableMemory, int cores)
{
    const int most = std::max(1, cores);
    if (sizes.largest < 0 || availableMemory <= 0)
        return most;
    const qint64 need = sizes.largestBytes * PerToolpathByte;
    if (need > availableMemory)
        throw ZELSysException(
            QStringLiteral("%1: its largest procedure, $.program.procedures[%2], %3 GiB of the file's %4 GiB, "
                           "needs about %5 GiB of memory to post, more than this machine's %6 GiB")
                .arg(sizes.name)
                .arg(sizes.largest)
                .arg(InGiB(sizes.largestBytes), InGiB(sizes.fileBytes), InGiB(need), InGiB(availableMemory)));
    return int(std::clamp<qint64>(availableMemory / std::max<qint64>(need, 1), 1, most));
}
