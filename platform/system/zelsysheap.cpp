#include "zelsysheap.h"

// Any C library header defines __GLIBC__ on glibc; malloc.h is where
// malloc_trim is declared.
#if __has_include(<malloc.h>)
#include <malloc.h>
#endif

bool ZELSysHeap::ReturnFreePages()
{
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
    return malloc_trim(0) == 1;
#else
    // The address sanitizer's allocator replaces malloc and leaves glibc's
    // heap unused. Trimming it anyway would set glibc's allocator up on
    // first use, and on a thread other than the main one that leaves the
    // arena's count of threads one short: glibc then aborts as such a
    // thread exits.
    return false;
#endif
}
