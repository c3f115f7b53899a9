// A cast that finds no memory leaves the target as it was. Defines operator new itself.
#include "props/cast_types.h"

#include <VelaProps/vela_prop_cast.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

namespace {

/// How many requests succeed before all fail.
std::size_t requests_left = SIZE_MAX;

void* take(std::size_t size_bytes)
{
    if (requests_left == 0)
        throw std::bad_alloc();
    if (requests_left != SIZE_MAX)
        --requests_left;
    void* const memory = std::malloc(size_bytes == 0 ? 1 : size_bytes);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
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
    std::free(memory);
}
void operator delete[](void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

using cast_test::accepted;
using cast_test::all_types;
using cast_test::is_source;
using cast_test::Parts;
using cast_test::Type;
using Sizes = std::vector<std::size_t>;

/// Casts with memory for `requests` requests; whether it was enough.
bool cast_with(std::size_t requests, const VProp& property, void* out, const Type& target)
{
    requests_left = requests;
    try
    {
        vela_prop_cast(property, out, target.id | std::numeric_limits<vela_dt>::min());
    }
    catch (const std::bad_alloc&)
    {
        requests_left = SIZE_MAX;
        return false;
    }
    requests_left = SIZE_MAX;
    return true;
}

/// Lets each request of the cast fail in turn.
void expect_target_kept(const VProp& property, const Type& target)
{
    std::size_t requests = 0;
    while (true)
    {
        const auto out = target.make_target(3);
        const std::vector<Parts> before = target.elements(out.get());
        if (cast_with(requests, property, out.get(), target))
            break;
        ASSERT_EQ(target.elements(out.get()), before) << target.name << " after " << requests;
        ASSERT_EQ(target.shape(out.get())->get_size(false), Sizes({1, 3})) << target.name << " after " << requests;
        ++requests;
        ASSERT_LT(requests, 100u);
    }
    EXPECT_GT(requests, 0u);
}

TEST(CastWithoutMemory, LeavesTheTargetArrayAsItWas)
{
    for (const Type* source : all_types())
    {
        for (const Type* target : all_types())
        {
            if (!is_source(*source) || !accepted(*source, *target))
                continue;
            expect_target_kept(source->array({2, 1, 5}, 10), *target);
            expect_target_kept(source->scalar(1), *target);
        }
    }
}

TEST(CastWithoutMemory, OfAScalarToAScalarNeedsNone)
{
    const VProp property(2.5);
    int out = 0;
    requests_left = 0;
    vela_prop_cast(property, &out, 0x20);
    requests_left = SIZE_MAX;
    EXPECT_EQ(out, 2);
}

}
