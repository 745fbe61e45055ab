// Counts the bytes the process holds on the heap, by replacing malloc and friends with thin
// wrappers over glibc's own (glibc supports replacing them). Every allocation of the program,
// operator new and the core's handle memory included, goes through them.
#pragma once

#include <cstddef>

// Bytes in use now (usable sizes, so allocator rounding is counted).
size_t HeapInUse();
// The highest HeapInUse() since the last ResetHeapPeak().
size_t HeapPeak();
void ResetHeapPeak();
