// Copies at the limits: large stacks, blocks smaller than their description, far regions, and a stack onto itself.
#include <VelaStacks/iterators.h>

#include "open_stack.h"

#include "support/expect_vela_error.h"

#include <array>

namespace {

using Sizes = std::vector<std::uint64_t>;
using Bytes = std::vector<unsigned char>;
using Axes = std::array<std::uint64_t, 3>;

struct Large
{
    vela_dt dt;
    Axes sizes;
    Axes begin;
    Axes end;
    Axes permutation;
};

/// Bytes without a short period.
void fill(VStackImp& stack)
{
    std::uint64_t state = 1;
    for (std::uint64_t i = 0; i < stack.get_block_size(); ++i)
    {
        state = state * 6364136223846793005U + 1442695040888963407U;
        stack.get_data_ptr()[i] = static_cast<unsigned char>(state >> 56);
    }
}

VStackRegion region_of(const Large& large)
{
    VStackRegion region;
    region.begin.assign(large.begin.begin(), large.begin.end());
    region.end.assign(large.end.begin(), large.end.end());
    region.permutation.assign(large.permutation.begin(), large.permutation.end());
    return region;
}

/// The number of samples that are not those of the source.
std::uint64_t count_wrong_samples(const VStackImp& source, const VStackImp& target, const Large& large)
{
    const std::uint64_t size = vela_dt_get_size(static_cast<std::uint32_t>(large.dt));
    const Axes strides = {size, size * large.sizes[0], size * large.sizes[0] * large.sizes[1]};
    const Axes& order = large.permutation;
    const unsigned char* first = source.get_data_ptr();
    for (std::size_t axis = 0; axis < 3; ++axis)
        first += large.begin[axis] * strides[axis];
    const auto extent = [&](std::size_t j) { return large.end[order[j]] - large.begin[order[j]]; };
    const unsigned char* out = target.get_data_ptr();
    std::uint64_t wrong = 0;
    for (std::uint64_t k = 0; k < extent(2); ++k)
    {
        for (std::uint64_t j = 0; j < extent(1); ++j)
        {
            const unsigned char* in = first + k * strides[order[2]] + j * strides[order[1]];
            for (std::uint64_t i = 0; i < extent(0); ++i, in += strides[order[0]], out += size)
                wrong += std::memcmp(in, out, size) != 0 ? 1U : 0U;
        }
    }
    return wrong;
}

TEST(StackCopyingLimits, LargeStacksInAnyOrderAreThoseSamples)
{
    const Large cases[] = {
        {vela_dt_uint8, {4099, 8209, 1}, {0, 0, 0}, {4099, 8209, 1}, {1, 0, 2}},
        {vela_dt_uint8, {131, 257, 7}, {1, 3, 2}, {130, 250, 7}, {1, 0, 2}},
        {vela_dt_int8, {64, 128, 64}, {0, 0, 0}, {64, 128, 64}, {2, 1, 0}},
        {vela_dt_uint16, {1025, 2051, 1}, {0, 0, 0}, {1025, 2051, 1}, {1, 0, 2}},
        {vela_dt_uint16, {65, 67, 33}, {1, 0, 1}, {64, 67, 32}, {1, 2, 0}},
        {vela_dt_int16, {333, 5, 444}, {3, 1, 0}, {333, 4, 443}, {0, 2, 1}},
        {vela_dt_single, {513, 511, 3}, {0, 0, 0}, {513, 511, 3}, {1, 0, 2}},
        {vela_dt_uint32, {127, 3, 515}, {0, 0, 5}, {127, 3, 515}, {2, 0, 1}},
        {vela_dt_double, {257, 513, 2}, {1, 1, 0}, {257, 513, 2}, {1, 0, 2}},
        {vela_dt_complex | vela_dt_single, {100, 200, 5}, {0, 0, 0}, {100, 200, 5}, {2, 1, 0}},
        {vela_dt_complex | vela_dt_double, {255, 257, 3}, {0, 2, 0}, {255, 257, 3}, {1, 2, 0}},
        {vela_dt_uint8, {4096, 4096, 1}, {0, 0, 0}, {4096, 4095, 1}, {0, 1, 2}},
    };
    for (const Large& large : cases)
    {
        SCOPED_TRACE(testing::Message() << std::hex << large.dt << std::dec << " of " << large.sizes[0] << ", "
                                        << large.sizes[1] << ", " << large.sizes[2]);
        VStackImp source;
        source.create(Sizes(large.sizes.begin(), large.sizes.end()), large.dt);
        fill(source);
        VStackImp target;
        target.copy(&source, region_of(large));
        EXPECT_EQ(count_wrong_samples(source, target, large), 0U);
    }
}

TEST(StackCopyingLimits, LargeStacksAreConvertedInAnyOrder)
{
    VStackImp source(Ome::Type::int16, {515, 1027}, Ome::DimensionOrder::XYZTC);
    fill(source);
    const std::vector<std::int16_t> samples = naive::samples_of<std::int16_t>(source);
    VStackImp target;
    target.copy(&source, naive::box({-3, -5}, {520, 1030}, {1, 0}, vela_dt_single));
    const std::vector<float> converted = naive::samples_of<float>(target);
    ASSERT_EQ(converted.size(), 1035U * 523U);
    std::uint64_t wrong = 0;
    for (std::size_t x = 0; x < 523; ++x)
    {
        for (std::size_t y = 0; y < 1035; ++y)
        {
            const bool inside = x >= 3 && x < 518 && y >= 5 && y < 1032;
            const float expected = inside ? static_cast<float>(samples[(x - 3) + (y - 5) * 515]) : 0.0F;
            wrong += converted[y + x * 1035] != expected ? 1U : 0U;
        }
    }
    EXPECT_EQ(wrong, 0U);
}

TEST(StackCopyingLimits, ALargeStackOntoItselfIsTransposed)
{
    VStackImp stack(Ome::Type::uint16, {700, 900}, Ome::DimensionOrder::XYZTC);
    fill(stack);
    const std::vector<std::uint16_t> before = naive::samples_of<std::uint16_t>(stack);
    stack.copy(&stack, naive::box({0, 0}, {700, 900}, {1, 0}));
    const std::vector<std::uint16_t> after = naive::samples_of<std::uint16_t>(stack);
    std::uint64_t wrong = 0;
    for (std::size_t i = 0; i < after.size(); ++i)
        wrong += after[i] != before[(i % 900) * 700 + i / 900] ? 1U : 0U;
    EXPECT_EQ(wrong, 0U);
}

/// Everything of a description that a copy carries.
std::string text_of(const VStackImp& stack)
{
    std::string text = stack.get_name() + "|" + stack.get_description() + "|" + std::to_string(stack.get_dt());
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
    {
        text += "|" + stack.get_label(axis) + " " + std::to_string(stack.get_dimension_size(axis)) + " " +
                std::to_string(stack.get_length(axis)) + " " + std::to_string(stack.get_offset(axis));
        for (const std::string& label : stack.get_col_labels(axis))
            text += " " + label;
        text += stack.is_equidistant(axis) ? " equidistant" : " at";
        // Positions that do not fit the axis any more are none.
        const std::uint64_t known =
            stack.is_equidistant(axis) ? stack.get_dimension_size(axis) : stack.get_col_positions(axis).size();
        for (std::uint64_t column = 0; column < known; ++column)
            text += " " + std::to_string(stack.get_col_position(axis, column));
    }
    const VStackPosition& position = stack.get_stack_position();
    for (std::uint64_t i = 0; i < position.origin.size(); ++i)
        text += "|" + std::to_string(position.origin[i]);
    for (std::uint64_t i = 0; i < position.matrix.size(); ++i)
        text += " " + std::to_string(position.matrix[i]);
    return text;
}

TEST(StackCopyingLimits, OntoItselfTheDescriptionIsAsIfItHadBeenCopiedFirst)
{
    VStackImp stack(Ome::Type::uint8, {4, 3, 2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    stack.set_name("cells");
    stack.set_description("of an onion");
    stack.set_labels({"X", "Y", "Z"});
    // An axis with column positions has the length 1 and the offset 0 in a copy.
    stack.set_len({8.0, 1.0, 5.0});
    stack.set_off({1.0, 0.0, 3.0});
    stack.set_col_positions(1, {1.0, 2.0, 4.0});
    stack.set_col_labels(0, {"a", "b", "c", "d"});
    stack.set_col_labels(2, {"front", "back"});
    VStackPosition position = stack.get_stack_position();
    position.origin[1] = 2.5;
    stack.set_stack_position(position);
    for (const VStackRegion& region :
         {naive::box({0, 0, 0}, {4, 3, 2}, {0, 1, 2}), naive::box({0, 0, 0}, {4, 3, 2}, {2, 0, 1}),
          naive::box({1, 0, 0}, {4, 3, 2}, {1, 0, 2}), naive::box({-1, -1, 0}, {3, 5, 1}, {1, 0}),
          naive::box({2, 1, 1}, {3, 2, 2}, {2}), naive::box({0, 2, 0}, {4, 3, 2}, {2, 0}, vela_dt_single)})
    {
        VStackImp itself;
        itself.copy(&stack, 0);
        VStackImp apart;
        apart.copy(&stack, 0);
        ASSERT_EQ(text_of(itself), text_of(stack));
        itself.copy(&itself, region);
        apart.copy(&stack, region);
        EXPECT_EQ(text_of(itself), text_of(apart));
        EXPECT_EQ(naive::block_of(itself), naive::block_of(apart));
    }
}

TEST(StackCopyingLimits, FarAwayRegionsHaveNothingInCommonWithTheSource)
{
    VStackImp source(Ome::Type::uint8, {2, 2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(source);
    constexpr std::int64_t low = INT64_MIN;
    constexpr std::int64_t high = INT64_MAX - 1;
    for (const VStackRegion& region :
         {naive::box({low, 0}, {low + 1, 2}, {0, 1}), naive::box({high - 1, 0}, {high, 2}, {1, 0}),
          naive::box({0, low}, {2, low + 1}, {0}), naive::box({0, high - 1}, {2, high}, {0}),
          naive::box({0, 0, low}, {1, 2, low + 1}, {2, 1, 0}), naive::box({0, 0, high - 1}, {1, 2, high}, {0, 1, 2})})
    {
        VStackImp target(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
        naive::number_bytes(target);
        target.copy(&source, region);
        EXPECT_EQ(naive::block_of(target), (Bytes{1, 2}));
        EXPECT_VELA_ERROR(source.get_iterator(region), -15, "Cannot create iterator over region exceeding the stack!");
    }
}

TEST(StackCopyingLimits, ARegionTooLargeForMemoryLeavesTheBlock)
{
    VStackImp source(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(source);
    constexpr std::int64_t large = std::int64_t{1} << 58;
    VStackImp target(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(target);
    for (VStackImp* const stack : {&target, &source})
    {
        EXPECT_VELA_ERROR(stack->copy(&source, naive::box({0}, {large}, {0})), -1, "Out of memory");
        EXPECT_EQ(stack->get_sizes(), Sizes{std::uint64_t{1} << 58});
        EXPECT_EQ(naive::block_of(*stack), (Bytes{1, 2}));
    }
    EXPECT_VELA_ERROR(target.copy(&source, naive::box({0}, {large * 8}, {0}, vela_dt_double)), -1,
                      "The size increases the maximum size");
    EXPECT_EQ(naive::block_of(target), (Bytes{1, 2}));
}

/// Has the samples 1, 2, 3 of six.
struct Cut
{
    Cut() : stack(Ome::Type::uint8, {2, 3}, Ome::DimensionOrder::XYZTC), sharing(stack)
    {
        naive::number_bytes(stack);
        sharing.create({3}, vela_dt_uint8);
    }
    VStackImp stack;
    VStackImp sharing;
};

TEST(StackCopyingLimits, OfABlockSmallerThanItsDescriptionEverySampleThereIsIsCopied)
{
    const std::pair<VStackRegion, Bytes> cases[] = {
        {naive::box({0, 0}, {2, 3}, {0, 1}), {1, 2, 3, 0, 0, 0}},
        {naive::box({0, 0}, {2, 3}, {1, 0}), {1, 3, 0, 2, 0, 0}},
        {naive::box({0, 0}, {2, 2}, {0, 1}), {1, 2, 3, 0}},
        {naive::box({-1, 0}, {2, 2}, {0, 1}), {0, 1, 2, 0, 3, 0}},
        {naive::box({0, 1}, {2, 2}, {0}), {3, 0}},
        {naive::box({1, 0}, {2, 3}, {1}), {2, 0, 0}},
    };
    int number = 0;
    for (const auto& [region, expected] : cases)
    {
        SCOPED_TRACE(number++);
        const Cut cut;
        VStackImp target;
        target.copy(&cut.stack, region);
        EXPECT_EQ(naive::block_of(target), expected);
    }
}

TEST(StackCopyingLimits, AStackWhoseBlockIsGoneGivesNoSamples)
{
    VStackImp stack(Ome::Type::uint8, {2, 2}, Ome::DimensionOrder::XYZTC);
    VStackImp(stack).destroy();
    for (const VStackRegion& region :
         {naive::whole(stack), naive::box({0, 0}, {2, 2}, {1, 0}), naive::box({0, 0}, {2, 2}, {1, 0}, vela_dt_int8),
          naive::box({0, 0}, {2, 2}, {0, 1}, vela_dt_int8)})
    {
        VStackImp target;
        target.copy(&stack, region);
        EXPECT_EQ(naive::block_of(target), Bytes(4, 0));
    }
    EXPECT_VELA_ERROR(stack.get_iterator(naive::whole(stack)), -15,
                      "Cannot create iterator over region exceeding the stack!");
}

/// Never changes the size of its block.
class StubbornStack : public VStackImp
{
public:
    StubbornStack() : VStackImp(Ome::Type::uint8, {3}, Ome::DimensionOrder::XYZTC) {}
    using VStackImp::create;
    void create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) override
    {
        VStackInfoImp::create(new_sizes, new_dt);
    }
};

TEST(StackCopyingLimits, ATargetSmallerThanItsDescriptionIsFilledAsFarAsItGoes)
{
    VStackImp source(Ome::Type::uint8, {2, 3}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(source);
    const std::pair<VStackRegion, Bytes> cases[] = {
        {naive::box({0, 0}, {2, 3}, {0, 1}), {1, 2, 3}},
        {naive::box({0, 0}, {2, 3}, {1, 0}), {1, 3, 5}},
        {naive::box({0, 0}, {2, 3}, {0, 1}, vela_dt_uint16), {1, 0}},
        {naive::box({0, 1}, {2, 3}, {0, 1}), {3, 4, 5}},
        {naive::box({-1, 0}, {2, 3}, {0, 1}), {0, 1, 2}},
    };
    int number = 0;
    for (const auto& [region, expected] : cases)
    {
        SCOPED_TRACE(number++);
        StubbornStack target;
        target.copy(&source, region);
        Bytes block = naive::block_of(target);
        ASSERT_EQ(block.size(), 3U);
        block.resize(expected.size()); // what a sample that is not whole has is open
        EXPECT_EQ(block, expected);
    }
}

} // namespace
