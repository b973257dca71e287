#include "RopeFlattener.h"

#include "LargeArray.h"

#include <algorithm>

SourceText RopeFlattener::flattened(const Rope& rope) {
    if (const SourceText text = rope.contiguous(); text.count() == rope.size()) {
        return text;
    }
    const std::size_t size = rope.size();
    const auto fits = [size](const Buffer& buffer) {
        return isFree(buffer) && size <= buffer.capacity && buffer.capacity / 2 <= size;
    };
    auto buffer = std::ranges::find_if(m_buffers, fits);
    if (buffer == m_buffers.end()) {
        // Dropping a buffer that is not free only forgets it; its text keeps it.
        buffer = std::ranges::find_if(m_buffers, isFree);
        buffer = buffer == m_buffers.end() ? m_buffers.begin() : buffer;
        buffer->units.reset();
        buffer->capacity = size + size / 16;
        buffer->units = makeLargeArray<char16_t>(buffer->capacity);
    }
    rope.copyTo(rope.fullRange(), buffer->units.get());
    return {buffer->units, size};
}

RopeFlattener RopeFlattener::takeFree() {
    RopeFlattener taken;
    for (std::size_t i = 0; i < m_buffers.size(); ++i) {
        if (isFree(m_buffers[i])) {
            std::swap(m_buffers[i], taken.m_buffers[i]);
        }
    }
    return taken;
}

bool RopeFlattener::isFree(const Buffer& buffer) {
    if (buffer.units.use_count() > 1) {
        return false;
    }
    // The count alone does not order the last reader's reads before our writes; giving back a reference does.
    std::shared_ptr<char16_t[]>(buffer.units).reset();
    return true;
}
