// What cannot be written, and that nothing is written then.
#include "binary_io/vbf_writing.h"
#include "support/descriptor.h"

#include <gtest/gtest.h>

#include <sys/mman.h>

using namespace vela_test;

namespace {

class LimitsWriting : public VbfWritingTest
{
protected:
    static constexpr std::uint64_t too_large = std::uint64_t{1} << 32;
};

TEST_F(LimitsWriting, TheLargestSizeThatTheHeaderHoldsIsWritten)
{
    begin_file();
    add({0xFFFFFFFF, 2}, vela_dt_uint8, true);
    EXPECT_EQ(close_file_with_one_stack().sizes, (std::vector<std::uint32_t>{0xFFFFFFFF, 2}));
}

TEST_F(LimitsWriting, ALargerSizeIsRefusedBeforeTheHeaderIsWritten)
{
    const std::vector<Sizes> cases = {{too_large}, {3, too_large + 5}, {3, 2, too_large}, {2, too_large, 0}};
    const std::vector<std::string> axes = {"0", "1", "2", "1"};
    for (std::size_t i = 0; i < cases.size(); ++i)
    {
        SCOPED_TRACE(testing::PrintToString(cases[i]));
        begin_file();
        add_whole("before");
        const Bytes before = content();
        const Stack stack = add(cases[i], vela_dt_uint8, true);
        EXPECT_VELA_ERROR(stack->commit(0), -1, "Size of axis " + axes[i] + " does not fit the file format!");
        EXPECT_EQ(content(), before);
    }
}

TEST_F(LimitsWriting, ALargerSizeIsRefusedWithSamplesToo)
{
    begin_file();
    file->finish();
    const Bytes before = content();
    const Stack stack = add({too_large});
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, before.data(), nullptr, 1), -1,
                      "Size of axis 0 does not fit the file format!");
    EXPECT_EQ(content(), before);
}

TEST_F(LimitsWriting, AVariableStackRefusesTheFirstWriteThatWouldPassTheHeader)
{
    // Nobody may read from here.
    void* const page = ::mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(page, MAP_FAILED);
    begin_file();
    file->finish();
    const Bytes before = content();
    const Stack stack = add({0});
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, page, nullptr, too_large), -1,
                      "Size of axis 0 does not fit the file format!");
    EXPECT_EQ(slice(content(), 0, before.size()), before);
    EXPECT_EQ(on_disk().stacks.size(), 0u);
    ::munmap(page, 4096);
}

/// The caller cancels at the first chunk, so that nobody has to have all the samples.
TEST_F(LimitsWriting, AVariableStackMayGrowToTheLargestSizeThatTheHeaderHolds)
{
    begin_file();
    file->set_chunk_size(1);
    file->set_progress_callback([](std::uint64_t, void*) { return 0; }, nullptr);
    const Stack stack = add({0});
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "a", nullptr, too_large - 1), -11, "Cancelled by user!");
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "a", nullptr, too_large), -1,
                      "Size of axis 0 does not fit the file format!");
}

TEST_F(LimitsWriting, MoreElementsThanCanBeCountedAreRefusedByTheDescription)
{
    begin_file();
    const Stack stack = file->add_stack(false);
    EXPECT_VELA_ERROR(stack->create(Sizes{too_large, too_large}, vela_dt_uint8), -1,
                      "The product exceeds the maximum size.");
    EXPECT_EQ(stack->get_state(), -1);
}

TEST_F(LimitsWriting, SixAxesWithElementsAreRefusedByTheDescription)
{
    begin_file();
    const Stack stack = file->add_stack(false);
    EXPECT_THROW_TEXT(stack->create(Sizes{2, 2, 2, 2, 2, 2}, vela_dt_uint8), std::invalid_argument,
                      "Unsupported number of sizes");
    EXPECT_EQ(stack->get_state(), -1);
    EXPECT_STACK_ERROR(file->close(), "write", -1, "Stack not ready to be commited. Meta-information missing!");
}

TEST_F(LimitsWriting, FifteenAxesWithoutElementsAreWritten)
{
    begin_file();
    Sizes sizes(15, 3);
    sizes[4] = 0;
    add(sizes, vela_dt_single)->commit(0);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.rank(), 15u);
    EXPECT_EQ(written.sizes, std::vector<std::uint32_t>(sizes.begin(), sizes.end()));
}

TEST_F(LimitsWriting, ManyTagsAndLongOnesAreWritten)
{
    begin_file();
    const Stack stack = add({1});
    stack->set_tag("long", std::string(3 << 20, 'x'));
    for (int i = 0; i < 5000; ++i)
        stack->set_tag("tag " + std::to_string(i), std::to_string(i));
    write_bytes(stack, {1});
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.tags.size(), 5001u);
    EXPECT_EQ(written.tags[0].second.size(), std::size_t{3} << 20);
}

TEST_F(LimitsWriting, WhatTheSystemRefusesFailsWithItsText)
{
    begin_file();
    add_whole("a");
    file->close();
    const Bytes before = content();
    const Descriptor reading(file_path, O_RDONLY);
    file->attach(reading.handle(), VFile::write_mode);
    try
    {
        file->add_stack(false);
        ADD_FAILURE() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_id(), -3);
        EXPECT_EQ(error.get_msg().rfind("Failed writing ", 0), 0u) << error.get_msg();
        EXPECT_GT(error.get_oserr_id(), 0);
    }
    EXPECT_EQ(file->number_of_stacks(), 0u);
    EXPECT_NO_THROW(file.reset());
    EXPECT_EQ(content(), before);
}

} // namespace
