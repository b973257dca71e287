#pragma once

#include "Precondition.h"

#include <cstddef>
#include <fstream>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

/// As long as this lives, the program gets no more memory than it has and `room` bytes.
class MemoryLimit {
public:
    explicit MemoryLimit(std::size_t room) {
        getrlimit(RLIMIT_AS, &m_before);
        malloc_trim(0);
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        precondition(pages != 0, "the system tells how much memory the program has");
        rlimit limit = m_before;
        limit.rlim_cur = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + room;
        setrlimit(RLIMIT_AS, &limit);
    }
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;
    ~MemoryLimit() { setrlimit(RLIMIT_AS, &m_before); }

private:
    rlimit m_before{};
};
