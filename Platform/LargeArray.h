#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>

/// `size` bytes straight from the system, in huge pages where it has them; throws `std::bad_alloc` when it
/// has not as many. Nothing is touched: what is never written takes no memory.
void* mapLargeMemory(std::size_t size);
void unmapLargeMemory(void* memory, std::size_t size);

/// Asks for huge pages where whole ones lie inside the memory.
void adviseHugePages(const void* begin, std::size_t size);

/// Has the system provide the pages of memory that was never written, whose contents stay what they are. Does
/// nothing where the system cannot, nor where there is no memory any more.
void touchMemory(const void* begin, std::size_t size);

/// Gives what was freed back to the system, as far as it keeps nothing else company. Takes a moment.
void giveMemoryBack();

/// An array whose elements hold no particular values, for the contents and the text of whole files. Touching
/// new memory page by page costs more than decoding into it, so that a large array asks for huge pages.
template <class Element>
std::shared_ptr<Element[]> makeLargeArray(std::size_t count) {
    static_assert(std::is_trivially_default_constructible_v<Element>);
    constexpr std::size_t large = std::size_t{4} << 20;
    if (count < large / sizeof(Element)) {
        return std::make_shared_for_overwrite<Element[]>(count);
    }
    const std::size_t size = count * sizeof(Element);
    auto* const elements = static_cast<Element*>(mapLargeMemory(size));
    return {elements, [size](Element* memory) { unmapLargeMemory(memory, size); }};
}
