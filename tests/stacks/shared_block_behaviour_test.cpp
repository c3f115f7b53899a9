// Shared blocks on their own, in one process.
#include <VelaStacks/SharedMemory.h>

#include "support/shared_names.h"

#include <boost/interprocess/mapped_region.hpp>
#include <boost/interprocess/shared_memory_object.hpp>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <set>
#include <string>

#include <sys/statvfs.h>

namespace {

namespace ipc = boost::interprocess;
using Vela::SharedMemory;

constexpr const char* unknown_id = "00000000-0000-4000-8000-000000000000";

unsigned char* bytes_of(SharedMemory& memory)
{
    return static_cast<unsigned char*>(memory.data());
}

/// 8-4-4-4-12 lower-case hexadecimal digits, of version 4 and of the usual variant.
void expect_random_uuid(const std::string& id)
{
    ASSERT_EQ(id.size(), 36U) << id;
    for (std::size_t i = 0; i < id.size(); ++i)
    {
        const std::string allowed = i == 8 || i == 13 || i == 18 || i == 23 ? "-" : "0123456789abcdef";
        EXPECT_NE(allowed.find(id[i]), std::string::npos) << id << " at " << i;
    }
    EXPECT_EQ(id[14], '4') << id;
    EXPECT_NE(std::string("89ab").find(id[19]), std::string::npos) << id;
}

template <class Statement>
void expect_refused(Statement statement)
{
    const std::set<std::string> before = vela_test::shared_names_left();
    try
    {
        statement();
        ADD_FAILURE() << "threw nothing";
    }
    catch (const ipc::interprocess_exception&)
    {
        EXPECT_EQ(vela_test::shared_names_left(), before);
    }
}

TEST(SharedBlock, IdsAreRandomUuidsAndNeverTheSame)
{
    std::set<std::string> ids;
    for (int i = 0; i < 50; ++i)
    {
        const SharedMemory memory(1);
        expect_random_uuid(memory.id());
        EXPECT_TRUE(ids.insert(memory.id()).second);
    }
}

TEST(SharedBlock, TheIdIsTheWholeNameOfTheSegment)
{
    SharedMemory memory(64);
    std::memcpy(memory.data(), "segment", 8);
    ipc::shared_memory_object object(ipc::open_only, memory.id(), ipc::read_write);
    const ipc::mapped_region region(object, ipc::read_write);
    EXPECT_EQ(region.get_size(), 64U);
    EXPECT_STREQ(static_cast<const char*>(region.get_address()), "segment");
}

TEST(SharedBlock, ASegmentThatSomebodyElseMadeCanBeAttachedToAndKeepsItsName)
{
    const std::string name = "vela-behaviour-" + std::string(SharedMemory(1).id());
    {
        ipc::shared_memory_object object(ipc::create_only, name.c_str(), ipc::read_write);
        object.truncate(48);
        SharedMemory memory(name);
        EXPECT_EQ(memory.id(), name);
        EXPECT_EQ(memory.size(), 48U);
        bytes_of(memory)[47] = 5;
    }
    EXPECT_EQ(SharedMemory(name).size(), 48U) << "who attaches does not own the name";
    {
        SharedMemory again(name);
        EXPECT_EQ(bytes_of(again)[47], 5);
    }
    EXPECT_TRUE(ipc::shared_memory_object::remove(name.c_str()));
}

TEST(SharedBlock, ANewBlockIsZeros)
{
    SharedMemory memory(10000);
    ASSERT_EQ(memory.size(), 10000U);
    EXPECT_EQ(std::string(static_cast<const char*>(memory.data()), 10000), std::string(10000, '\0'));
}

TEST(SharedBlock, WhoAttachesSeesTheSameBytesAndTheSameSize)
{
    for (const std::uint64_t size : {1U, 7U, 4095U, 4096U, 4097U, 100000U})
    {
        SharedMemory memory(size);
        SharedMemory attached(memory.id());
        EXPECT_EQ(memory.size(), size);
        EXPECT_EQ(attached.size(), size);
        EXPECT_STREQ(attached.id(), memory.id());
        ASSERT_NE(attached.data(), nullptr);
        EXPECT_NE(attached.data(), memory.data());
        bytes_of(memory)[size - 1] = 3;
        EXPECT_EQ(bytes_of(attached)[size - 1], 3);
        bytes_of(attached)[0] = 4;
        EXPECT_EQ(bytes_of(memory)[0], 4);
    }
}

TEST(SharedBlock, WithoutItsCreatorABlockCanBeReadButNotAttachedTo)
{
    auto memory = std::make_unique<SharedMemory>(16);
    const std::string id = memory->id();
    SharedMemory attached(id);
    std::memcpy(memory->data(), "still here", 11);
    memory.reset();
    EXPECT_STREQ(static_cast<const char*>(attached.data()), "still here");
    EXPECT_EQ(attached.size(), 16U);
    EXPECT_EQ(attached.id(), id);
    expect_refused([&] { const SharedMemory late(id); });
}

TEST(SharedBlock, WhoGoesFirstDoesNotMatterToTheCreator)
{
    SharedMemory memory(16);
    SharedMemory(std::string(memory.id()));
    {
        SharedMemory attached(memory.id());
        bytes_of(attached)[3] = 9;
    }
    EXPECT_EQ(bytes_of(memory)[3], 9);
    EXPECT_EQ(SharedMemory(std::string(memory.id())).size(), 16U) << "the name is still there";
}

TEST(SharedBlock, ABlockOfNoBytesHasANameAndNoData)
{
    std::string id;
    {
        SharedMemory memory(0);
        id = memory.id();
        expect_random_uuid(id);
        EXPECT_EQ(memory.size(), 0U);
        EXPECT_EQ(memory.data(), nullptr);
        SharedMemory attached(id);
        EXPECT_EQ(attached.size(), 0U);
        EXPECT_EQ(attached.data(), nullptr);
        EXPECT_EQ(attached.id(), id);
    }
    expect_refused([&] { const SharedMemory late(id); });
}

TEST(SharedBlock, AnUnknownIdIsAnInterprocessException)
{
    try
    {
        const SharedMemory memory((std::string(unknown_id)));
        ADD_FAILURE() << "attached to nothing";
    }
    catch (const ipc::interprocess_exception& error)
    {
        EXPECT_EQ(error.get_error_code(), ipc::not_found_error);
        EXPECT_EQ(typeid(error), typeid(ipc::interprocess_exception));
    }
}

TEST(SharedBlock, TextsThatAreNoNamesAreInterprocessExceptions)
{
    const char* const names[] = {"", "/", ".", "..", "../etc/passwd", "a/b", "00000000-0000-4000-8000-0000000000000"};
    for (const char* const name : names)
    {
        SCOPED_TRACE(name);
        expect_refused([&] { const SharedMemory memory((std::string(name))); });
    }
    expect_refused([] { const SharedMemory memory(std::string(5000, 'x')); });
}

TEST(SharedBlock, ASizeThatCannotBeIsRefusedAndLeavesNoName)
{
    for (const std::uint64_t size : {UINT64_MAX, UINT64_MAX / 2 + 1, UINT64_MAX / 2, std::uint64_t{1} << 60})
    {
        SCOPED_TRACE(size);
        expect_refused([&] { const SharedMemory memory(size); });
    }
}

TEST(SharedBlock, MoreThanThereIsRoomForIsRefusedAtOnceAndLeavesNoName)
{
    struct statvfs room = {};
    if (statvfs("/dev/shm", &room) != 0 || room.f_blocks == 0)
        GTEST_SKIP() << "no limit to see";
    const std::uint64_t size = (std::uint64_t{room.f_blocks} + 1) * room.f_frsize;
    expect_refused([&] { const SharedMemory memory(size); });
}

} // namespace
