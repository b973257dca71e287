#pragma once

#include "Bytes.h"
#include "FileFailure.h"

#include <QString>

#include <cstddef>
#include <expected>
#include <memory>
#include <stop_token>
#include <utility>

/// All bytes of a file, read into memory. A cheap value: copies share the bytes.
class FileContents {
public:
    FileContents() = default;
    FileContents(std::shared_ptr<const std::uint8_t[]> storage, std::size_t size)
        : m_storage(std::move(storage)), m_size(size) {}

    /// What is in the file `path`, which may be a link to it. Waits for no pipe or device: it fails on them.
    /// Of a file that grows, what it has when it is opened. `stopped` soon after a request to stop.
    ///
    /// A file that says that it is empty may not know its size, as those of the kernel: it is read to its
    /// end, and `tooLarge` where that is far.
    ///
    /// The bytes are copied rather than mapped: shortening the file later does no harm.
    static std::expected<FileContents, FileFailure> read(const QString& path,
                                                         const std::stop_token& stop = {});

    /// Good as long as this value or a copy of it lives.
    Bytes bytes() const { return {m_storage.get(), m_size}; }

private:
    std::shared_ptr<const std::uint8_t[]> m_storage;
    std::size_t m_size = 0;
};
