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
    // heap unused, so nothing else sets glibc's allocator up. Two first
    // calls at once, from threads other than the main one, each set it up
    // and took its main arena without counting it: glibc then aborted as
    // the second of those threads ended.
    return false;
#endif
}
