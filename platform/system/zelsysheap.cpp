#include "zelsysheap.h"

// Any C library header defines __GLIBC__ on glibc; malloc.h is where
// malloc_trim is declared.
#if __has_include(<malloc.h>)
#include <malloc.h>
#endif

bool ZELSysHeap::ReturnFreePages()
{
#if defined(__GLIBC__)
    return malloc_trim(0) == 1;
#else
    return false;
#endif
}
