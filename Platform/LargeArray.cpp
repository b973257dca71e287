#include "LargeArray.h"

#include <new>

#include <sys/mman.h>

void* mapLargeMemory(std::size_t size) {
    constexpr int anonymous = -1;
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, anonymous, 0);
    if (memory == MAP_FAILED) {
        throw std::bad_alloc();
    }
    // Only advice: without huge pages everything works, more slowly.
    madvise(memory, size, MADV_HUGEPAGE);
    return memory;
}

void unmapLargeMemory(void* memory, std::size_t size) { munmap(memory, size); }
