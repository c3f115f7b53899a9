// What stands behind the footer of a stack for each of its axes: labels, units, columns.
#include "binary_io/described_stacks.h"

#include <cmath>
#include <limits>

using namespace vela_test;

namespace {

typedef std::vector<double> Doubles;

constexpr double no_number = std::numeric_limits<double>::quiet_NaN();

class VbfStackAxes : public VbfReadingTest
{
};

} // namespace

TEST_F(VbfStackAxes, LabelsAreRead)
{
    RecordFields fields = empty_record({2, 2, 2});
    fields.labels = {"X", "", "l\xc3\xa4nge"};
    EXPECT_EQ(only_stack(fields)->get_labels(), (std::vector<std::string>{"X", "", "l\xc3\xa4nge"}));
}

TEST_F(VbfStackAxes, UnitsAreTakenAsStored)
{
    RecordFields fields = empty_record({2, 2});
    fields.units = {{{{2, 4}, {0, 1}, {-3, -6}}, 2.5}, {{{0, 1}, {1, 1}}, -1e-6}};
    fields.data_units = {{{0, 1}, {0, 1}, {0, 1}, {1, -2}, {5, 1}, {6, 1}, {7, 1}, {8, 1}, {9, 1}}, 1e12};
    const StackPointer stack = only_stack(fields);

    std::vector<std::pair<std::int32_t, std::int32_t>> first = neutral;
    first[0] = {2, 4};
    first[2] = {-3, -6};
    EXPECT_EQ(exponents_of(stack->get_units(0)), first);
    EXPECT_EQ(stack->get_units(0).value_in_baseunits(), 2.5);
    std::vector<std::pair<std::int32_t, std::int32_t>> second = neutral;
    second[1] = {1, 1};
    EXPECT_EQ(exponents_of(stack->get_units(1)), second);
    EXPECT_EQ(stack->get_units(1).value_in_baseunits(), -1e-6);
    EXPECT_EQ(exponents_of(stack->get_data_units()), fields.data_units.exponents);
    EXPECT_EQ(stack->get_data_units().value_in_baseunits(), 1e12);
    EXPECT_TRUE(stack->get_data_units().is_valid());
}

TEST_F(VbfStackAxes, ColumnPositionsAreReadWhereTheyAreFlagged)
{
    RecordFields fields = empty_record({2, 3, 2});
    fields.header.lengths = {2.0, 3.0, 4.0};
    fields.col_positions = {{0, {-1.5, 1.5}}, {2, {10.0, no_number}}};
    const StackPointer stack = only_stack(fields);
    EXPECT_FALSE(stack->is_equidistant(0));
    EXPECT_TRUE(stack->is_equidistant(1));
    EXPECT_FALSE(stack->is_equidistant(2));
    EXPECT_EQ(stack->get_col_positions(0), (Doubles{-1.5, 1.5}));
    EXPECT_EQ(stack->get_col_position(0, 1), 1.5);
    EXPECT_EQ(stack->get_col_positions(1), (Doubles{-1.0, 0.0, 1.0}));
    EXPECT_EQ(stack->get_col_positions(2).at(0), 10.0);
    EXPECT_TRUE(std::isnan(stack->get_col_positions(2).at(1)));
}

TEST_F(VbfStackAxes, ColumnLabelsAreReadWhereTheyAreFlagged)
{
    RecordFields fields = empty_record({2, 3, 2});
    fields.col_labels = {{0, {"red", ""}}, {1, {"", "\xce\xbb", "3"}}};
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_col_labels(0), (std::vector<std::string>{"red", ""}));
    EXPECT_EQ(stack->get_col_labels(1), (std::vector<std::string>{"", "\xce\xbb", "3"}));
    EXPECT_TRUE(stack->get_col_labels(2).empty());
}

TEST_F(VbfStackAxes, AllPositionsStandBeforeAllLabelsOfColumns)
{
    RecordFields fields = empty_record({1, 2});
    fields.labels = {"a", "b"};
    fields.col_positions = {{0, {0.5}}, {1, {1.0, 2.0}}};
    fields.col_labels = {{0, {"p"}}, {1, {"q", "r"}}};
    fields.tags = {{"behind", "them"}};
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_labels(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(stack->get_col_positions(0), Doubles{0.5});
    EXPECT_EQ(stack->get_col_positions(1), (Doubles{1.0, 2.0}));
    EXPECT_EQ(stack->get_col_labels(0), std::vector<std::string>{"p"});
    EXPECT_EQ(stack->get_col_labels(1), (std::vector<std::string>{"q", "r"}));
    EXPECT_EQ(stack->get_tag("behind"), "them");
}

TEST_F(VbfStackAxes, NoColumnsAreReadForAnAxisOfSizeZero)
{
    RecordFields fields = empty_record({0, 2});
    fields.col_positions = {{0, {}}, {1, {1.0, 2.0}}};
    fields.col_labels = {{0, {}}, {1, {"q", "r"}}};
    fields.tags = {{"behind", "them"}};
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_col_positions(1), (Doubles{1.0, 2.0}));
    EXPECT_EQ(stack->get_col_labels(1), (std::vector<std::string>{"q", "r"}));
    EXPECT_TRUE(stack->get_col_labels(0).empty());
    EXPECT_EQ(stack->get_tag("behind"), "them");
}

TEST_F(VbfStackAxes, FlagsOfColumnsBehindTheRankAreNotLookedAt)
{
    RecordFields fields = empty_record({2});
    fields.tags = {{"behind", "them"}};
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(fields);
    for (std::uint64_t i = 1; i < 15; ++i)
    {
        built.set_u32_at(places.footer + footer_col_positions_at + 4 * i, 1);
        built.set_u32_at(places.footer + footer_col_labels_at + 4 * i, 0xffffffff);
    }
    EXPECT_EQ(open(built)->get_stack(0)->get_tag("behind"), "them");
}
