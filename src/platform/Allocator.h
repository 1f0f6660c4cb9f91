#pragma once
// The heap's process-wide settings, made once at program start-up.

namespace platform {

// Printing to PDF takes a large buffer for every page it compresses and gives it back at once.
// With glibc's defaults such a buffer is mapped fresh from the kernel and returned each time, a
// millisecond a page; raising the thresholds keeps it in the heap and long runs quick. Affects
// the whole process: call at start-up, before any thread is made. Nothing on other C libraries.
void keepLargeBuffersInHeap();

} // namespace platform
