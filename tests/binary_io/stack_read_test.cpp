// Reading the samples of a stack: positions, types, empty stacks, progress.
#include <VelaStacks/VStack.h>

#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"

#include <algorithm>
#include <complex>

using namespace vela_test;

namespace {

constexpr std::uint64_t all = VBFStackInterface::all_samples;
constexpr std::uint64_t exhausted = VBFStackInterface::exhausted;
constexpr std::uint64_t continued = VBFStackInterface::continued;

class StackReadTest : public WritingTest
{
protected:
    /// The bytes 0 to 19, in a file that is open for reading.
    Stack twenty()
    {
        add_complete({5, 4});
        return reopen()->get_stack(0);
    }

    Stack empty_stack()
    {
        const Stack stack = file->add_stack(true);
        stack->create({5, 4}, vela_dt_uint8);
        return reopen()->get_stack(0);
    }

    void expect_read_error(const Stack& stack, std::uint64_t pos, int id, const std::string& text)
    {
        EXPECT_VELA_ERROR_IN(stack->read(vela_dt_uint8, buffer.data(), nullptr, 1, pos), "VBFStackImp::read_imp",
                             vbf_sources, id, text);
    }

    Bytes buffer = Bytes(200, 0xcd);
};

} // namespace

TEST_F(StackReadTest, APartAndWhereItEnds)
{
    const Stack stack = twenty();
    std::uint64_t pos = 3;
    EXPECT_EQ(stack->read(vela_dt_uint8, buffer.data(), nullptr, 4, pos), 4U);
    EXPECT_EQ(pos, 7U);
    EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + 5), Bytes({3, 4, 5, 6, 0xcd}));
    pos = continued;
    EXPECT_EQ(stack->read(vela_dt_uint8, buffer.data(), nullptr, 2, pos), 2U);
    EXPECT_EQ(pos, 9U);
    EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + 3), Bytes({7, 8, 5}));
}

TEST_F(StackReadTest, CountsThatReachTheEndExhaustTheStack)
{
    const Stack stack = twenty();
    for (const std::uint64_t count : {std::uint64_t{5}, std::uint64_t{6}, std::uint64_t{1} << 63, all})
    {
        std::uint64_t pos = 15;
        EXPECT_EQ(stack->read(vela_dt_uint8, buffer.data(), nullptr, count, pos), 5U);
        EXPECT_EQ(pos, exhausted);
        expect_read_error(stack, continued, -1,
                          "Invalid position (-1) passed. Possible reason: Last read call exhausted data.");
    }
}

TEST_F(StackReadTest, AnExhaustedStackIsReadAgain)
{
    const Stack stack = twenty();
    stack->read(vela_dt_uint8, buffer.data(), nullptr);
    std::uint64_t pos = 19;
    EXPECT_EQ(stack->read(vela_dt_uint8, buffer.data(), nullptr, all, pos), 1U);
    EXPECT_EQ(buffer[0], 19);
}

TEST_F(StackReadTest, AReadOfNothingStaysWhereItIs)
{
    const Stack stack = twenty();
    std::uint64_t pos = 4;
    EXPECT_EQ(stack->read(vela_dt_uint8, nullptr, nullptr, 0, pos), 0U);
    EXPECT_EQ(pos, 4U);
    pos = continued;
    EXPECT_EQ(stack->read(vela_dt_uint8, buffer.data(), nullptr, 1, pos), 1U);
    EXPECT_EQ(buffer[0], 4);
}

TEST_F(StackReadTest, TheEndIsNoPosition)
{
    const Stack stack = twenty();
    std::uint64_t pos = 20;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, buffer.data(), nullptr, 1, pos), -1, "Invalid position in segment!");
    EXPECT_EQ(pos, 20U);
    expect_read_error(stack, 21, -1, "Invalid position in segment!");
    expect_read_error(stack, exhausted - 2, -1, "Invalid position in segment!");
    expect_read_error(stack, exhausted, -1,
                      "Invalid position (-1) passed. Possible reason: Last read call exhausted data.");
}

TEST_F(StackReadTest, AnEmptyStackReadsAsZerosAndStaysWhereItIs)
{
    const Stack stack = empty_stack();
    std::uint64_t pos = 5;
    EXPECT_EQ(stack->read(vela_dt_uint16, buffer.data(), nullptr, all, pos), 15U);
    EXPECT_EQ(pos, 5U);
    EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + 30), Bytes(30, 0));
    EXPECT_EQ(buffer[30], 0xcd);
    pos = 20;
    EXPECT_EQ(stack->read(vela_dt_uint8, buffer.data(), nullptr, all, pos), 0U);
    expect_read_error(stack, 21, -1, "Invalid position in segment!");
}

TEST_F(StackReadTest, NeitherAClosedFileNorAStackInTheMakingIsRead)
{
    const Stack growing = add({3});
    expect_read_error(growing, 0, -1, "Stack not committed to disk. Cannot read!");
    growing->write(vela_dt_uint8, "abc", nullptr, all);
    const Stack copy = reopen()->get_stack(0);
    file->close();
    for (const Stack& stack : {growing, copy})
    {
        expect_read_error(stack, 0, -1, "Cannot access VBFStack, file has been closed!");
        expect_read_error(stack, exhausted, -1,
                          "Invalid position (-1) passed. Possible reason: Last read call exhausted data.");
        EXPECT_EQ(stack->get_sizes(), Sizes({3}));
    }
}

TEST_F(StackReadTest, AFileThatIsGoneIsAClosedOne)
{
    const Stack copy = twenty();
    file.reset();
    expect_read_error(copy, 0, -1, "Cannot access VBFStack, file has been closed!");
}

TEST_F(StackReadTest, CopiesAreReadIndependently)
{
    const Stack first = twenty();
    const Stack second = file->get_stack(0);
    std::uint64_t pos = 0;
    first->read(vela_dt_uint8, buffer.data(), nullptr, 7, pos);
    for (const Stack& stack : {second, first})
    {
        pos = continued;
        stack->read(vela_dt_uint8, buffer.data(), nullptr, 3, pos);
    }
    EXPECT_EQ(buffer[0], 7);
    pos = continued;
    second->read(vela_dt_uint8, buffer.data(), nullptr, 1, pos);
    EXPECT_EQ(buffer[0], 3);
}

TEST_F(StackReadTest, TheFilePositionIsPutBack)
{
    const Stack stack = twenty();
    const std::uint64_t end = file->seek_to_end_of_stack(0);
    stack->read(vela_dt_uint8, buffer.data(), nullptr);
    std::uint64_t pos = 20;
    EXPECT_THROW(stack->read(vela_dt_uint8, buffer.data(), nullptr, 1, pos), VelaError);
    EXPECT_EQ(dynamic_cast<VFile&>(*file.shared()).tell(), end);
}

TEST_F(StackReadTest, SamplesOfAnotherType)
{
    const Stack stack = twenty();
    std::vector<double> numbers(21, -1.0);
    stack->read(vela_dt_double, numbers.data(), nullptr);
    EXPECT_EQ(numbers[19], 19.0);
    EXPECT_EQ(numbers[20], -1.0);
}

TEST_F(StackReadTest, RealAndImaginaryPartsIntoTwoBuffers)
{
    const Stack written = add({3}, vela_dt_complex | vela_dt_single);
    const std::vector<std::complex<float>> samples = {{1, -1}, {2, -2}, {3, -3}};
    written->write(vela_dt_complex | vela_dt_single, samples.data(), nullptr, all);
    reopen()->set_chunk_size(16);
    const Stack stack = file->get_stack(0);
    std::vector<double> real(4, 9.0);
    std::vector<double> imag(4, 9.0);
    stack->read(vela_dt_double, real.data(), imag.data());
    EXPECT_EQ(real, std::vector<double>({1, 2, 3, 9}));
    EXPECT_EQ(imag, std::vector<double>({-1, -2, -3, 9}));
    EXPECT_VELA_ERROR(stack->read(vela_dt_complex | vela_dt_double, real.data(), imag.data()), -1,
                      "Imaginary buffer passed but buffer type is already complex!");
}

TEST_F(StackReadTest, ARealStackHasNoImaginaryParts)
{
    const Stack stack = twenty();
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, buffer.data(), buffer.data()), -1,
                      "Imaginary buffer passed but stack is not complex!");
}

TEST_F(StackReadTest, AnImpossibleConversionIsToldBehindTheSeek)
{
    const Stack stack = twenty();
    std::uint64_t pos = 20;
    EXPECT_VELA_ERROR(stack->read(vela_dt_cell, buffer.data(), nullptr, 1, pos), -1, "Invalid position in segment!");
    pos = 2;
    EXPECT_VELA_ERROR_IN(stack->read(vela_dt_cell, buffer.data(), nullptr, 1, pos), "VBFStackImp::read_imp",
                         vbf_sources, -1, "Invalid on-the-fly conversion from 'uint8' to 'cell'!");
    EXPECT_EQ(pos, 2U);
}

namespace {

struct Calls
{
    std::vector<std::uint64_t> sizes;
    std::size_t cancelled_call;
};

int note(std::uint64_t size_bytes, void* user)
{
    Calls& calls = *static_cast<Calls*>(user);
    calls.sizes.push_back(size_bytes);
    return calls.sizes.size() == calls.cancelled_call ? 0 : 5;
}

} // namespace

TEST_F(StackReadTest, ProgressIsToldBeforeEachChunkInTheTypeOfTheStack)
{
    const Stack stack = twenty();
    file->set_chunk_size(8);
    Calls calls = {{}, 0};
    file->set_progress_callback(note, &calls);
    std::vector<double> numbers(20);
    stack->read(vela_dt_double, numbers.data(), nullptr);
    EXPECT_EQ(calls.sizes, std::vector<std::uint64_t>({8, 8, 4}));
}

TEST_F(StackReadTest, ACancelledReadHasReadTheChunksBefore)
{
    const Stack stack = twenty();
    file->set_chunk_size(8);
    Calls calls = {{}, 2};
    file->set_progress_callback(note, &calls);
    std::uint64_t pos = 1;
    EXPECT_VELA_ERROR_IN(stack->read(vela_dt_uint8, buffer.data(), nullptr, all, pos), "VBFStackImp::read_imp",
                         vbf_sources, -11, "Cancelled by user!");
    EXPECT_EQ(buffer[7], 8);
    EXPECT_EQ(buffer[8], 0xcd);
    EXPECT_EQ(pos, 1U);
    // The next read starts where it is told, not where the other stood.
    EXPECT_EQ(stack->read(vela_dt_uint8, buffer.data(), nullptr, 2, pos), 2U);
    EXPECT_EQ(buffer[0], 1);
}

TEST_F(StackReadTest, IndicesOutsideTheChain)
{
    twenty();
    EXPECT_VELA_ERROR_IN(file->get_stack(1), "VBFFileImp::get_stack", vbf_sources, -4, "Invalid stack index 1!");
    EXPECT_VELA_ERROR(file->get_stack(all), -4, "Invalid stack index -1!");
    EXPECT_VELA_ERROR(file->read_stack(1, 0), -4, "Invalid stack index 1!");
    EXPECT_VELA_ERROR_IN(file->seek_to_end_of_stack(1), "VBFFileImp::seek_to_end_of_stack", vbf_sources, -1,
                         "Invalid stack number!");
}

TEST_F(StackReadTest, TheEndOfAStackIsLookedForInReadModeOnly)
{
    const std::string text = "File must be open in read mode to allow seeking to end of file!";
    add_complete({3});
    EXPECT_VELA_ERROR(file->seek_to_end_of_stack(0), -1, text);
    EXPECT_GT(reopen()->seek_to_end_of_stack(0), first_record_pos);
    file->close();
    EXPECT_VELA_ERROR(file->seek_to_end_of_stack(0), -1, text);
}

TEST_F(StackReadTest, AStackInMemoryHasNothingThatIsNotSet)
{
    // A stack that is read in chunks and one that is empty, after memory that held something else.
    add_complete({200, 100});
    const Stack empty = file->add_stack(true);
    empty->create({200, 100}, vela_dt_uint8);
    reopen()->set_chunk_size(1000);
    Bytes zeros(20000);
    Bytes samples = counted_bytes(20000);
    {
        Bytes used(20000, 0xcd);
        EXPECT_EQ(used[7], 0xcd);
    }
    const auto first = file->read_stack(0, 0);
    const auto second = file->read_stack(1, 0);
    EXPECT_TRUE(std::equal(samples.begin(), samples.end(), first->get_data_ptr()));
    EXPECT_TRUE(std::equal(zeros.begin(), zeros.end(), second->get_data_ptr()));
    // And the block grows with zeros again.
    second->create(Sizes({200, 200}), vela_dt_uint8);
    EXPECT_EQ(second->get_data_ptr()[39999], 0);
}

TEST_F(StackReadTest, AWholeStackThatDoesNotReadIsToldAsItsReadTellsIt)
{
    add_complete({20});
    file->close();
    Bytes bytes = get_bytes(path("written.vbf"));
    bytes.at(first_record_pos + 24 + 3) = 0x10; // 2^28 samples and more, which the file does not have
    put_bytes(path("written.vbf"), bytes);
    reopen();
    file->set_chunk_size(1 << 30);
    EXPECT_VELA_ERROR(file->read_stack(0, 0), -3, "Failed reading 268435476 bytes from file!");
}
