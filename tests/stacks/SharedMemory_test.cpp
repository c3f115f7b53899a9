#include <VelaStacks/SharedMemory.h>

#include "support/shared_names.h"

#include <boost/interprocess/exceptions.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <type_traits>

using boost::interprocess::interprocess_exception;
using Vela::SharedMemory;

static_assert(!std::is_copy_constructible_v<SharedMemory> && !std::is_copy_assignable_v<SharedMemory>);
static_assert(!std::is_move_constructible_v<SharedMemory> && !std::is_move_assignable_v<SharedMemory>);
static_assert(!std::is_polymorphic_v<SharedMemory>);
static_assert(!std::is_convertible_v<std::uint64_t, SharedMemory> && !std::is_convertible_v<std::string, SharedMemory>);

namespace {

unsigned char* bytes_of(SharedMemory& memory)
{
    return static_cast<unsigned char*>(memory.data());
}

bool is_lower_hexadecimal(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
}

TEST(SharedMemory, HasARandomUuidForItsName)
{
    const SharedMemory memory(10);
    const std::string id = memory.id();
    ASSERT_EQ(id.size(), 36u);
    for (const std::size_t i : {8u, 13u, 18u, 23u})
        EXPECT_EQ(id[i], '-') << id;
    EXPECT_EQ(std::count_if(id.begin(), id.end(), is_lower_hexadecimal), 32) << id;
    EXPECT_EQ(id[14], '4') << "version of " << id;
    EXPECT_TRUE(std::strchr("89ab", id[19]) != nullptr) << "variant of " << id;
}

TEST(SharedMemory, HasANameOfItsOwn)
{
    std::set<std::string> ids;
    for (int i = 0; i < 50; ++i)
        ids.insert(SharedMemory(1).id());
    EXPECT_EQ(ids.size(), 50u);
}

TEST(SharedMemory, IsKnownToTheSystemByItsIdAlone)
{
    const SharedMemory memory(1);
    EXPECT_EQ(vela_test::shared_names_left(), std::set<std::string>{std::string("/") + memory.id()});
}

TEST(SharedMemory, KeepsItsIdInPlace)
{
    const SharedMemory memory(1);
    EXPECT_EQ(memory.id(), memory.id());
}

TEST(SharedMemory, IsZeroAtFirst)
{
    SharedMemory memory(100000);
    EXPECT_EQ(memory.size(), 100000u);
    EXPECT_TRUE(std::all_of(bytes_of(memory), bytes_of(memory) + 100000, [](unsigned char byte) { return byte == 0; }));
}

TEST(SharedMemory, IsAlignedToAPage)
{
    SharedMemory memory(3);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory.data()) % 4096, 0u);
}

TEST(SharedMemory, OfTheSameIdIsTheSameBytes)
{
    for (const std::uint64_t size :
         {std::uint64_t{1}, std::uint64_t{4095}, std::uint64_t{4096}, std::uint64_t{4097}, std::uint64_t{1000003}})
    {
        SharedMemory owner(size);
        SharedMemory other{std::string(owner.id())};
        EXPECT_STREQ(other.id(), owner.id());
        EXPECT_EQ(other.size(), size);
        EXPECT_NE(other.data(), owner.data());
        bytes_of(owner)[0] = 17;
        EXPECT_EQ(bytes_of(other)[0], 17);
        bytes_of(other)[size - 1] = 34;
        EXPECT_EQ(bytes_of(owner)[size - 1], 34);
    }
}

TEST(SharedMemory, OutlivesItsOwnerWhereItIsAttached)
{
    auto owner = std::make_unique<SharedMemory>(50);
    const std::string id = owner->id();
    std::memset(owner->data(), 0x5a, 50);
    SharedMemory attached(id);
    owner.reset();
    EXPECT_THROW(SharedMemory{id}, interprocess_exception);
    EXPECT_EQ(attached.size(), 50u);
    EXPECT_EQ(attached.id(), id);
    EXPECT_TRUE(
        std::all_of(bytes_of(attached), bytes_of(attached) + 50, [](unsigned char byte) { return byte == 0x5a; }));
}

TEST(SharedMemory, KeepsItsNameWhenSomebodyAttachedLeaves)
{
    const SharedMemory owner(5);
    const std::string id = owner.id();
    {
        const SharedMemory attached(id);
    }
    EXPECT_EQ(SharedMemory(id).size(), 5u);
}

TEST(SharedMemory, OfSizeZeroHasNoDataAndCanBeAttachedTo)
{
    SharedMemory owner(0);
    EXPECT_EQ(owner.size(), 0u);
    EXPECT_EQ(owner.data(), nullptr);
    EXPECT_EQ(std::strlen(owner.id()), 36u);
    SharedMemory attached{std::string(owner.id())};
    EXPECT_EQ(attached.size(), 0u);
    EXPECT_EQ(attached.data(), nullptr);
}

TEST(SharedMemory, OfSizeZeroEndsWithItsOwner)
{
    auto owner = std::make_unique<SharedMemory>(0);
    const std::string id = owner->id();
    owner.reset();
    EXPECT_THROW(SharedMemory{id}, interprocess_exception);
}

TEST(SharedMemory, OfAnUnknownIdCannotBeAttachedTo)
{
    for (const std::string id :
         {"00000000-0000-4000-8000-000000000000", "", "/", "a/b", "no/such/name", ".", "..", "../shm", "//"})
        EXPECT_THROW(SharedMemory{id}, interprocess_exception) << id;
    for (const std::size_t length : {254u, 255u, 256u, 5000u}) // the system's limit is near 255
        EXPECT_THROW(SharedMemory{std::string(length, 'x')}, interprocess_exception) << length;
}

TEST(SharedMemory, IdDoesNotEndAtAZeroByte)
{
    const SharedMemory owner(5);
    EXPECT_THROW(SharedMemory(owner.id() + std::string(1, '\0')), interprocess_exception);
    EXPECT_THROW(SharedMemory(owner.id() + std::string("\0x", 2)), interprocess_exception);
}

TEST(SharedMemory, SaysWhyItCannotBeAttachedTo)
{
    try
    {
        const SharedMemory attached(std::string("00000000-0000-4000-8000-000000000000"));
        FAIL() << "attached to nothing";
    }
    catch (const interprocess_exception& error)
    {
        EXPECT_EQ(error.get_native_error(), ENOENT);
        EXPECT_EQ(error.get_error_code(), boost::interprocess::not_found_error);
    }
}

TEST(SharedMemory, OfASizeThatNobodyHasFailsAndLeavesNoName)
{
    const std::set<std::string> before = vela_test::shared_names_left();
    for (const std::uint64_t size : {~std::uint64_t{0}, std::uint64_t{1} << 63, (std::uint64_t{1} << 63) - 1,
                                     std::uint64_t{1} << 62, std::uint64_t{1} << 52})
    {
        EXPECT_THROW(SharedMemory{size}, interprocess_exception) << size;
        EXPECT_EQ(vela_test::shared_names_left(), before);
    }
}

} // namespace
