#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace quillery {

// Memory for large blocks that are read at random or filled in one go: blocks of 2 MiB and more
// are aligned to 2 MiB and offered to the kernel for huge pages before they are first touched.
// A random read then rarely misses the address translation cache, which on a large notebook
// costs about as much as the read itself, and filling the block takes one page fault per 2 MiB
// instead of one per 4 KiB. Without transparent huge pages the block keeps small pages. Freed
// with std::free; null when out of memory.
inline void* allocatePreferringHugePages(std::size_t bytes) {
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    if (bytes < kHugePage)
        return std::malloc(bytes);
    const std::size_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
    void* block = std::aligned_alloc(kHugePage, rounded);
    if (block)
        madvise(block, rounded, MADV_HUGEPAGE);
    return block;
}

// The same for the elements of a container, such as the slots of a hash table.
template <typename T>
class HugePageAllocator {
public:
    using value_type = T;

    HugePageAllocator() = default;
    template <typename U>
    HugePageAllocator(const HugePageAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        void* block = allocatePreferringHugePages(count * sizeof(T));
        if (!block)
            throw std::bad_alloc();
        return static_cast<T*>(block);
    }

    void deallocate(T* block, std::size_t) noexcept { std::free(block); }

    template <typename U>
    friend bool operator==(const HugePageAllocator&, const HugePageAllocator<U>&) {
        return true;
    }
};

} // namespace quillery
