// Where STLAllocator gets its memory. The recycling of small blocks is glibc malloc's
// per-thread cache (tcache), which already keeps freed blocks per size class without locks;
// this layer only names the entry points so that one place can change that decision.
#pragma once

#include <cstddef>
#include <new>

namespace kelcore::allocator {

class MemoryRecycler {
public:
    static void* Allocate(std::size_t bytes, std::size_t alignment) {
        if (alignment > __STDCPP_DEFAULT_NEW_ALIGNMENT__) {
            return ::operator new (bytes, std::align_val_t{alignment});
        }
        return ::operator new(bytes);
    }

    static void Deallocate(void* block, std::size_t bytes, std::size_t alignment) noexcept {
        // Sized deallocation is off by default in some compilers (clang 14); the size is
        // only a hint to the allocator, so fall back to the unsized forms there.
#if defined(__cpp_sized_deallocation)
        if (alignment > __STDCPP_DEFAULT_NEW_ALIGNMENT__) {
            ::operator delete (block, bytes, std::align_val_t{alignment});
        } else {
            ::operator delete(block, bytes);
        }
#else
        (void)bytes;
        if (alignment > __STDCPP_DEFAULT_NEW_ALIGNMENT__) {
            ::operator delete (block, std::align_val_t{alignment});
        } else {
            ::operator delete(block);
        }
#endif
    }
};

}  // namespace kelcore::allocator
