// Every unit, every prefix and every pair of both, read and printed.
#include "units/quantities.h"
#include "units/unit_rows.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>

namespace {

using si::value;
using namespace vela_test;

TEST(UnitTable, EveryNameReadsAsItsFirstRow)
{
    for (const UnitRow& row : unit_rows)
    {
        const std::string name = row.name;
        if (name.empty())
            continue;
        const value read(name);
        EXPECT_TRUE(read.is_valid()) << name;
        EXPECT_EQ(read.value_in_baseunits(), row.number) << name;
        EXPECT_EQ(dimension(read), dimension_of(row)) << name;
        EXPECT_TRUE(reads("2.5 " + name, 2.5 * row.number, dimension_of(row)));
        EXPECT_TRUE(reads("-4e-3 " + name, -4e-3 * row.number, dimension_of(row)));
        EXPECT_TRUE(reads("4*" + name, 4 * row.number, dimension_of(row)));
        EXPECT_TRUE(reads("(" + name + ")", row.number, dimension_of(row)));
    }
}

TEST(UnitTable, ANumberBeforeANameNeedsABlankOnlyBeforeAnE)
{
    for (const UnitRow& row : unit_rows)
    {
        const std::string name = row.name;
        if (name == "eV")
            EXPECT_TRUE(fails("25" + name));
        else
            EXPECT_TRUE(reads("25" + name, 25 * row.number, dimension_of(row)));
    }
}

TEST(UnitTable, EveryPrefixAloneIsANumberUnlessItIsAName)
{
    for (const Prefix& prefix : prefixes)
    {
        const std::string text(1, prefix.byte);
        if (row_named(text) != nullptr)
            continue;
        EXPECT_TRUE(reads(text, std::pow(10.0, prefix.exponent), ""));
        EXPECT_TRUE(reads("3 " + text, 3 * std::pow(10.0, prefix.exponent), ""));
    }
}

/// The exponent of the prefix of this byte, 0 if it is none.
int exponent_of(char byte)
{
    for (const Prefix& prefix : prefixes)
        if (prefix.byte == byte)
            return prefix.exponent;
    return 0;
}

// All 256 bytes before each name: 18 prefixes, and what else makes a name of another.
TEST(UnitTable, EveryByteBeforeEveryName)
{
    int taken = 0;
    int refused = 0;
    for (const UnitRow& row : unit_rows)
        for (int byte = 0; byte < 256; ++byte)
        {
            const std::string name = row.name;
            const std::string text = static_cast<char>(byte) + name;
            const std::string number_or_parenthesis = "0123456789+-. ";
            if (name.empty() || (byte != 0 && number_or_parenthesis.find(text[0]) != std::string::npos))
                continue;
            const int exponent = exponent_of(text[0]);
            if (const UnitRow* const whole = row_named(text))
                EXPECT_TRUE(reads(text, whole->number, dimension_of(*whole)));
            else if (exponent == 0)
                EXPECT_TRUE(fails(text));
            else if (is_refused(exponent, name))
            {
                ++refused;
                EXPECT_TRUE(fails(text));
                EXPECT_TRUE(fails("5 " + text));
            }
            else
            {
                ++taken;
                EXPECT_TRUE(reads(text, row.number * std::pow(10.0, exponent), dimension_of(row)));
                EXPECT_TRUE(reads("5 " + text, row.number * 5 * std::pow(10.0, exponent), dimension_of(row)));
            }
        }
    // 40 rows with a name, 19 bytes. Refused: 19 on "kg", 7 on "g", 10 on "t", 9 on "s". "kg" is a name.
    EXPECT_EQ(refused, 45);
    EXPECT_EQ(taken, 40 * 19 - 45 - 1);
}

// Printing

/// The row that the printer finds first: its dimension is no earlier row's, and it is not a mass.
bool is_printed(const UnitRow& row)
{
    for (const UnitRow& other : unit_rows)
    {
        if (&other == &row)
            return true;
        if (dimension_of(other) == dimension_of(row))
            return false;
    }
    return false;
}

Exponents exponents_of(const UnitRow& row)
{
    Exponents all;
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = row.exponents[i];
    return all;
}

// 2.5 at every power of ten, three digits: within the range of the row a prefix, beyond it an exponent.
TEST(UnitTable, EveryPrintedRowUsesThePrefixesOfItsRange)
{
    int printed_rows = 0;
    for (const UnitRow& row : unit_rows)
    {
        if (!is_printed(row) || std::string(row.name) == "kg")
            continue;
        ++printed_rows;
        for (int decade = -30; decade <= 30; ++decade)
        {
            // Powers of ten by the reader of numbers: correctly rounded.
            const double number = std::stod("2.5e" + std::to_string(decade)) * row.number;
            int prefix = decade >= 0 ? decade / 3 * 3 : -((2 - decade) / 3) * 3;
            prefix = std::min(std::max(prefix, row.least_prefix), row.greatest_prefix);
            const int rest = decade - prefix;
            if (rest >= 3 || rest < -2)
                prefix = 0;
            const int shown = decade - prefix;
            const std::map<int, std::string> plain = {
                {-2, "0.0250"}, {-1, "0.250"}, {0, "2.50"}, {1, "25.0"}, {2, "250"}};
            const std::string digits = plain.count(shown) ? plain.at(shown) : "2.50e" + std::to_string(shown);
            const std::string expected = digits + printed_prefixes.at(prefix) + row.name;
            EXPECT_EQ(value(number, exponents_of(row)).format(3, 6), expected);
        }
    }
    EXPECT_EQ(printed_rows, 26);
}

// Not "a", which is not read, and with 12 digits.
TEST(UnitTable, WhatIsPrintedWithABlankReadsBack)
{
    for (const UnitRow& row : unit_rows)
        for (int decade = -27; decade <= 27; ++decade)
            for (const int flags : {1, 3, 7})
            {
                const value given(1.2345678901 * std::pow(10.0, decade) * row.number, exponents_of(row));
                const std::string printed = given.format(12, flags);
                const std::string unit = printed.substr(printed.find(' ') + 1);
                if (unit[0] == 'a')
                {
                    EXPECT_TRUE(fails(printed));
                    continue;
                }
                // The prefix of a number alone is a unit or a number when read.
                if (given.is_dimensionless() && (unit == "m" || unit == "G" || unit == "T"))
                    continue;
                EXPECT_TRUE(value(printed) == given) << printed;
            }
}

} // namespace
