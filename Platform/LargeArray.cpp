#include "LargeArray.h"

#include <cstdint>
#include <new>

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/// Gives advice on the pages that lie inside the memory as a whole.
void advisePages(const void* begin, std::size_t size, int advice) {
    static const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    const std::uintptr_t first = (address + pageSize - 1) / pageSize * pageSize;
    const std::uintptr_t end = (address + size) / pageSize * pageSize;
    if (first < end) {
        madvise(reinterpret_cast<void*>(first), end - first, advice);
    }
}

} // namespace

void* mapLargeMemory(std::size_t size) {
    constexpr int anonymous = -1;
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, anonymous, 0);
    if (memory == MAP_FAILED) {
        throw std::bad_alloc();
    }
    adviseHugePages(memory, size);
    return memory;
}

void adviseHugePages(const void* begin, std::size_t size) {
    // Only advice: without huge pages everything works, more slowly.
    advisePages(begin, size, MADV_HUGEPAGE);
}

void touchMemory(const void* begin, std::size_t size) {
#if defined(MADV_POPULATE_WRITE)
    advisePages(begin, size, MADV_POPULATE_WRITE);
#else
    static_cast<void>(begin);
    static_cast<void>(size);
#endif
}

void giveMemoryBack() {
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

void unmapLargeMemory(void* memory, std::size_t size) { munmap(memory, size); }
