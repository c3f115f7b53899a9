// Tags of every type, in memory and through a file.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"
#include "support/property_makers.h"

#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include <complex>
#include <limits>

using namespace vela_test;

namespace {

class StackTags : public WritingTest
{
protected:
    Stack stack = add({1});
};

/// Sets a tag, reads it back, and looks at its text.
template <class T>
void expect_round_trip(VBFStackInterface& stack, int type, const T& value)
{
    SCOPED_TRACE(testing::Message() << "type " << type);
    stack.set_tag("tag", type, &value);
    std::string text;
    vela_export_xml(text, VProp(value), 2);
    EXPECT_EQ(stack.get_tag("tag"), text);
    T read{};
    EXPECT_TRUE(stack.get_tag("tag", type, &read));
    EXPECT_EQ(read, value);
}

TEST_F(StackTags, NumbersOfEveryType)
{
    expect_round_trip<unsigned char>(*stack, 1, 200);
    expect_round_trip<char>(*stack, 2, -100);
    expect_round_trip<unsigned short>(*stack, 4, 60000);
    expect_round_trip<short>(*stack, 8, -30000);
    expect_round_trip<unsigned int>(*stack, 16, 4000000000u);
    expect_round_trip<int>(*stack, 32, -2000000000);
    expect_round_trip<float>(*stack, 64, 1.5e-30F);
    expect_round_trip<double>(*stack, 128, -0.1);
    expect_round_trip<unsigned int>(*stack, 2048, 0xff8000u);
    expect_round_trip<std::uint64_t>(*stack, 4096, std::numeric_limits<std::uint64_t>::max());
    expect_round_trip<std::int64_t>(*stack, 8192, std::numeric_limits<std::int64_t>::min());
    expect_round_trip<bool>(*stack, 0x10000, true);
}

TEST_F(StackTags, ComplexNumbersOfEveryType)
{
    expect_round_trip<std::complex<unsigned char>>(*stack, 0x40000001, {1, 200});
    expect_round_trip<std::complex<char>>(*stack, 0x40000002, {-1, 2});
    expect_round_trip<std::complex<unsigned short>>(*stack, 0x40000004, {1, 60000});
    expect_round_trip<std::complex<short>>(*stack, 0x40000008, {-1, 2});
    expect_round_trip<std::complex<unsigned int>>(*stack, 0x40000010, {1, 4000000000u});
    expect_round_trip<std::complex<int>>(*stack, 0x40000020, {-1, 2});
    expect_round_trip<std::complex<float>>(*stack, 0x40000040, {1.5F, -2.25F});
    expect_round_trip<std::complex<double>>(*stack, 0x40000080, {0.1, -1e300});
    expect_round_trip<std::complex<std::uint64_t>>(*stack, 0x40001000, {1, 2});
    expect_round_trip<std::complex<std::int64_t>>(*stack, 0x40002000, {-1, 2});
}

TEST_F(StackTags, AWholeProperty)
{
    const VProp tree = structure({{"a", VProp(1)}, {"b", VProp("text")}});
    stack->set_tag("tree", 16384, &tree);
    VProp read;
    EXPECT_TRUE(stack->get_tag("tree", 16384, &read));
    EXPECT_EQ(read, tree);
    std::string text;
    vela_export_xml(text, tree, 2);
    EXPECT_EQ(stack->get_tag("tree"), text);
}

TEST_F(StackTags, APropertyIsReadIntoWhatIsThere)
{
    const VProp tree = structure({{"b", VProp(2)}});
    stack->set_tag("tree", 16384, &tree);
    VProp read = structure({{"a", VProp(1)}});
    EXPECT_TRUE(stack->get_tag("tree", 16384, &read));
    EXPECT_EQ(read, VProp(structure({{"a", VProp(1)}, {"b", VProp(2)}})));
}

TEST_F(StackTags, AColourIsATypeThatXmlDoesNotHave)
{
    const _s_vela_RGB colour(1, 2, 3);
    EXPECT_VELA_ERROR(stack->set_tag("tag", 1024, &colour), -1, "Type unknown or incompatible with xml export!");
    EXPECT_TRUE(stack->get_tag_keys().empty());
}

TEST_F(StackTags, OtherTypesAreRefused)
{
    const int value = 0;
    VProp untouched;
    stack->set_tag("tag", 32, &value);
    for (const int type : {0, 3, 256, 512, 0x8000, 0x20000, 0x40010000, 0x40000400, 0x40004000, vela_dt_array | 1})
    {
        EXPECT_VELA_ERROR_IN(stack->set_tag("other", type, &value), "VBFStackImp::set_tag", vbf_sources, -1,
                             "Tag type not supported!");
        EXPECT_VELA_ERROR_IN(stack->get_tag("tag", type, &untouched), "VBFStackImp::get_tag", vbf_sources, -1,
                             "Tag type not supported!");
    }
    EXPECT_TRUE(untouched.empty());
    EXPECT_EQ(stack->get_tag_keys(), std::vector<std::string>{"tag"});
}

TEST_F(StackTags, OnlyAMissingKeyIsFalse)
{
    int value = 7;
    EXPECT_FALSE(stack->get_tag("tag", 32, &value));
    EXPECT_FALSE(stack->get_tag("tag", 3, &value)); // whatever the type
    EXPECT_VELA_ERROR_IN(stack->get_tag("tag"), "VBFStackImp::get_tag", vbf_sources, -1,
                         "Tag with key 'tag' not found!");
    stack->set_tag("tag", "no xml");
    EXPECT_THROW(stack->get_tag("tag", 32, &value), VelaError);
    EXPECT_THROW(stack->get_tag("tag", 3, &value), VelaError);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(stack->get_tag("tag"), "no xml");
}

TEST_F(StackTags, ATypeIsNotConverted)
{
    const int value = 5;
    stack->set_tag("tag", 32, &value);
    double number = 1.0;
    EXPECT_VELA_ERROR(stack->get_tag("tag", 128, &number), -1, "Type mismatch: found int32, expected double");
    EXPECT_EQ(number, 1.0);
}

TEST_F(StackTags, TheLastValueOfAKeyCounts)
{
    stack->set_tag("b", "1");
    stack->set_tag("a", "2");
    stack->set_tag("b", "3");
    EXPECT_EQ(stack->get_tag_keys(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(stack->get_tag("b"), "3");
}

TEST_F(StackTags, ComeBackFromTheFile)
{
    const std::string odd("\0<\xff", 3);
    stack->set_tag("a", odd);
    stack->set_tag("b", "");
    stack->write(vela_dt_uint8, "x", nullptr, 1);
    stack->set_tag("late", "in memory alone");
    EXPECT_EQ(stack->get_tag("late"), "in memory alone");
    const Stack read = reopen()->get_stack(0);
    EXPECT_EQ(read->get_tag_keys(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(read->get_tag("a"), odd);
    EXPECT_EQ(read->get_tag("b"), "");
}

TEST_F(StackTags, ThatAreSetWhileSamplesAreWrittenReachTheFile)
{
    const Stack slow = [&]
    {
        stack->write(vela_dt_uint8, "x", nullptr, 1);
        return add({2});
    }();
    slow->write(vela_dt_uint8, "a", nullptr, 1);
    slow->set_tag("between", "yes");
    slow->write(vela_dt_uint8, "b", nullptr, 1);
    EXPECT_EQ(reopen()->get_stack(1)->get_tag("between"), "yes");
}

TEST_F(StackTags, AnEmptyKeyEndsThemForAReader)
{
    stack->set_tag("", "text");
    stack->set_tag("a", "lost");
    stack->write(vela_dt_uint8, "x", nullptr, 1);
    const ByteMap map = on_disk();
    const std::uint64_t footer = first_record_pos + stack_header_size + 1;
    EXPECT_EQ(map.u64(footer + footer_tag_dictionary_length_at), 4u + 8 + 4 + 8 + 1 + 4);
    EXPECT_TRUE(reopen()->get_stack(0)->get_tag_keys().empty());
}

}
