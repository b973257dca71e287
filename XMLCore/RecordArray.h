#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

/// A growing array of plain records for the millions that a parse writes: what is beyond the last record is
/// never touched, growing and shrinking a large array moves no memory (`realloc` moves its pages), and
/// `clear` keeps the capacity for the next parse. Moves, never copies.
template <class Record>
class RecordArray {
    static_assert(std::is_trivially_copyable_v<Record> && std::is_trivially_destructible_v<Record>);

public:
    RecordArray() = default;
    RecordArray(RecordArray&& other) noexcept
        : m_records(std::move(other.m_records)), m_size(std::exchange(other.m_size, 0)),
          m_capacity(std::exchange(other.m_capacity, 0)) {}
    RecordArray& operator=(RecordArray&& other) noexcept {
        m_records = std::move(other.m_records);
        m_size = std::exchange(other.m_size, 0);
        m_capacity = std::exchange(other.m_capacity, 0);
        return *this;
    }

    std::size_t size() const { return m_size; }
    std::size_t capacity() const { return m_capacity; }
    bool empty() const { return m_size == 0; }

    const Record* data() const { return m_records.get(); }
    Record* data() { return m_records.get(); }
    const Record* begin() const { return data(); }
    const Record* end() const { return data() + m_size; }
    Record* begin() { return data(); }
    Record* end() { return data() + m_size; }

    /// Unchecked, as in the standard containers.
    const Record& operator[](std::size_t index) const { return data()[index]; }
    Record& operator[](std::size_t index) { return data()[index]; }
    Record& back() { return data()[m_size - 1]; }

    /// Makes room for `capacity` records in all.
    void reserve(std::size_t capacity) {
        if (capacity > m_capacity) {
            reallocate(capacity);
        }
    }

    void append(const Record& record) {
        if (m_size == m_capacity) [[unlikely]] {
            reallocate(m_capacity == 0 ? 16 : m_capacity * 2);
        }
        std::construct_at(data() + m_size, record);
        ++m_size;
    }

    void clear() { m_size = 0; }

    /// Gives back the capacity that exceeds the size by more than a quarter.
    void trim() {
        if (m_capacity - m_size > m_size / 4) {
            reallocate(m_size);
        }
    }

private:
    struct Free {
        void operator()(Record* records) const { std::free(records); }
    };

    void reallocate(std::size_t capacity) {
        if (capacity == 0) {
            m_records.reset();
        } else {
            void* const old = m_records.release();
            void* const records = std::realloc(old, capacity * sizeof(Record));
            if (records == nullptr) {
                m_records.reset(static_cast<Record*>(old));
                throw std::bad_alloc();
            }
            m_records.reset(static_cast<Record*>(records));
        }
        m_capacity = capacity;
    }

    std::unique_ptr<Record[], Free> m_records;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};
