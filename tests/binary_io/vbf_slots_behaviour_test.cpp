// The order of virtual operations of files and their stacks, on which other compiled code counts.
#include "support/slot_of.h"

#include <VelaBinaryIO/VBFFile.h>
#include <VelaBinaryIO/VBFStack.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <type_traits>

namespace {

static_assert(std::is_abstract_v<VBFFileInterface> && sizeof(VBFFileInterface) == sizeof(void*),
              "an interface without data");
static_assert(std::is_abstract_v<VBFStackInterface>, "an interface");
static_assert(!std::is_copy_constructible_v<VBFFileInterface> && !std::is_copy_assignable_v<VBFFileInterface>,
              "a file is not copied");
static_assert(std::is_base_of_v<VStackInfoInterface, VBFStackInterface>, "a stack has a description");
static_assert(std::is_same_v<vela_progress_callback, int (*)(std::uint64_t, void*)>, "as callers compile it");

#ifdef VELA_TEST_HAS_SLOTS

using File = VBFFileInterface;
using Stack = VBFStackInterface;

TEST(VbfFileSlots, BeginWithOpeningAndClosing)
{
    EXPECT_EQ(slot_of(&File::attach), 0);
    EXPECT_EQ(slot_of(&File::open), 1);
    EXPECT_EQ(slot_of(&File::close), 2);
    EXPECT_EQ(slot_of(&File::detach), 3);
    EXPECT_EQ(slot_of(&File::finish), 4);
}

TEST(VbfFileSlots, GoOnWithWhatBelongsToTheFile)
{
    EXPECT_EQ(slot_of(&File::set_creator), 5);
    EXPECT_EQ(slot_of(&File::set_uuid), 6);
    EXPECT_EQ(slot_of(&File::set_chunk_size), 7);
    EXPECT_EQ(slot_of(&File::set_file_desc), 8);
    EXPECT_EQ(slot_of(&File::get_file_desc), 9);
    EXPECT_EQ(slot_of(&File::number_of_stacks), 10);
    EXPECT_EQ(slot_of(&File::is_attached), 11);
    EXPECT_EQ(slot_of(&File::set_progress_callback), 12);
}

TEST(VbfFileSlots, GoOnWithStacks)
{
    EXPECT_EQ(slot_of(&File::seek_to_end_of_stack), 13);
    EXPECT_EQ(slot_of(&File::add_stack), 14);
    EXPECT_EQ(slot_of(&File::get_stack), 15);
    EXPECT_EQ(slot_of(&File::write_stack), 16);
    EXPECT_EQ(slot_of(&File::read_stack), 17);
    EXPECT_EQ(slot_of(&File::set_default_compression), 18);
    EXPECT_EQ(slot_of(&File::get_mode), 19);
    EXPECT_EQ(slot_of(&File::is_open), 20);
}

TEST(VbfFileSlots, DocumentStandsBehindTheDestructor)
{
    // One virtual destructor takes two slots: complete object, and deleting.
    EXPECT_EQ(slot_of(&File::ome), 23);
}

TEST(VbfStackSlots, OwnOperationsStandInTheirOrderBehindThoseOfTheDescription)
{
    // 41 operations of the description, and its destructor, which takes two slots.
    constexpr std::ptrdiff_t first = 43;
    EXPECT_EQ(slot_of(&Stack::get_tag_keys), first);
    EXPECT_EQ(slot_of(static_cast<void (Stack::*)(const std::string&, int, const void*)>(&Stack::set_tag)), first + 1);
    EXPECT_EQ(slot_of(static_cast<void (Stack::*)(const std::string&, const std::string&)>(&Stack::set_tag)),
              first + 2);
    EXPECT_EQ(slot_of(static_cast<bool (Stack::*)(const std::string&, int, void*) const>(&Stack::get_tag)), first + 3);
    EXPECT_EQ(slot_of(static_cast<std::string (Stack::*)(const std::string&) const>(&Stack::get_tag)), first + 4);
    EXPECT_EQ(slot_of(&Stack::write), first + 5);
    EXPECT_EQ(slot_of(&Stack::commit), first + 6);
    EXPECT_EQ(slot_of(static_cast<void (Stack::*)(int, void*, void*)>(&Stack::read)), first + 7);
    EXPECT_EQ(
        slot_of(static_cast<std::uint64_t (Stack::*)(int, void*, void*, std::uint64_t, std::uint64_t&)>(&Stack::read)),
        first + 8);
    EXPECT_EQ(slot_of(&Stack::set_compression), first + 9);
    EXPECT_EQ(slot_of(&Stack::get_compression), first + 10);
    EXPECT_EQ(slot_of(&Stack::set_flush_block_size), first + 11);
    EXPECT_EQ(slot_of(&Stack::get_state), first + 12);
}

#endif

}
