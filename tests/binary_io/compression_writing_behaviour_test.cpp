// How samples are stored, and the setters that say so.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

using CompressionWriting = VbfWritingTest;

const char* const no_change = "Cannot change compression mode!";
const char* const no_type = "Invalid compression type specified!";
const char* const no_block = "Flush block size can only be set before starting to write!";

std::pair<int, int> compression_of(const Stack& stack)
{
    std::pair<int, int> result(77, 77);
    stack->get_compression(result.first, result.second);
    return result;
}

TEST_F(CompressionWriting, IsNoneAtLevelOneAtFirst)
{
    begin_file();
    const Stack stack = add({4, 3});
    EXPECT_EQ(compression_of(stack), std::pair(0, 1));
    write_bytes(stack, numbered_bytes(12));
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.compression_type, 0);
    EXPECT_EQ(written.compression_level, 1);
}

TEST_F(CompressionWriting, TheDefaultOfTheFileHoldsForStacksThatAreAddedLater)
{
    begin_file();
    const Stack before = add({40});
    file->set_default_compression(1, 6);
    EXPECT_EQ(compression_of(before), std::pair(0, 1));
    write_bytes(before, constant_bytes(40));
    const Stack after = file->add_stack(false);
    EXPECT_EQ(compression_of(after), std::pair(1, 6));
    after->create(Sizes{40}, vela_dt_uint8);
    EXPECT_EQ(compression_of(after), std::pair(1, 6));
    write_bytes(after, constant_bytes(40));
    const Stack of_its_own = add({40});
    of_its_own->set_compression(0, 3);
    write_bytes(of_its_own, constant_bytes(40));
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 3u);
    EXPECT_EQ(written.stacks[0].data_length_on_disk, 40u);
    EXPECT_LT(written.stacks[1].data_length_on_disk, 40u);
    EXPECT_EQ(written.stacks[1].compression_type, 1);
    EXPECT_EQ(written.stacks[1].compression_level, 6);
    EXPECT_EQ(written.stacks[1].samples(), constant_bytes(40));
    EXPECT_EQ(written.stacks[2].data_length_on_disk, 40u);
    EXPECT_EQ(written.stacks[2].compression_level, 3);
}

TEST_F(CompressionWriting, TheDefaultMayBeSetBeforeTheFileIsOpen)
{
    file_path = path("later.vbf");
    file->set_default_compression(1, 9);
    file->open(file_name(file_path), VFile::write_mode);
    EXPECT_EQ(compression_of(file->add_stack(false)), std::pair(1, 9));
}

TEST_F(CompressionWriting, MayBeSetUntilTheFirstWrite)
{
    begin_file();
    const Stack stack = file->add_stack(false);
    stack->set_compression(1, 2);
    EXPECT_EQ(compression_of(stack), std::pair(1, 2));
    stack->create(Sizes{4, 3}, vela_dt_uint8);
    stack->set_compression(1, 3);
    stack->write(vela_dt_uint8, numbered_bytes(12).data(), nullptr, 5);
    EXPECT_STACK_ERROR(stack->set_compression(0, 0), "set_compression", -1, no_change);
    EXPECT_EQ(compression_of(stack), std::pair(1, 3));
    stack->write(vela_dt_uint8, numbered_bytes(12).data() + 5, nullptr, 7);
    EXPECT_STACK_ERROR(stack->set_compression(0, 0), "set_compression", -1, no_change);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.compression_level, 3);
    EXPECT_EQ(written.samples(), numbered_bytes(12));
}

TEST_F(CompressionWriting, EveryLevelStoresTheSameSamples)
{
    const Bytes data = sparse_bytes(30000);
    for (int level = 1; level <= 9; ++level)
    {
        begin_file();
        const Stack stack = add({100, 300});
        stack->set_compression(1, level);
        write_bytes(stack, data);
        const WrittenStack written = close_file_with_one_stack();
        EXPECT_LT(written.data_length_on_disk, 30000u);
        EXPECT_EQ(written.compression_level, level);
        EXPECT_TRUE(written.samples() == data) << level;
    }
}

TEST_F(CompressionWriting, TheStreamDoesNotDependOnThePieces)
{
    const Bytes data = sparse_bytes(30000);
    for (const std::uint32_t chunk : {0u, 100u, 4096u, 1000000u})
        for (const std::size_t piece : {std::size_t{999}, std::size_t{30000}})
        {
            begin_file();
            file->set_chunk_size(chunk);
            const Stack stack = add({30000});
            stack->set_compression(1, 6);
            for (std::size_t begin = 0; begin < data.size(); begin += piece)
                write_bytes(stack, slice(data, begin, std::min(begin + piece, data.size())));
            EXPECT_TRUE(close_file_with_one_stack().samples() == data) << chunk;
        }
}

TEST_F(CompressionWriting, LevelsBelowOneStoreAndTheHeaderSaysOneAllTheSame)
{
    for (const int level : {0, -1})
    {
        begin_file();
        const Stack stack = add({4, 3});
        stack->set_compression(1, level);
        write_bytes(stack, numbered_bytes(12));
        const WrittenStack written = close_file_with_one_stack();
        EXPECT_EQ(written.compression_type, 1);
        EXPECT_EQ(written.compression_level, level);
        EXPECT_EQ(written.data, numbered_bytes(12));
    }
}

TEST_F(CompressionWriting, LevelsOfTypeZeroAreWrittenAndMeanNothing)
{
    begin_file();
    const Stack stack = add({4, 3});
    stack->set_compression(0, -5);
    write_bytes(stack, numbered_bytes(12));
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.compression_level, -5);
    EXPECT_EQ(written.data, numbered_bytes(12));
}

TEST_F(CompressionWriting, ALevelThatZlibDoesNotKnowFailsWithItsCode)
{
    begin_file();
    const Stack stack = add({4, 3});
    stack->set_compression(1, 10);
    EXPECT_VELA_ERROR(write_bytes(stack, numbered_bytes(12)), -10, "Zip error (id: -2)!");
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(on_disk().stacks.size(), 0u);
}

TEST_F(CompressionWriting, UnknownTypesAreRefusedByTheFirstWriteAndNothingIsWritten)
{
    for (const int type : {2, 3, 1000000, -1})
    {
        SCOPED_TRACE(type);
        begin_file();
        add_whole("before");
        const Bytes before = content();
        const Stack stack = add({4, 3});
        EXPECT_NO_THROW(stack->set_compression(type, 1));
        EXPECT_EQ(compression_of(stack), std::pair(type, 1));
        EXPECT_STACK_ERROR(write_bytes(stack, numbered_bytes(12)), "write_header", -1, no_type);
        EXPECT_EQ(content(), before);
        EXPECT_STACK_ERROR(stack->set_compression(0, 1), "set_compression", -1, no_change);
        EXPECT_THROW(file->close(), VelaError);
        file.reset();
        EXPECT_EQ(on_disk().stack_names(), std::vector<std::string>{"before"});
    }
}

TEST_F(CompressionWriting, TheFlushBlockIsSetInOneStateAlone)
{
    begin_file();
    const Stack stack = file->add_stack(false);
    EXPECT_STACK_ERROR(stack->set_flush_block_size(1000), "set_flush_block_size", -1, no_block);
    stack->create(Sizes{70000}, vela_dt_uint8);
    EXPECT_NO_THROW(stack->set_flush_block_size(1000));
    EXPECT_NO_THROW(stack->set_flush_block_size(20000));
    stack->set_compression(1, 6);
    const Bytes data = sparse_bytes(70000);
    stack->write(vela_dt_uint8, data.data(), nullptr, 10);
    EXPECT_STACK_ERROR(stack->set_flush_block_size(30000), "set_flush_block_size", -1, no_block);
    stack->write(vela_dt_uint8, data.data() + 10, nullptr, 69990);
    EXPECT_STACK_ERROR(stack->set_flush_block_size(30000), "set_flush_block_size", -1, no_block);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.flush_block_size, 20000u);
    EXPECT_EQ(written.flush_point_count, 3u);
    EXPECT_TRUE(written.samples() == data);
}

} // namespace
