#pragma once

#include "FileFailure.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <expected>
#include <span>
#include <stop_token>

/// A file of the disk, open for reading from its start to its end.
class InputFile {
public:
    /// Opens the file `path`, which may be a link to it. Waits for no pipe or device: it fails on them.
    static std::expected<InputFile, FileFailure> open(const QString& path);

    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&&) = delete;
    ~InputFile();

    /// How many bytes the file had when it was opened. It may be growing, and some files do not know.
    std::size_t expectedSize() const { return m_expectedSize; }

    /// Fills `room` with the next bytes, up to the end of the file; answers how many there were. Fewer than
    /// there is room for only at the end. `stopped` soon after a request to stop.
    std::expected<std::size_t, FileFailure> read(std::span<std::uint8_t> room,
                                                 const std::stop_token& stop = {});

    /// The same with the bytes from `offset` on; leaves `read` where it is. Several threads may read at once.
    std::expected<std::size_t, FileFailure> readAt(std::size_t offset, std::span<std::uint8_t> room,
                                                   const std::stop_token& stop = {}) const;

private:
    InputFile(int number, std::size_t expectedSize) : m_number(number), m_expectedSize(expectedSize) {}

    int m_number;
    std::size_t m_expectedSize;
};
