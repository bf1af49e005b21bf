#ifndef ZELTPINDEX_P_H
#define ZELTPINDEX_P_H

#include <zelsysoutofboundsexception.h>

#include <QtGlobal>

namespace ZELTPIndex {

//! Throws ZELSysOutOfBoundsException(index, 0, count - 1, true, true) when
//! `index` is outside a list of `count` entries.
inline void Check(int index, qsizetype count)
{
    if (index < 0 || index >= count)
        throw ZELSysOutOfBoundsException(index, 0, int(count) - 1, true, true);
}

} // namespace ZELTPIndex

#endif // ZELTPINDEX_P_H
