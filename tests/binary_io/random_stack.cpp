#include "binary_io/random_stack.h"

#include "binary_io/sample_types.h"

#include <VelaBase/vela_dt_convert.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <typeinfo>

namespace vela_test {

namespace {

Sizes draw_sizes(Draw& draw)
{
    Sizes sizes(draw.below(6));
    std::uint64_t most = draw.one_in(5) ? 60000 : 6000; // samples
    for (std::uint64_t& size : sizes)
    {
        size = draw.one_in(40) ? 0 : 1 + draw.below(std::min<std::uint64_t>(most, draw.one_in(3) ? most : 40));
        most = std::max<std::uint64_t>(most / std::max<std::uint64_t>(size, 1), 1);
    }
    return sizes;
}

/// A type that a real number of the stack has after a way through another.
int wider_real(int dt)
{
    return dt == vela_dt_single || dt == vela_dt_double ? vela_dt_double : vela_dt_int64;
}

Bytes converted(const unsigned char* samples, std::uint64_t count, int from, int to)
{
    Bytes target(count * size_of(to));
    EXPECT_EQ(vela_dt_convert(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to), samples, target.data(),
                              count, nullptr, nullptr),
              0);
    return target;
}

/// What the record refuses is set all the same.
template <class Set>
void set_in_any_case(Set set)
{
    try
    {
        set();
    }
    catch (const std::invalid_argument&)
    {
    }
    catch (const std::bad_cast&)
    {
    }
}

/// No NaN, which would not be equal to itself and may change its bits in a conversion.
Bytes draw_samples(Draw& draw, int dt, std::uint64_t count)
{
    const int scalar = dt & ~vela_dt_complex;
    if (scalar != vela_dt_single && scalar != vela_dt_double)
        return draw.bytes(count * size_of(dt));
    const std::uint64_t scalars = count * (dt == scalar ? 1 : 2);
    std::vector<double> numbers(scalars);
    for (double& number : numbers)
        number = static_cast<double>(static_cast<float>(draw.number()));
    return converted(reinterpret_cast<const unsigned char*>(numbers.data()), scalars, vela_dt_double, scalar);
}

si::value draw_unit(Draw& draw)
{
    std::array<si::fraction, 9> exponents;
    for (si::fraction& exponent : exponents)
        if (draw.one_in(4))
            exponent =
                si::fraction::unreduced(static_cast<int>(draw.below(7)) - 3, 1 + static_cast<int>(draw.below(4)));
    exponents[1] = si::fraction(1); // so that it has a dimension, and is not guessed
    return {draw.number(), exponents};
}

VStackPosition draw_position(Draw& draw, const Sizes& sizes)
{
    VStackPosition position;
    position.create(sizes, std::max<std::uint64_t>(sizes.size(), 1) + draw.below(3));
    for (std::size_t i = 0; i < position.origin.count(); ++i)
    {
        position.labels[i] = VPropstring(std::to_wstring(draw.below(1000)));
        position.origin[i] = draw.number();
    }
    for (std::size_t i = 0; i < position.matrix.count(); ++i)
        position.matrix[i] = draw.number();
    return position;
}

void expect_equal(const VStackPosition& position, const VStackPosition& expected)
{
    ASSERT_EQ(position.origin.count(), expected.origin.count());
    ASSERT_EQ(position.labels.count(), expected.labels.count());
    ASSERT_EQ(position.matrix.count(), expected.matrix.count());
    for (std::size_t i = 0; i < expected.origin.count(); ++i)
    {
        EXPECT_EQ(position.origin[i], expected.origin[i]);
        EXPECT_TRUE(position.labels[i] == expected.labels[i]);
    }
    for (std::size_t i = 0; i < expected.matrix.count(); ++i)
        EXPECT_EQ(position.matrix[i], expected.matrix[i]);
}

} // namespace

Bytes Draw::bytes(std::uint64_t count)
{
    const bool noisy = one_in(2);
    Bytes result(count, static_cast<unsigned char>(below(256)));
    for (std::uint64_t i = noisy ? 0 : below(50); i < count; i += noisy ? 1 : 1 + below(50))
        result[i] = static_cast<unsigned char>(below(256));
    return result;
}

std::string Draw::text(std::uint64_t longest)
{
    const Bytes any = bytes(below(longest + 1));
    return std::string(any.begin(), any.end());
}

RandomStack::RandomStack(Draw& draw) : sizes(draw_sizes(draw)), dt(types_of_stacks[draw.below(types_of_stacks.size())])
{
    grows = !sizes.empty() && draw.one_in(3);
    empty = !grows && draw.one_in(10);
    compression_type = static_cast<int>(draw.below(2));
    compression_level = static_cast<int>(draw.below(11)) - 1;
    if (draw.one_in(3))
        flush_block_size = draw.one_in(3) ? 0 : 1 + draw.below(100000);
    name = draw.text(20);
    description = draw.text(draw.one_in(10) ? 10000 : 40);
    for (const std::uint64_t size : sizes)
    {
        const std::uint64_t axis = lengths.size();
        lengths.push_back(draw.one_in(2) ? 1.0 : draw.number());
        offsets.push_back(draw.one_in(2) ? 0.0 : draw.number());
        labels.push_back("axis " + draw.text(5));
        units.push_back(draw_unit(draw));
        if (grows && axis + 1 == sizes.size())
            continue; // has no columns yet
        if (size != 0 && draw.one_in(4))
            for (std::uint64_t i = 0; i < size; ++i)
                col_positions[axis].push_back(draw.number());
        if (size != 0 && draw.one_in(4))
            for (std::uint64_t i = 0; i < size; ++i)
                col_labels[axis].push_back(draw.text(4));
    }
    data_units = draw_unit(draw);
    if (draw.one_in(2))
        position = draw_position(draw, sizes);
    for (std::uint64_t i = draw.below(6); i > 0; --i)
        tags["k" + draw.text(6)] = draw.text(draw.one_in(20) ? 100000 : 30);
    // Steps without samples cannot grow.
    if (grows && std::find(sizes.begin(), sizes.end() - 1, 0) != sizes.end() - 1)
        sizes.back() = 0;
    samples = empty ? Bytes(count() * sample_size(), 0) : draw_samples(draw, dt, count());
}

std::uint32_t RandomStack::draw_chunk_size(Draw& draw) const
{
    static constexpr std::array<std::uint32_t, 6> sizes_bytes = {0, 1, 7, 1000, 65536, 0x400000};
    const std::size_t first = samples.size() > 3000 ? 3 : 0;
    return sizes_bytes[first + draw.below(sizes_bytes.size() - first)];
}

std::uint64_t RandomStack::count() const
{
    std::uint64_t product = 1;
    for (const std::uint64_t size : sizes)
        product *= size;
    return product;
}

std::uint64_t RandomStack::sample_size() const
{
    return size_of(dt);
}

void RandomStack::describe(VBFStackInterface& stack) const
{
    stack.set_name(name);
    stack.set_description(description);
    for (std::uint64_t axis = 0; axis < sizes.size(); ++axis)
    {
        set_in_any_case([&] { stack.set_len(axis, lengths[axis]); });
        set_in_any_case([&] { stack.set_off(axis, offsets[axis]); });
        stack.set_units(axis, units[axis]);
    }
    stack.set_labels(labels);
    stack.set_data_units(data_units);
    if (position)
        stack.set_stack_position(*position);
    for (const auto& [axis, positions] : col_positions)
        stack.set_col_positions(axis, positions);
    for (const auto& [axis, texts] : col_labels)
        stack.set_col_labels(axis, texts);
    for (const auto& [key, text] : tags)
        stack.set_tag(key, text);
    stack.set_compression(compression_type, compression_level);
    if (flush_block_size)
        stack.set_flush_block_size(*flush_block_size);
}

void RandomStack::write(VBFFileInterface& file, Draw& draw) const
{
    const Stack stack = file.add_stack(empty);
    Sizes described = sizes;
    if (grows)
        described.back() = 0;
    VStackInfo fixed;
    fixed->create(described, dt);
    if (grows)
        stack->create(described, dt);
    else
        stack->create(fixed, vela_dt_none);
    describe(*stack);
    if (!empty)
        write_samples(*stack, draw);
    if (stack->get_state() != 0 && (draw.one_in(2) || empty))
        stack->commit(vela_dt_none); // else the file does
}

void RandomStack::write_samples(VBFStackInterface& stack, Draw& draw) const
{
    for (std::uint64_t done = 0; done < count();)
    {
        const std::uint64_t n =
            draw.one_in(3) ? count() - done : 1 + draw.below(std::min<std::uint64_t>(count() - done, 9000));
        const unsigned char* const next = samples.data() + done * sample_size();
        const bool is_complex = (dt & vela_dt_complex) != 0;
        if (is_complex && draw.one_in(2))
        {
            const int scalar = dt & ~vela_dt_complex;
            Bytes real(n * size_of(scalar));
            Bytes imaginary(real.size());
            vela_dt_convert(static_cast<std::uint32_t>(dt), static_cast<std::uint32_t>(scalar), next, real.data(), n,
                            nullptr, imaginary.data());
            stack.write(scalar, real.data(), imaginary.data(), n);
        }
        else if (!is_complex && draw.one_in(3))
        {
            const Bytes wide = converted(next, n, dt, wider_real(dt));
            stack.write(wider_real(dt), wide.data(), nullptr, n);
        }
        else
            stack.write(dt, next, nullptr, n);
        done += n;
    }
    if (count() == 0 && !grows)
        stack.commit(vela_dt_none);
}

void RandomStack::expect_in(VBFFileInterface& file, std::uint64_t index, Draw& draw) const
{
    const Stack stack = file.get_stack(index);
    expect_description(*stack);
    expect_samples(*stack, draw);
}

void RandomStack::expect_description(VBFStackInterface& stack) const
{
    EXPECT_EQ(stack.get_sizes(), sizes);
    EXPECT_EQ(stack.get_dt(), dt);
    EXPECT_EQ(stack.get_name(), name);
    EXPECT_EQ(stack.get_description(), description);
    EXPECT_EQ(stack.get_lengths(), lengths);
    EXPECT_EQ(stack.get_offsets(), offsets);
    EXPECT_EQ(stack.get_labels(), labels);
    EXPECT_EQ(stack.get_data_units(), data_units);
    if (position)
        expect_equal(stack.get_stack_position(), *position);
    for (std::uint64_t axis = 0; axis < sizes.size(); ++axis)
    {
        EXPECT_EQ(stack.get_units(axis), units[axis]);
        const auto positions = col_positions.find(axis);
        EXPECT_EQ(stack.is_equidistant(axis), positions == col_positions.end());
        if (positions != col_positions.end())
        {
            EXPECT_EQ(stack.get_col_positions(axis), positions->second);
        }
        const auto texts = col_labels.find(axis);
        EXPECT_EQ(stack.get_col_labels(axis), texts == col_labels.end() ? std::vector<std::string>() : texts->second);
    }
    std::map<std::string, std::string> read_tags;
    for (const std::string& key : stack.get_tag_keys())
        read_tags[key] = stack.get_tag(key);
    EXPECT_EQ(read_tags, tags);
    int type = -1;
    int level = -2;
    stack.get_compression(type, level);
    EXPECT_EQ(type, compression_type);
    EXPECT_EQ(level, compression_level);
}

void RandomStack::expect_samples(VBFStackInterface& stack, Draw& draw) const
{
    EXPECT_TRUE(samples_of(stack) == samples);
    if (count() == 0)
        return;
    for (int i = 0; i < 5; ++i)
    {
        std::uint64_t pos = draw.below(count());
        const std::uint64_t n = 1 + draw.below(count() - pos);
        const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(pos * sample_size());
        Bytes run(n * sample_size(), 0xcd);
        EXPECT_EQ(stack.read(dt, run.data(), nullptr, n, pos), n);
        EXPECT_TRUE(std::equal(run.begin(), run.end(), begin)) << n << " samples";
    }
}

} // namespace vela_test
