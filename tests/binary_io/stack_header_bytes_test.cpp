// The header of a stack, field by field at its offset.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"

#include <cmath>
#include <limits>

using namespace vela_test;

namespace {

class StackHeaderBytes : public WritingTest
{
};

TEST_F(StackHeaderBytes, EachFieldStandsAtItsOffset)
{
    const Stack stack = add({3, 2, 4}, vela_dt_uint16);
    stack->set_name("cells");
    stack->set_description("two cells");
    stack->set_len({1.5, 2.25, 1e300});
    stack->set_off(0, 0.125);
    stack->set_off(2, -7.0);
    stack->set_compression(1, 9);
    const std::vector<std::uint16_t> samples(24, 0x1234);
    stack->write(vela_dt_uint16, samples.data(), nullptr, 24);
    const ByteMap map = closed();

    const std::uint64_t at = first_record_pos;
    EXPECT_EQ(map.text(at, 16), "VELA_BF_STACK\n\xff\xff");
    EXPECT_EQ(map.u32(at + stack_format_version_at), 5u);
    EXPECT_EQ(map.u32(at + stack_rank_at), 3u);
    EXPECT_EQ(map.u32(at + stack_sizes_at), 3u);
    EXPECT_EQ(map.u32(at + stack_sizes_at + 4), 2u);
    EXPECT_EQ(map.u32(at + stack_sizes_at + 8), 4u);
    EXPECT_EQ(map.f64(at + stack_lengths_at), 1.5);
    EXPECT_EQ(map.f64(at + stack_lengths_at + 8), 2.25);
    EXPECT_EQ(map.f64(at + stack_lengths_at + 16), 1e300);
    EXPECT_EQ(map.f64(at + stack_offsets_at), 0.125);
    EXPECT_EQ(map.f64(at + stack_offsets_at + 8), 0.0);
    EXPECT_EQ(map.f64(at + stack_offsets_at + 16), -7.0);
    EXPECT_EQ(map.i32(at + stack_data_type_at), vela_dt_uint16);
    EXPECT_EQ(map.u32(at + stack_compression_type_at), 1u);
    EXPECT_EQ(map.i32(at + stack_compression_level_at), 9);
    EXPECT_EQ(map.u32(at + stack_name_length_at), 5u);
    EXPECT_EQ(map.u32(at + stack_description_length_at), 9u);
    EXPECT_EQ(map.u64(at + stack_data_present_at), 1u);
    EXPECT_EQ(map.u64(at + stack_next_at), 0u);
    EXPECT_EQ(map.text(at + stack_header_size, 14), "cellstwo cells");
}

TEST_F(StackHeaderBytes, WhatIsBehindTheRankIsZero)
{
    const Stack stack = add_complete({3, 2});
    const ByteMap map = closed();
    for (std::uint64_t axis = 2; axis < 15; ++axis)
    {
        EXPECT_EQ(map.u32(first_record_pos + stack_sizes_at + 4 * axis), 0u) << axis;
        EXPECT_EQ(map.u64(first_record_pos + stack_lengths_at + 8 * axis), 0u) << axis;
        EXPECT_EQ(map.u64(first_record_pos + stack_offsets_at + 8 * axis), 0u) << axis;
    }
}

TEST_F(StackHeaderBytes, ARankOfNothingHasOneSample)
{
    add_complete({});
    const ByteMap map = closed();
    EXPECT_EQ(map.u32(first_record_pos + stack_rank_at), 0u);
    EXPECT_EQ(map.u64(first_record_pos + stack_data_length_at), 1u);
}

TEST_F(StackHeaderBytes, LengthsAreStoredAsTheyAre)
{
    const Stack stack = add({1, 1, 1, 0});
    stack->set_len({std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -0.0, 7.0});
    stack->commit(vela_dt_none);
    const ByteMap map = closed();
    EXPECT_TRUE(std::isnan(map.f64(first_record_pos + stack_lengths_at)));
    EXPECT_EQ(map.f64(first_record_pos + stack_lengths_at + 8), std::numeric_limits<double>::infinity());
    EXPECT_EQ(map.u64(first_record_pos + stack_lengths_at + 16), std::uint64_t{1} << 63);
}

TEST_F(StackHeaderBytes, AnEmptyStackSaysSo)
{
    const Stack stack = file->add_stack(true);
    stack->create({5, 4}, vela_dt_double);
    stack->commit(vela_dt_none);
    const ByteMap map = closed();
    EXPECT_EQ(map.u64(first_record_pos + stack_data_present_at), 0u);
    EXPECT_EQ(map.u64(first_record_pos + stack_data_length_at), 0u);
    EXPECT_EQ(map.u32(first_record_pos + stack_header_size), stack_footer_size);
}

TEST_F(StackHeaderBytes, TheDefaultsAreNoCompressionAtLevelOne)
{
    add_complete({2});
    const ByteMap map = closed();
    EXPECT_EQ(map.u32(first_record_pos + stack_compression_type_at), 0u);
    EXPECT_EQ(map.i32(first_record_pos + stack_compression_level_at), 1);
}

TEST_F(StackHeaderBytes, LevelZeroStoresTheSamplesAsTheyAre)
{
    for (const int level : {0, -1})
    {
        const Stack stack = add({4});
        stack->set_compression(1, level);
        stack->write(vela_dt_uint8, "abcd", nullptr, 4);
    }
    const ByteMap map = closed();
    const std::uint64_t second = map.u64(first_record_pos + stack_next_at);
    for (const std::uint64_t at : {first_record_pos, second})
    {
        EXPECT_EQ(map.u32(at + stack_compression_type_at), 1u);
        EXPECT_EQ(map.u64(at + stack_data_length_at), 4u);
        EXPECT_EQ(map.text(at + stack_header_size, 4), "abcd");
    }
    EXPECT_EQ(map.i32(second + stack_compression_level_at), -1);
}

/// Nothing can mend a stack whose header was refused, and nothing of it is in the file.
class RefusedHeader : public StackHeaderBytes
{
protected:
    void expect_refused(const Stack& stack, const std::string& text)
    {
        const std::uint64_t size_before = on_disk().size();
        EXPECT_VELA_ERROR_IN(stack->commit(vela_dt_none), "VBFStackImp::write_header", vbf_sources, -1, text);
        EXPECT_EQ(stack->get_state(), 2);
        EXPECT_VELA_ERROR(stack->set_compression(0, 0), -1, "Cannot change compression mode!");
        std::uint64_t pos = 0;
        EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, nullptr, nullptr, 0, pos), -1,
                          "Stack not committed to disk. Cannot read!");
        for (int repetition = 0; repetition < 2; ++repetition)
        {
            EXPECT_VELA_ERROR_IN(stack->commit(vela_dt_none), "VZippedSegment::write", "sources/file", -1,
                                 "Trying to write to file in read mode!");
            EXPECT_VELA_ERROR(file->add_stack(true), -1, "Trying to write to file in read mode!");
            EXPECT_VELA_ERROR(file->close(), -1, "Trying to write to file in read mode!");
        }
        EXPECT_EQ(stack->get_state(), 2);
        EXPECT_EQ(on_disk().size(), size_before);
        EXPECT_EQ(on_disk().u64(14), 0u);
    }
};

TEST_F(RefusedHeader, OfAnotherCompressionType)
{
    for (const int type : {2, 3, -1})
    {
        file.open(file_name(path("written.vbf")), VFile::write_mode);
        const Stack stack = file->add_stack(true);
        stack->create({4}, vela_dt_uint8);
        stack->set_compression(type, 1);
        expect_refused(stack, "Invalid compression type specified!");
    }
}

TEST_F(RefusedHeader, OfAnAxisThatThirtyTwoBitsCannotCount)
{
    const Stack stack = file->add_stack(true);
    stack->create({2, std::uint64_t{1} << 32, 1}, vela_dt_uint8);
    expect_refused(stack, "Size of axis 1 does not fit the file format!");
}

TEST_F(RefusedHeader, OfASixteenthAxis)
{
    const Stack stack = file->add_stack(false);
    stack->create(Sizes(16, 0), vela_dt_uint8);
    expect_refused(stack, "Rank 16 does not fit the file format!");
}

TEST_F(RefusedHeader, TakesNoSamplesLater)
{
    const Stack stack = add({4});
    stack->set_compression(2, 1);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "ab", nullptr, 2), -1, "Invalid compression type specified!");
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "ab", nullptr, 2), -1, "Trying to write to file in read mode!");
    EXPECT_VELA_ERROR(stack->commit(0), -1, "Not enough samples written!");
}

TEST_F(StackHeaderBytes, TheLongestAxisIsWritten)
{
    const Stack stack = file->add_stack(true);
    stack->create({0xffffffff, 2}, vela_dt_uint8);
    stack->commit(vela_dt_none);
    EXPECT_EQ(closed().u32(first_record_pos + stack_sizes_at), 0xffffffffu);
}

TEST_F(StackHeaderBytes, TheFirstWriteLocksTheDescription)
{
    const Stack stack = add({2, 2});
    stack->set_name("a");
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    EXPECT_VELA_ERROR(stack->set_name("b"), -1, "Cannot set values. Object locked!");
    EXPECT_VELA_ERROR(stack->set_units(0, si::value()), -1, "Cannot set values. Object locked!");
    stack->write(vela_dt_uint8, "cd", nullptr, 2);
    EXPECT_EQ(stack->get_name(), "a");
}

}
