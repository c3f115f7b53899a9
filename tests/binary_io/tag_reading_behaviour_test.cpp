// Tags as a reader finds them in a record.
#include "binary_io/vbf_reading_test.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include <complex>

using namespace vela_test;

namespace {

typedef std::vector<std::string> Keys;
typedef std::vector<std::pair<std::string, std::string>> Tags;

/// A value as its tag holds it.
std::string tag_xml(const std::string& type, const std::string& text)
{
    return "<root idx=\"1\" type=\"" + type + "\" size=\"1 1\" vprop_version=\"1\">" + text + "</root>";
}

class VbfTags : public VbfReadingTest
{
protected:
    StackPointer with_tags(const Tags& tags)
    {
        RecordFields fields = bytes_record({1});
        fields.tags = tags;
        return only_stack(fields);
    }

    /// The tag of this type with this text reads as `expected`.
    template <class T>
    void expect_value(int id, const std::string& type, const std::string& text, const T& expected)
    {
        SCOPED_TRACE(type);
        const StackPointer stack = with_tags({{"key", tag_xml(type, text)}});
        T value = T();
        EXPECT_TRUE(stack->get_tag("key", id, &value));
        EXPECT_EQ(value, expected);
    }
};

/// How a call fails: the type of the exception, and its text without the place.
template <class Call>
std::string failure_of(Call call)
{
    try
    {
        call();
    }
    catch (const VelaError& error)
    {
        return "VelaError " + std::to_string(error.get_id()) + ' ' + error.get_msg();
    }
    catch (const std::exception& error)
    {
        return std::string(typeid(error).name()) + ' ' + error.what();
    }
    return "no failure";
}

} // namespace

TEST_F(VbfTags, AreReadFromTheRecord)
{
    const StackPointer stack = with_tags({{"a", "first"}, {"b", ""}, {" ", "blank"}, {"c.d{1}", "no path"}});
    EXPECT_EQ(stack->get_tag("a"), "first");
    EXPECT_EQ(stack->get_tag("b"), "");
    EXPECT_EQ(stack->get_tag(" "), "blank");
    EXPECT_EQ(stack->get_tag("c.d{1}"), "no path");
}

TEST_F(VbfTags, KeysComeInTheOrderOfTheirBytes)
{
    EXPECT_EQ(with_tags({{"b", ""}, {"\xc3\xa4", ""}, {"a", ""}, {"B", ""}, {"aa", ""}})->get_tag_keys(),
              (Keys{"B", "a", "aa", "b", "\xc3\xa4"}));
    EXPECT_EQ(with_tags({})->get_tag_keys(), Keys());
}

TEST_F(VbfTags, TextsAreTakenByteForByte)
{
    const std::string bytes("\0\xff\n\r\n\0", 6);
    const StackPointer stack = with_tags({{bytes, bytes}, {"long", std::string(100000, 'x')}});
    EXPECT_EQ(stack->get_tag(bytes), bytes);
    EXPECT_EQ(stack->get_tag("long"), std::string(100000, 'x'));
}

TEST_F(VbfTags, OfTwoEqualKeysTheLastWins)
{
    const StackPointer stack = with_tags({{"a", "first"}, {"b", "between"}, {"a", "last"}});
    EXPECT_EQ(stack->get_tag("a"), "last");
    EXPECT_EQ(stack->get_tag_keys(), (Keys{"a", "b"}));
}

TEST_F(VbfTags, AnEmptyKeyEndsThem)
{
    const StackPointer stack = with_tags({{"a", "read"}, {"", "never read"}, {"b", "never read"}});
    EXPECT_EQ(stack->get_tag_keys(), Keys{"a"});
    EXPECT_EQ(with_tags({{"", "never read"}, {"b", "never read"}})->get_tag_keys(), Keys());
}

TEST_F(VbfTags, AreNotReadWhereTheirLengthIsZero)
{
    RecordFields fields = bytes_record({1});
    fields.tags = {{"a", "b"}};
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(fields);
    built.set_u64_at(places.footer + footer_tag_dictionary_length_at, 0);
    EXPECT_EQ(open(built)->get_stack(0)->get_tag_keys(), Keys());
}

TEST_F(VbfTags, AnyOtherLengthIsOnlyTold)
{
    RecordFields fields = bytes_record({1});
    fields.tags = {{"a", "b"}};
    for (const std::uint64_t length : {std::uint64_t(1), std::uint64_t(4), std::uint64_t(0xffffffffffffffff)})
    {
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(fields);
        built.set_u64_at(places.footer + footer_tag_dictionary_length_at, length);
        EXPECT_EQ(open(built)->get_stack(0)->get_tag("a"), "b") << length;
    }
}

TEST_F(VbfTags, EachStackHasItsOwn)
{
    VbfRecords built(1);
    RecordFields first = bytes_record({1});
    first.tags = {{"a", "1"}};
    RecordFields second = bytes_record({1});
    second.tags = {{"b", "2"}};
    built.add_stack_record(first);
    built.add_stack_record(second);
    open(built);
    EXPECT_EQ(file->get_stack(0)->get_tag_keys(), Keys{"a"});
    EXPECT_EQ(file->get_stack(1)->get_tag_keys(), Keys{"b"});
}

TEST_F(VbfTags, AKeyThatIsNotThereIsNamed)
{
    const StackPointer stack = with_tags({{"a", "b"}});
    EXPECT_VELA_ERROR_IN(stack->get_tag("missing %d"), "VBFStackImp::get_tag", binary_io_folder, -1,
                         "Tag with key 'missing %d' not found!");
    EXPECT_VELA_ERROR(stack->get_tag(""), -1, "Tag with key '' not found!");
    EXPECT_VELA_ERROR(stack->get_tag("A"), -1, "Tag with key 'A' not found!");
}

TEST_F(VbfTags, ATypedTagThatIsNotThereIsFalse)
{
    const StackPointer stack = with_tags({{"a", tag_xml("double", "1")}});
    double value = 42.0;
    EXPECT_FALSE(stack->get_tag("missing", vela_dt_double, &value));
    EXPECT_EQ(value, 42.0);
    VProp prop(7);
    EXPECT_FALSE(stack->get_tag("missing", vela_dt_cell, &prop));
    EXPECT_EQ(prop.get<int>(), 7);
    // That is tested before the type.
    EXPECT_FALSE(stack->get_tag("missing", 3, &value));
}

TEST_F(VbfTags, EveryIntegerIsRead)
{
    expect_value<std::uint8_t>(1, "uint8", "255", 255);
    expect_value<char>(2, "int8", "-128", -128);
    expect_value<std::uint16_t>(4, "uint16", "65535", 65535);
    expect_value<std::int16_t>(8, "int16", "-32768", -32768);
    expect_value<std::uint32_t>(16, "uint32", "4294967295", 4294967295u);
    expect_value<std::int32_t>(32, "int32", "-2147483648", INT32_MIN);
    expect_value<std::uint64_t>(4096, "uint64", "18446744073709551615", UINT64_MAX);
    expect_value<std::int64_t>(8192, "int64", "-9223372036854775808", INT64_MIN);
}

TEST_F(VbfTags, FloatingPointNumbersAndBooleansAreRead)
{
    expect_value<float>(64, "single", "0.5", 0.5f);
    expect_value<double>(128, "double", "0.10000000000000000555", 0.1);
    expect_value<bool>(0x10000, "logical", "1", true);
}

TEST_F(VbfTags, PackedColoursShareTheTypeOfUnsignedNumbers)
{
    expect_value<std::uint32_t>(2048, "uint32", "4294967295", 4294967295u);
}

TEST_F(VbfTags, EveryComplexNumberIsRead)
{
    expect_value<std::complex<std::uint8_t>>(0x40000001, "cplx_uint8", "(1,255)", {1, 255});
    expect_value<std::complex<char>>(0x40000002, "cplx_int8", "(-128,127)", {-128, 127});
    expect_value<std::complex<std::uint16_t>>(0x40000004, "cplx_uint16", "(1,65535)", {1, 65535});
    expect_value<std::complex<std::int16_t>>(0x40000008, "cplx_int16", "(-32768,1)", {-32768, 1});
    expect_value<std::complex<std::uint32_t>>(0x40000010, "cplx_uint32", "(1,4294967295)", {1, 4294967295u});
    expect_value<std::complex<std::int32_t>>(0x40000020, "cplx_int32", "(-2147483648,1)", {INT32_MIN, 1});
    expect_value<std::complex<float>>(0x40000040, "cplx_single", "(0.5,-2)", {0.5f, -2.0f});
    expect_value<std::complex<double>>(0x40000080, "cplx_double", "(0.5,-2)", {0.5, -2.0});
    expect_value<std::complex<std::uint64_t>>(0x40001000, "cplx_uint64", "(1,18446744073709551615)", {1, UINT64_MAX});
    expect_value<std::complex<std::int64_t>>(0x40002000, "cplx_int64", "(-9223372036854775808,1)", {INT64_MIN, 1});
}

TEST_F(VbfTags, AWholeTreeIsRead)
{
    const std::string xml = "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">"
                            "<gain idx=\"1\" type=\"double\" size=\"1 1\">2.5</gain>"
                            "<name idx=\"1\" type=\"char\" size=\"1 2\">ab</name></root>";
    const StackPointer stack = with_tags({{"tree", xml}});
    VProp prop;
    EXPECT_TRUE(stack->get_tag("tree", 16384, &prop));
    EXPECT_EQ(prop.getp("gain", false).get<double>(), 2.5);
    EXPECT_EQ(prop.getp("name", false).get<VPropstring>(), L"ab");
}

TEST_F(VbfTags, ATreeIsReadStraightIntoTheValueOfTheCaller)
{
    const std::string xml = "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">"
                            "<gain idx=\"1\" type=\"double\" size=\"1 1\">2.5</gain></root>";
    const StackPointer stack = with_tags({{"tree", xml}});
    VProp prop;
    prop["before"] = 1;
    EXPECT_TRUE(stack->get_tag("tree", 16384, &prop));
    EXPECT_EQ(prop.getp("before", false).get<int>(), 1);
    EXPECT_EQ(prop.getp("gain", false).get<double>(), 2.5);
    // A value of another type is in its way.
    VProp number(1.5);
    VProp imported(1.5);
    const std::string expected = failure_of([&] { vela_import_xml(xml, imported, 0); });
    EXPECT_NE(expected, "no failure");
    EXPECT_EQ(failure_of([&] { stack->get_tag("tree", 16384, &number); }), expected);
}

TEST_F(VbfTags, OtherTypesAreNotSupported)
{
    const StackPointer stack = with_tags({{"a", tag_xml("double", "1")}});
    double value[2] = {};
    for (const int type : {0, 3, 256, 512, 0x8000, 0x20000, 0x40000000, 0x40000400, 0x40004000, 0x40010000,
                           vela_dt_double | vela_dt_array, -1})
        EXPECT_VELA_ERROR_IN(stack->get_tag("a", type, value), "VBFStackImp::get_tag", binary_io_folder, -1,
                             "Tag type not supported!");
}

TEST_F(VbfTags, TextThatIsNoPropertyTreeIsReadAsTextOnly)
{
    for (const std::string& text : {std::string(), std::string("plain"), std::string("<root><open></root>"),
                                    std::string("<a/>"), tag_xml("nonsense", "1")})
    {
        const StackPointer stack = with_tags({{"a", text}});
        EXPECT_EQ(stack->get_tag("a"), text);
        VProp imported;
        const std::string expected = failure_of([&] { vela_import_xml(text, imported, 0); });
        EXPECT_NE(expected, "no failure");
        double value = 42.0;
        VProp prop;
        EXPECT_EQ(failure_of([&] { stack->get_tag("a", vela_dt_double, &value); }), expected);
        EXPECT_EQ(failure_of([&] { stack->get_tag("a", vela_dt_cell, &prop); }), expected);
        EXPECT_EQ(value, 42.0);
    }
}

TEST_F(VbfTags, AValueThatIsNoNumberFailsAsOne)
{
    const StackPointer stack = with_tags({{"a", tag_xml("char", "1")}});
    double value = 42.0;
    EXPECT_THROW(stack->get_tag("a", vela_dt_double, &value), VelaError);
    EXPECT_EQ(value, 42.0);
}

TEST_F(VbfTags, AColourIsASupportedTypeThatNoTextHolds)
{
    const StackPointer stack = with_tags({{"a", tag_xml("uint32", "1")}});
    _s_vela_RGB colour(1, 2, 3);
    const std::string failure = failure_of([&] { stack->get_tag("a", vela_dt_rgb, &colour); });
    EXPECT_EQ(failure.rfind("VelaError -1 ", 0), 0u) << failure;
    EXPECT_EQ(failure.find("Tag type not supported!"), std::string::npos);
    EXPECT_EQ(colour, _s_vela_RGB(1, 2, 3));
}

TEST_F(VbfTags, ATagOfAStackThatIsReadChangesInMemoryAlone)
{
    RecordFields fields = bytes_record({1});
    fields.tags = {{"a", "on disk"}};
    VbfRecords built(1);
    built.add_stack_record(fields);
    open(built);
    const StackPointer stack = file->get_stack(0);
    stack->set_tag("a", std::string("first"));
    stack->set_tag("a", std::string("last"));
    const double number = 0.1;
    stack->set_tag("new", vela_dt_double, &number);
    EXPECT_EQ(stack->get_tag("a"), "last");
    double value = 0.0;
    EXPECT_TRUE(stack->get_tag("new", vela_dt_double, &value));
    EXPECT_EQ(value, 0.1);
    EXPECT_EQ(stack->get_tag_keys(), (Keys{"a", "new"}));
    EXPECT_EQ(file->get_stack(0)->get_tag("a"), "on disk");
    file->close();
    EXPECT_EQ(stack->get_tag("a"), "last");
    EXPECT_EQ(get_bytes(path("test.vbf")), built.bytes());
}
