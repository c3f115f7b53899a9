#include "units/unit_table.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

using namespace si;

namespace {

struct Row
{
    std::string name;
    double number;
    std::array<int, value::dimension_count> exponents;
    int smallest_prefix, largest_prefix;
};

// clang-format off
const std::vector<Row> expected_rows = {
    {"m", 1, {1, 0, 0, 0, 0, 0, 0, 0, 0}, -24, 3},
    {"kg", 1, {0, 1, 0, 0, 0, 0, 0, 0, 0}, 0, 0},
    {"s", 1, {0, 0, 1, 0, 0, 0, 0, 0, 0}, -24, 0},
    {"A", 1, {0, 0, 0, 1, 0, 0, 0, 0, 0}, -24, 24},
    {"K", 1, {0, 0, 0, 0, 1, 0, 0, 0, 0}, -24, 0},
    {"mol", 1, {0, 0, 0, 0, 0, 1, 0, 0, 0}, -24, 0},
    {"cd", 1, {0, 0, 0, 0, 0, 0, 1, 0, 0}, -24, 24},
    {"rad", 1, {0, 0, 0, 0, 0, 0, 0, 1, 0}, -3, 0},
    {"sr", 1, {0, 0, 0, 0, 0, 0, 0, 0, 1}, 0, 0},
    {"", 1, {0, 0, 0, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"Hz", 1, {0, 0, -1, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"N", 1, {1, 1, -2, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"Pa", 1, {-1, 1, -2, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"J", 1, {2, 1, -2, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"W", 1, {2, 1, -3, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"C", 1, {0, 0, 1, 1, 0, 0, 0, 0, 0}, -24, 24},
    {"V", 1, {2, 1, -3, -1, 0, 0, 0, 0, 0}, -24, 24},
    {"F", 1, {-2, -1, 4, 2, 0, 0, 0, 0, 0}, -24, 24},
    {"ohm", 1, {2, 1, -3, -2, 0, 0, 0, 0, 0}, -24, 24},
    {"S", 1, {-2, -1, 3, 2, 0, 0, 0, 0, 0}, -24, 24},
    {"Wb", 1, {2, 1, -2, -1, 0, 0, 0, 0, 0}, -24, 24},
    {"T", 1, {0, 1, -2, -1, 0, 0, 0, 0, 0}, -24, 24},
    {"H", 1, {2, 1, -2, -2, 0, 0, 0, 0, 0}, -24, 24},
    {"lm", 1, {0, 0, 0, 0, 0, 0, 1, 0, 1}, -24, 24},
    {"lux", 1, {-2, 0, 0, 0, 0, 0, 1, 0, 1}, -24, 24},
    {"Bq", 1, {0, 0, -1, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"Gy", 1, {2, 0, -2, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"g", 0.001, {0, 1, 0, 0, 0, 0, 0, 0, 0}, -24, 3},
    {"t", 1000, {0, 1, 0, 0, 0, 0, 0, 0, 0}, 0, 24},
    {"deg", 0.017453292519943295, {0, 0, 0, 0, 0, 0, 0, 1, 0}, 0, 0},
    {"pc", 3.0856775807e16, {1, 0, 0, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"angstrom", 1e-10, {1, 0, 0, 0, 0, 0, 0, 0, 0}, 0, 0},
    {"fermi", 1e-15, {1, 0, 0, 0, 0, 0, 0, 0, 0}, 0, 0},
    {"barn", 1e-28, {2, 0, 0, 0, 0, 0, 0, 0, 0}, 0, 0},
    {"h", 3600, {0, 0, 1, 0, 0, 0, 0, 0, 0}, 0, 0},
    {"e", 1.60217733e-19, {0, 0, 1, 1, 0, 0, 0, 0, 0}, 0, 0},
    {"eV", 1.60217733e-19, {2, 1, -2, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"bar", 100000, {-1, 1, -2, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"G", 0.0001, {0, 1, -2, -1, 0, 0, 0, 0, 0}, -24, 24},
    {"Bq", 1, {0, 0, -1, 0, 0, 0, 0, 0, 0}, -24, 24},
    {"Ci", 3.7e10, {0, 0, -1, 0, 0, 0, 0, 0, 0}, -24, 24},
};
// clang-format on

} // namespace

TEST(UnitTableTest, RowsAreExact)
{
    ASSERT_EQ(unit_table().size(), expected_rows.size());
    for (std::size_t row = 0; row < expected_rows.size(); ++row)
    {
        const unit& found = unit_table()[row];
        const Row& expected = expected_rows[row];
        EXPECT_EQ(found.name(), expected.name);
        EXPECT_TRUE(found.is_valid());
        EXPECT_EQ(found.value_in_baseunits(), expected.number) << expected.name;
        for (std::size_t i = 0; i < value::dimension_count; ++i)
        {
            EXPECT_EQ(found.exponent(i).numerator(), expected.exponents[i]) << expected.name << " " << i;
            EXPECT_EQ(found.exponent(i).denominator(), 1) << expected.name << " " << i;
        }
        EXPECT_EQ(found.smallest_prefix(), expected.smallest_prefix) << expected.name;
        EXPECT_EQ(found.largest_prefix(), expected.largest_prefix) << expected.name;
    }
}

TEST(UnitTableTest, FirstRowOfANameIsFound)
{
    for (const unit& row : unit_table())
    {
        const unit* const found = find_unit(row.name());
        ASSERT_NE(found, nullptr) << row.name();
        EXPECT_EQ(found->name(), row.name());
        EXPECT_LE(found, &row);
    }
    EXPECT_EQ(find_unit("Bq"), &unit_table()[25]);
}

TEST(UnitTableTest, OtherNamesAreNotFound)
{
    using namespace std::string_literals;
    for (const std::string& name :
         {"min"s, "M"s, "angstro"s, "angstroms"s, "m "s, "m\0"s, "\0"s, std::string(100, 'm')})
        EXPECT_EQ(find_unit(name), nullptr) << name;
}
