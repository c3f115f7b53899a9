// Samples that are converted on their way to the file, and imaginary parts in a buffer of their own.
#include "binary_io/vbf_writing.h"

#include <VelaBase/vela_dt_convert.h>

#include <gtest/gtest.h>

#include <complex>

using namespace vela_test;

namespace {

class ConversionWriting : public VbfWritingTest
{
protected:
    static std::string refusal(vela_dt from, vela_dt to)
    {
        return std::string("Invalid on-the-fly conversion from '") + vela_dt_get_name(from) + "' to '" +
               vela_dt_get_name(to) + "'!";
    }
};

bool is_complex(vela_dt dt)
{
    return (dt & vela_dt_complex) != 0;
}

TEST_F(ConversionWriting, EveryTypeIsWrittenFromEveryOtherAsTheBulkConversionDoes)
{
    constexpr std::uint64_t count = 24;
    for (const vela_dt from : types_of_stacks)
        for (const vela_dt to : types_of_stacks)
        {
            if (is_complex(from) && !is_complex(to))
                continue;
            SCOPED_TRACE(std::string(vela_dt_get_name(from)) + " to " + vela_dt_get_name(to));
            const Bytes source = noisy_bytes(static_cast<std::size_t>(count * size_of(from)));
            Bytes expected(static_cast<std::size_t>(count * size_of(to)));
            ASSERT_EQ(vela_dt_convert(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to), source.data(),
                                      expected.data(), count, nullptr, nullptr),
                      0);
            if (from == to)
                expected = source;
            begin_file();
            const Stack stack = add({6, 4}, to);
            stack->write(from, source.data(), nullptr, count);
            const WrittenStack written = close_file_with_one_stack();
            EXPECT_EQ(written.data_type, to);
            EXPECT_EQ(written.data, expected);
        }
}

TEST_F(ConversionWriting, KnownValues)
{
    begin_file();
    const Stack stack = add({4}, vela_dt_int16);
    const std::vector<double> source = {1.9, -1.9, 70000.0, -32768.0};
    stack->write(vela_dt_double, source.data(), nullptr, 4);
    EXPECT_EQ(close_file_with_one_stack().data, bytes_of_numbers(std::vector<std::int16_t>{1, -1, 4464, -32768}));
}

TEST_F(ConversionWriting, OfManyChunksGivesTheSame)
{
    std::vector<double> source(1000);
    for (std::size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<double>(i) * 1.25;
    std::vector<std::uint16_t> expected(1000);
    for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] = static_cast<std::uint16_t>(source[i]);
    for (const std::uint32_t chunk : {0u, 1u, 2u, 3u, 7u, 100u, 1999u, 2000u, 100000u})
    {
        SCOPED_TRACE(chunk);
        begin_file();
        file->set_chunk_size(chunk);
        const Stack stack = add({1000}, vela_dt_uint16);
        stack->write(vela_dt_double, source.data(), nullptr, 300);
        stack->write(vela_dt_double, source.data() + 300, nullptr, 700);
        EXPECT_TRUE(close_file_with_one_stack().data == bytes_of_numbers(expected));
    }
}

TEST_F(ConversionWriting, TheChunkMayChangeBetweenCalls)
{
    begin_file();
    const Stack stack = add({100}, vela_dt_double);
    const Bytes source = numbered_bytes(100);
    const std::vector<double> expected(source.begin(), source.end());
    std::size_t written = 0;
    for (const std::uint32_t chunk : {16u, 800u, 0u, 24u, 100000u})
    {
        file->set_chunk_size(chunk);
        stack->write(vela_dt_uint8, source.data() + written, nullptr, 20);
        written += 20;
    }
    EXPECT_EQ(close_file_with_one_stack().data, bytes_of_numbers(expected));
}

TEST_F(ConversionWriting, CallsMayDifferInTheirType)
{
    begin_file();
    const Stack stack = add({5}, vela_dt_single);
    const std::uint8_t first[] = {1, 2};
    const std::int32_t second[] = {-3};
    const double third[] = {4.5, 1e300};
    stack->write(vela_dt_uint8, first, nullptr, 2);
    stack->write(vela_dt_int32, second, nullptr, 1);
    stack->write(vela_dt_double, third, nullptr, 1);
    stack->write(vela_dt_single, numbered_bytes(4).data(), nullptr, 1);
    const Bytes data = close_file_with_one_stack().data;
    EXPECT_EQ(data, bytes_of_numbers(std::vector<float>{1.0f, 2.0f, -3.0f, 4.5f}) + numbered_bytes(4));
}

TEST_F(ConversionWriting, TypesThatADescriptionCannotHaveMayBeInTheBuffer)
{
    begin_file();
    const Stack stack = add({3}, vela_dt_uint8);
    const std::uint64_t source[] = {1, 300, ~0ull};
    stack->write(vela_dt_uint64, source, nullptr, 3);
    EXPECT_EQ(close_file_with_one_stack().data, (Bytes{1, 44, 255}));
}

TEST_F(ConversionWriting, TwoBuffersBecomePairs)
{
    for (const std::uint32_t chunk : {0u, 8u, 20u, 1000u})
    {
        begin_file();
        file->set_chunk_size(chunk);
        const Stack stack = add({5}, complex_single);
        const std::vector<std::int16_t> real = {1, 2, 3, 4, 5};
        const std::vector<std::int16_t> imaginary = {-1, -2, -3, -4, -5};
        stack->write(vela_dt_int16, real.data(), imaginary.data(), 2);
        stack->write(vela_dt_int16, real.data() + 2, imaginary.data() + 2, 3);
        EXPECT_EQ(close_file_with_one_stack().data,
                  bytes_of_numbers(std::vector<float>{1, -1, 2, -2, 3, -3, 4, -4, 5, -5}));
    }
}

TEST_F(ConversionWriting, ARealBufferAloneGivesImaginaryPartsOfZero)
{
    begin_file();
    const Stack stack = add({2}, complex_double);
    const float real[] = {1.5f, -2.0f};
    stack->write(vela_dt_single, real, nullptr, 2);
    EXPECT_EQ(close_file_with_one_stack().data, bytes_of_numbers(std::vector<double>{1.5, 0, -2, 0}));
}

TEST_F(ConversionWriting, PairsAreTakenAsPairs)
{
    begin_file();
    const Stack stack = add({2}, complex_single);
    const std::complex<double> source[] = {{1.5, -2.5}, {3.0, 4.0}};
    stack->write(complex_double, source, nullptr, 2);
    EXPECT_EQ(close_file_with_one_stack().data, bytes_of_numbers(std::vector<float>{1.5f, -2.5f, 3.0f, 4.0f}));
}

TEST_F(ConversionWriting, AnImaginaryBufferBesidePairsIsRefused)
{
    const float parts[4] = {1, 2, 3, 4};
    for (const vela_dt of_stack : {complex_single, vela_dt_single})
    {
        begin_file();
        const Stack stack = add({2}, of_stack);
        EXPECT_STACK_ERROR(stack->write(complex_single, parts, parts, 1), "write", -1,
                           "Imaginary block given but buffer is already complex!");
    }
}

TEST_F(ConversionWriting, AnImaginaryBufferForARealStackIsRefused)
{
    const float parts[4] = {1, 2, 3, 4};
    begin_file();
    const Stack stack = add({2}, vela_dt_single);
    EXPECT_STACK_ERROR(stack->write(vela_dt_single, parts, parts, 1), "write", -1,
                       "Imaginary block given but stack is not complex!");
}

TEST_F(ConversionWriting, ARefusedImaginaryBufferOnALaterCallLosesNothing)
{
    const float parts[4] = {1, 2, 3, 4};
    begin_file();
    const Stack stack = add({2}, vela_dt_single);
    stack->write(vela_dt_single, parts, nullptr, 1);
    const Bytes before = content();
    EXPECT_STACK_ERROR(stack->write(vela_dt_single, parts, parts, 1), "write", -1,
                       "Imaginary block given but stack is not complex!");
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(content(), before);
    stack->write(vela_dt_single, parts + 1, nullptr, 1);
    EXPECT_EQ(close_file_with_one_stack().data, bytes_of_numbers(std::vector<float>{1.0f, 2.0f}));
}

TEST_F(ConversionWriting, PairsForARealStackAreRefused)
{
    const std::complex<float> samples[2] = {{1, 2}, {3, 4}};
    begin_file();
    const Stack stack = add({2}, vela_dt_uint8);
    EXPECT_STACK_ERROR(stack->write(complex_single, samples, nullptr, 2), "write", -1,
                       refusal(complex_single, vela_dt_uint8));
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_STACK_ERROR(file->close(), "write", -1, "Not enough samples written!");
}

TEST_F(ConversionWriting, ARefusedTypeOnALaterCallLosesNothing)
{
    begin_file();
    const Stack stack = add({4});
    stack->write(vela_dt_uint8, numbered_bytes(4).data(), nullptr, 1);
    for (const vela_dt refused : {complex_single, complex_double, vela_dt_rgb, vela_dt_packed_color})
        EXPECT_STACK_ERROR(stack->write(refused, noisy_bytes(64).data(), nullptr, 3), "write", -1,
                           refusal(refused, vela_dt_uint8));
    EXPECT_EQ(stack->get_state(), 2);
    stack->write(vela_dt_uint8, numbered_bytes(4).data() + 1, nullptr, 3);
    EXPECT_EQ(close_file_with_one_stack().data, numbered_bytes(4));
}

TEST_F(ConversionWriting, ATypeWithoutSizeIsRefusedBeforeAnythingIsWritten)
{
    for (const vela_dt refused : {vela_dt_none, vela_dt_cell, vela_dt_struct, vela_dt_char, 3, vela_dt_array | 1})
    {
        begin_file();
        const Stack stack = add({4});
        const Bytes before = content();
        EXPECT_STACK_ERROR(stack->write(refused, noisy_bytes(64).data(), nullptr, 4), "write", -1,
                           refusal(refused, vela_dt_uint8));
        EXPECT_EQ(content(), before);
    }
}

TEST_F(ConversionWriting, TheTypeOfACommitDoesNotMatter)
{
    begin_file();
    for (const vela_dt dt : {vela_dt_none, vela_dt_cell, complex_single, vela_dt_uint8, 3})
    {
        const Stack stack = add({2, 0});
        stack->write(vela_dt_uint8, numbered_bytes(2).data(), nullptr, 2);
        stack->commit(dt);
        EXPECT_EQ(stack->get_state(), 0);
    }
    EXPECT_EQ(close_file().stacks.size(), 5u);
}

} // namespace
