#pragma once

#include <cstdint>

/// Why a file cannot be read or written.
enum class FileFailure : std::uint8_t {
    missing,      ///< The file to read, or the folder to write to, does not exist.
    folder,       ///< It is a folder.
    notRegular,   ///< It is a device, a pipe or a socket.
    noPermission, ///< The user may not, or nobody may.
    noSpace,      ///< The disk, or the user's share of it, is full.
    tooLarge,     ///< The file does not fit the disk, or is larger than files may be.
    noMemory,     ///< The file does not fit the memory that is left.
    stopped,      ///< It was asked to stop, and did.
    halfWritten,  ///< Writing into the file failed, as did putting back what it had: a copy beside it has
                  ///< that.
    other,        ///< The disk failed, the connection was lost, links lead in a circle, ...
};

/// The failure that the system reported as `error`, a value of `errno`.
FileFailure fileFailure(int error);
