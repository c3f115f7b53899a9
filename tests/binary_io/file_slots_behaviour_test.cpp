// The order of virtual operations of files and their stacks, on which other compiled code counts.
#include "support/slot_of.h"

#include <VelaBinaryIO/VBFFile.h>
#include <VelaBinaryIO/VBFStack.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <type_traits>

namespace {

#ifdef VELA_TEST_HAS_SLOTS

using Text = std::string;

TEST(StackTable, OwnOperationsStandInTheirOrderBehindThoseOfTheDescription)
{
    using S = VBFStackInterface;
    // 41 operations of the description, and its destructor, which takes two slots.
    constexpr std::ptrdiff_t first = 43;
    EXPECT_EQ(slot_of(&S::get_tag_keys), first);
    EXPECT_EQ(slot_of(static_cast<void (S::*)(const Text&, int, const void*)>(&S::set_tag)), first + 1);
    EXPECT_EQ(slot_of(static_cast<void (S::*)(const Text&, const Text&)>(&S::set_tag)), first + 2);
    EXPECT_EQ(slot_of(static_cast<bool (S::*)(const Text&, int, void*) const>(&S::get_tag)), first + 3);
    EXPECT_EQ(slot_of(static_cast<Text (S::*)(const Text&) const>(&S::get_tag)), first + 4);
    EXPECT_EQ(slot_of(&S::write), first + 5);
    EXPECT_EQ(slot_of(&S::commit), first + 6);
    EXPECT_EQ(slot_of(static_cast<void (S::*)(int, void*, void*)>(&S::read)), first + 7);
    using RunOfSamples = std::uint64_t (S::*)(int, void*, void*, std::uint64_t, std::uint64_t&);
    EXPECT_EQ(slot_of(static_cast<RunOfSamples>(&S::read)), first + 8);
    EXPECT_EQ(slot_of(&S::set_compression), first + 9);
    EXPECT_EQ(slot_of(&S::get_compression), first + 10);
    EXPECT_EQ(slot_of(&S::set_flush_block_size), first + 11);
    EXPECT_EQ(slot_of(&S::get_state), first + 12);
}

TEST(FileTable, OperationsStandInTheirOrderAndTheDocumentBehindTheDestructor)
{
    using F = VBFFileInterface;
    EXPECT_EQ(slot_of(&F::attach), 0);
    EXPECT_EQ(slot_of(&F::open), 1);
    EXPECT_EQ(slot_of(&F::close), 2);
    EXPECT_EQ(slot_of(&F::detach), 3);
    EXPECT_EQ(slot_of(&F::finish), 4);
    EXPECT_EQ(slot_of(&F::set_creator), 5);
    EXPECT_EQ(slot_of(&F::set_uuid), 6);
    EXPECT_EQ(slot_of(&F::set_chunk_size), 7);
    EXPECT_EQ(slot_of(&F::set_file_desc), 8);
    EXPECT_EQ(slot_of(&F::get_file_desc), 9);
    EXPECT_EQ(slot_of(&F::number_of_stacks), 10);
    EXPECT_EQ(slot_of(&F::is_attached), 11);
    EXPECT_EQ(slot_of(&F::set_progress_callback), 12);
    EXPECT_EQ(slot_of(&F::seek_to_end_of_stack), 13);
    EXPECT_EQ(slot_of(&F::add_stack), 14);
    EXPECT_EQ(slot_of(&F::get_stack), 15);
    EXPECT_EQ(slot_of(&F::write_stack), 16);
    EXPECT_EQ(slot_of(&F::read_stack), 17);
    EXPECT_EQ(slot_of(&F::set_default_compression), 18);
    EXPECT_EQ(slot_of(&F::get_mode), 19);
    EXPECT_EQ(slot_of(&F::is_open), 20);
    // The destructor takes two slots: complete object, and deleting.
    EXPECT_EQ(slot_of(&F::ome), 23);
}

static_assert(std::is_abstract_v<VBFFileInterface> && sizeof(VBFFileInterface) == sizeof(void*),
              "an interface without data");
static_assert(std::is_abstract_v<VBFStackInterface> && std::has_virtual_destructor_v<VBFStackInterface>);
static_assert(std::has_virtual_destructor_v<VBFFileInterface>);

#endif

static_assert(std::is_base_of_v<VStackInfoInterface, VBFStackInterface>);
static_assert(!std::is_copy_constructible_v<VBFFileInterface> && !std::is_copy_assignable_v<VBFFileInterface>);
static_assert(std::is_copy_constructible_v<VBFFile> && std::is_copy_assignable_v<VBFFile> &&
              std::is_default_constructible_v<VBFFile>);
static_assert(std::is_convertible_v<VBFFile&, VBFFileInterface*> &&
              std::is_convertible_v<const VBFFile&, const VBFFileInterface*> &&
              !std::is_convertible_v<const VBFFile&, VBFFileInterface*>);

} // namespace
