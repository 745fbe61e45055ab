#include "HeapCounter.h"

#include <malloc.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* ptr, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* ptr);
}

namespace {

std::atomic<size_t> gInUse{0};
std::atomic<size_t> gPeak{0};

void* Counted(void* ptr) {
    if (ptr) {
        const size_t size = malloc_usable_size(ptr);
        const size_t now = gInUse.fetch_add(size, std::memory_order_relaxed) + size;
        size_t peak = gPeak.load(std::memory_order_relaxed);
        while (now > peak && !gPeak.compare_exchange_weak(peak, now, std::memory_order_relaxed)) {
        }
    }
    return ptr;
}

void Uncount(void* ptr) {
    if (ptr) gInUse.fetch_sub(malloc_usable_size(ptr), std::memory_order_relaxed);
}

}  // namespace

size_t HeapInUse() {
    return gInUse.load(std::memory_order_relaxed);
}
size_t HeapPeak() {
    return gPeak.load(std::memory_order_relaxed);
}
void ResetHeapPeak() {
    gPeak.store(gInUse.load(std::memory_order_relaxed), std::memory_order_relaxed);
}

extern "C" {

void* malloc(size_t size) {
    return Counted(__libc_malloc(size));
}
void* calloc(size_t count, size_t size) {
    return Counted(__libc_calloc(count, size));
}
void free(void* ptr) {
    Uncount(ptr);
    __libc_free(ptr);
}
void* realloc(void* ptr, size_t size) {
    const size_t before = ptr ? malloc_usable_size(ptr) : 0;
    void* moved = __libc_realloc(ptr, size);
    if (moved || size == 0) gInUse.fetch_sub(before, std::memory_order_relaxed);
    return Counted(moved);
}
void* memalign(size_t alignment, size_t size) {
    return Counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(size_t alignment, size_t size) {
    return memalign(alignment, size);
}
int posix_memalign(void** out, size_t alignment, size_t size) {
    if (alignment % sizeof(void*) != 0 || (alignment & (alignment - 1)) != 0) return EINVAL;
    void* ptr = memalign(alignment, size);
    if (!ptr) return ENOMEM;
    *out = ptr;
    return 0;
}
void* valloc(size_t size) {
    return memalign(static_cast<size_t>(sysconf(_SC_PAGESIZE)), size);
}
void* pvalloc(size_t size) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return memalign(page, (size + page - 1) / page * page);
}

}  // extern "C"
