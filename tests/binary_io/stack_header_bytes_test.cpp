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

}
