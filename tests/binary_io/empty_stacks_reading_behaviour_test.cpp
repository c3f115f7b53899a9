// Stacks without samples on disk: they read as zeros.
#include "binary_io/sample_types.h"
#include "binary_io/vbf_reading_test.h"

using namespace vela_test;

namespace {

constexpr std::uint64_t all = VBFStackInterface::all_samples;
constexpr std::uint64_t exhausted = VBFStackInterface::exhausted;
constexpr std::uint64_t continued = VBFStackInterface::continued;
constexpr const char* read_imp = "VBFStackImp::read_imp";
constexpr const char* beyond_text = "Invalid position in segment!";

class VbfEmptyStacks : public VbfReadingTest
{
};

} // namespace

TEST_F(VbfEmptyStacks, AnEmptyStackGivesZerosAndLeavesThePosition)
{
    const StackPointer stack = only_stack(without_samples(12, vela_dt_uint16));
    Bytes bytes(24, stale);
    std::uint64_t pos = 5;
    EXPECT_EQ(stack->read(vela_dt_uint16, bytes.data(), nullptr, all, pos), 7u);
    EXPECT_EQ(pos, 5u);
    EXPECT_EQ(bytes, Bytes(14, 0) + Bytes(10, stale));

    EXPECT_EQ(stack->read(vela_dt_uint16, bytes.data() + 14, nullptr, 2, pos), 2u);
    EXPECT_EQ(pos, 5u);
    EXPECT_EQ(bytes, Bytes(18, 0) + Bytes(6, stale));
}

TEST_F(VbfEmptyStacks, TheZerosOfAnEmptyStackHaveTheTypeOfTheBuffer)
{
    const StackPointer stack = only_stack(without_samples(3, vela_dt_uint16));
    Bytes bytes(60, stale);
    stack->read(complex_double, bytes.data(), nullptr);
    EXPECT_EQ(bytes, Bytes(48, 0) + Bytes(12, stale));
}

TEST_F(VbfEmptyStacks, AnEmptyComplexStackFillsBothBuffers)
{
    const StackPointer stack = only_stack(without_samples(3, complex_single));
    Bytes real(16, stale);
    Bytes imag(16, stale);
    std::uint64_t pos = 0;
    EXPECT_EQ(stack->read(vela_dt_single, real.data(), imag.data(), 2, pos), 2u);
    EXPECT_EQ(pos, 0u);
    EXPECT_EQ(real, Bytes(8, 0) + Bytes(8, stale));
    EXPECT_EQ(imag, Bytes(8, 0) + Bytes(8, stale));
}

TEST_F(VbfEmptyStacks, AnEmptyStackGoesOnWhereItIs)
{
    const StackPointer stack = only_stack(without_samples(12, complex_single));
    Bytes real(100, stale);
    Bytes imag(100, stale);
    std::uint64_t pos = continued;
    EXPECT_EQ(stack->read(vela_dt_single, real.data(), imag.data(), all, pos), 12u);
    EXPECT_EQ(pos, continued);
    EXPECT_EQ(real, Bytes(48, 0) + Bytes(52, stale));
    EXPECT_EQ(imag, Bytes(48, 0) + Bytes(52, stale));
    pos = 7;
    EXPECT_EQ(stack->read(vela_dt_uint8, real.data(), nullptr, 2, pos), 2u);
    pos = continued;
    EXPECT_EQ(stack->read(vela_dt_uint8, real.data(), nullptr, all, pos), 12u);
}

TEST_F(VbfEmptyStacks, AnEmptyStackHasImaginaryPartsOnlyWhereItIsComplex)
{
    Bytes bytes(100, stale);
    std::uint64_t pos = 0;
    const StackPointer real = only_stack(without_samples(12, vela_dt_single));
    EXPECT_VELA_ERROR_IN(real->read(vela_dt_single, bytes.data(), bytes.data(), 1, pos), read_imp, binary_io_folder, -1,
                         "Imaginary buffer passed but stack is not complex!");
    const StackPointer complex = only_stack(without_samples(12, complex_single));
    EXPECT_VELA_ERROR_IN(complex->read(complex_single, bytes.data(), bytes.data(), 1, pos), read_imp, binary_io_folder,
                         -1, "Imaginary buffer passed but buffer type is already complex!");
    EXPECT_EQ(bytes, Bytes(100, stale));
}

TEST_F(VbfEmptyStacks, AnEmptyStackOfMoreBytesThanCanBeCountedIsRefused)
{
    Bytes bytes(100, stale);
    RecordFields fields = without_samples(0, vela_dt_double);
    fields.header.sizes = {0x80000000, 0x40000000};
    const StackPointer doubles = only_stack(fields);
    for (const std::uint64_t count : {std::uint64_t{1}, all})
    {
        std::uint64_t pos = 0;
        EXPECT_VELA_ERROR_IN(doubles->read(vela_dt_uint8, bytes.data(), nullptr, count, pos), read_imp,
                             binary_io_folder, -4, "Invalid dimension_sizes in stack header!");
        EXPECT_EQ(pos, 0u);
    }
    EXPECT_EQ(bytes, Bytes(100, stale));
}

TEST_F(VbfEmptyStacks, ZerosOfMoreBytesThanCanBeCountedAreRefused)
{
    RecordFields fields = without_samples(0, vela_dt_uint8);
    fields.header.sizes = {0x80000000, 0x40000000};
    const StackPointer stack = only_stack(fields);
    Bytes bytes(32, stale);
    EXPECT_VELA_ERROR_IN(stack->read(complex_double, bytes.data(), nullptr), read_imp, binary_io_folder, -4,
                         "Invalid dimension_sizes in stack header!");
    EXPECT_EQ(bytes, Bytes(32, stale));
    std::uint64_t pos = std::uint64_t{1} << 60;
    EXPECT_EQ(stack->read(complex_double, bytes.data(), nullptr, 2, pos), 2u);
    EXPECT_EQ(bytes, Bytes(32, 0));
}

TEST_F(VbfEmptyStacks, AnEmptyStackWhoseTypeHasNoSizeIsRefused)
{
    const StackPointer stack = only_stack(without_samples(12, vela_dt_none));
    Bytes bytes(12, stale);
    std::uint64_t pos = 0;
    EXPECT_VELA_ERROR_IN(stack->read(vela_dt_uint8, bytes.data(), nullptr, 1, pos), read_imp, binary_io_folder, -1,
                         "Invalid on-the-fly conversion from 'none' to 'uint8'!");
    EXPECT_EQ(bytes, Bytes(12, stale));
}

TEST_F(VbfEmptyStacks, NothingIsConvertedForAnEmptyStack)
{
    const StackPointer stack = only_stack(without_samples(3, complex_single));
    Bytes bytes(4, stale);
    stack->read(vela_dt_uint8, bytes.data(), nullptr);
    EXPECT_EQ(bytes, Bytes(3, 0) + Bytes{stale});
}

TEST_F(VbfEmptyStacks, APositionBehindAnEmptyStackIsRefusedToo)
{
    const StackPointer stack = only_stack(without_samples(12, vela_dt_uint8));
    std::uint64_t pos = 12;
    EXPECT_EQ(stack->read(vela_dt_uint8, nullptr, nullptr, all, pos), 0u);
    EXPECT_EQ(pos, 12u);
    Bytes bytes(20, stale);
    for (const std::uint64_t first : {std::uint64_t(13), all - 2})
    {
        pos = first;
        EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, 1, pos), -1, beyond_text);
        EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, all, pos), -1, beyond_text);
    }
    pos = exhausted;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, 1, pos), -1, exhausted_text);
    EXPECT_EQ(bytes, Bytes(20, stale));
}

TEST_F(VbfEmptyStacks, AStackWithoutElementsHasNothingToRead)
{
    RecordFields fields = without_samples(0, vela_dt_uint8);
    EXPECT_NO_THROW(only_stack(fields)->read(vela_dt_uint8, nullptr, nullptr));
}
