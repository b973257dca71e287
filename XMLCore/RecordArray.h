#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

/// A growing array of trivially copyable records, made for the millions that a parse writes. Memory after the
/// last record is not touched; growing and shrinking a large array copies nothing (`realloc` moves its
/// pages); `clear` keeps the capacity for the next parse. Can be moved but not copied.
template <class Record>
class RecordArray {
    static_assert(std::is_trivially_copyable_v<Record> && std::is_trivially_destructible_v<Record>);

public:
    RecordArray() = default;
    RecordArray(RecordArray&& other) noexcept
        : m_records(std::exchange(other.m_records, nullptr)), m_size(std::exchange(other.m_size, 0)),
          m_capacity(std::exchange(other.m_capacity, 0)) {}
    RecordArray& operator=(RecordArray&& other) noexcept {
        std::swap(m_records, other.m_records);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
        return *this;
    }
    ~RecordArray() { std::free(m_records); }

    std::size_t size() const { return m_size; }
    std::size_t capacity() const { return m_capacity; }
    bool empty() const { return m_size == 0; }

    const Record* begin() const { return m_records; }
    const Record* end() const { return m_records + m_size; }
    Record* begin() { return m_records; }
    Record* end() { return m_records + m_size; }
    const Record* data() const { return m_records; }

    /// Unchecked, as in the standard containers.
    const Record& operator[](std::size_t index) const { return m_records[index]; }
    Record& operator[](std::size_t index) { return m_records[index]; }
    Record& back() { return m_records[m_size - 1]; }

    /// Makes the capacity at least `wanted` records. Throws `std::bad_alloc` if there is not enough memory,
    /// as `append` does.
    void reserve(std::size_t wanted) {
        if (wanted > m_capacity) {
            reallocate(wanted);
        }
    }

    /// Adds an uninitialized record and returns it. The caller must assign all its fields.
    Record& append() {
        if (m_size == m_capacity) [[unlikely]] {
            grow();
        }
        return m_records[m_size++];
    }
    /// `record` may be an element of the array itself: it is copied before the array grows.
    void append(Record record) { append() = record; }

    void removeLast() { --m_size; }
    void clear() { m_size = 0; }

    /// Reduces the capacity to the size if it exceeds the size by more than a quarter.
    void trim() {
        if (m_capacity - m_size > m_size / 4) {
            reallocate(m_size);
        }
    }

private:
    [[gnu::noinline]] void grow() {
        constexpr std::size_t smallest = 16;
        reallocate(std::max(smallest, m_capacity * 2));
    }

    void reallocate(std::size_t wanted) {
        if (wanted == 0) {
            std::free(std::exchange(m_records, nullptr));
        } else {
            void* const records = std::realloc(m_records, wanted * sizeof(Record));
            if (records == nullptr) {
                throw std::bad_alloc();
            }
            m_records = static_cast<Record*>(records);
        }
        m_capacity = wanted;
    }

    Record* m_records = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};
