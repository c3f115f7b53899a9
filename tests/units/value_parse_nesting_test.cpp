// Texts nested a hundred thousand levels deep are read like any others.
#include "units/quantities.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace vela_test;

const std::size_t levels = 100000;

TEST(DeepText, ParenthesesAroundAUnit)
{
    EXPECT_TRUE(is_quantity(si::value(repeated("(", levels) + "5 m" + repeated(")", levels)), 5, "m"));
}

TEST(DeepText, ParenthesesAroundNothing)
{
    EXPECT_TRUE(is_invalid(si::value(repeated("(", levels) + repeated(")", levels))));
}

TEST(DeepText, ParenthesesThatDoNotBalance)
{
    EXPECT_TRUE(is_invalid(si::value(repeated("(", levels))));
    EXPECT_TRUE(is_invalid(si::value(repeated(")", levels))));
    EXPECT_TRUE(is_invalid(si::value(repeated("(", levels) + "m")));
    EXPECT_TRUE(is_invalid(si::value("m" + repeated(")", levels))));
    EXPECT_TRUE(is_invalid(si::value(repeated("(", levels) + "m" + repeated(")", levels - 1))));
    EXPECT_TRUE(is_invalid(si::value(repeated("()", levels))));
    EXPECT_TRUE(is_invalid(si::value(repeated(")(", levels))));
}

TEST(DeepText, LongProducts)
{
    EXPECT_TRUE(is_quantity(si::value("m" + repeated("*m", levels)), 1, "m^100001"));
    EXPECT_TRUE(is_quantity(si::value("m" + repeated("/m", levels)), 1, "m^-99999"));
    EXPECT_TRUE(is_quantity(si::value("m" + repeated("*s/s", levels)), 1, "m"));
    EXPECT_TRUE(is_invalid(si::value("nonsense" + repeated("*m", levels))));
    EXPECT_TRUE(is_invalid(si::value("m" + repeated("*m", levels) + "*nonsense")));
    EXPECT_TRUE(is_invalid(si::value(repeated("*", levels))));
}

TEST(DeepText, ProductsNestedToTheRight)
{
    EXPECT_TRUE(is_quantity(si::value(repeated("m*(", levels) + "s" + repeated(")", levels)), 1, "m^100000 s"));
    // m/(m/(m/(... s))): the signs alternate.
    EXPECT_TRUE(is_quantity(si::value(repeated("m/(", levels) + "s" + repeated(")", levels)), 1, "s"));
    EXPECT_TRUE(is_quantity(si::value(repeated("m/(", levels - 1) + "s" + repeated(")", levels - 1)), 1, "m s^-1"));
}

TEST(DeepText, ProductsNestedToTheLeft)
{
    EXPECT_TRUE(is_quantity(si::value(repeated("(", levels) + "s" + repeated("*m)", levels)), 1, "m^100000 s"));
    EXPECT_TRUE(is_quantity(si::value(repeated("(", levels) + "s" + repeated("/m)", levels)), 1, "m^-100000 s"));
}

TEST(DeepText, LongPowers)
{
    EXPECT_TRUE(is_quantity(si::value("5 m" + repeated("^1", levels)), 5, "m"));
    EXPECT_TRUE(is_quantity(si::value("m" + repeated("^-1", levels)), 1, "m"));
    EXPECT_TRUE(is_quantity(si::value("m" + repeated("^-1", levels - 1)), 1, "m^-1"));
    EXPECT_TRUE(is_quantity(si::value("m" + repeated("^", levels)), 1, ""));
    EXPECT_TRUE(is_invalid(si::value(repeated("^", levels))));
}

TEST(DeepText, NestedPowers)
{
    EXPECT_TRUE(is_quantity(si::value(repeated("(", levels) + "m" + repeated(")^1", levels)), 1, "m"));
    EXPECT_TRUE(is_quantity(si::value(repeated("(", levels) + "m" + repeated(")^-1", levels)), 1, "m"));
}

TEST(DeepText, LongNamesNumbersAndBlanks)
{
    EXPECT_TRUE(is_invalid(si::value(repeated("m", levels))));
    EXPECT_TRUE(is_quantity(si::value(repeated(" ", levels) + "m"), 1, "m"));
    EXPECT_TRUE(is_quantity(si::value(repeated("0", levels) + "5 m"), 5, "m"));
    EXPECT_TRUE(is_quantity(si::value("5." + repeated("0", levels) + "m"), 5, "m"));
    EXPECT_TRUE(is_invalid(si::value(repeated("-", levels))));
    EXPECT_TRUE(is_invalid(si::value(repeated("1e5", levels))));
}

} // namespace
