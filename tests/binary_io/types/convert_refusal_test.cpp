#include "binary_io/types/conversion_case.h"

#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

// Which combinations are supported, over many more ids than there are types.

namespace vela_test {
namespace {

bool is_scalar(std::uint32_t id)
{
    return std::any_of(scalar_kinds.begin(), scalar_kinds.end(),
                       [id](const ScalarKind& kind) { return kind.id == id; });
}

bool is_complex(std::uint32_t id)
{
    return std::any_of(scalar_kinds.begin(), scalar_kinds.end(),
                       [id](const ScalarKind& kind) { return (kind.id | complex_flag) == id; });
}

bool is_colour(std::uint32_t id)
{
    return id == 0x400 || id == 0x800;
}

enum class Mode
{
    plain,
    split,
    join,
    both, ///< imaginary buffers on both sides
};
constexpr Mode all_modes[] = {Mode::plain, Mode::split, Mode::join, Mode::both};

bool is_supported(Mode mode, std::uint32_t source, std::uint32_t target)
{
    switch (mode)
    {
    case Mode::plain:
        return (is_scalar(source) && (is_scalar(target) || is_complex(target))) ||
               (is_complex(source) && is_complex(target)) || (is_colour(source) && is_colour(target));
    case Mode::split:
        return is_complex(source) && is_scalar(target);
    case Mode::join:
        return is_scalar(source) && is_complex(target);
    case Mode::both:
        return false;
    }
    return false;
}

/// The ids of all types and what is near to them.
std::vector<std::uint32_t> many_ids()
{
    std::vector<std::uint32_t> ids = {0,          0x3,        0x11,       0x41,       0xc0,
                                      0xc00,      0x3000,     0x3ffff,    0x40000003, 0x40000c00,
                                      0x7fffffff, 0x80000000, 0xc0000000, 0xffffffff, 0x40000000,
                                      0x20000001, 0x10000040, 0x00040001, 0x60000040};
    for (unsigned bit = 0; bit < 30; ++bit)
        for (const std::uint32_t flags : {0x00000000u, 0x40000000u, 0x80000000u, 0xc0000000u})
            ids.push_back(flags | (std::uint32_t{1} << bit));
    return ids;
}

/// Buffers that are large enough for three samples of any type.
struct Buffers
{
    std::vector<unsigned char> source = std::vector<unsigned char>(64, 0x11);
    std::vector<unsigned char> imag_source = std::vector<unsigned char>(64, 0x22);
    TargetBlock target = TargetBlock(48, 1);
    TargetBlock imag_target = TargetBlock(48, 3);

    int convert(Mode mode, std::uint32_t source_id, std::uint32_t target_id, std::uint64_t count)
    {
        return vela_dt_convert(source_id, target_id, source.data() + 1, target.data(), count,
                               mode == Mode::join || mode == Mode::both ? imag_source.data() + 1 : nullptr,
                               mode == Mode::split || mode == Mode::both ? imag_target.data() : nullptr);
    }
    bool are_untouched() const { return target.is_untouched() && imag_target.is_untouched(); }
};

int convert_nothing(Mode mode, std::uint32_t source_id, std::uint32_t target_id)
{
    unsigned char present = 0;
    return vela_dt_convert(source_id, target_id, nullptr, nullptr, 0,
                           mode == Mode::join || mode == Mode::both ? &present : nullptr,
                           mode == Mode::split || mode == Mode::both ? &present : nullptr);
}

TEST(UnsupportedConversion, AnswersMinus1AndWritesNothingForAllButThe504Combinations)
{
    std::size_t supported = 0;
    const std::vector<std::uint32_t> ids = many_ids();
    Buffers buffers;
    for (const Mode mode : all_modes)
        for (const std::uint32_t source : ids)
            for (const std::uint32_t target : ids)
            {
                if (is_supported(mode, source, target))
                {
                    ++supported;
                    Buffers fresh;
                    ASSERT_EQ(fresh.convert(mode, source, target, 3), 0) << std::hex << source << " to " << target;
                    ASSERT_FALSE(fresh.are_untouched()) << std::hex << source << " to " << target;
                    continue;
                }
                ASSERT_EQ(buffers.convert(mode, source, target, 3), -1)
                    << std::hex << source << " to " << target << " in mode " << static_cast<int>(mode);
                ASSERT_TRUE(buffers.are_untouched())
                    << std::hex << source << " to " << target << " in mode " << static_cast<int>(mode);
            }
    EXPECT_EQ(supported, 504u);
}

TEST(UnsupportedConversion, IsToldFromASupportedOneAtCountZeroWithNullBuffers)
{
    const std::vector<std::uint32_t> ids = many_ids();
    for (const Mode mode : all_modes)
        for (const std::uint32_t source : ids)
            for (const std::uint32_t target : ids)
                ASSERT_EQ(convert_nothing(mode, source, target), is_supported(mode, source, target) ? 0 : -1)
                    << std::hex << source << " to " << target << " in mode " << static_cast<int>(mode);
}

TEST(UnsupportedConversion, IsRefusedBeforeTheCountMatters)
{
    Buffers buffers;
    EXPECT_EQ(buffers.convert(Mode::plain, 0x40000040, 0x40, UINT64_MAX), -1);
    EXPECT_EQ(buffers.convert(Mode::plain, 0x10000, 0x1, UINT64_MAX), -1);
    EXPECT_EQ(buffers.convert(Mode::split, 0x40, 0x40, UINT64_MAX), -1);
    EXPECT_EQ(buffers.convert(Mode::join, 0x40000040, 0x40000040, UINT64_MAX), -1);
    EXPECT_EQ(buffers.convert(Mode::both, 0x40000040, 0x40000040, UINT64_MAX), -1);
    EXPECT_TRUE(buffers.are_untouched());
}

TEST(UnsupportedConversion, ComplexIsNeverReducedToAScalarInPlainMode)
{
    Buffers buffers;
    for (const ScalarKind& source : scalar_kinds)
        for (const ScalarKind& target : scalar_kinds)
            EXPECT_EQ(buffers.convert(Mode::plain, source.id | complex_flag, target.id, 3), -1)
                << source.name << " to " << target.name;
    EXPECT_TRUE(buffers.are_untouched());
}

TEST(UnsupportedConversion, BothImaginaryBuffersAreRefusedForAllTypes)
{
    Buffers buffers;
    for (const ScalarKind& source : scalar_kinds)
        for (const ScalarKind& target : scalar_kinds)
            for (const std::uint32_t source_flag : {0u, complex_flag})
                for (const std::uint32_t target_flag : {0u, complex_flag})
                    EXPECT_EQ(buffers.convert(Mode::both, source.id | source_flag, target.id | target_flag, 3), -1)
                        << source.name << " to " << target.name;
    EXPECT_TRUE(buffers.are_untouched());
}

TEST(UnsupportedConversion, SplitOfAScalarIsRefused)
{
    Buffers buffers;
    for (const ScalarKind& source : scalar_kinds)
        for (const ScalarKind& target : scalar_kinds)
            EXPECT_EQ(buffers.convert(Mode::split, source.id, target.id, 3), -1) << source.name << " " << target.name;
    EXPECT_TRUE(buffers.are_untouched());
}

TEST(UnsupportedConversion, SplitToAComplexTargetIsRefused)
{
    Buffers buffers;
    EXPECT_EQ(buffers.convert(Mode::split, 0x40000040, 0x40000040, 3), -1);
    EXPECT_EQ(buffers.convert(Mode::split, 0x40, 0x40000040, 3), -1);
    EXPECT_TRUE(buffers.are_untouched());
}

TEST(UnsupportedConversion, JoinOfAComplexSourceIsRefused)
{
    Buffers buffers;
    for (const ScalarKind& source : scalar_kinds)
        for (const ScalarKind& target : scalar_kinds)
            EXPECT_EQ(buffers.convert(Mode::join, source.id | complex_flag, target.id | complex_flag, 3), -1)
                << source.name << " " << target.name;
    EXPECT_TRUE(buffers.are_untouched());
}

TEST(UnsupportedConversion, JoinToAScalarIsRefused)
{
    Buffers buffers;
    EXPECT_EQ(buffers.convert(Mode::join, 0x40, 0x40, 3), -1);
    EXPECT_EQ(buffers.convert(Mode::join, 0x1, 0x1, 3), -1);
    EXPECT_TRUE(buffers.are_untouched());
}

TEST(UnsupportedConversion, ColoursNeitherMeetNumbersNorSplitNorJoin)
{
    Buffers buffers;
    for (const std::uint32_t colour : {0x400u, 0x800u})
    {
        for (const ScalarKind& kind : scalar_kinds)
        {
            EXPECT_EQ(buffers.convert(Mode::plain, colour, kind.id, 3), -1) << kind.name;
            EXPECT_EQ(buffers.convert(Mode::plain, kind.id, colour, 3), -1) << kind.name;
            EXPECT_EQ(buffers.convert(Mode::plain, colour, kind.id | complex_flag, 3), -1) << kind.name;
        }
        for (const Mode mode : {Mode::split, Mode::join, Mode::both})
            EXPECT_EQ(buffers.convert(mode, colour, colour, 3), -1);
        EXPECT_EQ(buffers.convert(Mode::plain, colour | complex_flag, colour | complex_flag, 3), -1);
    }
    EXPECT_TRUE(buffers.are_untouched());
}

TEST(UnsupportedConversion, TypesThatAreNoNumbersAreNotEvenCopied)
{
    Buffers buffers;
    for (const std::uint32_t id : {0x0u, 0x10000u, 0x40010000u, 0x4000u, 0x8000u, 0x20000u, 0x100u, 0x200u, 0x80000001u,
                                   0xc0000001u, 0x80000040u})
        for (const Mode mode : all_modes)
            EXPECT_EQ(buffers.convert(mode, id, id, 3), -1) << std::hex << id;
    EXPECT_TRUE(buffers.are_untouched());
}

} // namespace
} // namespace vela_test
