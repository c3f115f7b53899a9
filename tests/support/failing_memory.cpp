#include "support/failing_memory.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t requests_left = SIZE_MAX;
bool fails_once = false;
std::size_t blocks = 0;
std::size_t requests = 0;

void* take(std::size_t size_bytes)
{
    ++requests;
    if (requests_left == 0)
    {
        if (fails_once)
            requests_left = SIZE_MAX;
        throw std::bad_alloc();
    }
    if (requests_left != SIZE_MAX)
        --requests_left;
    void* const memory = std::malloc(size_bytes == 0 ? 1 : size_bytes);
    if (memory == nullptr)
        throw std::bad_alloc();
    ++blocks;
    return memory;
}

void give_back(void* memory) noexcept
{
    if (memory != nullptr)
        --blocks;
    std::free(memory);
}

}

void* operator new(std::size_t size_bytes)
{
    return take(size_bytes);
}
void* operator new[](std::size_t size_bytes)
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

namespace vela_test {

void allow_requests(std::size_t count)
{
    requests_left = count;
}

std::size_t blocks_taken()
{
    return blocks;
}

std::size_t requests_made()
{
    return requests;
}

OneRequestFailsAfter::OneRequestFailsAfter(std::size_t count)
{
    fails_once = true;
    requests_left = count;
}

OneRequestFailsAfter::~OneRequestFailsAfter()
{
    fails_once = false;
    requests_left = SIZE_MAX;
}

}
