#include "FileFailure.h"

#include <cerrno>

FileFailure fileFailure(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return FileFailure::missing;
    case EISDIR:
        return FileFailure::folder;
    case ENXIO:
        return FileFailure::notRegular;
    case EACCES:
    case EPERM:
    case EROFS:
        return FileFailure::noPermission;
    case ENOSPC:
    case EDQUOT:
        return FileFailure::noSpace;
    case EFBIG:
    case EOVERFLOW:
        return FileFailure::tooLarge;
    case ENOMEM:
        return FileFailure::noMemory;
    default:
        return FileFailure::other;
    }
}
