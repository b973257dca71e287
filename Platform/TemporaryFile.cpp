#include "TemporaryFile.h"

#include "Checksum.h"
#include "OpenFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <random>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr mode_t asUserWants = 0666;

/// How many names are looked at for files that were left over. One is as good as always enough.
constexpr int knownNames = 4;

/// The names for `target` that are tried in turn: first a few that are always the same, so that files that
/// were left over are found without a look through the folder, then random ones.
fs::path candidate(const fs::path& target, int turn) {
    static thread_local std::mt19937_64 random{std::random_device()()};
    const std::string name = target.filename().string();
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), ".tamo-%016llx-%llx",
                  static_cast<unsigned long long>(checksum(bytesOf(name), 0)),
                  static_cast<unsigned long long>(turn < knownNames ? turn : random()));
    return target.parent_path() / text.data();
}

/// How an open file is called while it has no name.
std::string descriptorPath(int number) { return "/proc/self/fd/" + std::to_string(number); }

bool canNameLate() {
    static const bool can = access("/proc/self/fd", X_OK) == 0;
    return can;
}

/// Whether `path` still leads to the open file: another process may have found it unlocked, and removed it.
bool isStillThere(int number, const fs::path& path) {
    struct stat open {};
    struct stat there {};
    return fstat(number, &open) == 0 && lstat(path.c_str(), &there) == 0 && open.st_ino == there.st_ino &&
           open.st_dev == there.st_dev;
}

/// Opens a new file at `path` and locks it; -1 with `errno` where that cannot be.
int openNamed(const fs::path& path) {
    const int number = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, asUserWants);
    if (number >= 0 && flock(number, LOCK_EX | LOCK_NB) == 0 && !isStillThere(number, path)) {
        close(number);
        errno = EEXIST;
        return -1;
    }
    return number;
}

/// Removes the file at `path` if the process that wrote it is gone. Only the user's own files are touched.
void removeIfLeftOver(const fs::path& path) {
    const int number = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (number < 0) {
        return;
    }
    struct stat status {};
    const bool isOurs = fstat(number, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
    if (isOurs && flock(number, LOCK_EX | LOCK_NB) == 0 && isStillThere(number, path)) {
        unlink(path.c_str());
    }
    close(number);
}

/// Calls `make` with one name after the other until one is free; returns that, or why there is none.
template <class Make>
std::expected<fs::path, FileFailure> makeNamed(const fs::path& target, Make make) {
    constexpr int tries = 100;
    for (int turn = 0; turn < tries; ++turn) {
        fs::path path = candidate(target, turn);
        errno = 0;
        if (make(path)) {
            return path;
        }
        if (errno != EEXIST) {
            return std::unexpected(fileFailure(errno));
        }
    }
    return std::unexpected(FileFailure::other);
}

} // namespace

std::expected<TemporaryFile, FileFailure> TemporaryFile::create(const fs::path& target, Naming naming) {
    removeLeftOver(target);
    if (naming == Naming::late && canNameLate()) {
        const int number = open(folderOf(target).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, asUserWants);
        if (number >= 0) {
            flock(number, LOCK_EX | LOCK_NB);
            return TemporaryFile(number, target);
        }
        // Some disks cannot, each with another error. What else is wrong shows again below.
    }
    int number = -1;
    auto name = makeNamed(target, [&number](const fs::path& path) {
        number = openNamed(path);
        return number >= 0;
    });
    if (!name) {
        return std::unexpected(name.error());
    }
    TemporaryFile file(number, target);
    file.m_name = std::move(*name);
    return file;
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : m_number(std::exchange(other.m_number, -1)), m_target(std::move(other.m_target)),
      m_name(std::exchange(other.m_name, std::nullopt)) {}

TemporaryFile::~TemporaryFile() {
    // While it is locked, so that no other process takes the name meanwhile.
    if (m_name) {
        unlink(m_name->c_str());
    }
    if (m_number >= 0) {
        close(m_number);
    }
}

std::expected<void, FileFailure> TemporaryFile::giveName() {
    if (m_name) {
        return {};
    }
    auto name = makeNamed(m_target, [this](const fs::path& path) {
        return linkat(AT_FDCWD, descriptorPath(m_number).c_str(), AT_FDCWD, path.c_str(),
                      AT_SYMLINK_FOLLOW) == 0;
    });
    if (!name) {
        return std::unexpected(name.error());
    }
    m_name = std::move(*name);
    return {};
}

std::expected<void, FileFailure> TemporaryFile::takePlace() {
    if (rename(m_name->c_str(), m_target.c_str()) != 0) {
        return std::unexpected(fileFailure(errno));
    }
    m_name.reset();
    return {};
}

void TemporaryFile::removeLeftOver(const fs::path& target) {
    for (int turn = 0; turn < knownNames; ++turn) {
        removeIfLeftOver(candidate(target, turn));
    }
}
