// Tags of a stack that is written.
#include "binary_io/vbf_writing.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include <gtest/gtest.h>

#include <complex>
#include <random>

using namespace vela_test;

namespace {

class TagsWriting : public VbfWritingTest
{
protected:
    TagsWriting()
    {
        begin_file();
        stack = add({2});
    }

    /// The tags on disk.
    WrittenPairs written_tags()
    {
        write_bytes(stack, {1, 2});
        return close_file_with_one_stack().tags;
    }

    template <class T>
    void expect_typed(int id, const T& value, const std::string& type_name, const std::string& text)
    {
        SCOPED_TRACE(type_name);
        stack->set_tag("key", id, &value);
        std::string expected;
        vela_export_xml(expected, VProp(value), 2);
        EXPECT_EQ(stack->get_tag("key"), expected);
        EXPECT_EQ(expected,
                  "<root idx=\"1\" type=\"" + type_name + "\" size=\"1 1\" vprop_version=\"1\">" + text + "</root>\n");
    }

    /// Sets what `value` holds, and reads it again into something else.
    template <class T>
    void expect_read_again(int id, const T& value)
    {
        stack->set_tag("key", id, &value);
        T again = T();
        EXPECT_TRUE(stack->get_tag("key", id, &again)) << id;
        EXPECT_EQ(again, value) << id;
    }

    Stack stack;
};

TEST_F(TagsWriting, AreNoneAtFirst)
{
    EXPECT_EQ(stack->get_tag_keys(), std::vector<std::string>());
    write_bytes(stack, {1, 2});
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.tag_dictionary_length, 4u);
    const auto end = static_cast<std::size_t>(written.end);
    EXPECT_EQ(slice(content(), end - 4, end), (Bytes{0, 0, 0, 0}));
}

TEST_F(TagsWriting, StandAsTheyWereSetInTheOrderOfTheirKeys)
{
    stack->set_tag("b", "2");
    stack->set_tag("a", std::string("\0 \xff", 3));
    stack->set_tag("\xff", "last");
    stack->set_tag("B", "");
    stack->set_tag("ab", "<xml/>");
    const std::vector<std::string> keys = {"B", "a", "ab", "b", "\xff"};
    EXPECT_EQ(stack->get_tag_keys(), keys);
    EXPECT_EQ(
        written_tags(),
        (WrittenPairs{{"B", ""}, {"a", std::string("\0 \xff", 3)}, {"ab", "<xml/>"}, {"b", "2"}, {"\xff", "last"}}));
}

TEST_F(TagsWriting, OnDiskAreLengthKeyLengthValueAndAZero)
{
    stack->set_tag("key", "value");
    stack->set_tag("e", "");
    write_bytes(stack, {1, 2});
    const WrittenStack written = close_file_with_one_stack();
    Bytes expected;
    append_string(expected, "e");
    append_string(expected, "");
    append_string(expected, "key");
    append_string(expected, "value");
    append_u32(expected, 0);
    EXPECT_EQ(slice(content(), static_cast<std::size_t>(written.tags_pos), static_cast<std::size_t>(written.end)),
              expected);
    EXPECT_EQ(written.tag_dictionary_length, expected.size());
}

TEST_F(TagsWriting, TheLastValueOfAKeyWins)
{
    stack->set_tag("key", "first");
    stack->set_tag("key", "second");
    EXPECT_EQ(stack->get_tag("key"), "second");
    const std::int32_t number = 3;
    stack->set_tag("other", vela_dt_int32, &number);
    stack->set_tag("other", "text");
    EXPECT_EQ(written_tags(), (WrittenPairs{{"key", "second"}, {"other", "text"}}));
}

TEST_F(TagsWriting, MayBeSetBeforeTheDescriptionAndWhileSamplesAreWritten)
{
    write_bytes(stack, {1, 2});
    stack = file->add_stack(false);
    stack->set_tag("before", "create");
    stack->create(Sizes{3}, vela_dt_uint8);
    stack->set_tag("behind", "create");
    stack->write(vela_dt_uint8, numbered_bytes(3).data(), nullptr, 2);
    stack->set_tag("while", "writing");
    stack->write(vela_dt_uint8, numbered_bytes(3).data(), nullptr, 1);
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 2u);
    EXPECT_EQ(written.stacks[1].tags, (WrittenPairs{{"before", "create"}, {"behind", "create"}, {"while", "writing"}}));
}

TEST_F(TagsWriting, BehindTheFooterStayInMemory)
{
    stack->set_tag("key", "on disk");
    write_bytes(stack, {1, 2});
    stack->set_tag("key", "changed");
    stack->set_tag("late", "too late");
    EXPECT_EQ(stack->get_tag("key"), "changed");
    EXPECT_EQ(stack->get_tag("late"), "too late");
    EXPECT_EQ(close_file_with_one_stack().tags, (WrittenPairs{{"key", "on disk"}}));
}

TEST_F(TagsWriting, StayWithTheStackWhenTheFileIsClosed)
{
    stack->set_tag("key", "value");
    EXPECT_EQ(written_tags().size(), 1u);
    EXPECT_EQ(stack->get_tag("key"), "value");
    stack->set_tag("more", "memory");
    EXPECT_EQ(stack->get_tag_keys(), (std::vector<std::string>{"key", "more"}));
}

TEST_F(TagsWriting, AnEmptyKeyIsWrittenFirstAndEndsThemForAReader)
{
    stack->set_tag("", "hidden");
    stack->set_tag("key", "value");
    EXPECT_EQ(stack->get_tag(""), "hidden");
    EXPECT_EQ(stack->get_tag_keys(), (std::vector<std::string>{"", "key"}));
    write_bytes(stack, {1, 2});
    file->close();
    const WrittenStack written = on_disk().stacks.at(0);
    Bytes expected;
    append_string(expected, "");
    append_string(expected, "hidden");
    append_string(expected, "key");
    append_string(expected, "value");
    append_u32(expected, 0);
    EXPECT_EQ(written.tag_dictionary_length, expected.size());
    EXPECT_EQ(written.stack_end_pos, written.tags_pos + expected.size());
    EXPECT_EQ(
        slice(content(), static_cast<std::size_t>(written.tags_pos), static_cast<std::size_t>(written.stack_end_pos)),
        expected);
    EXPECT_EQ(on_disk().meta_data_pos, written.stack_end_pos);
    EXPECT_EQ(written.tags, WrittenPairs());

    file.open(file_name(file_path), VFile::read_mode);
    EXPECT_EQ(file->get_stack(0)->get_tag_keys(), std::vector<std::string>());
}

TEST_F(TagsWriting, OfNumbersAreTheXmlOfTheirValue)
{
    expect_typed<std::uint8_t>(1, 200, "uint8", "200");
    expect_typed<char>(2, -3, "int8", "-3");
    expect_typed<std::uint16_t>(4, 65535, "uint16", "65535");
    expect_typed<std::int16_t>(8, -32768, "int16", "-32768");
    expect_typed<std::uint32_t>(16, 4000000000u, "uint32", "4000000000");
    expect_typed<std::int32_t>(32, -5, "int32", "-5");
    expect_typed<float>(64, 1.5f, "single", "1.5");
    expect_typed<double>(128, 0.1, "double", "0.10000000000000000555");
    expect_typed<std::uint32_t>(2048, 17, "uint32", "17");
    expect_typed<std::uint64_t>(4096, ~0ull, "uint64", "18446744073709551615");
    expect_typed<std::int64_t>(8192, INT64_MIN, "int64", "-9223372036854775808");
}

TEST_F(TagsWriting, OfComplexNumbersAreTheXmlOfTheirValue)
{
    expect_typed<std::complex<unsigned char>>(0x40000001, {1, 2}, "cplx_uint8", "(1,2)");
    expect_typed<std::complex<char>>(0x40000002, {-1, 2}, "cplx_int8", "(-1,2)");
    expect_typed<std::complex<unsigned short>>(0x40000004, {1, 2}, "cplx_uint16", "(1,2)");
    expect_typed<std::complex<short>>(0x40000008, {-1, 2}, "cplx_int16", "(-1,2)");
    expect_typed<std::complex<unsigned>>(0x40000010, {1, 2}, "cplx_uint32", "(1,2)");
    expect_typed<std::complex<int>>(0x40000020, {-1, 2}, "cplx_int32", "(-1,2)");
    expect_typed<std::complex<float>>(0x40000040, {1.5f, -2.0f}, "cplx_single", "(1.5,-2)");
    expect_typed<std::complex<double>>(0x40000080, {1.5, -2.0}, "cplx_double", "(1.5,-2)");
    expect_typed<std::complex<std::uint64_t>>(0x40001000, {1, 2}, "cplx_uint64", "(1,2)");
    expect_typed<std::complex<std::int64_t>>(0x40002000, {-1, 2}, "cplx_int64", "(-1,2)");
}

/// The sample type "logical".
TEST_F(TagsWriting, Of0x10000IsABoolean)
{
    // Room for whatever might be looked for behind the pointer.
    alignas(16) unsigned char room[64] = {1};
    stack->set_tag("key", 0x10000, room);
    EXPECT_EQ(stack->get_tag("key"), "<root idx=\"1\" type=\"logical\" size=\"1 1\" vprop_version=\"1\">1</root>\n");
}

TEST_F(TagsWriting, OfATreeIsItsXml)
{
    VProp tree;
    tree["scan.speed"] = VProp(2.5);
    tree["scan.name"] = VProp("fast");
    stack->set_tag("tree", 16384, &tree);
    std::string expected;
    vela_export_xml(expected, tree, 2);
    EXPECT_NE(expected.find("<speed idx=\"1\" type=\"double\" size=\"1 1\">2.5</speed>"), std::string::npos);
    EXPECT_EQ(stack->get_tag("tree"), expected);
    EXPECT_EQ(written_tags(), (WrittenPairs{{"tree", expected}}));
}

TEST_F(TagsWriting, OfATreeMayBeAnyValue)
{
    VProp empty;
    stack->set_tag("empty", 16384, &empty);
    VProp number(std::int32_t{4});
    stack->set_tag("number", 16384, &number);
    const std::int32_t four = 4;
    stack->set_tag("four", 32, &four);
    EXPECT_EQ(stack->get_tag("number"), stack->get_tag("four"));
    EXPECT_NE(stack->get_tag("empty").find("isempty=\"1\""), std::string::npos);
}

TEST_F(TagsWriting, OfEveryTypeAreReadAgain)
{
    expect_read_again<std::uint8_t>(1, 200);
    expect_read_again<char>(2, -3);
    expect_read_again<std::uint16_t>(4, 65535);
    expect_read_again<std::int16_t>(8, -32768);
    expect_read_again<std::uint32_t>(16, 4000000000u);
    expect_read_again<std::int32_t>(32, -5);
    expect_read_again<float>(64, 1.1f);
    expect_read_again<double>(128, 0.1);
    expect_read_again<std::uint32_t>(2048, 17);
    expect_read_again<bool>(0x10000, true);
    expect_read_again<std::uint64_t>(4096, ~0ull);
    expect_read_again<std::int64_t>(8192, INT64_MIN);
    expect_read_again<std::complex<unsigned char>>(0x40000001, {1, 2});
    expect_read_again<std::complex<char>>(0x40000002, {-1, 2});
    expect_read_again<std::complex<unsigned short>>(0x40000004, {1, 2});
    expect_read_again<std::complex<short>>(0x40000008, {-1, 2});
    expect_read_again<std::complex<unsigned>>(0x40000010, {1, 2});
    expect_read_again<std::complex<int>>(0x40000020, {-1, 2});
    expect_read_again<std::complex<float>>(0x40000040, {1.5f, -2.0f});
    expect_read_again<std::complex<double>>(0x40000080, {0.1, -1e300});
    expect_read_again<std::complex<std::uint64_t>>(0x40001000, {1, 2});
    expect_read_again<std::complex<std::int64_t>>(0x40002000, {-1, 2});
    VProp tree;
    tree["a.b"] = VProp(std::int32_t{4});
    stack->set_tag("key", 16384, &tree);
    VProp again;
    EXPECT_TRUE(stack->get_tag("key", 16384, &again));
    EXPECT_EQ(again, tree);
}

TEST_F(TagsWriting, OfOtherTypesAreRefused)
{
    const double room[16] = {};
    stack->set_tag("key", "kept");
    for (const int id : {0, 3, 256, 512, 0x8000, 0x20000, 0x40000, 0x40000000, 0x40000400, 0x40000800, 0x40004000,
                         0x40010000, vela_dt_array | 1, -1})
    {
        EXPECT_STACK_ERROR(stack->set_tag("key", id, room), "set_tag", -1, "Tag type not supported!");
        EXPECT_STACK_ERROR(stack->set_tag("new", id, room), "set_tag", -1, "Tag type not supported!");
    }
    EXPECT_EQ(written_tags(), (WrittenPairs{{"key", "kept"}}));
}

TEST_F(TagsWriting, AColourIsRefusedByTheExport)
{
    const _s_vela_RGB colour(1, 2, 3);
    stack->set_tag("key", "kept");
    EXPECT_VELA_ERROR(stack->set_tag("key", 1024, &colour), -1, "Type unknown or incompatible with xml export!");
    EXPECT_VELA_ERROR(stack->set_tag("new", 1024, &colour), -1, "Type unknown or incompatible with xml export!");
    EXPECT_EQ(written_tags(), (WrittenPairs{{"key", "kept"}}));
}

TEST_F(TagsWriting, AMissingKeyIsFalseWhenTypedAndAFailureAsText)
{
    stack->set_tag("there", "1");
    std::int32_t number = 77;
    EXPECT_FALSE(stack->get_tag("missing", 32, &number));
    EXPECT_FALSE(stack->get_tag("missing", 3, &number)) << "the key is looked for first";
    EXPECT_EQ(number, 77);
    EXPECT_STACK_ERROR(stack->get_tag("missing"), "get_tag", -1, "Tag with key 'missing' not found!");
    EXPECT_STACK_ERROR(stack->get_tag(""), "get_tag", -1, "Tag with key '' not found!");
    EXPECT_STACK_ERROR(stack->get_tag("%d%s"), "get_tag", -1, "Tag with key '%d%s' not found!");
}

TEST_F(TagsWriting, ATextThatIsNoXmlFailsWhenItIsReadTyped)
{
    stack->set_tag("key", "no xml");
    std::int32_t number = 77;
    VProp tree;
    EXPECT_THROW(stack->get_tag("key", 32, &number), VelaError);
    EXPECT_THROW(stack->get_tag("key", 16384, &tree), VelaError);
    EXPECT_EQ(stack->get_tag("key"), "no xml");
}

TEST_F(TagsWriting, OfOneTypeAreNotReadAsAnother)
{
    const std::int32_t five = 5;
    stack->set_tag("key", vela_dt_int32, &five);
    double number = 1.0;
    EXPECT_VELA_ERROR(stack->get_tag("key", vela_dt_double, &number), -1,
                      "Type mismatch: found int32, expected double");
    EXPECT_EQ(number, 1.0);
}

TEST_F(TagsWriting, AnUnknownTypeOfATagThatIsThereIsRefused)
{
    const std::int32_t three = 3;
    stack->set_tag("key", 32, &three);
    double room[16] = {};
    for (const int id : {0, 3, 0x20000, 0x8000, vela_dt_array | 1})
        EXPECT_STACK_ERROR(stack->get_tag("key", id, room), "get_tag", -1, "Tag type not supported!");
}

TEST_F(TagsWriting, OfRandomBytesStandAsTheyWereSet)
{
    std::mt19937 random(5);
    std::map<std::string, std::string> expected;
    for (int i = 0; i < 300; ++i)
    {
        std::string key(1 + random() % 6, '\0');
        for (char& byte : key)
            byte = static_cast<char>(random() & 0xFF);
        std::string value(random() % 300, '\0');
        for (char& byte : value)
            byte = static_cast<char>(random() & 0xFF);
        stack->set_tag(key, value);
        expected[key] = value;
    }
    EXPECT_EQ(written_tags(), WrittenPairs(expected.begin(), expected.end()));
}

} // namespace
