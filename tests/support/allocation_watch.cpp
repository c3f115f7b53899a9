#include "support/allocation_watch.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> bytes_taken{0};
std::atomic<std::size_t> peak_bytes{0};
std::atomic<std::size_t> allocations{0};

void* take(std::size_t size_bytes) noexcept
{
    void* const memory = std::malloc(size_bytes == 0 ? 1 : size_bytes);
    ++allocations;
    if (memory != nullptr)
    {
        bytes_taken += malloc_usable_size(memory);
        if (bytes_taken > peak_bytes)
            peak_bytes = bytes_taken.load();
    }
    return memory;
}

void* take_or_throw(std::size_t size_bytes)
{
    void* const memory = take(size_bytes);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void give_back(void* memory) noexcept
{
    if (memory != nullptr)
        bytes_taken -= malloc_usable_size(memory);
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size_bytes)
{
    return take_or_throw(size_bytes);
}

void* operator new[](std::size_t size_bytes)
{
    return take_or_throw(size_bytes);
}

void* operator new(std::size_t size_bytes, const std::nothrow_t&) noexcept
{
    return take(size_bytes);
}

void* operator new[](std::size_t size_bytes, const std::nothrow_t&) noexcept
{
    return take(size_bytes);
}

void operator delete(void* memory) noexcept
{
    give_back(memory);
}

void operator delete[](void* memory) noexcept
{
    give_back(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    give_back(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    give_back(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    give_back(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    give_back(memory);
}

namespace vela_test {

AllocationWatch::AllocationWatch() : bytes_at_start(bytes_taken), allocations_at_start(allocations)
{
    peak_bytes = bytes_at_start;
}

std::size_t AllocationWatch::extra_bytes() const
{
    return bytes_taken > bytes_at_start ? bytes_taken - bytes_at_start : 0;
}

std::size_t AllocationWatch::peak_extra_bytes() const
{
    return peak_bytes - bytes_at_start;
}

std::size_t AllocationWatch::count_allocations() const
{
    return allocations - allocations_at_start;
}

} // namespace vela_test
