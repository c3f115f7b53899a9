// Chunks, and the callback that is asked behind each of them.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

/// Notes what it is asked, and answers 0 once.
struct Progress
{
    std::vector<std::uint64_t> sizes_bytes;
    std::size_t cancel_at = ~std::size_t{0};
    int answer = 1;

    static int ask(std::uint64_t size_bytes, void* user)
    {
        Progress& progress = *static_cast<Progress*>(user);
        progress.sizes_bytes.push_back(size_bytes);
        return progress.sizes_bytes.size() - 1 == progress.cancel_at ? 0 : progress.answer;
    }
};

class ProgressWriting : public VbfWritingTest
{
protected:
    static constexpr const char* cancelled = "Cancelled by user!";

    typedef std::vector<std::uint64_t> Asked;

    void begin_watched_file(std::uint32_t chunk_size)
    {
        progress = Progress();
        begin_file();
        file->set_chunk_size(chunk_size);
        file->set_progress_callback(&Progress::ask, &progress);
    }

    Progress progress;
};

TEST_F(ProgressWriting, EachChunkIsAnnouncedWithItsBytes)
{
    begin_watched_file(10);
    const Stack stack = add({4, 3}, vela_dt_uint16);
    write_bytes(stack, noisy_bytes(24));
    EXPECT_EQ(progress.sizes_bytes, (Asked{10, 10, 4}));
    EXPECT_EQ(close_file_with_one_stack().data, noisy_bytes(24));
    EXPECT_EQ(progress.sizes_bytes.size(), 3u) << "nothing else is asked";
}

TEST_F(ProgressWriting, AChunkHoldsWholeSamples)
{
    begin_watched_file(11);
    write_bytes(add({5}, vela_dt_uint32), noisy_bytes(20));
    EXPECT_EQ(progress.sizes_bytes, (Asked{8, 8, 4}));
}

TEST_F(ProgressWriting, AChunkHasAtLeastOneSample)
{
    for (const std::uint32_t chunk : {0u, 1u, 7u, 8u, 15u})
    {
        begin_watched_file(chunk);
        write_bytes(add({3}, vela_dt_double), noisy_bytes(24));
        EXPECT_EQ(progress.sizes_bytes, (Asked{8, 8, 8})) << chunk;
        EXPECT_EQ(close_file_with_one_stack().data, noisy_bytes(24));
    }
}

TEST_F(ProgressWriting, TheBytesAreThoseOfTheStackAndNotOfTheBuffer)
{
    begin_watched_file(6);
    const Stack stack = add({5}, vela_dt_uint16);
    const std::vector<double> source(5, 3.0);
    stack->write(vela_dt_double, source.data(), nullptr, 5);
    EXPECT_EQ(progress.sizes_bytes, (Asked{6, 4}));
}

TEST_F(ProgressWriting, EachCallBeginsAChunk)
{
    begin_watched_file(10);
    const Stack stack = add({20});
    stack->write(vela_dt_uint8, numbered_bytes(20).data(), nullptr, 3);
    stack->write(vela_dt_uint8, numbered_bytes(20).data(), nullptr, 17);
    EXPECT_EQ(progress.sizes_bytes, (Asked{3, 10, 7}));
}

TEST_F(ProgressWriting, AChunkIsFourMebibytesAtFirst)
{
    begin_file();
    file->set_progress_callback(&Progress::ask, &progress);
    write_bytes(add({1024, 1024, 5}), constant_bytes(5u << 20));
    EXPECT_EQ(progress.sizes_bytes, (Asked{4u << 20, 1u << 20}));
}

TEST_F(ProgressWriting, NobodyIsAskedWhereNothingIsWritten)
{
    begin_watched_file(10);
    add({4, 3}, vela_dt_uint8, true)->commit(0);
    add({4, 0})->commit(0);
    close_file();
    EXPECT_EQ(progress.sizes_bytes, Asked());
}

TEST_F(ProgressWriting, AnyAnswerButZeroGoesOn)
{
    for (const int answer : {1, -1, 256, 1 << 30})
    {
        begin_watched_file(4);
        progress.answer = answer;
        EXPECT_NO_THROW(write_bytes(add({8}), numbered_bytes(8)));
        EXPECT_EQ(progress.sizes_bytes.size(), 2u);
    }
}

TEST_F(ProgressWriting, WithoutACallbackNobodyIsAsked)
{
    begin_watched_file(4);
    file->set_progress_callback(nullptr, nullptr);
    write_bytes(add({8}), numbered_bytes(8));
    EXPECT_EQ(progress.sizes_bytes, Asked());
    EXPECT_EQ(close_file_with_one_stack().data, numbered_bytes(8));
}

TEST_F(ProgressWriting, TheChunkIsOnDiskWhenTheCallbackIsAsked)
{
    begin_file();
    file->set_chunk_size(4);
    struct Watch
    {
        std::string path;
        std::vector<std::size_t> sizes;
        static int ask(std::uint64_t, void* user)
        {
            Watch& watch = *static_cast<Watch*>(user);
            watch.sizes.push_back(get_bytes(watch.path).size());
            return 1;
        }
    } watch = {file_path, {}};
    file->set_progress_callback(&Watch::ask, &watch);
    write_bytes(add({10}), numbered_bytes(10));
    EXPECT_EQ(watch.sizes, (std::vector<std::size_t>{402 + 4, 402 + 8, 402 + 10}));
}

TEST_F(ProgressWriting, ACancelledChunkIsOnDiskButDoesNotCount)
{
    begin_watched_file(4);
    progress.cancel_at = 1;
    const Stack stack = add({12});
    const Bytes samples = numbered_bytes(12);
    EXPECT_STACK_ERROR(write_bytes(stack, samples), "write", -11, cancelled);
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(content().size(), 402u + 8);
    EXPECT_STACK_ERROR(stack->write(vela_dt_uint8, samples.data(), nullptr, 9), "write", -1,
                       "Trying to write more samples than the stack is long!");
    stack->write(vela_dt_uint8, samples.data() + 4, nullptr, 8);
    EXPECT_EQ(stack->get_state(), 0);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.data, slice(samples, 0, 8) + slice(samples, 4, 12));
    EXPECT_EQ(written.data_length_on_disk, 16u);
    EXPECT_EQ(written.sizes, std::vector<std::uint32_t>{12});
}

TEST_F(ProgressWriting, AStackWhoseLastChunkWasCancelledIsNotComplete)
{
    begin_watched_file(100);
    add_whole("before");
    progress.cancel_at = progress.sizes_bytes.size();
    const Stack stack = add({12});
    EXPECT_STACK_ERROR(write_bytes(stack, numbered_bytes(12)), "write", -11, cancelled);
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_STACK_ERROR(stack->commit(0), "write", -1, "Not enough samples written!");
    EXPECT_STACK_ERROR(file->close(), "write", -1, "Not enough samples written!");
    EXPECT_EQ(on_disk().stack_names(), std::vector<std::string>{"before"});
}

TEST_F(ProgressWriting, CancellingCanBeTriedAgainUntilItWorks)
{
    begin_watched_file(100);
    const Stack stack = add({3, 0});
    progress.cancel_at = 0;
    EXPECT_STACK_ERROR(stack->write(vela_dt_uint8, numbered_bytes(3).data(), nullptr, 3), "write", -11, cancelled);
    EXPECT_EQ(stack->get_dimension_size(1), 0u);
    stack->write(vela_dt_uint8, numbered_bytes(3).data(), nullptr, 3);
    EXPECT_EQ(stack->get_dimension_size(1), 1u);
}

TEST_F(ProgressWriting, ACancelledConversionDoesNotCountEither)
{
    begin_watched_file(4);
    progress.cancel_at = 1;
    const Stack stack = add({6}, vela_dt_uint16);
    const std::vector<float> source = {1, 2, 3, 4, 5, 6};
    EXPECT_STACK_ERROR(stack->write(vela_dt_single, source.data(), nullptr, 6), "write", -11, cancelled);
    stack->write(vela_dt_single, source.data() + 2, nullptr, 4);
    EXPECT_EQ(close_file_with_one_stack().data, bytes_of_numbers(std::vector<std::uint16_t>{1, 2, 3, 4, 3, 4, 5, 6}));
}

TEST_F(ProgressWriting, ACancelledWriteIsTheLastError)
{
    begin_watched_file(100);
    progress.cancel_at = 0;
    try
    {
        write_bytes(add({4, 3}), numbered_bytes(12));
        ADD_FAILURE() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.process(), -11);
    }
    const std::string text = vela_bf_get_errorstring(-1);
    EXPECT_EQ(text.rfind("Error in vbf module: Operation cancelled by caller\n", 0), 0u) << text;
    EXPECT_NE(text.find("in function 'VBFStackImp::write':"), std::string::npos) << text;
    EXPECT_NE(text.find(cancelled), std::string::npos) << text;
}

} // namespace
