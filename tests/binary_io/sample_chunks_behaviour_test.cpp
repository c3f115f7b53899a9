// Samples come in chunks: conversion, the progress callback, and cancelling.
#include "binary_io/sample_types.h"
#include "binary_io/vbf_reading_test.h"
#include "support/zlib_stream.h"

#include <VelaBase/vela_dt_convert.h>

#include <complex>

using namespace vela_test;

namespace {

constexpr vela_dt scalars[] = {vela_dt_uint8, vela_dt_int8,   vela_dt_uint16, vela_dt_int16,  vela_dt_uint32,
                               vela_dt_int32, vela_dt_single, vela_dt_double, vela_dt_uint64, vela_dt_int64};

std::string refusal(vela_dt from, vela_dt to)
{
    return std::string("Invalid on-the-fly conversion from '") + vela_dt_get_name(from) + "' to '" +
           vela_dt_get_name(to) + "'!";
}

/// Notes the chunks, and cancels at one of them.
struct Progress
{
    static int ask(std::uint64_t size_bytes, void* user)
    {
        auto& progress = *static_cast<Progress*>(user);
        progress.chunks.push_back(size_bytes);
        return progress.chunks.size() > progress.allowed ? 0 : -3; // anything but 0 goes on
    }

    std::size_t allowed = SIZE_MAX;
    std::vector<std::uint64_t> chunks;
};

class VbfSampleChunks : public VbfReadingTest
{
protected:
    typedef std::vector<std::uint64_t> Chunks;

    void watch(Progress& progress) { file->set_progress_callback(&Progress::ask, &progress); }

    /// Thirteen samples of a type, small numbers in most places.
    static RecordFields samples_of(vela_dt type)
    {
        const std::vector<double> values{0,  1,  2,  3,  100, 127, 63, 5.5, 6,  77, 8,  9.25, 10,
                                         11, 12, 13, 14, 15,  16,  17, 18,  19, 20, 21, 22,   23};
        Bytes data(13 * size_of(type));
        const vela_dt part = type & ~vela_dt_complex;
        EXPECT_EQ(vela_dt_convert(vela_dt_double, static_cast<std::uint32_t>(part), values.data(), data.data(),
                                  type == part ? 13 : 26, nullptr, nullptr),
                  0);
        RecordFields fields = bytes_record(data);
        fields.header.sizes = {13};
        fields.header.data_type = static_cast<std::uint32_t>(type);
        return fields;
    }
};

std::vector<vela_dt> types_of_buffers()
{
    std::vector<vela_dt> types;
    for (const vela_dt type : scalars)
    {
        types.push_back(type);
        types.push_back(type | vela_dt_complex);
    }
    for (const vela_dt type : {vela_dt_none, vela_dt_rgb, vela_dt_packed_color, vela_dt_logical, vela_dt_char,
                               vela_dt_cell, vela_dt_struct, vela_dt(3), vela_dt_uint8 | vela_dt_array})
        types.push_back(type);
    return types;
}

} // namespace

TEST_F(VbfSampleChunks, EveryTypeBecomesEveryOtherAsInOneConversion)
{
    for (const vela_dt from : types_of_stacks)
    {
        const RecordFields fields = samples_of(from);
        const StackPointer stack = only_stack(fields);
        file->set_chunk_size(48); // three of the largest
        for (const vela_dt to : types_of_buffers())
        {
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            Bytes expected(13 * size_of(to) + 1, stale);
            Bytes got = expected;
            int failed = 0;
            if (from == to)
                std::copy(fields.header.data.begin(), fields.header.data.end(), expected.begin());
            else
                failed = vela_dt_convert(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to),
                                         fields.header.data.data(), expected.data(), 13, nullptr, nullptr);
            if (failed == 0)
            {
                stack->read(to, got.data(), nullptr);
            }
            else
            {
                EXPECT_VELA_ERROR_IN(stack->read(to, got.data(), nullptr), "VBFStackImp::read_imp", binary_io_folder,
                                     -1, refusal(from, to));
            }
            EXPECT_EQ(got, expected);
        }
    }
}

TEST_F(VbfSampleChunks, ComplexSamplesAreSplitIntoEveryScalar)
{
    for (const vela_dt from : {vela_dt_single | vela_dt_complex, vela_dt_double | vela_dt_complex})
    {
        const RecordFields fields = samples_of(from);
        const StackPointer stack = only_stack(fields);
        file->set_chunk_size(48);
        for (const vela_dt to : scalars)
        {
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            Bytes expected_real(13 * size_of(to) + 1, stale);
            Bytes expected_imag = expected_real;
            Bytes real = expected_real;
            Bytes imag = expected_real;
            ASSERT_EQ(vela_dt_convert(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to),
                                      fields.header.data.data(), expected_real.data(), 13, nullptr,
                                      expected_imag.data()),
                      0);
            stack->read(to, real.data(), imag.data());
            EXPECT_EQ(real, expected_real);
            EXPECT_EQ(imag, expected_imag);
        }
    }
}

TEST_F(VbfSampleChunks, ComplexSamplesDoNotBecomeReal)
{
    const StackPointer stack = only_stack(samples_of(vela_dt_single | vela_dt_complex));
    Bytes bytes(13 * 4, stale);
    EXPECT_VELA_ERROR(stack->read(vela_dt_single, bytes.data(), nullptr), -1,
                      "Invalid on-the-fly conversion from 'cplx_single' to 'single'!");
    EXPECT_EQ(bytes, Bytes(13 * 4, stale));
}

TEST_F(VbfSampleChunks, ATypeThatCannotBeMadeIsNoticedBehindTheSeek)
{
    const StackPointer stack = only_stack(samples_of(vela_dt_uint16));
    Progress progress;
    watch(progress);
    Bytes bytes(100, stale);
    std::uint64_t pos = 13;
    EXPECT_VELA_ERROR(stack->read(vela_dt_cell, bytes.data(), nullptr, 1, pos), -1, "Invalid position in segment!");
    EXPECT_EQ(progress.chunks, Chunks());
    pos = 12;
    EXPECT_VELA_ERROR(stack->read(vela_dt_cell, bytes.data(), nullptr, 1, pos), -1,
                      refusal(vela_dt_uint16, vela_dt_cell));
    EXPECT_EQ(pos, 12u);
    EXPECT_EQ(progress.chunks, Chunks{2});
    progress.allowed = 0;
    EXPECT_VELA_ERROR(stack->read(vela_dt_cell, bytes.data(), nullptr, 1, pos), -11, "Cancelled by user!");
}

TEST_F(VbfSampleChunks, NoChunkNoConversion)
{
    const StackPointer stack = only_stack(samples_of(vela_dt_uint16));
    Progress progress;
    watch(progress);
    std::uint64_t pos = 4;
    EXPECT_EQ(stack->read(vela_dt_cell, nullptr, nullptr, 0, pos), 0u);
    EXPECT_EQ(pos, 4u);
    EXPECT_EQ(progress.chunks, Chunks());
}

TEST_F(VbfSampleChunks, TheCallbackHearsTheBytesOfEachChunkInTheTypeOfTheStack)
{
    const StackPointer stack = only_stack(samples_of(vela_dt_uint16));
    file->set_chunk_size(11); // five samples, and a byte that is of no use
    Progress progress;
    watch(progress);
    for (const vela_dt type : {vela_dt_uint16, vela_dt_uint8, vela_dt_double | vela_dt_complex})
    {
        progress.chunks.clear();
        read_whole(*stack, type);
        EXPECT_EQ(progress.chunks, (Chunks{10, 10, 6}));
    }
    progress.chunks.clear();
    read_at(*stack, vela_dt_uint16, 5, 1);
    EXPECT_EQ(progress.chunks, Chunks{10});
    progress.chunks.clear();
    read_at(*stack, vela_dt_uint16, 6, 1);
    EXPECT_EQ(progress.chunks, (Chunks{10, 2}));
}

TEST_F(VbfSampleChunks, AChunkHasFourMebibytesAtFirst)
{
    RecordFields fields = bytes_record(deflate_whole(Bytes(5000000, 7), 1));
    fields.header.sizes = {5000000};
    fields.header.compression_type = 1;
    fields.header.compression_level = 1;
    const StackPointer stack = only_stack(fields);
    Progress progress;
    watch(progress);
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), Bytes(5000000, 7));
    EXPECT_EQ(progress.chunks, (Chunks{4194304, 805696}));
}

TEST_F(VbfSampleChunks, AChunkHasAtLeastOneSample)
{
    const StackPointer stack = only_stack(samples_of(vela_dt_double));
    Bytes expected(13 * 4, 0);
    const Bytes data = samples_of(vela_dt_double).header.data;
    ASSERT_EQ(vela_dt_convert(vela_dt_double, vela_dt_single, data.data(), expected.data(), 13, nullptr, nullptr), 0);
    for (const std::uint32_t size : {0u, 1u, 7u, 8u, 15u})
    {
        file->set_chunk_size(size);
        Progress progress;
        watch(progress);
        EXPECT_EQ(read_whole(*stack, vela_dt_double), data) << size;
        EXPECT_EQ(progress.chunks, Chunks(13, 8)) << size;
        EXPECT_EQ(read_whole(*stack, vela_dt_single), expected) << size;
    }
}

TEST_F(VbfSampleChunks, CompressedSamplesComeInTheSameChunks)
{
    const Bytes data = sparse_bytes(5000);
    RecordFields fields = bytes_record(deflate_whole(data));
    fields.header.sizes = {5000};
    fields.header.compression_type = 1;
    fields.header.compression_level = 6;
    const StackPointer stack = only_stack(fields);
    file->set_chunk_size(1999);
    Progress progress;
    watch(progress);
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), data);
    EXPECT_EQ(progress.chunks, (Chunks{1999, 1999, 1002}));
}

TEST_F(VbfSampleChunks, CancelledAtTheFirstChunkNothingIsRead)
{
    const StackPointer stack = only_stack(samples_of(vela_dt_uint8));
    Progress progress;
    progress.allowed = 0;
    watch(progress);
    for (const vela_dt type : {vela_dt_uint8, vela_dt_uint16})
    {
        progress.chunks.clear();
        Bytes bytes(26, stale);
        std::uint64_t pos = 2;
        EXPECT_VELA_ERROR_IN(stack->read(type, bytes.data(), nullptr, 10, pos), "VBFStackImp::read_imp",
                             binary_io_folder, -11, "Cancelled by user!");
        EXPECT_EQ(bytes, Bytes(26, stale));
        EXPECT_EQ(pos, 2u);
        EXPECT_EQ(progress.chunks.size(), 1u);
    }
}

TEST_F(VbfSampleChunks, CancelledLaterTheChunksBeforeAreThere)
{
    const Bytes data = samples_of(vela_dt_uint8).header.data;
    const StackPointer stack = only_stack(samples_of(vela_dt_uint8));
    file->set_chunk_size(4);
    Progress progress;
    progress.allowed = 2;
    watch(progress);
    Bytes bytes(13, stale);
    std::uint64_t pos = 1;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, VBFStackInterface::all_samples, pos), -11,
                      "Cancelled by user!");
    EXPECT_EQ(bytes, slice(data, 1, 9) + Bytes(5, stale));
    EXPECT_EQ(pos, 1u);
    EXPECT_EQ(progress.chunks, (Chunks{4, 4, 4}));

    progress.allowed = SIZE_MAX;
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), data);
}

TEST_F(VbfSampleChunks, ACancelledReadIsContinuedFromWhereItBegan)
{
    const Bytes data = samples_of(vela_dt_uint8).header.data;
    const StackPointer stack = only_stack(samples_of(vela_dt_uint8));
    file->set_chunk_size(2);
    Bytes bytes(8, stale);
    std::uint64_t pos = 0;
    EXPECT_EQ(stack->read(vela_dt_uint8, bytes.data(), nullptr, 3, pos), 3u);
    Progress progress;
    progress.allowed = 1;
    watch(progress);
    pos = VBFStackInterface::continued;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, 5, pos), -11, "Cancelled by user!");
    EXPECT_EQ(pos, VBFStackInterface::continued);
    progress.allowed = SIZE_MAX;
    EXPECT_EQ(stack->read(vela_dt_uint8, bytes.data(), nullptr, 5, pos), 5u);
    EXPECT_EQ(slice(bytes, 0, 5), slice(data, 3, 8));
    EXPECT_EQ(pos, 8u);
}

TEST_F(VbfSampleChunks, WithoutACallbackNobodyIsAsked)
{
    const StackPointer stack = only_stack(samples_of(vela_dt_uint8));
    Progress progress;
    progress.allowed = 0;
    watch(progress);
    file->set_progress_callback(nullptr, nullptr);
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), samples_of(vela_dt_uint8).header.data);
    EXPECT_EQ(progress.chunks, Chunks());
}

TEST_F(VbfSampleChunks, NobodyIsAskedForAnEmptyStack)
{
    RecordFields fields = bytes_record({});
    fields.header.sizes = {3};
    const StackPointer stack = only_stack(fields);
    Progress progress;
    progress.allowed = 0;
    watch(progress);
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), Bytes(3, 0));
    EXPECT_EQ(progress.chunks, Chunks());
}
