// Files as such: opening, closing, handles of others, and the handle class.
#include <VelaBase/VelaError.h>
#include <VelaStacks/VStack.h>

#include "binary_io/written_vbf.h"
#include "support/descriptor.h"
#include "support/expect_vela_error.h"

#include <fcntl.h>
#include <unistd.h>

using namespace vela_test;

namespace {

class VBFFileTest : public WritingTest
{
protected:
    /// Puts a damaged file in the place of the written one.
    void damage(std::uint64_t position, unsigned char byte)
    {
        Bytes bytes = get_bytes(path("written.vbf"));
        bytes.at(position) = byte;
        put_bytes(path("written.vbf"), bytes);
    }
};

} // namespace

TEST_F(VBFFileTest, ANewFileIsClosed)
{
    VBFFile fresh;
    EXPECT_FALSE(fresh->is_open());
    EXPECT_FALSE(fresh->is_attached());
    EXPECT_EQ(fresh->get_mode(), static_cast<VFile::mode>(-1));
    EXPECT_EQ(fresh->number_of_stacks(), 0U);
    EXPECT_NO_THROW(fresh->close());
    EXPECT_EQ(fresh->detach(), nullptr);
}

TEST_F(VBFFileTest, ClosingTwiceIsQuiet)
{
    add_complete({3});
    file->close();
    const Bytes bytes = get_bytes(path("written.vbf"));
    EXPECT_NO_THROW(file->close());
    EXPECT_FALSE(file->is_open());
    EXPECT_EQ(get_bytes(path("written.vbf")), bytes);
}

TEST_F(VBFFileTest, AnOpenFileIsNotOpenedAgain)
{
    EXPECT_VELA_ERROR(file->open(file_name(path("other.vbf")), VFile::write_mode), -1,
                      "File already open or attached!");
    EXPECT_TRUE(file->is_open());
    add_complete({3});
    EXPECT_EQ(reopen()->number_of_stacks(), 1U);
}

TEST_F(VBFFileTest, AnOpenFileDoesNotLoseItsStacksToADblFile)
{
    const Stack stack = add({3});
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    put_bytes(path("other.dbl"), Bytes(136));
    EXPECT_VELA_ERROR_IN(file->open(file_name(path("other.dbl")), VFile::read_mode), "VFile::open", "sources/file", -1,
                         "File already open or attached!");
    EXPECT_EQ(file->number_of_stacks(), 1U);
    stack->write(vela_dt_uint8, "c", nullptr, 1);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b', 'c'}));
    EXPECT_VELA_ERROR(file->open(file_name(path("missing.dbl")), VFile::read_mode), -1,
                      "File already open or attached!");
    EXPECT_EQ(file->number_of_stacks(), 1U);
}

TEST_F(VBFFileTest, WhatAFileSaidIsGoneWithTheNextOne)
{
    VbfBytes old;
    old.file_header(0, "old");
    put_bytes(path("old.vbf"), old.bytes());
    put_bytes(path("a.dbl"), Bytes(136));
    const auto description = [this]
    {
        std::string text;
        file->get_file_desc(text);
        return text;
    };
    file->close();
    for (const char* const next : {"a.dbl", "new.vbf"})
    {
        file->open(file_name(path("old.vbf")), VFile::read_mode);
        EXPECT_EQ(description(), "old");
        file->close();
        file->open(file_name(path(next)), next[0] == 'a' ? VFile::read_mode : VFile::write_mode);
        EXPECT_EQ(description(), "");
        file->close();
    }
    const ByteMap map(get_bytes(path("new.vbf")));
    EXPECT_EQ(map.u32(10), 2U) << "format version";
    EXPECT_EQ(map.u32(22), 0U) << "length of the description";
}

TEST_F(VBFFileTest, ACreatorThatWasSetBeforehandIsWritten)
{
    file->close();
    file->set_creator("me");
    file->open(file_name(path("written.vbf")), VFile::write_mode);
    const ByteMap map = closed();
    std::uint64_t position = map.u64(26);
    EXPECT_EQ(map.string(position), "ome_xml");
    EXPECT_NE(map.string(position).find("Creator=\"me\""), std::string::npos);
}

TEST_F(VBFFileTest, TheDictionaryOfAFileIsGoneWithADblFile)
{
    add_complete({3});
    file->close();
    put_bytes(path("a.dbl"), Bytes(136));
    file->open(file_name(path("written.vbf")), VFile::read_mode);
    file->close();
    file->open(file_name(path("a.dbl")), VFile::read_mode);
    file->close();
    file->open(file_name(path("again.vbf")), VFile::write_mode);
    file->close();
    VBFFile fresh(file_name(path("fresh.vbf")), VFile::write_mode);
    fresh->close();
    EXPECT_EQ(get_bytes(path("again.vbf")), get_bytes(path("fresh.vbf")));
}

TEST_F(VBFFileTest, NullThatWasAttachedIsGivenBack)
{
    for (const VFile::mode mode : {VFile::read_mode, VFile::write_mode, VFile::append_mode})
    {
        VBFFile other;
        if (mode == VFile::write_mode)
            other->attach(nullptr, mode);
        else
            EXPECT_VELA_ERROR(other->attach(nullptr, mode), -1, "File not open!");
        EXPECT_EQ(other->detach(), nullptr);
        EXPECT_FALSE(other->is_open());
        EXPECT_FALSE(other->is_attached());
        other->open(file_name(path("other.vbf")), VFile::write_mode);
        EXPECT_NO_THROW(other->close());
    }
}

TEST_F(VBFFileTest, TheHandleClassOpensTheSamePathAgain)
{
    add_complete({3});
    file->close();
    file.open(file_name(path("written.vbf")), VFile::read_mode);
    file.open(file_name(path("written.vbf")), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 1U);
}

TEST_F(VBFFileTest, CopiesOfTheHandleShareTheFile)
{
    const VBFFile copy = file;
    add_complete({3});
    EXPECT_EQ(copy->number_of_stacks(), 1U);
    file.reset();
    EXPECT_EQ(file.shared(), nullptr);
    EXPECT_TRUE(copy->is_open());
}

TEST_F(VBFFileTest, AFailureToOpenLeavesAClosedFile)
{
    add_complete({3});
    file->close();
    damage(first_record_pos, '?');
    VBFFile again;
    EXPECT_VELA_ERROR_IN(again.open(file_name(path("written.vbf")), VFile::read_mode), "VBFStackImp::read_info",
                         vbf_sources, -4, "Stack header not in vbf format!");
    EXPECT_FALSE(again->is_open());
    EXPECT_EQ(again->number_of_stacks(), 0U);
    EXPECT_VELA_ERROR(again.open(file_name(path("missing.vbf")), VFile::read_mode), -1, "Could not open file!");
    EXPECT_FALSE(again->is_open());
}

TEST_F(VBFFileTest, NothingIsLeftOfTheStacksBeforeADamagedOne)
{
    add_complete({3});
    add_complete({3});
    const std::uint64_t second = closed().u64(first_record_pos + 360);
    damage(second, '?');
    VBFFile again;
    EXPECT_VELA_ERROR(again->open(file_name(path("written.vbf")), VFile::read_mode), -4,
                      "Stack header not in vbf format!");
    EXPECT_EQ(again->number_of_stacks(), 0U);
}

namespace {

/// A descriptor on a new file with something in front of where the VBF file goes.
class AttachTest : public FolderTest
{
protected:
    AttachTest() : descriptor(path("stream"), O_RDWR | O_CREAT)
    {
        EXPECT_EQ(::write(descriptor.get(), "front", 5), 5);
        file->attach(descriptor.handle(), VFile::write_mode);
    }
    ~AttachTest() override { file->detach(); }

    void add_stack() { file->write_stack(&stack, vela_dt_none); }

    off_t position() const { return ::lseek(descriptor.get(), 0, SEEK_CUR); }

    /// Gives the handle back and attaches it again at `start`.
    void attach_again(off_t start, VFile::mode mode = VFile::read_mode)
    {
        file->detach();
        ::lseek(descriptor.get(), start, SEEK_SET);
        file->attach(descriptor.handle(), mode);
    }

    void overwrite(off_t at, const std::string& text)
    {
        EXPECT_EQ(::pwrite(descriptor.get(), text.data(), text.size(), at), static_cast<ssize_t>(text.size()));
    }

    VStackImp stack{Ome::Type::uint8, {3}, Ome::DimensionOrder::XYZTC};
    Descriptor descriptor;
    VBFFile file;
};

constexpr off_t front = 5;
constexpr off_t first_stack = front + static_cast<off_t>(first_record_pos);

} // namespace

TEST_F(AttachTest, AHandleIsGivenBackBehindTheFile)
{
    EXPECT_TRUE(file->is_attached());
    add_stack();
    EXPECT_EQ(file->detach(), descriptor.handle());
    EXPECT_FALSE(file->is_attached());
    const off_t end = position();
    ASSERT_EQ(::write(descriptor.get(), "back", 4), 4);

    attach_again(front);
    EXPECT_EQ(file->number_of_stacks(), 1U);
    EXPECT_EQ(position(), first_stack);
    EXPECT_VELA_ERROR(file->close(), -1, "File not opened with open(), cannot close.");
    EXPECT_EQ(file->detach(), descriptor.handle());
    EXPECT_EQ(position(), end);
}

TEST_F(AttachTest, AHandleStaysWhereTheLastStackIsNotComplete)
{
    const Stack unfinished = file->add_stack(false);
    unfinished->create({3}, vela_dt_uint8);
    unfinished->write(vela_dt_uint8, "ab", nullptr, 2);
    for (int i = 0; i < 2; ++i)
        EXPECT_VELA_ERROR(file->detach(), -1, "Not enough samples written!");
    EXPECT_TRUE(file->is_attached());
    unfinished->write(vela_dt_uint8, "c", nullptr, 1);
    EXPECT_EQ(file->detach(), descriptor.handle());
}

TEST_F(AttachTest, AnUnknownModeIsRefusedAndTheHandleStays)
{
    file->detach();
    EXPECT_VELA_ERROR_IN(file->attach(descriptor.handle(), static_cast<VFile::mode>(7)), "VBFFileImp::attach_imp",
                         vbf_sources, -15, "Invalid opening mode!");
    EXPECT_EQ(file->detach(), descriptor.handle());
}

TEST_F(AttachTest, AFailureInTheHeaderMovesBackToTheStart)
{
    add_stack();
    EXPECT_VELA_ERROR_IN(attach_again(front + 1), "VBFFileImp::attach_imp", vbf_sources, -4,
                         "No VBF file header found!");
    EXPECT_EQ(position(), front + 1);
    EXPECT_TRUE(file->is_open());
    EXPECT_EQ(file->number_of_stacks(), 0U);
}

TEST_F(AttachTest, AFailureInTheDictionaryMovesBackToTheStart)
{
    add_stack();
    file->detach();
    const off_t end = position();
    overwrite(end - 4, "\x01");
    EXPECT_VELA_ERROR(attach_again(front), -3, "Failed reading 1 bytes from file!");
    EXPECT_EQ(position(), front);
}

TEST_F(AttachTest, AFailureInTheChainMovesBackBehindTheHeader)
{
    add_stack();
    file->detach();
    overwrite(first_stack, "?");
    EXPECT_VELA_ERROR(attach_again(front), -4, "Stack header not in vbf format!");
    EXPECT_EQ(position(), first_stack);
}

TEST_F(AttachTest, ATypeWithoutARecordIsToldAsItIs)
{
    add_stack();
    file->detach();
    overwrite(first_stack + 324, "\x03");
    EXPECT_THROW_TEXT(attach_again(front), std::invalid_argument, "Unsupported data type");
    EXPECT_TRUE(file->is_open());
    EXPECT_EQ(file->number_of_stacks(), 0U);
}

TEST_F(AttachTest, WhatAStackCannotBeIsToldBeforeItsTextsAreRead)
{
    add_stack();
    file->detach();
    overwrite(first_stack + 324, "\x03");
    overwrite(first_stack + 336, "\xff\xff\xff\x7f"); // length of the name
    EXPECT_THROW_TEXT(attach_again(front), std::invalid_argument, "Unsupported data type");
}
