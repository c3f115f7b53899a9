/// The description of a region of a stack, against a plain model that takes one step after the other.
#include "open_info.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace {

using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;
using vela_test::Texts;
using Pixels = std::vector<std::int64_t>;
using Extents = std::vector<std::size_t>;

VStackRegion make_region(const Pixels& begin, const Pixels& end, const Sizes& permutation)
{
    VStackRegion region;
    region.begin = begin;
    region.end = end;
    region.permutation = permutation;
    return region;
}

/// What a new description has, after it was created for a region of `info`.
struct Model
{
    Sizes sizes;
    Doubles lengths, offsets;
    Texts labels;
    std::vector<Texts> col_labels;
    std::vector<Doubles> positions; // empty where equidistant
    VStackPosition place;

    Model(const VStackInfoInterface& info, const VStackRegion& region)
    {
        bool exact = false;
        sizes = region.validate(&info, exact);
        const std::size_t rank = sizes.size();
        lengths = Doubles(rank, 1.0);
        offsets = Doubles(rank, 0.0);
        labels = Texts(rank);
        col_labels.resize(rank);
        positions.resize(rank);
        const VStackPosition& pos = info.get_stack_position();
        const std::size_t globals = pos.origin.count();
        place.create(sizes, std::max(globals, rank));
        std::vector<bool> used(info.get_rank());
        for (std::size_t i = 0; i < rank; ++i)
            if (const std::uint64_t ax = region.permutation[i]; ax < info.get_rank())
            {
                used[ax] = true;
                take_axis(info, region, i, ax);
            }
        for (std::size_t j = 0; j < globals; ++j)
        {
            place.labels[j] = pos.labels[j];
            place.origin[j] = pos.origin[j];
        }
        for (std::size_t k = 0; k < used.size(); ++k)
            if (!used[k])
                cut(info, k, k < region.begin.size() ? region.begin[k] : 0);
    }

    void take_axis(const VStackInfoInterface& info, const VStackRegion& region, std::size_t i, std::uint64_t ax)
    {
        labels[i] = info.get_label(ax);
        const auto dim = static_cast<std::int64_t>(info.get_dimension_size(ax));
        const std::int64_t begin = region.begin[ax];
        const std::int64_t e = std::min(dim, std::max<std::int64_t>(0, region.end[ax]));
        const std::int64_t s = std::min(dim, std::max<std::int64_t>(0, begin));
        const std::int64_t pad = std::max<std::int64_t>(0, -begin);
        if (!info.is_equidistant(ax))
        {
            positions[i].resize(sizes[i]);
            for (std::int64_t p = s; p < e; ++p)
                positions[i].at(static_cast<std::size_t>(pad + p - s)) =
                    info.get_col_positions(ax).at(static_cast<std::size_t>(p));
        }
        else if (dim != 0)
        {
            const double length = info.get_length(ax);
            lengths[i] = length * static_cast<double>(sizes[i]) / static_cast<double>(dim);
            const std::uint64_t middle = static_cast<std::uint64_t>(begin) * sizes[i] / static_cast<std::uint64_t>(dim);
            offsets[i] = (info.get_offset(ax) - length * 0.5) + static_cast<double>(middle) + lengths[i] * 0.5;
        }
        if (!info.get_col_labels(ax).empty())
        {
            col_labels[i].resize(sizes[i]);
            for (std::int64_t p = s; p < e; ++p)
                col_labels[i].at(static_cast<std::size_t>(pad + p - s)) =
                    info.get_col_labels(ax).at(static_cast<std::size_t>(p));
        }
        if (ax < sizes.size())
            for (std::size_t j = 0; j < place.origin.count(); ++j)
                place.matrix.at({j, i}, false) = place.matrix.at({j, static_cast<std::size_t>(ax)}, false);
    }

    void cut(const VStackInfoInterface& info, std::size_t k, std::int64_t begin)
    {
        double slice = info.get_offset(k);
        if (!info.is_equidistant(k))
        {
            const bool inside = begin >= 0 && begin < static_cast<std::int64_t>(info.get_dimension_size(k));
            slice = inside ? info.get_col_positions(k)[static_cast<std::size_t>(begin)] : 0.0;
        }
        const VStackPosition& pos = info.get_stack_position();
        for (std::size_t j = 0; j < pos.origin.count(); ++j)
            place.origin[j] += pos.matrix.at({j, k}) * slice;
    }

    void expect_of(const VStackInfoInterface& made) const
    {
        EXPECT_EQ(made.get_sizes(), sizes);
        EXPECT_EQ(made.get_labels(), labels);
        for (std::size_t i = 0; i < sizes.size(); ++i)
        {
            EXPECT_DOUBLE_EQ(made.get_length(i), lengths[i]) << i;
            EXPECT_DOUBLE_EQ(made.get_offset(i), offsets[i]) << i;
            EXPECT_EQ(made.get_col_labels(i), col_labels[i]) << i;
            EXPECT_EQ(made.is_equidistant(i), positions[i].empty()) << i;
            if (!made.is_equidistant(i))
            {
                EXPECT_EQ(made.get_col_positions(i), positions[i]) << i;
            }
        }
        const VStackPosition& pos = made.get_stack_position();
        EXPECT_EQ(pos.matrix.get_size(false), place.matrix.get_size(false));
        EXPECT_EQ(pos.matrix.Elements::size(), place.matrix.Elements::size());
        EXPECT_TRUE(std::equal(pos.matrix.begin(), pos.matrix.end(), place.matrix.begin(), place.matrix.end()));
        EXPECT_TRUE(std::equal(pos.labels.begin(), pos.labels.end(), place.labels.begin(), place.labels.end()));
        ASSERT_EQ(pos.origin.count(), place.origin.count());
        for (std::size_t j = 0; j < place.origin.count(); ++j)
            EXPECT_DOUBLE_EQ(pos.origin[j], place.origin[j]) << j;
    }
};

class RandomStack
{
public:
    explicit RandomStack(unsigned seed) : random_(seed), info(make_sizes())
    {
        info.set_name("name");
        info.set_description("description");
        for (std::uint64_t axis = 0; axis < info.get_rank(); ++axis)
            fill(axis);
        if (pick(0, 1) == 0)
            return;
        VStackPosition position;
        position.create(&info, info.get_rank() + static_cast<std::uint64_t>(pick(1, 3)));
        for (double& element : position.matrix)
            element = static_cast<double>(pick(-9, 9)) * 0.5;
        for (std::size_t j = 0; j < position.origin.count(); ++j)
        {
            position.origin[j] = static_cast<double>(pick(-9, 9));
            position.labels[j] = "global " + std::to_string(j);
        }
        info.set_stack_position(position);
    }

    VStackRegion make_region()
    {
        VStackRegion region;
        const std::uint64_t axes = info.get_rank() + static_cast<std::uint64_t>(pick(0, 1));
        for (std::uint64_t i = 0; i < axes; ++i)
        {
            region.begin.push_back(pick(-2, 5));
            region.end.push_back(region.begin[i] + pick(1, 6));
            region.permutation.push_back(i);
        }
        std::shuffle(region.permutation.begin(), region.permutation.end(), random_);
        region.permutation.resize(static_cast<std::size_t>(pick(0, static_cast<std::int64_t>(axes))));
        return region;
    }

private:
    std::int64_t pick(std::int64_t low, std::int64_t high)
    {
        return low + static_cast<std::int64_t>(random_() % static_cast<std::uint64_t>(high - low + 1));
    }

    Sizes make_sizes()
    {
        Sizes sizes(static_cast<std::size_t>(pick(1, 4)));
        for (std::uint64_t& size : sizes)
            size = static_cast<std::uint64_t>(pick(1, 5));
        return sizes;
    }

    void fill(std::uint64_t axis)
    {
        const std::uint64_t size = info.get_dimension_size(axis);
        info.set_label(axis, "axis " + std::to_string(axis));
        if (axis < 3)
        {
            info.set_len(axis, static_cast<double>(pick(1, 40)) * 0.25);
            info.set_off(axis, static_cast<double>(pick(-20, 20)) * 0.25);
        }
        if (pick(0, 2) == 0)
        {
            Doubles positions(size);
            for (double& position : positions)
                position = static_cast<double>(pick(-50, 50));
            info.set_col_positions(axis, positions);
        }
        if (pick(0, 2) == 0)
        {
            Texts labels(size);
            for (std::size_t i = 0; i < size; ++i)
                labels[i] = "column " + std::to_string(i);
            info.set_col_labels(axis, labels);
        }
    }

    std::mt19937 random_;

public:
    OpenInfo info;
};

TEST(DescriptionOfRegionBehaviour, RandomRegionsFollowStepByStep)
{
    for (unsigned seed = 1; seed <= 2000; ++seed)
    {
        SCOPED_TRACE(seed);
        RandomStack stack(seed);
        VStackRegion region = stack.make_region();
        region.dt = seed % 2 == 0 ? vela_dt_double : 0;
        OpenInfo made;
        made.create(&stack.info, region);
        Model(stack.info, region).expect_of(made);
        EXPECT_EQ(made.get_dt(), seed % 2 == 0 ? vela_dt_double : vela_dt_uint8);
        EXPECT_EQ(made.get_name(), "name");
        EXPECT_EQ(made.get_description(), "description");
        if (::testing::Test::HasFailure())
            break;
    }
}

OpenInfo make_volume()
{
    OpenInfo info(Sizes{4, 3, 2});
    info.set_labels({"X", "Y", "Z"});
    info.set_len({8.0, 6.0, 10.0});
    info.set_off({1.0, 2.0, 3.0});
    return info;
}

TEST(DescriptionOfRegionBehaviour, BeginCountsInPixelsAndNotInTheirSize)
{
    const OpenInfo volume = make_volume();
    OpenInfo made;
    made.create(&volume, make_region({2, 0, 0}, {4, 3, 2}, {0, 1, 2}));
    EXPECT_EQ(made.get_lengths(), (Doubles{4.0, 6.0, 10.0}));
    EXPECT_EQ(made.get_offsets(), (Doubles{(1.0 - 4.0) + 1.0 + 2.0, 2.0, 3.0}));
    made.create(&volume, make_region({1, 0, 0}, {2, 3, 2}, {0, 1, 2}));
    EXPECT_EQ(made.get_offset(0), (1.0 - 4.0) + 0.0 + 1.0) << "1 * 1 / 4 is 0";
}

TEST(DescriptionOfRegionBehaviour, NegativeBeginWrapsInTheOffset)
{
    const OpenInfo volume = make_volume();
    OpenInfo made;
    made.create(&volume, make_region({-2, 0, 0}, {3, 3, 2}, {0, 1, 2}));
    EXPECT_EQ(made.get_length(0), 10.0);
    EXPECT_EQ(made.get_offset(0), -3.0 + static_cast<double>(std::uint64_t{0} - 10) / 4 + 5.0);
}

TEST(DescriptionOfRegionBehaviour, CutsAtAnyPlaneGiveThatPlane)
{
    const OpenInfo volume = make_volume();
    struct Cut
    {
        Sizes permutation;
        Sizes sizes;
        Texts labels;
        Doubles origin;
    };
    const Cut cuts[] = {{{0, 1}, {4, 3}, {"X", "Y"}, {0, 0, 3}},
                        {{0, 2}, {4, 2}, {"X", "Z"}, {0, 2, 0}},
                        {{1, 2}, {3, 2}, {"Y", "Z"}, {1, 0, 0}}};
    for (const Cut& cut : cuts)
        for (std::int64_t plane = 0; plane < 2; ++plane)
        {
            VStackRegion region;
            region.create(&volume, 0);
            region.permutation = cut.permutation;
            for (std::size_t k = 0; k < 3; ++k)
                if (std::find(cut.permutation.begin(), cut.permutation.end(), k) == cut.permutation.end())
                    region.begin[k] = plane;
            OpenInfo made;
            made.create(&volume, region);
            EXPECT_EQ(made.get_sizes(), cut.sizes);
            EXPECT_EQ(made.get_labels(), cut.labels);
            EXPECT_EQ(static_cast<const Doubles&>(made.get_stack_position().origin), cut.origin);
            EXPECT_EQ(made.get_stack_position().matrix.get_size(false), (Extents{3, 2}));
            EXPECT_EQ(made.get_stack_position().labels[2], L"Z");
        }
}

TEST(DescriptionOfRegionBehaviour, SliceOfAPositionedAxisMovesTheOriginByItsColumn)
{
    OpenInfo volume = make_volume();
    volume.set_col_positions(2, {-7.0, 5.0});
    OpenInfo made;
    made.create(&volume, make_region({0, 0, 1}, {4, 3, 2}, {0, 1}));
    EXPECT_EQ(made.get_stack_position().origin[2], 5.0);
    made.create(&volume, make_region({0, 0}, {4, 3}, {0, 1}));
    EXPECT_EQ(made.get_stack_position().origin[2], -7.0) << "begin does not reach Z: pixel 0";
    for (const std::int64_t outside : {-1, 2, 99})
    {
        made.create(&volume, make_region({0, 0, outside}, {4, 3, outside}, {0, 1}));
        EXPECT_EQ(made.get_stack_position().origin[2], 0.0) << outside;
    }
}

TEST(DescriptionOfRegionBehaviour, UnspecifiedEndIsTheEndOfTheStack)
{
    OpenInfo volume = make_volume();
    volume.set_col_labels(0, {"a", "b", "c", "d"});
    volume.set_col_positions(0, {1, 2, 4, 8});
    OpenInfo made;
    made.create(&volume, make_region({-1}, {VStackRegion::unspecified}, {0}));
    EXPECT_EQ(made.get_col_labels(0), (Texts{"", "a", "b", "c", "d"}));
    EXPECT_EQ(made.get_col_positions(0), (Doubles{0, 1, 2, 4, 8}));
    EXPECT_EQ(made.get_length(0), 1.0);
    EXPECT_EQ(made.get_offset(0), 0.0);
}

TEST(DescriptionOfRegionBehaviour, PermutationReadsColumnsOfTheMatrixThatItHasWritten)
{
    const OpenInfo volume = make_volume();
    OpenInfo made;
    made.create(&volume, make_region({0, 0, 0}, {4, 3, 2}, {1, 0, 2}));
    const Doubles expected = {0, 1, 0, 0, 1, 0, 0, 0, 1};
    EXPECT_EQ(static_cast<const Doubles&>(made.get_stack_position().matrix), expected);
    EXPECT_EQ(made.get_labels(), (Texts{"Y", "X", "Z"}));
}

TEST(DescriptionOfRegionBehaviour, AxisThatTheStackLacksKeepsItsDefaults)
{
    const OpenInfo volume = make_volume();
    OpenInfo made;
    made.create(&volume, make_region({0, 0, 0, 0}, {4, 3, 2, 2}, {0, 1, 2, 3}));
    EXPECT_EQ(made.get_sizes(), (Sizes{4, 3, 2, 2}));
    EXPECT_EQ(made.get_length(3), 1.0);
    EXPECT_EQ(made.get_offset(3), 0.0);
    EXPECT_EQ(made.get_label(3), "");
    EXPECT_EQ(made.get_stack_position().matrix.get_size(false), (Extents{4, 4}));
    EXPECT_EQ(made.get_stack_position().matrix.at({3, 3}), 1.0);
}

TEST(DescriptionOfRegionBehaviour, LabelsThatNoLongerFitTheirAxisAreCopiedAsFarAsTheyGo)
{
    OpenInfo source(Sizes{4});
    source.set_col_labels(0, {"a", "b", "c", "d"});
    source.set_col_positions(0, {1, 2, 4, 8});
    source.set_sizes({6});
    OpenInfo made;
    made.create(&source, make_region({2}, {6}, {0}));
    EXPECT_EQ(made.get_col_labels(0), (Texts{"c", "d", "", ""}));
    EXPECT_EQ(made.get_col_positions(0).size(), 4u);
}

TEST(DescriptionOfRegionBehaviour, UnitsAreNotCopied)
{
    OpenInfo volume = make_volume();
    volume.set_units(0, si::value("K"));
    volume.set_data_units(si::value("V"));
    volume.meta_data_string = "raw";
    OpenInfo made;
    made.create(&volume, make_region({0}, {4}, {0}));
    EXPECT_FALSE(made.get_units(0).is_compatible(si::value("K")));
    EXPECT_EQ(made.get_data_units(), si::value());
    EXPECT_EQ(made.get_meta_data_string(), "");
}

TEST(DescriptionOfRegionBehaviour, FailuresOfTheRegionAndOfTheTypeComeOut)
{
    const OpenInfo volume = make_volume();
    OpenInfo made(Sizes{7});
    EXPECT_VELA_ERROR_IN(made.create(&volume, make_region({0, 0}, {1, 1}, {1, 1})), "VStackRegion::validate",
                         "sources/stacks", -15, "Invalid permutation!");
    EXPECT_VELA_ERROR(made.create(&volume, make_region({3}, {1}, {0})), -1, "Called on invalid region!");
    EXPECT_EQ(made.get_sizes(), Sizes{7});
    VStackRegion region = make_region({0}, {1}, {0});
    region.dt = vela_dt_uint64;
    EXPECT_THROW_TEXT(made.create(&volume, region), std::invalid_argument, "Unsupported data type");
    EXPECT_EQ(made.get_sizes(), Sizes{7});
    EXPECT_EQ(made.get_dt(), vela_dt_uint64);
}

} // namespace
