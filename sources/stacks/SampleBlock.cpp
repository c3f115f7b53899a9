#include "sources/stacks/SampleBlock.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace {

/// No object is larger, and some allocators abort instead of answering.
constexpr std::uint64_t largest_block = INT64_MAX;

}

Vela::SampleBlock::~SampleBlock()
{
    std::free(bytes);
}

void Vela::SampleBlock::clear()
{
    std::free(bytes);
    bytes = nullptr;
    size_bytes = 0;
    capacity_bytes = 0;
    unset_from = all_set;
}

void Vela::SampleBlock::resize(std::uint64_t new_size_bytes)
{
    if (new_size_bytes > capacity_bytes)
    {
        if (new_size_bytes > largest_block)
            throw std::bad_alloc();
        // Fresh memory of the system is 0 and need not be written for that; so a block without a past asks for zeros.
        const bool comes_set = size_bytes == 0 && !leaves_new_bytes;
        void* const grown = comes_set         ? std::calloc(new_size_bytes, 1)
                            : size_bytes == 0 ? std::malloc(new_size_bytes)
                                              : std::realloc(bytes, new_size_bytes);
        if (grown == nullptr)
            throw std::bad_alloc();
        if (size_bytes == 0)
            std::free(bytes);
        bytes = static_cast<unsigned char*>(grown);
        capacity_bytes = new_size_bytes;
        if (!comes_set)
            set_new_bytes(size_bytes, new_size_bytes);
    }
    else if (new_size_bytes > size_bytes)
        set_new_bytes(size_bytes, new_size_bytes);
    size_bytes = new_size_bytes;
}

void Vela::SampleBlock::set_new_bytes(std::uint64_t from, std::uint64_t to)
{
    if (leaves_new_bytes)
        unset_from = std::min(unset_from, from);
    else
        std::memset(bytes + from, 0, to - from);
}

void Vela::SampleBlock::set_the_rest()
{
    if (unset_from < size_bytes)
        std::memset(bytes + unset_from, 0, size_bytes - unset_from);
    unset_from = all_set;
}

Vela::SampleBlock::Overwriting::Overwriting(boost::shared_ptr<SampleBlock> overwritten) : block(std::move(overwritten))
{
    if (block != nullptr)
        block->leaves_new_bytes = true;
}

void Vela::SampleBlock::Overwriting::written(const unsigned char* first, std::uint64_t size)
{
    if (block != nullptr && first == block->bytes && block->unset_from < size)
        block->unset_from = size;
}

void Vela::SampleBlock::Overwriting::fill()
{
    if (block != nullptr)
        block->set_the_rest();
}

Vela::SampleBlock::Overwriting::~Overwriting()
{
    fill();
    if (block != nullptr)
        block->leaves_new_bytes = false;
}
