#ifndef ZELSYSHEAP_H
#define ZELSYSHEAP_H

#include "zelsystem_export.h"

/*!
    The process's heap as the operating system sees it.

    A large model is made of millions of small blocks. Once it is freed,
    the C library keeps the pages they stood on for the blocks allocated
    next, and blocks of other sizes (the next procedure's, or the NC lines
    checked against it) rarely fit the holes: without handing the pages
    back, every model and check a process has held leaves resident memory
    behind it. Nothing here throws.
*/
namespace ZELSysHeap {

//! Hands the whole pages that no block uses back to the operating system,
//! in every allocation arena of glibc's malloc. Returns whether there were
//! any; false on any other C library, and under the address sanitizer,
//! whose allocator replaces malloc and keeps its own pages: there it does
//! nothing. Safe to call from any thread.
ZELSYSTEM_EXPORT bool ReturnFreePages();

} // namespace ZELSysHeap

#endif // ZELSYSHEAP_H
