// Runs of samples: where they begin, where they end, and what each failure says.
#include "binary_io/sample_types.h"
#include "binary_io/vbf_reading_test.h"
#include "support/zlib_stream.h"

#include <complex>

using namespace vela_test;

namespace {

constexpr std::uint64_t all = VBFStackInterface::all_samples;
constexpr std::uint64_t exhausted = VBFStackInterface::exhausted;
constexpr std::uint64_t continued = VBFStackInterface::continued;
constexpr const char* read_imp = "VBFStackImp::read_imp";
constexpr const char* beyond_text = "Invalid position in segment!";

static_assert(all == 0xffffffffffffffff && exhausted == 0xffffffffffffffff && continued == 0xfffffffffffffffe,
              "numbers that callers pass");

class VbfSampleReading : public VbfReadingTest
{
protected:
    /// Twenty bytes, 0 to 19.
    static RecordFields twenty() { return bytes_record(counted_bytes(20)); }

    static RecordFields compressed(const Bytes& data, int level = 6)
    {
        RecordFields fields = bytes_record(deflate_whole(data, level));
        fields.header.sizes = {static_cast<std::uint32_t>(data.size())};
        fields.header.compression_type = 1;
        fields.header.compression_level = static_cast<std::uint32_t>(level);
        return fields;
    }
};

} // namespace

TEST_F(VbfSampleReading, TheWholeStackInOneCall)
{
    const StackPointer stack = only_stack(twenty());
    Bytes bytes(22, stale);
    stack->read(vela_dt_uint8, bytes.data() + 1, nullptr);
    EXPECT_EQ(bytes, Bytes{stale} + counted_bytes(20) + Bytes{stale});
}

TEST_F(VbfSampleReading, ARunMovesThePositionBehindIt)
{
    const StackPointer stack = only_stack(twenty());
    std::uint64_t pos = 3;
    Bytes bytes(10, stale);
    EXPECT_EQ(stack->read(vela_dt_uint8, bytes.data(), nullptr, 8, pos), 8u);
    EXPECT_EQ(pos, 11u);
    EXPECT_EQ(bytes, (Bytes{3, 4, 5, 6, 7, 8, 9, 10, stale, stale}));
}

TEST_F(VbfSampleReading, ARunThatReachesTheEndExhaustsTheStack)
{
    const StackPointer stack = only_stack(twenty());
    // To the end by name, to the sample, and beyond.
    for (const std::uint64_t count : {all, std::uint64_t(5), std::uint64_t(6), std::uint64_t(1) << 63, all - 1})
    {
        std::uint64_t pos = 15;
        Bytes bytes(7, stale);
        EXPECT_EQ(stack->read(vela_dt_uint8, bytes.data(), nullptr, count, pos), 5u) << count;
        EXPECT_EQ(pos, exhausted) << count;
        EXPECT_EQ(bytes, (Bytes{15, 16, 17, 18, 19, stale, stale})) << count;
    }
}

TEST_F(VbfSampleReading, NoSamplesAreReadWhereNoneAreWanted)
{
    const StackPointer stack = only_stack(twenty());
    std::uint64_t pos = 3;
    EXPECT_EQ(stack->read(vela_dt_uint8, nullptr, nullptr, 0, pos), 0u);
    EXPECT_EQ(pos, 3u);
}

TEST_F(VbfSampleReading, APositionInSamplesIsMultipliedByTheirSize)
{
    const std::vector<double> values{0.5, 1.5, 2.5, 3.5, 4.5};
    const StackPointer stack = only_stack(values_record(vela_dt_double, values));
    double got[2] = {-1.0, -1.0};
    std::uint64_t pos = 2;
    EXPECT_EQ(stack->read(vela_dt_double, got, nullptr, 2, pos), 2u);
    EXPECT_EQ(got[0], 2.5);
    EXPECT_EQ(got[1], 3.5);
    EXPECT_EQ(pos, 4u);
}

TEST_F(VbfSampleReading, AReadGoesOnWhereTheLastOneEnded)
{
    const StackPointer stack = only_stack(twenty());
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 4, 5), (Bytes{5, 6, 7, 8}));
    for (unsigned char i = 9; i < 13; ++i)
    {
        std::uint64_t pos = continued;
        EXPECT_EQ(read_run(*stack, vela_dt_uint8, 1, pos), Bytes{i});
        EXPECT_EQ(pos, i + 1u);
    }
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 2, 0), (Bytes{0, 1}));
    std::uint64_t pos = continued;
    Bytes bytes(18, stale);
    EXPECT_EQ(stack->read(vela_dt_uint8, bytes.data(), nullptr, all, pos), 18u);
    EXPECT_EQ(bytes, slice(counted_bytes(20), 2, 20));
    EXPECT_EQ(pos, exhausted);
}

TEST_F(VbfSampleReading, AnExhaustedStackIsNamed)
{
    const StackPointer stack = only_stack(twenty());
    Bytes bytes(20, stale);
    std::uint64_t pos = exhausted;
    EXPECT_VELA_ERROR_IN(stack->read(vela_dt_uint8, bytes.data(), nullptr, 1, pos), read_imp, binary_io_folder, -1,
                         exhausted_text);
    EXPECT_EQ(pos, exhausted);
    EXPECT_EQ(bytes, Bytes(20, stale));

    stack->read(vela_dt_uint8, bytes.data(), nullptr);
    pos = continued;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, 1, pos), -1, exhausted_text);
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 2, 4), (Bytes{4, 5}));
    pos = continued;
    EXPECT_EQ(read_run(*stack, vela_dt_uint8, 1, pos), Bytes{6});
}

TEST_F(VbfSampleReading, APositionBehindTheLastSampleIsRefused)
{
    const StackPointer stack = only_stack(twenty());
    Bytes bytes(20, stale);
    for (const std::uint64_t first : {std::uint64_t(20), std::uint64_t(21), std::uint64_t(1) << 40, all - 2})
        for (const std::uint64_t count : {std::uint64_t(0), std::uint64_t(1), all})
        {
            std::uint64_t pos = first;
            EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, count, pos), -1, beyond_text);
            EXPECT_EQ(pos, first);
        }
    EXPECT_EQ(bytes, Bytes(20, stale));
}

TEST_F(VbfSampleReading, AFailedReadIsNotTheOneToGoOnFrom)
{
    const StackPointer stack = only_stack(twenty());
    read_at(*stack, vela_dt_uint8, 4, 5);
    std::uint64_t pos = 20;
    Bytes bytes(20, stale);
    EXPECT_ANY_THROW(stack->read(vela_dt_uint8, bytes.data(), nullptr, 1, pos));
    pos = continued;
    EXPECT_EQ(read_run(*stack, vela_dt_uint8, 1, pos), Bytes{9});
}

TEST_F(VbfSampleReading, CopiesReadIndependently)
{
    VbfRecords built(1);
    built.add_stack_record(compressed(counted_bytes(200)));
    built.add_stack_record(twenty());
    open(built);
    const StackPointer first = file->get_stack(0);
    const StackPointer second = file->get_stack(0);
    const StackPointer other = file->get_stack(1);
    const Bytes expected = counted_bytes(200);
    read_at(*first, vela_dt_uint8, 10, 0);
    read_at(*second, vela_dt_uint8, 10, 100);
    read_at(*other, vela_dt_uint8, 1, 0);
    for (unsigned char i = 1; i < 9; ++i)
    {
        const std::uint64_t at = std::uint64_t(i) * 10;
        std::uint64_t pos = continued;
        EXPECT_EQ(read_run(*first, vela_dt_uint8, 10, pos), slice(expected, at, at + 10));
        pos = continued;
        EXPECT_EQ(read_run(*second, vela_dt_uint8, 10, pos), slice(expected, at + 100, at + 110));
        pos = continued;
        EXPECT_EQ(read_run(*other, vela_dt_uint8, 1, pos), Bytes{i});
    }
}

TEST_F(VbfSampleReading, CompressedSamplesAreReadForwardAndBack)
{
    const Bytes data = sparse_bytes(100000);
    const StackPointer stack = only_stack(compressed(data));
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), data);
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 1000, 70000), slice(data, 70000, 71000));
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 1000, 71000), slice(data, 71000, 72000));
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 1000, 500), slice(data, 500, 1500));
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 1, 99999), slice(data, 99999, 100000));
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), data);
}

TEST_F(VbfSampleReading, OnlyTypeOneWithALevelAboveZeroIsCompressed)
{
    for (const auto& [type, level] : {std::pair<int, int>{0, 6}, {1, 0}, {1, -1}, {2, 6}, {-1, 6}})
    {
        RecordFields fields = twenty();
        fields.header.compression_type = static_cast<std::uint32_t>(type);
        fields.header.compression_level = static_cast<std::uint32_t>(level);
        EXPECT_EQ(read_whole(*only_stack(fields), vela_dt_uint8), counted_bytes(20)) << type << ' ' << level;
    }
    for (const int level : {1, 9, 99})
    {
        RecordFields fields = compressed(counted_bytes(20));
        fields.header.compression_level = static_cast<std::uint32_t>(level);
        EXPECT_EQ(read_whole(*only_stack(fields), vela_dt_uint8), counted_bytes(20)) << level;
    }
}

TEST_F(VbfSampleReading, DamagedDataSpoilOnlyTheReadsThatMeetThem)
{
    const Bytes data = noisy_bytes(100000);
    RecordFields fields = compressed(data);
    fields.header.data.back() ^= 1; // the sum at the end
    const StackPointer stack = only_stack(fields);
    Bytes bytes(data.size(), stale);
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr), -10, "Zip error (-3)!");
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 1000, 0), slice(data, 0, 1000));
    std::uint64_t pos = 1000;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, all, pos), -10, "Zip error (-3)!");
    EXPECT_EQ(pos, 1000u);
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 1000, 2000), slice(data, 2000, 3000));
}

// ---- the imaginary parts

TEST_F(VbfSampleReading, ImaginaryPartsGoToTheirOwnBuffer)
{
    const std::vector<std::complex<float>> values{{1.5f, -2.0f}, {3.0f, 4.5f}, {-5.0f, 6.0f}};
    const StackPointer stack = only_stack(values_record(complex_single, values));
    std::vector<float> real(3, 99.0f);
    std::vector<float> imag(3, 99.0f);
    stack->read(vela_dt_single, real.data(), imag.data());
    EXPECT_EQ(real, (std::vector<float>{1.5f, 3.0f, -5.0f}));
    EXPECT_EQ(imag, (std::vector<float>{-2.0f, 4.5f, 6.0f}));

    std::vector<short> short_real(2, 99);
    std::vector<short> short_imag(2, 99);
    std::uint64_t pos = 1;
    EXPECT_EQ(stack->read(vela_dt_int16, short_real.data(), short_imag.data(), 2, pos), 2u);
    EXPECT_EQ(short_real, (std::vector<short>{3, -5}));
    EXPECT_EQ(short_imag, (std::vector<short>{4, 6}));
}

TEST_F(VbfSampleReading, ComplexSamplesMayStayInterleaved)
{
    const std::vector<std::complex<float>> values{{1.5f, -2.0f}, {3.0f, 4.5f}};
    const StackPointer stack = only_stack(values_record(complex_single, values));
    std::vector<std::complex<float>> same(2);
    stack->read(complex_single, same.data(), nullptr);
    EXPECT_EQ(same, values);
    std::vector<std::complex<double>> wide(2);
    stack->read(complex_double, wide.data(), nullptr);
    EXPECT_EQ(wide, (std::vector<std::complex<double>>{{1.5, -2.0}, {3.0, 4.5}}));
}

TEST_F(VbfSampleReading, ASecondBufferForAComplexTypeIsRefused)
{
    const std::vector<std::complex<float>> values{{1.5f, -2.0f}};
    const StackPointer stack = only_stack(values_record(complex_single, values));
    double buffer[4] = {};
    std::uint64_t pos = 0;
    EXPECT_VELA_ERROR_IN(stack->read(complex_single, buffer, buffer + 2, 1, pos), read_imp, binary_io_folder, -1,
                         "Imaginary buffer passed but buffer type is already complex!");
    // It is tested before the position and the type of the stack.
    pos = 7;
    EXPECT_VELA_ERROR(stack->read(complex_double, buffer, buffer + 2, 1, pos), -1,
                      "Imaginary buffer passed but buffer type is already complex!");
    const StackPointer real = only_stack(twenty());
    EXPECT_VELA_ERROR(real->read(complex_double, buffer, buffer + 2, 1, pos), -1,
                      "Imaginary buffer passed but buffer type is already complex!");
}

TEST_F(VbfSampleReading, ASecondBufferForARealStackIsRefused)
{
    const StackPointer stack = only_stack(twenty());
    double buffer[40] = {};
    EXPECT_VELA_ERROR_IN(stack->read(vela_dt_double, buffer, buffer + 20), read_imp, binary_io_folder, -1,
                         "Imaginary buffer passed but stack is not complex!");
    std::uint64_t pos = 30;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, buffer, buffer + 20, 1, pos), -1,
                      "Imaginary buffer passed but stack is not complex!");
    const StackPointer none = only_stack(without_samples(5, vela_dt_uint8));
    EXPECT_VELA_ERROR(none->read(vela_dt_uint8, buffer, buffer + 20), -1,
                      "Imaginary buffer passed but stack is not complex!");
}

// ---- the position of the file

TEST_F(VbfSampleReading, ThePositionOfTheFileIsPutBack)
{
    VbfRecords built(1);
    RecordFields damaged = compressed(noisy_bytes(5000));
    damaged.header.data.at(2) = 0xff;
    built.add_stack_record(compressed(noisy_bytes(5000)));
    built.add_stack_record(damaged);
    built.add_stack_record(without_samples(5, vela_dt_uint8));
    built.add_stack_record(twenty());
    AttachedFile attached(put(built));
    attached.attach();
    VBFFile& opened = attached.file;
    Bytes bytes(5000 * 16, stale);
    attached.move_to(17);

    const StackPointer stack = opened->get_stack(0);
    stack->read(vela_dt_uint8, bytes.data(), nullptr);
    EXPECT_EQ(attached.position(), 17u);
    read_at(*stack, vela_dt_uint8, 100, 2000);
    EXPECT_EQ(attached.position(), 17u);
    std::uint64_t pos = 5000;
    EXPECT_ANY_THROW(stack->read(vela_dt_uint8, bytes.data(), nullptr, 1, pos));
    EXPECT_EQ(attached.position(), 17u);
    EXPECT_ANY_THROW(opened->get_stack(1)->read(vela_dt_uint8, bytes.data(), nullptr));
    EXPECT_EQ(attached.position(), 17u);
    opened->get_stack(2)->read(vela_dt_uint8, bytes.data(), nullptr);
    EXPECT_EQ(attached.position(), 17u);
    EXPECT_ANY_THROW(opened->get_stack(3)->read(vela_dt_cell, bytes.data(), nullptr));
    EXPECT_EQ(attached.position(), 17u);
    opened->set_progress_callback([](std::uint64_t, void*) { return 0; }, nullptr);
    EXPECT_ANY_THROW(opened->get_stack(3)->read(vela_dt_uint8, bytes.data(), nullptr));
    EXPECT_EQ(attached.position(), 17u);
}

TEST_F(VbfSampleReading, AStackThatIsNotWrittenYetCannotBeRead)
{
    file.open(file_name(path("new.vbf")), VFile::write_mode);
    const StackPointer stack = file->add_stack(true);
    Bytes bytes(4, stale);
    EXPECT_VELA_ERROR_IN(stack->read(vela_dt_uint8, bytes.data(), nullptr), read_imp, binary_io_folder, -1,
                         "Stack not committed to disk. Cannot read!");
    stack->create(std::vector<std::uint64_t>{4}, vela_dt_uint8);
    std::uint64_t pos = 9;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), bytes.data(), 1, pos), -1,
                      "Stack not committed to disk. Cannot read!");
    pos = exhausted;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, 1, pos), -1, exhausted_text);
    EXPECT_EQ(bytes, Bytes(4, stale));
}
