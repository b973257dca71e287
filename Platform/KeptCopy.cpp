#include "KeptCopy.h"

#include "OpenFile.h"

#include <cerrno>
#include <climits>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// The name of the copy that has this `number`, cut between two characters where it would be too long.
std::string copyName(std::string name, int number) {
    const std::string counter = number == 0 ? std::string() : std::string("-").append(std::to_string(number));
    const std::string end = counter + KeptCopy::suffix;
    if (name.size() + end.size() > NAME_MAX) {
        std::size_t length = NAME_MAX - end.size();
        while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) {
            --length;
        }
        name.resize(length);
    }
    return name + end;
}

} // namespace

std::expected<KeptCopy, FileFailure> KeptCopy::of(const fs::path& path, int contents) {
    constexpr int tries = 1000;
    constexpr mode_t userOnly = 0600;
    for (int number = 0; number < tries; ++number) {
        const fs::path name = path.parent_path() / copyName(path.filename().string(), number);
        const OpenFile copy(name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, userOnly);
        if (!copy && errno == EEXIST) {
            continue;
        }
        if (!copy) {
            return std::unexpected(fileFailure(errno));
        }
        const OpenFile folder(folderOf(path), O_RDONLY | O_DIRECTORY);
        if (!copyContents(contents, copy.number()) || (folder && !syncFile(folder.number()))) {
            const FileFailure failure = fileFailure(errno);
            unlink(name.c_str());
            return std::unexpected(failure);
        }
        return KeptCopy(name);
    }
    return std::unexpected(FileFailure::other);
}

void KeptCopy::remove() const { unlink(m_path.c_str()); }

bool KeptCopy::putBack(int into) const {
    const OpenFile copy(m_path, O_RDONLY);
    return copy && copyContents(copy.number(), into);
}
