#include "ome/record_tables.h"

#include <Ome/checks.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Units = std::vector<std::string>;

bool is_in(const Units& units, const std::string& text)
{
    return std::find(units.begin(), units.end(), text) != units.end();
}

/// The list passes whole, and what is nearly one of its units does not.
template <class Unit>
void expect_list(const Units& units, std::size_t count)
{
    ASSERT_EQ(units.size(), count);
    for (const std::string& unit : units)
    {
        EXPECT_TRUE(Unit::check(unit)) << unit;
        for (const std::string& near : {unit + " ", " " + unit, unit + unit, unit + ".", unit + std::string(1, '\0')})
            EXPECT_EQ(Unit::check(near), is_in(units, near)) << near;
        for (std::size_t length = 0; length < unit.size(); ++length)
        {
            const std::string start = unit.substr(0, length);
            EXPECT_EQ(Unit::check(start), is_in(units, start)) << start;
        }
    }
}

template <class Unit>
void expect_strings_alone()
{
    for (const Json::Value& value : vela_test::probe_values())
    {
        if (value.is_string() || value.is_null())
            continue;
        EXPECT_FALSE(Unit::check(value)) << vela_test::show(value);
    }
}

TEST(OmeUnits, EveryLengthUnitPasses)
{
    expect_list<Ome::check::LengthUnit>(vela_test::length_units(), 34);
}

TEST(OmeUnits, EveryPowerUnitPasses)
{
    expect_list<Ome::check::PowerUnit>(vela_test::power_units(), 21);
}

TEST(OmeUnits, EveryTimeUnitPasses)
{
    expect_list<Ome::check::TimeUnit>(vela_test::time_units(), 23);
}

TEST(OmeUnits, AUnitOfOneListPassesAnotherOnlyWhereItStandsThereToo)
{
    Units all = vela_test::length_units();
    all.insert(all.end(), vela_test::power_units().begin(), vela_test::power_units().end());
    all.insert(all.end(), vela_test::time_units().begin(), vela_test::time_units().end());
    for (const std::string& unit : all)
    {
        EXPECT_EQ(Ome::check::LengthUnit::check(unit), is_in(vela_test::length_units(), unit)) << unit;
        EXPECT_EQ(Ome::check::PowerUnit::check(unit), is_in(vela_test::power_units(), unit)) << unit;
        EXPECT_EQ(Ome::check::TimeUnit::check(unit), is_in(vela_test::time_units(), unit)) << unit;
    }
}

TEST(OmeUnits, MicroIsTheMicroSignInUtf8Alone)
{
    EXPECT_TRUE(Ome::check::LengthUnit::check("\xC2\xB5m"));
    EXPECT_TRUE(Ome::check::PowerUnit::check("\xC2\xB5W"));
    EXPECT_TRUE(Ome::check::TimeUnit::check("\xC2\xB5s"));
    for (const std::string micro : {"u", "\xB5", "\xCE\xBC", "mu", "micro", "\xC2", "\xC2\xB5 "})
    {
        EXPECT_FALSE(Ome::check::LengthUnit::check(micro + "m")) << micro;
        EXPECT_FALSE(Ome::check::PowerUnit::check(micro + "W")) << micro;
        EXPECT_FALSE(Ome::check::TimeUnit::check(micro + "s")) << micro;
    }
}

TEST(OmeUnits, TheAngstromIsTheAngstromSignAlone)
{
    EXPECT_TRUE(Ome::check::LengthUnit::check("\xE2\x84\xAB"));
    for (const char* const other : {"\xC3\x85", "A\xCC\x8A", "\xC5", "A", "\xE2\x84\xABm", "\xE2\x84", "angstrom"})
        EXPECT_FALSE(Ome::check::LengthUnit::check(other)) << other;
}

TEST(OmeUnits, SpellingIsExact)
{
    for (const char* const text : {"",
                                   "M",
                                   "MM",
                                   "Km",
                                   "KM",
                                   "HM",
                                   "Dm",
                                   "dAm",
                                   "Thou",
                                   "IN",
                                   "\"",
                                   "inch",
                                   "Pixel",
                                   "PIXEL",
                                   "pixels",
                                   "px",
                                   "referenceframe",
                                   "reference  frame",
                                   "Reference Frame",
                                   "AU",
                                   "au",
                                   "micron",
                                   "meter",
                                   "metre",
                                   "hmm",
                                   "Rm",
                                   "qm"})
        EXPECT_FALSE(Ome::check::LengthUnit::check(text)) << text;
    for (const char* const text : {"", "w", "kw", "KW", "watt", "HW", "min", "pixel"})
        EXPECT_FALSE(Ome::check::PowerUnit::check(text)) << text;
    for (const char* const text : {"", "S", "sec", "Min", "H", "hr", "d", "day", "minute", "kmin", "mh", "pixel"})
        EXPECT_FALSE(Ome::check::TimeUnit::check(text)) << text;
}

TEST(OmeUnits, OtherKindsAreNoUnits)
{
    expect_strings_alone<Ome::check::LengthUnit>();
    expect_strings_alone<Ome::check::PowerUnit>();
    expect_strings_alone<Ome::check::TimeUnit>();
}

} // namespace
