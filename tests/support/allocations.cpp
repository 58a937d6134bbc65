// Counting replacements of operator new; linked into the test programs that ask for the count.
#include "support/allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> count{0};

void* counted_or_null(std::size_t size) noexcept {
    ++count;
    return std::malloc(size > 0 ? size : 1);
}

void* counted(std::size_t size) {
    if (void* const memory = counted_or_null(size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return counted(size); }
void* operator new[](std::size_t size) { return counted(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return counted_or_null(size); }
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept { return counted_or_null(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace tov::test {

long allocations() noexcept { return count; }

}  // namespace tov::test
