// Whole stacks into and from files, by plain values.
#include "remote/binding_stack.h"

#include <Remote/File.h>
#include <Remote/StackObject.h>
#include <VelaBinaryIO/vela_dbl.h>
#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>

#include "support/expect_vela_error.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <type_traits>

using Remote::File;
using Remote::StackObject;
using testing::ElementsAre;
using vela_test::BindingStack;
using vela_test::file_name;

namespace {

using Sizes = std::vector<std::uint64_t>;
using Bytes = std::vector<unsigned char>;

static_assert(sizeof(File) == sizeof(VBFFile) && !std::is_polymorphic_v<File>, "the file and nothing else");
static_assert(std::is_same_v<File::Mode, VFile::mode>);

constexpr const char* closed_text = "File not open for writing!";

boost::shared_ptr<VStackInterface> numbered_stack(const Sizes& sizes)
{
    boost::shared_ptr<VStackInterface> stack(new VStackImp(Ome::Type::uint8, sizes, Ome::DimensionOrder::XYZTC));
    for (std::uint64_t i = 0; i < stack->get_number_of_elements(); ++i)
        stack->get_data_ptr()[i] = static_cast<unsigned char>(i + 1);
    return stack;
}

boost::shared_ptr<Remote::Stack> face_of(const boost::shared_ptr<VStackInterface>& stack)
{
    return boost::shared_ptr<Remote::Stack>(new StackObject(stack));
}

Bytes bytes_of(const Remote::Stack& stack)
{
    Vela::SharedMemory segment(stack.share());
    const auto* const first = static_cast<const unsigned char*>(segment.data());
    return segment.size() == 0 ? Bytes() : Bytes(first, first + segment.size());
}

class RemoteFile : public vela_test::FolderTest
{
protected:
    std::string path_of_file() const { return path("a.vbf"); }

    /// A file of these stacks.
    void write(const std::vector<boost::shared_ptr<Remote::Stack>>& stacks, int flags = 0) const
    {
        File file(path_of_file(), VFile::write_mode);
        for (const auto& stack : stacks)
            file.write(stack, flags);
        file.close();
    }
};

TEST_F(RemoteFile, WritesAndReadsStacksWithTheirDescriptions)
{
    const auto stack = face_of(numbered_stack({3, 2}));
    stack->set_name("two cells");
    stack->set_description("under water");
    stack->set_labels({"X", "Y"});
    stack->set_lengths({1.5, 2.5});
    stack->set_offsets({-1.0, 0.25});
    {
        File file(path_of_file(), VFile::write_mode);
        file.set_description("of today");
        EXPECT_EQ(file.description(), "of today");
        file.write(stack, 0);
        file.write(face_of(numbered_stack({4})), 0);
        EXPECT_EQ(file.number_of_stacks(), 2U);
        file.close();
    }
    const File file(path_of_file(), VFile::read_mode);
    EXPECT_EQ(file.description(), "of today");
    ASSERT_EQ(file.number_of_stacks(), 2U);
    const auto read = file.read(0, 0);
    EXPECT_EQ(read->name(), "two cells");
    EXPECT_EQ(read->description(), "under water");
    EXPECT_EQ(read->type(), vela_dt_uint8);
    EXPECT_EQ(read->sizes(), (Sizes{3, 2}));
    EXPECT_THAT(read->labels(), ElementsAre("X", "Y"));
    EXPECT_THAT(read->lengths(), ElementsAre(1.5, 2.5));
    EXPECT_THAT(read->offsets(), ElementsAre(-1.0, 0.25));
    EXPECT_EQ(bytes_of(*read), (Bytes{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(bytes_of(*file.read(1, 0)), (Bytes{1, 2, 3, 4}));
}

TEST_F(RemoteFile, WhatIsReadIsInMemoryAndUnlocked)
{
    write({face_of(numbered_stack({3}))});
    boost::shared_ptr<Remote::Stack> first;
    {
        const File file(path_of_file(), VFile::read_mode);
        first = file.read(0, 0);
        const auto second = file.read(0, 0);
        first->set_name("mine");
        first->set_length(0, 7.0);
        EXPECT_EQ(second->name(), "");
        EXPECT_NE(first->share(), second->share());
    }
    EXPECT_EQ(first->name(), "mine");
    EXPECT_EQ(first->length(0), 7.0);
    EXPECT_EQ(bytes_of(*first), (Bytes{1, 2, 3}));
}

TEST_F(RemoteFile, FlagsOfReadAreTheTypeInMemory)
{
    write({face_of(numbered_stack({2}))});
    const auto read = File(path_of_file(), VFile::read_mode).read(0, vela_dt_uint16);
    EXPECT_EQ(read->type(), vela_dt_uint16);
    EXPECT_EQ(bytes_of(*read), (Bytes{1, 0, 2, 0}));
}

TEST_F(RemoteFile, FlagsOfWriteAreTheTypeInTheFile)
{
    write({face_of(numbered_stack({2}))}, vela_dt_uint16);
    const auto read = File(path_of_file(), VFile::read_mode).read(0, 0);
    EXPECT_EQ(read->type(), vela_dt_uint16);
    EXPECT_EQ(bytes_of(*read), (Bytes{1, 0, 2, 0}));
}

TEST_F(RemoteFile, WritingMovesTheSourceIntoSharedMemoryForGood)
{
    const boost::shared_ptr<VStackInterface> stack = numbered_stack({3});
    const unsigned char* const before = stack->get_data_ptr();
    write({face_of(stack)});
    unsigned char* const after = stack->get_data_ptr();
    EXPECT_NE(after, before);
    const std::string id = stack->share();
    EXPECT_EQ(stack->get_data_ptr(), after);
    Vela::SharedMemory segment(id);
    after[0] = 77;
    EXPECT_EQ(static_cast<unsigned char*>(segment.data())[0], 77);
}

TEST_F(RemoteFile, WritingAStackThatIsSharedKeepsItsId)
{
    const boost::shared_ptr<VStackInterface> stack = numbered_stack({3});
    const auto face = face_of(stack);
    const std::string id = face->share();
    const unsigned char* const data = stack->get_data_ptr();
    write({face});
    EXPECT_EQ(face->share(), id);
    EXPECT_EQ(stack->get_data_ptr(), data);
}

TEST_F(RemoteFile, WritesAStackThatABindingImplements)
{
    Vela::SharedMemory segment(6);
    std::memcpy(segment.data(), "abcdef", 6);
    const boost::shared_ptr<BindingStack> face(new BindingStack);
    face->given_id = segment.id();
    write({face});
    EXPECT_THAT(face->calls,
                ElementsAre("labels", "type", "sizes", "lengths", "offsets", "name", "description", "share"));
    EXPECT_EQ(face.use_count(), 1);
    const auto read = File(path_of_file(), VFile::read_mode).read(0, 0);
    EXPECT_EQ(read->name(), "cells");
    EXPECT_EQ(read->sizes(), (Sizes{2, 3}));
    EXPECT_THAT(read->labels(), ElementsAre("X", "Y"));
    EXPECT_EQ(bytes_of(*read), (Bytes{'a', 'b', 'c', 'd', 'e', 'f'}));
}

TEST_F(RemoteFile, FiveAxesAndATimeSeriesWithoutOffsetGoThrough)
{
    const boost::shared_ptr<VStackInterface> stack = numbered_stack({2, 2, 2, 3, 2});
    Vela::SharedMemory segment(stack->share());
    const boost::shared_ptr<BindingStack> face(new BindingStack);
    face->given_id = segment.id();
    face->given_sizes = stack->get_sizes();
    face->given_lengths = {1.0, 2.0, 3.0, 4.0, 5.0};
    face->given_offsets = {0.5, 0.0, 0.0, 0.0, 6.0};
    write({face});
    const auto read = File(path_of_file(), VFile::read_mode).read(0, 0);
    EXPECT_EQ(read->lengths(), face->given_lengths);
    EXPECT_EQ(read->offsets(), face->given_offsets);
    EXPECT_EQ(read->number_of_elements(), 48U);
}

TEST_F(RemoteFile, ReadsADblFile)
{
    const double samples[] = {1.5, 2.5};
    const int dims[] = {2, 1, 1, 1};
    const float lengths[] = {4, 1, 1, 1};
    ASSERT_EQ(vela_dbl_write(path("a.dbl").c_str(), dims, lengths, samples, 0), 1);
    const File file(path("a.dbl"), VFile::read_mode);
    ASSERT_EQ(file.number_of_stacks(), 1U);
    const auto read = file.read(0, 0);
    EXPECT_EQ(read->type(), vela_dt_double);
    EXPECT_EQ(read->sizes(), (Sizes{2}));
    EXPECT_THAT(read->lengths(), ElementsAre(4.0));
    double values[2] = {};
    std::memcpy(values, bytes_of(*read).data(), sizeof values);
    EXPECT_THAT(values, ElementsAre(1.5, 2.5));
}

TEST_F(RemoteFile, PathIsUtf8)
{
    const std::string name = path("\xC3\xBC.vbf");
    {
        const File file(name, VFile::write_mode);
    }
    EXPECT_EQ(File(name, VFile::read_mode).number_of_stacks(), 0U);
}

TEST_F(RemoteFile, FailuresPassAsTheyAre)
{
    EXPECT_VELA_ERROR(File(path("none.vbf"), VFile::read_mode), -1, "Could not open file!");
    EXPECT_VELA_ERROR(File(path_of_file(), static_cast<File::Mode>(7)), -1, "Invalid file mode when opening file.");
    write({face_of(numbered_stack({3}))});
    File file(path_of_file(), VFile::read_mode);
    EXPECT_VELA_ERROR(file.read(1, 0), -4, "Invalid stack index 1!");
    EXPECT_VELA_ERROR(file.set_description("d"), -9, "Read-only handle specified in write function!");
    EXPECT_VELA_ERROR(file.write(face_of(numbered_stack({3})), 0), -1, closed_text);
}

TEST_F(RemoteFile, DescriptionComesBeforeTheFirstStack)
{
    File file(path_of_file(), VFile::write_mode);
    file.write(face_of(numbered_stack({3})), 0);
    EXPECT_VELA_ERROR(file.set_description("late"), -1, "Header already written. Cannot set file description!");
}

TEST_F(RemoteFile, SegmentThatIsTooSmallLeavesTheFileAsItWas)
{
    const Vela::SharedMemory segment(5);
    const boost::shared_ptr<BindingStack> face(new BindingStack);
    face->given_id = segment.id();
    File file(path_of_file(), VFile::write_mode);
    EXPECT_VELA_ERROR(file.write(face, 0), -1, "Shared memory smaller than the stack!");
    EXPECT_EQ(file.number_of_stacks(), 0U);
    file.close();
    EXPECT_EQ(File(path_of_file(), VFile::read_mode).number_of_stacks(), 0U);
}

TEST_F(RemoteFile, CopiesShareTheFile)
{
    File first(path_of_file(), VFile::write_mode);
    File second(first);
    File third(path("b.vbf"), VFile::write_mode);
    third = second;
    first.set_description("seen by all");
    EXPECT_EQ(third.description(), "seen by all");
    third.write(face_of(numbered_stack({3})), 0);
    EXPECT_EQ(second.number_of_stacks(), 1U);
}

TEST_F(RemoteFile, FirstCopyThatIsDestroyedClosesForAll)
{
    File first(path_of_file(), VFile::write_mode);
    first.write(face_of(numbered_stack({3})), 0);
    {
        const File second(first);
    }
    EXPECT_VELA_ERROR(first.write(face_of(numbered_stack({3})), 0), -1, closed_text);
    EXPECT_EQ(File(path_of_file(), VFile::read_mode).number_of_stacks(), 1U);
    first.close();
}

TEST_F(RemoteFile, ClosingTwiceIsQuiet)
{
    File file(path_of_file(), VFile::write_mode);
    file.close();
    file.close();
}

/// A stack that has been added and cannot be described is never complete.
TEST_F(RemoteFile, DestructorSwallowsWhatCloseThrows)
{
    Vela::SharedMemory segment(48);
    const boost::shared_ptr<BindingStack> face(new BindingStack);
    face->given_id = segment.id();
    face->given_type = vela_dt_uint64;
    auto file = std::make_unique<File>(path_of_file(), VFile::write_mode);
    EXPECT_THROW_TEXT(file->write(face, 0), std::invalid_argument, "Unsupported data type");
    EXPECT_THROW(file->close(), VelaError);
    EXPECT_NO_THROW(file.reset());
    const VFile released(file_name(path_of_file()), VFile::read_mode);
    EXPECT_TRUE(released.is_open());
}

}
