// Preloaded into a program, makes one of its calls to the system fail or wait, so that tests see what becomes
// of its files. The environment says which:
//
//     TAMO_CALLS_UNDER=/folder/     only calls on files whose paths start so are counted
//     TAMO_FAILING_CALL=fsync:2:5   the second call of fsync fails with errno 5; a negative number is a pause
//     instead,
//                                   in milliseconds, after which the call goes on
//     TAMO_CALLS_HIT=/file          is created when that call came
//     TAMO_NO_UNNAMED_FILES=1       no disk has files without a name

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

namespace {

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

struct Wish {
    std::string call;
    long turn = 0;
    long what = 0;

    static Wish read() {
        const std::string text(environment("TAMO_FAILING_CALL"));
        const auto first = text.find(':');
        const auto second = text.find(':', first + 1);
        if (first == std::string::npos || second == std::string::npos) {
            return {};
        }
        return {text.substr(0, first), std::atol(text.c_str() + first + 1),
                std::atol(text.c_str() + second + 1)};
    }
};

const Wish& wish() {
    static const Wish read = Wish::read();
    return read;
}

std::atomic<long> turns = 0;

bool isCounted(std::string_view path) {
    static const std::string under(environment("TAMO_CALLS_UNDER"));
    return !under.empty() && path.starts_with(under);
}

/// Whether the open file counts; what it is called does not matter, files without a name have a folder, too.
bool isCounted(int file) {
    char link[64];
    char path[4096];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const int error = errno;
    const ssize_t length = readlink(link, path, sizeof path);
    errno = error;
    return length > 0 && isCounted(std::string_view(path, static_cast<std::size_t>(length)));
}

/// Whether this call is the one that fails; `errno` says how. Waits where that is wanted.
template <class Where>
bool fails(const char* call, const Where& where) {
    if (wish().call != call || !isCounted(where) || ++turns != wish().turn) {
        return false;
    }
    const std::string hit(environment("TAMO_CALLS_HIT"));
    const long file = syscall(SYS_openat, AT_FDCWD, hit.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (file >= 0) {
        syscall(SYS_close, file);
    }
    if (wish().what >= 0) {
        errno = static_cast<int>(wish().what);
        return true;
    }
    constexpr long perSecond = 1000;
    constexpr long nanoseconds = 1'000'000;
    const timespec pause{.tv_sec = -wish().what / perSecond,
                         .tv_nsec = -wish().what % perSecond * nanoseconds};
    nanosleep(&pause, nullptr);
    return false;
}

bool isUnnamed(int flags) { return (flags & O_TMPFILE) == O_TMPFILE; }

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int openNext(const char* name, const char* path, int flags, mode_t mode) {
    using Open = int (*)(const char*, int, ...);
    static const bool hasNoUnnamedFiles = !environment("TAMO_NO_UNNAMED_FILES").empty();
    if (isUnnamed(flags) && hasNoUnnamedFiles) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return fails("open", std::string_view(path)) ? -1 : next<Open>(name)(path, flags, mode);
}

} // namespace

// The names and the types are the system's.
// One of the calls has the name of a type.
#pragma GCC diagnostic ignored "-Wshadow"
// NOLINTBEGIN(readability-identifier-naming, cppcoreguidelines-*)

#define MODE_OF(flags)                                                                                       \
    mode_t mode = 0;                                                                                         \
    if (((flags)&O_CREAT) != 0 || isUnnamed(flags)) {                                                        \
        va_list rest;                                                                                        \
        va_start(rest, flags);                                                                               \
        mode = va_arg(rest, mode_t);                                                                         \
        va_end(rest);                                                                                        \
    }

// Has the call `name` fail where that is wanted: result, parameters, what to count it by, arguments.
#define FAILING(result, name, parameters, where, arguments)                                                  \
    extern "C" result name parameters {                                                                      \
        using Next = result(*) parameters;                                                                   \
        static const Next real = next<Next>(#name);                                                          \
        return fails(#name, where) ? static_cast<result>(-1) : real arguments;                               \
    }
// The same call under the name that it has for large files.
#define FAILING_64(result, name, parameters, where, arguments)                                               \
    FAILING(result, name, parameters, where, arguments)                                                      \
    extern "C" result name##64 parameters { return name arguments; }

extern "C" int open(const char* path, int flags, ...) {
    MODE_OF(flags)
    return openNext("open", path, flags, mode);
}
extern "C" int open64(const char* path, int flags, ...) {
    MODE_OF(flags)
    return openNext("open64", path, flags, mode);
}

FAILING(ssize_t, read, (int file, void* room, size_t size), file, (file, room, size))
FAILING(ssize_t, write, (int file, const void* bytes, size_t size), file, (file, bytes, size))
FAILING_64(ssize_t, pread, (int file, void* room, size_t size, off_t at), file, (file, room, size, at))
FAILING_64(ssize_t, pwrite, (int file, const void* bytes, size_t size, off_t at), file,
           (file, bytes, size, at))
FAILING_64(int, ftruncate, (int file, off_t size), file, (file, size))
FAILING(int, fsync, (int file), file, (file))
FAILING(int, fdatasync, (int file), file, (file))
FAILING(int, fchmod, (int file, mode_t mode), file, (file, mode))
FAILING(int, flock, (int file, int how), file, (file, how))
FAILING(int, sync_file_range, (int file, off_t at, off_t size, unsigned flags), file, (file, at, size, flags))
FAILING(int, stat, (const char* path, struct stat* found), std::string_view(path), (path, found))
FAILING(int, lstat, (const char* path, struct stat* found), std::string_view(path), (path, found))
FAILING(int, fstat, (int file, struct stat* found), file, (file, found))
FAILING(int, rename, (const char* from, const char* to), std::string_view(to), (from, to))
FAILING(int, unlink, (const char* path), std::string_view(path), (path))
FAILING(int, mkdir, (const char* path, mode_t mode), std::string_view(path), (path, mode))
FAILING(int, linkat, (int fromFolder, const char* from, int toFolder, const char* to, int flags),
        std::string_view(to), (fromFolder, from, toFolder, to, flags))

// NOLINTEND(readability-identifier-naming, cppcoreguidelines-*)
