// The standard-library allocator of the platform: stateless, so containers that use it compare
// and move like those of std::allocator. Memory comes from MemoryRecycler.
//
//   std::vector<int, kelcore::allocator::STLAllocator<int>> values;
#pragma once

#include <cstddef>
#include <limits>
#include <new>

#include <kelcore/allocator/MemoryRecycler.h>

namespace kelcore::allocator {

template <class T>
class STLAllocator {
public:
    using value_type = T;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using propagate_on_container_move_assignment = std::true_type;
    using is_always_equal = std::true_type;

    constexpr STLAllocator() noexcept = default;
    template <class U>
    constexpr STLAllocator(const STLAllocator<U>&) noexcept {}

    [[nodiscard]] T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(MemoryRecycler::Allocate(count * sizeof(T), alignof(T)));
    }

    void deallocate(T* block, std::size_t count) noexcept {
        MemoryRecycler::Deallocate(block, count * sizeof(T), alignof(T));
    }

    template <class U>
    friend constexpr bool operator==(const STLAllocator&, const STLAllocator<U>&) noexcept {
        return true;
    }
};

}  // namespace kelcore::allocator
