#pragma once

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

// Counts every allocation of a program. Only one file of a program includes it: it replaces the operators for all.

inline std::atomic<std::uint64_t> allocations{0};

// Not inlined: GCC takes the pair of malloc and delete apart otherwise and warns.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
