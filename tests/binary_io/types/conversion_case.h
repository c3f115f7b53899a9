/// One of the 500 numeric combinations: its input, what must come out, and runs over parts of it.
#pragma once

#include "binary_io/types/sample_reference.h"

#include <VelaBase/vela_dt_convert.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vela_test {

typedef std::vector<unsigned char> SampleBytes;

enum class Shape
{
    scalar_to_scalar,
    scalar_to_complex,
    complex_to_complex,
    split,
    join,
};

constexpr Shape all_shapes[] = {Shape::scalar_to_scalar, Shape::scalar_to_complex, Shape::complex_to_complex,
                                Shape::split, Shape::join};

/// One buffer: `parts` scalars make a sample, 2 in a complex one.
struct Plane
{
    unsigned size_bytes;
    unsigned parts;
    SampleBytes bytes;

    std::size_t sample_bytes() const { return std::size_t{size_bytes} * parts; }

    void put(std::size_t index, std::uint64_t bits) { store_bits(size_bytes, bytes.data() + index * size_bytes, bits); }
};

struct Combination
{
    Shape shape;
    ScalarKind source;
    ScalarKind target;

    bool has_complex_source() const { return shape == Shape::complex_to_complex || shape == Shape::split; }
    bool has_complex_target() const
    {
        return shape == Shape::scalar_to_complex || shape == Shape::complex_to_complex || shape == Shape::join;
    }
    std::uint32_t source_id() const { return source.id | (has_complex_source() ? complex_flag : 0); }
    std::uint32_t target_id() const { return target.id | (has_complex_target() ? complex_flag : 0); }

    std::string name() const
    {
        switch (shape)
        {
        case Shape::scalar_to_scalar:
            return std::string(source.name) + "To" + target.name;
        case Shape::scalar_to_complex:
            return std::string(source.name) + "ToComplex" + target.name;
        case Shape::complex_to_complex:
            return std::string("Complex") + source.name + "ToComplex" + target.name;
        case Shape::split:
            return std::string("SplitComplex") + source.name + "To" + target.name;
        case Shape::join:
            return std::string("Join") + source.name + "ToComplex" + target.name;
        }
        throw std::logic_error("no such shape");
    }
};

inline void PrintTo(const Combination& combination, std::ostream* out)
{
    *out << combination.name();
}

/// A combination with values; the second plane of either side is the imaginary one of split and join.
struct Conversion
{
    Combination combination;
    std::size_t count;
    std::vector<Plane> sources;
    std::vector<Plane> targets;
};

inline std::vector<Plane> make_planes(bool two_planes, bool is_complex, unsigned size_bytes, std::size_t count)
{
    const unsigned parts = is_complex ? 2 : 1;
    const Plane plane = {size_bytes, parts, SampleBytes(count * size_bytes * parts)};
    return std::vector<Plane>(two_planes ? 2 : 1, plane);
}

/// `imag` is used where the source has imaginary parts, and is as long as `real`.
inline Conversion make_conversion(const Combination& combination, const std::vector<std::uint64_t>& real,
                                  const std::vector<std::uint64_t>& imag)
{
    const ScalarKind& source = combination.source;
    const ScalarKind& target = combination.target;
    const bool joins = combination.shape == Shape::join;
    const bool splits = combination.shape == Shape::split;
    const bool has_complex_source = combination.has_complex_source();
    const bool has_complex_target = combination.has_complex_target();
    Conversion result = {combination, real.size(),
                         make_planes(joins, has_complex_source, source.size_bytes, real.size()),
                         make_planes(splits, has_complex_target, target.size_bytes, real.size())};
    for (std::size_t i = 0; i < real.size(); ++i)
    {
        result.sources[0].put(has_complex_source ? 2 * i : i, real[i]);
        result.targets[0].put(has_complex_target ? 2 * i : i, converted_bits(source, target, real[i]));
        if (has_complex_source)
            result.sources[0].put(2 * i + 1, imag[i]);
        if (joins)
            result.sources[1].put(i, imag[i]);
        if (has_complex_source || joins)
        {
            const std::uint64_t expected = converted_bits(source, target, imag[i]);
            if (splits)
                result.targets[1].put(i, expected);
            else
                result.targets[0].put(2 * i + 1, expected);
        }
    }
    return result;
}

/// How far each buffer lies behind an address of full alignment.
struct Shifts
{
    std::size_t source;
    std::size_t target;
    std::size_t imag_source;
    std::size_t imag_target;
};

/// Different shifts for each `turn`, of all 16 kinds in each buffer.
inline Shifts shifts_of_turn(std::size_t turn)
{
    return {turn % 16, (turn * 5 + 3) % 16, (turn * 3 + 1) % 16, (turn * 7 + 5) % 16};
}

/// An input block that ends with its last byte, so that reading behind it is seen by the sanitizer.
class SourceBlock
{
public:
    SourceBlock(const unsigned char* from, std::size_t size_bytes, std::size_t shift)
        : block(new unsigned char[shift + size_bytes]), start(block.get() + shift)
    {
        std::copy_n(from, size_bytes, start);
    }

    const unsigned char* data() const { return start; }

private:
    std::unique_ptr<unsigned char[]> block;
    unsigned char* start;
};

/// An output block between two guards, filled with something wrong.
class TargetBlock
{
public:
    TargetBlock(std::size_t size_bytes, std::size_t shift)
        : before(guard_bytes + shift), after(before + size_bytes), block(after + guard_bytes, filler)
    {
    }

    unsigned char* data() { return block.data() + before; }
    const unsigned char* data() const { return block.data() + before; }

    bool guards_are_intact() const { return all_filler(0, before) && all_filler(after, block.size()); }
    bool is_untouched() const { return all_filler(0, block.size()); }

private:
    static constexpr std::size_t guard_bytes = 64;
    static constexpr unsigned char filler = 0xa5;

    bool all_filler(std::size_t first, std::size_t last) const
    {
        return std::all_of(block.begin() + static_cast<std::ptrdiff_t>(first),
                           block.begin() + static_cast<std::ptrdiff_t>(last),
                           [](unsigned char byte) { return byte == filler; });
    }

    std::size_t before;
    std::size_t after;
    SampleBytes block;
};

inline testing::AssertionResult holds_expected(const Conversion& conversion, std::size_t plane_index,
                                               const unsigned char* actual, std::size_t first, std::size_t count)
{
    const Plane& plane = conversion.targets[plane_index];
    const unsigned char* expected = plane.bytes.data() + first * plane.sample_bytes();
    if (count == 0 || std::memcmp(actual, expected, count * plane.sample_bytes()) == 0)
        return testing::AssertionSuccess();
    for (std::size_t i = 0; i < count * plane.parts; ++i)
    {
        const std::uint64_t wanted = load_bits(plane.size_bytes, expected + i * plane.size_bytes);
        const std::uint64_t got = load_bits(plane.size_bytes, actual + i * plane.size_bytes);
        if (is_expected(conversion.combination.source, conversion.combination.target, wanted, got))
            continue;
        auto failure = testing::AssertionFailure();
        failure << std::hex << std::setfill('0') << "0x" << wanted << " expected, 0x" << got << " found in target "
                << std::dec << plane_index << ", scalar " << i << " of " << count * plane.parts << "; source:";
        for (const Plane& source : conversion.sources)
            for (std::size_t byte = 0; byte < source.sample_bytes(); ++byte)
                failure << " " << std::hex << std::setw(2)
                        << unsigned{source.bytes[(first + i / plane.parts) * source.sample_bytes() + byte]};
        return failure;
    }
    return testing::AssertionSuccess();
}

/// Converts the samples `first` to `first + count` and looks at every byte that was or was not to be written.
inline testing::AssertionResult converts(const Conversion& conversion, std::size_t first, std::size_t count,
                                         const Shifts& shifts)
{
    std::vector<SourceBlock> sources;
    for (const Plane& plane : conversion.sources)
        sources.emplace_back(plane.bytes.data() + first * plane.sample_bytes(), count * plane.sample_bytes(),
                             sources.empty() ? shifts.source : shifts.imag_source);
    std::vector<TargetBlock> targets;
    for (const Plane& plane : conversion.targets)
        targets.emplace_back(count * plane.sample_bytes(), targets.empty() ? shifts.target : shifts.imag_target);

    const int answer = vela_dt_convert(
        conversion.combination.source_id(), conversion.combination.target_id(), sources[0].data(), targets[0].data(),
        count, sources.size() > 1 ? sources[1].data() : nullptr, targets.size() > 1 ? targets[1].data() : nullptr);
    if (answer != 0)
        return testing::AssertionFailure() << "answer " << answer;
    for (std::size_t i = 0; i < targets.size(); ++i)
    {
        const testing::AssertionResult result = holds_expected(conversion, i, targets[i].data(), first, count);
        if (!result)
            return result;
        if (!targets[i].guards_are_intact())
            return testing::AssertionFailure() << "wrote outside of target " << i;
    }
    for (std::size_t i = 0; i < sources.size(); ++i)
    {
        const Plane& plane = conversion.sources[i];
        const unsigned char* original = plane.bytes.data() + first * plane.sample_bytes();
        if (!std::equal(original, original + count * plane.sample_bytes(), sources[i].data()))
            return testing::AssertionFailure() << "changed source " << i;
    }
    return testing::AssertionSuccess();
}

/// All samples at once.
inline testing::AssertionResult converts_all(const Conversion& conversion)
{
    return converts(conversion, 0, conversion.count, {0, 0, 0, 0});
}

} // namespace vela_test
