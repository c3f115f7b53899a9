// The two-way table, and the one instance of it that the library shows: the names of sample types.
#include "support/expect_vela_error.h"

#include <VelaBase/VTypemap.h>
#include <VelaBase/vela_dt.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

namespace {

typedef VTypemap<std::string> Names;

static_assert(std::is_same_v<decltype(std::declval<const Names&>().get(1)), const std::string&>);
static_assert(std::is_same_v<decltype(std::declval<const Names&>().get_key("")), int>);

const std::uint32_t every_bit = 0xFFFFFFFF;
const int lowest = std::numeric_limits<int>::min();

TEST(VTypemap, AnswersInBothDirections)
{
    Names names(every_bit);
    names.add(1, "one");
    names.add(2, "two");
    names.add(-3, "minus three");
    EXPECT_EQ(names.get(1), "one");
    EXPECT_EQ(names.get(2), "two");
    EXPECT_EQ(names.get(-3), "minus three");
    EXPECT_EQ(names.get_key("one"), 1);
    EXPECT_EQ(names.get_key("two"), 2);
    EXPECT_EQ(names.get_key("minus three"), -3);
}

TEST(VTypemap, IsFilledByTheFunctionOfItsConstructor)
{
    static int calls = 0;
    static const void* filled = nullptr;
    calls = 0;
    const Names names(every_bit,
                      [](Names& table)
                      {
                          ++calls;
                          filled = &table;
                          table.add(4, "first");
                          table.add(5, "other");
                          table.add(4, "second");
                      });
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(filled, &names);
    EXPECT_EQ(names.get(4), "second");
    EXPECT_EQ(names.get(5), "other");
}

TEST(VTypemap, TheFunctionSeesTheMask)
{
    const Names names(0xF, [](Names& table) { table.add(0x123, "three"); });
    EXPECT_EQ(names.get(3), "three");
    EXPECT_EQ(names.get_key("three"), 3);
}

TEST(VTypemap, WithoutAFunctionIsEmpty)
{
    const Names names(every_bit, nullptr);
    EXPECT_EQ(names.get_key("one"), 0);
    EXPECT_EQ(names.get_key(""), 0);
    EXPECT_VELA_ERROR(names.get(1), -1, "Map entry not found and no default specified!");
}

TEST(VTypemap, AnUnknownKeyFallsBackToKeyZero)
{
    Names names(every_bit);
    names.add(0, "none");
    names.add(1, "one");
    EXPECT_EQ(names.get(0), "none");
    EXPECT_EQ(names.get(1), "one");
    EXPECT_EQ(names.get(2), "none");
    EXPECT_EQ(names.get(-1), "none");
    EXPECT_EQ(names.get(lowest), "none");
}

TEST(VTypemap, ALookupAddsNothing)
{
    Names names(every_bit);
    names.add(0, "none");
    EXPECT_EQ(names.get(7), "none");
    names.add(0, "nothing");
    EXPECT_EQ(names.get(7), "nothing");
    EXPECT_EQ(names.get_key("seven"), 0);
}

TEST(VTypemap, AnUnknownKeyFailsWithoutAKeyZero)
{
    Names names(every_bit);
    names.add(1, "one");
    const char* function = "VTypemap<class std::basic_string<char,struct std::char_traits<char>,"
                           "class std::allocator<char> > >::get";
    EXPECT_VELA_ERROR_IN(names.get(2), function, "sources/props/text", -1,
                         "Map entry not found and no default specified!");
    EXPECT_VELA_ERROR_IN(names.get(0), function, "sources/props/text", -1,
                         "Map entry not found and no default specified!");
    EXPECT_EQ(names.get(1), "one");
}

TEST(VTypemap, AnUnknownValueHasKeyZero)
{
    Names names(every_bit);
    names.add(0, "none");
    names.add(1, "one");
    EXPECT_EQ(names.get_key("two"), 0);
    EXPECT_EQ(names.get_key("none"), 0);
    EXPECT_EQ(names.get_key("One"), 0) << "case counts";
    EXPECT_EQ(names.get_key(""), 0);
}

TEST(VTypemap, ALaterValueOfAKeyOverwritesAndTheOldValueKeepsItsKey)
{
    Names names(every_bit);
    names.add(1, "old");
    names.add(1, "new");
    EXPECT_EQ(names.get(1), "new");
    EXPECT_EQ(names.get_key("new"), 1);
    EXPECT_EQ(names.get_key("old"), 1) << "the other direction was not touched";
}

TEST(VTypemap, ALaterKeyOfAValueOverwritesAndTheOldKeyKeepsItsValue)
{
    Names names(every_bit);
    names.add(1, "same");
    names.add(2, "same");
    EXPECT_EQ(names.get_key("same"), 2);
    EXPECT_EQ(names.get(1), "same");
    EXPECT_EQ(names.get(2), "same");
}

TEST(VTypemap, KeysGoThroughTheMask)
{
    Names names(0x7FFFFFFF);
    names.add(5, "five");
    names.add(lowest | 6, "six");
    EXPECT_EQ(names.get(lowest | 5), "five");
    EXPECT_EQ(names.get(6), "six");
    EXPECT_EQ(names.get(lowest | 6), "six");
    EXPECT_EQ(names.get_key("six"), 6) << "the masked key";
    names.add(lowest, "zero");
    EXPECT_EQ(names.get(0), "zero");
    EXPECT_EQ(names.get(77), "zero");
    names.add(-1, "all");
    EXPECT_EQ(names.get(0x7FFFFFFF), "all");
    EXPECT_EQ(names.get_key("all"), 0x7FFFFFFF);
}

TEST(VTypemap, KeysThatTheMaskMakesEqualOverwriteEachOther)
{
    Names names(0xFF);
    names.add(0x101, "first");
    names.add(0x201, "second");
    EXPECT_EQ(names.get(1), "second");
    EXPECT_EQ(names.get(0x101), "second");
    EXPECT_EQ(names.get(-255), "second");
    EXPECT_EQ(names.get_key("first"), 1);
    EXPECT_EQ(names.get_key("second"), 1);
}

TEST(VTypemap, AMaskOfAllBitsTellsNegativeKeysApart)
{
    Names names(every_bit);
    names.add(lowest | 5, "negative");
    names.add(5, "positive");
    EXPECT_EQ(names.get(5), "positive");
    EXPECT_EQ(names.get(lowest | 5), "negative");
    EXPECT_EQ(names.get_key("negative"), lowest | 5);
}

TEST(VTypemap, AnEmptyMaskLeavesOneEntry)
{
    Names names(0);
    names.add(1, "one");
    names.add(-2, "two");
    EXPECT_EQ(names.get(99), "two");
    EXPECT_EQ(names.get_key("one"), 0);
}

TEST(VTypemap, CopiesAreIndependent)
{
    Names names(0xFF);
    names.add(1, "one");
    Names copy(names);
    copy.add(0x101, "other");
    EXPECT_EQ(names.get(1), "one");
    EXPECT_EQ(copy.get(1), "other");
}

struct Size
{
    int width;
    int height;

    friend bool operator<(const Size& a, const Size& b)
    {
        return a.width < b.width || (a.width == b.width && a.height < b.height);
    }
};

TEST(VTypemap, HoldsOtherTypesToo)
{
    VTypemap<int> numbers(0xFFFF);
    numbers.add(0, -1);
    numbers.add(0x10003, 300);
    EXPECT_EQ(numbers.get(3), 300);
    EXPECT_EQ(numbers.get(4), -1);
    EXPECT_EQ(numbers.get_key(300), 3);
    EXPECT_EQ(numbers.get_key(301), 0);

    VTypemap<Size> sizes(every_bit, [](VTypemap<Size>& table) { table.add(2, Size{3, 4}); });
    EXPECT_EQ(sizes.get(2).height, 4);
    EXPECT_EQ(sizes.get_key(Size{3, 4}), 2);
    EXPECT_EQ(sizes.get_key(Size{4, 3}), 0);
    EXPECT_VELA_ERROR(sizes.get(3), -1, "Map entry not found and no default specified!");
}

// Taken while this program was loaded: the library fills its table before anybody can ask.
const std::string name_at_load = vela_dt_get_name(vela_dt_uint8);
const vela_dt id_at_load = vela_dt_from_name(name_at_load.c_str());

TEST(SampleTypeNames, AreThereAtLoad)
{
    EXPECT_EQ(name_at_load, vela_dt_get_name(vela_dt_uint8));
    EXPECT_NE(name_at_load, "none");
    EXPECT_EQ(id_at_load, vela_dt_uint8);
}

TEST(SampleTypeNames, AnUnknownIdIsNamedNone)
{
    EXPECT_STREQ(vela_dt_get_name(0), "none");
    EXPECT_STREQ(vela_dt_get_name(0x400), "none");
    EXPECT_STREQ(vela_dt_get_name(0x12345), "none");
}

TEST(SampleTypeNames, TheMaskIgnoresTheArrayFlag)
{
    EXPECT_STREQ(vela_dt_get_name(vela_dt_array), "none");
    EXPECT_STREQ(vela_dt_get_name(vela_dt_array | vela_dt_uint8), vela_dt_get_name(vela_dt_uint8));
    EXPECT_STRNE(vela_dt_get_name(vela_dt_uint8), "none");
    EXPECT_EQ(vela_dt_from_name(vela_dt_get_name(vela_dt_array | vela_dt_uint8)), vela_dt_uint8);
}

TEST(SampleTypeNames, NoneAndUnknownNamesHaveIdZero)
{
    EXPECT_EQ(vela_dt_from_name("none"), 0);
    EXPECT_EQ(vela_dt_from_name("no such type"), 0);
    EXPECT_EQ(vela_dt_from_name(""), 0);
}

} // namespace
