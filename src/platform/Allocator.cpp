#include "platform/Allocator.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace platform {

void keepLargeBuffersInHeap() {
#if defined(__GLIBC__)
    mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);
    mallopt(M_TRIM_THRESHOLD, 256 * 1024 * 1024);
#endif
}

} // namespace platform
