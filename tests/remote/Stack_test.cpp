// The face itself, and stacks that are made of what stands behind one.
#include "remote/binding_stack.h"

#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>

#include "support/expect_vela_error.h"
#include "support/shared_names.h"
#include "support/slot_of.h"

#include <boost/interprocess/exceptions.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

using testing::ElementsAre;
using Vela::SharedMemory;
using vela_test::BindingStack;

namespace {

using Sizes = std::vector<std::uint64_t>;

/// A segment of these bytes.
struct Segment
{
    explicit Segment(const std::string& bytes) : memory(bytes.size())
    {
        if (!bytes.empty())
            std::memcpy(memory.data(), bytes.data(), bytes.size());
    }
    std::string text() { return std::string(static_cast<const char*>(memory.data()), memory.size()); }

    SharedMemory memory;
};

BindingStack face_of(const Segment& segment)
{
    BindingStack face;
    face.given_id = segment.memory.id();
    return face;
}

static_assert(std::is_abstract_v<Remote::Stack>);
static_assert(std::has_virtual_destructor_v<Remote::Stack>);

#ifdef VELA_TEST_HAS_SLOTS

using Remote::Stack;

TEST(FaceTable, HasTheDestructorFirst)
{
    EXPECT_EQ(slot_of(&Stack::name), 2); // behind the two of the destructor
    EXPECT_EQ(slot_of(&Stack::set_name), 3);
    EXPECT_EQ(slot_of(&Stack::description), 4);
    EXPECT_EQ(slot_of(&Stack::set_description), 5);
    EXPECT_EQ(slot_of(&Stack::number_of_elements), 6);
    EXPECT_EQ(slot_of(&Stack::type), 7);
    EXPECT_EQ(slot_of(&Stack::number_of_dimensions), 8);
    EXPECT_EQ(slot_of(&Stack::size), 9);
    EXPECT_EQ(slot_of(&Stack::sizes), 10);
}

TEST(FaceTable, GoesOnWithTheAxes)
{
    EXPECT_EQ(slot_of(&Stack::label), 11);
    EXPECT_EQ(slot_of(&Stack::set_label), 12);
    EXPECT_EQ(slot_of(&Stack::labels), 13);
    EXPECT_EQ(slot_of(&Stack::set_labels), 14);
    EXPECT_EQ(slot_of(&Stack::length), 15);
    EXPECT_EQ(slot_of(&Stack::set_length), 16);
    EXPECT_EQ(slot_of(&Stack::lengths), 17);
    EXPECT_EQ(slot_of(&Stack::set_lengths), 18);
    EXPECT_EQ(slot_of(&Stack::offset), 19);
    EXPECT_EQ(slot_of(&Stack::set_offset), 20);
    EXPECT_EQ(slot_of(&Stack::offsets), 21);
    EXPECT_EQ(slot_of(&Stack::set_offsets), 22);
    EXPECT_EQ(slot_of(&Stack::meta_data), 23);
    EXPECT_EQ(slot_of(&Stack::share), 24);
}

static_assert(sizeof(Stack) == sizeof(void*) + sizeof(boost::shared_ptr<void>));

#endif

TEST(Face, OwnerIsEmptyAtFirst)
{
    EXPECT_EQ(BindingStack().owner.get(), nullptr);
}

TEST(DescriptionOfAFace, IsWhatTheFaceSays)
{
    const BindingStack face;
    const VStackInfoImp info(face);
    EXPECT_EQ(info.get_name(), "cells");
    EXPECT_EQ(info.get_description(), "two of them");
    EXPECT_EQ(info.get_dt(), vela_dt_uint8);
    EXPECT_EQ(info.get_sizes(), (Sizes{2, 3}));
    EXPECT_EQ(info.get_number_of_elements(), 6U);
    EXPECT_THAT(info.get_labels(), ElementsAre("X", "Y"));
    EXPECT_THAT(info.get_lengths(), ElementsAre(20.0, 30.0));
    EXPECT_THAT(info.get_offsets(), ElementsAre(1.0, -2.0));
}

TEST(DescriptionOfAFace, AsksForSevenThingsInTheirOrder)
{
    const BindingStack face;
    const VStackInfoImp info(face);
    EXPECT_THAT(face.calls, ElementsAre("labels", "type", "sizes", "lengths", "offsets", "name", "description"));
}

TEST(DescriptionOfAFace, IsNotLocked)
{
    VStackInfoImp info{BindingStack()};
    info.set_name("other");
    EXPECT_EQ(info.get_name(), "other");
}

TEST(DescriptionOfAFace, RecordHasNeitherTypeNorOrder)
{
    VStackInfoImp info{BindingStack()};
    auto& record = info.meta_data();
    EXPECT_TRUE(record.type.value().is_null());
    EXPECT_TRUE(record.dimension_order.value().is_null());
    EXPECT_EQ(record.size_x.get(), 2);
    EXPECT_EQ(record.size_y.get(), 3);
    EXPECT_EQ(record.size_z.get(), 1);
    EXPECT_EQ(record.physical_size_x.get(), 10.0);
    EXPECT_EQ(record.physical_size_y.get(), 10.0);
    EXPECT_EQ(record.name.get(), "cells");
    EXPECT_EQ(record.description.get(), "two of them");
}

TEST(DescriptionOfAFace, TakesTypesThatTheRecordDoesNotHave)
{
    BindingStack face;
    for (const int type : {0, 0x1000, 0x10000, 0x400, 0x12345678, -1})
    {
        face.given_type = type;
        EXPECT_EQ(VStackInfoImp(face).get_dt(), type);
    }
}

TEST(DescriptionOfAFace, StoresLengthsAndOffsetsThatTheRecordRefuses)
{
    BindingStack face;
    face.given_sizes = {2, 2, 2, 2, 2};
    face.given_labels = {};
    face.given_lengths = {1.0, 2.0, -3.0, 4.0, std::numeric_limits<double>::infinity()};
    face.given_offsets = {1.0, 2.0, 3.0, 0.0, 5.0};
    VStackInfoImp info(face);
    EXPECT_EQ(info.get_lengths(), face.given_lengths);
    EXPECT_EQ(info.get_offsets(), face.given_offsets);
    EXPECT_THAT(info.get_labels(), ElementsAre("", "", "", "", ""));
    EXPECT_EQ(info.meta_data().physical_size_y.get(), 1.0);
}

TEST(DescriptionOfAFace, HasOneLengthOffsetAndLabelAnAxisWhateverTheFaceGives)
{
    BindingStack face;
    face.given_labels = {"X"};
    face.given_lengths = {5.0};
    face.given_offsets = {};
    const VStackInfoImp few(face);
    EXPECT_THAT(few.get_labels(), ElementsAre("X", ""));
    EXPECT_THAT(few.get_lengths(), ElementsAre(5.0, 1.0));
    EXPECT_THAT(few.get_offsets(), ElementsAre(0.0, 0.0));
    face.given_labels = {"X", "Y", "Z"};
    face.given_lengths = {5.0, 6.0, 7.0};
    face.given_offsets = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
    const VStackInfoImp many(face);
    EXPECT_THAT(many.get_labels(), ElementsAre("X", "Y"));
    EXPECT_THAT(many.get_lengths(), ElementsAre(5.0, 6.0));
    EXPECT_THAT(many.get_offsets(), ElementsAre(1.0, 2.0));
}

TEST(DescriptionOfAFace, SizesFailAsAnywhere)
{
    BindingStack face;
    face.given_sizes = Sizes(6, 2);
    EXPECT_THROW_TEXT(VStackInfoImp{face}, std::invalid_argument, "Unsupported number of sizes");
    face.given_sizes = {std::uint64_t{1} << 32, std::uint64_t{1} << 32};
    EXPECT_VELA_ERROR(VStackInfoImp{face}, -1, "The product exceeds the maximum size.");
    face.given_sizes = {2, 2, 2, 2, 2, 0};
    EXPECT_EQ(VStackInfoImp(face).get_rank(), 6U);
}

TEST(StackOfAFace, SeesTheBytesOfTheSegment)
{
    Segment segment("abcdef");
    const BindingStack face = face_of(segment);
    VStackImp stack(face);
    EXPECT_EQ(std::memcmp(stack.get_data_ptr(), "abcdef", 6), 0);
    EXPECT_EQ(stack.get_name(), "cells");
    EXPECT_EQ(stack.get_sizes(), (Sizes{2, 3}));
    stack.get_data_ptr()[0] = 'A';
    EXPECT_EQ(segment.text(), "Abcdef");
    EXPECT_EQ(face.calls.back(), "share");
    EXPECT_EQ(face.calls.size(), 8U);
}

TEST(StackOfAFace, IsSharedAlreadyByTheSameId)
{
    const Segment segment("abcdef");
    const VStackImp stack(face_of(segment));
    EXPECT_STREQ(stack.share(), segment.memory.id());
}

TEST(StackOfAFace, NeverChangesItsSizeBeforeItIsDestroyed)
{
    const Segment segment("abcdef");
    VStackImp stack(face_of(segment));
    EXPECT_THROW_TEXT(stack.create(Sizes{2, 3}, vela_dt_uint8), std::runtime_error, "Cannot resize shared data");
    stack.destroy();
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    stack.create(Sizes{4, 1}, vela_dt_uint8);
    EXPECT_EQ(stack.get_block_size(), 4U);
}

TEST(StackOfAFace, KeepsItsBytesWhenTheSegmentLosesItsName)
{
    auto segment = std::make_unique<Segment>("abcdef");
    const VStackImp stack(face_of(*segment));
    segment.reset();
    EXPECT_EQ(std::memcmp(stack.get_data_ptr(), "abcdef", 6), 0);
}

TEST(StackOfAFace, MayBeSmallerThanTheSegment)
{
    const Segment segment("abcdef");
    BindingStack face = face_of(segment);
    face.given_sizes = {2, 1};
    const VStackImp stack(face);
    EXPECT_EQ(stack.get_size(vela_dt_none), 2U);
    EXPECT_EQ(stack.get_block_size(), 6U);
}

TEST(StackOfAFace, CannotBeLargerThanTheSegment)
{
    const Segment segment("abcdef");
    BindingStack face = face_of(segment);
    const char* const text = "Shared memory smaller than the stack!";
    face.given_sizes = {7};
    EXPECT_VELA_ERROR_IN(VStackImp{face}, "VStackImp::VStackImp", "sources/stacks", -1, text);
    face.given_sizes = {2, 3};
    face.given_type = vela_dt_uint16;
    EXPECT_VELA_ERROR(VStackImp{face}, -1, text);
    face.given_sizes = {3};
    EXPECT_EQ(VStackImp(face).get_size(vela_dt_none), 6U);
    face.given_sizes = {std::uint64_t{1} << 62}; // 2^66 bytes, of which the low 64 bits are 0
    face.given_type = vela_dt_double | vela_dt_complex;
    EXPECT_VELA_ERROR(VStackImp{face}, -1, text);
}

TEST(StackOfAFace, WithoutSamplesHasASegmentWithoutBytes)
{
    const Segment segment("");
    BindingStack face = face_of(segment);
    face.given_sizes = {4, 0};
    const VStackImp stack(face);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    face.given_sizes = {1};
    EXPECT_VELA_ERROR(VStackImp{face}, -1, "Shared memory smaller than the stack!");
}

TEST(StackOfAFace, WithoutTheSegmentIsNone)
{
    BindingStack face;
    for (const char* const id : {"", "no such segment", "../../etc/passwd"})
    {
        face.given_id = id;
        EXPECT_THROW(VStackImp{face}, boost::interprocess::interprocess_exception) << id;
    }
}

TEST(StackOfAFace, FailureLeavesTheSegmentAlone)
{
    Segment segment("abcdef");
    {
        BindingStack face = face_of(segment);
        face.given_sizes = {7};
        EXPECT_THROW(VStackImp{face}, VelaError);
    }
    EXPECT_EQ(vela_test::shared_names_left().size(), 1U);
    EXPECT_EQ(segment.text(), "abcdef");
}

TEST(StackOfAFace, IsCopiedFromAsAnyStack)
{
    const Segment segment("abcdef");
    const VStackImp source(face_of(segment));
    VStackImp target;
    target.copy(&source, vela_dt_none);
    EXPECT_EQ(std::memcmp(target.get_data_ptr(), "abcdef", 6), 0);
    EXPECT_NE(target.get_data_ptr(), source.get_data_ptr());
    EXPECT_EQ(target.get_name(), "cells");
}

}
