// The string dictionary: bytes, order, ends, failures.
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VZippedSegment.h>

#include "binary_io/memory_stream.h"
#include "binary_io/vbf_file_test.h"
#include "support/expect_vela_error.h"

using namespace vela_test;

namespace {

class DictionaryTest : public VbfFileTest
{
};

/// {"b": "second", "a": ""} as it lies on disk.
const Bytes literal_dictionary = {
    1, 0, 0, 0, 'a',                          // key
    0, 0, 0, 0,                               // empty value
    1, 0, 0, 0, 'b',                          // key
    6, 0, 0, 0, 's', 'e', 'c', 'o', 'n', 'd', // value
    0, 0, 0, 0,                               // end
};

/// Pairs one behind the other, in the given order and with a terminator.
Bytes pairs(const std::vector<std::pair<std::string, std::string>>& texts)
{
    Bytes bytes;
    for (const auto& [key, value] : texts)
    {
        append_string(bytes, key);
        append_string(bytes, value);
    }
    append_u32(bytes, 0);
    return bytes;
}

Bytes written(const VBFDictionary& dictionary)
{
    MemoryStream stream;
    write_dictionary(stream, dictionary);
    return stream.bytes();
}

VBFDictionary read(const Bytes& bytes)
{
    MemoryStream stream(bytes);
    VBFDictionary dictionary;
    read_dictionary(stream, dictionary);
    return dictionary;
}

} // namespace

TEST(Dictionary, WritesLiteralBytesInTheOrderOfTheKeys)
{
    EXPECT_EQ(written({{"b", "second"}, {"a", ""}}), literal_dictionary);
}

TEST(Dictionary, ReadsLiteralBytes)
{
    MemoryStream stream(literal_dictionary);
    VBFDictionary dictionary;

    read_dictionary(stream, dictionary);

    EXPECT_EQ(dictionary, (VBFDictionary{{"a", ""}, {"b", "second"}}));
    EXPECT_EQ(stream.tell(), literal_dictionary.size());
}

TEST(Dictionary, AnEmptyOneIsFourZeroBytes)
{
    EXPECT_EQ(written({}), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(read({0, 0, 0, 0}), VBFDictionary());
}

TEST(Dictionary, KeysAreSortedByTheirBytes)
{
    // Upper case before lower case, and bytes above 127 last.
    EXPECT_EQ(written({{"\xc3\xbc", "4"}, {"z", "3"}, {"Z", "1"}, {"a", "2"}}),
              pairs({{"Z", "1"}, {"a", "2"}, {"z", "3"}, {"\xc3\xbc", "4"}}));
    EXPECT_EQ(written({{"ab", "2"}, {"a", "1"}, {std::string("a\0", 2), "1.5"}}),
              pairs({{"a", "1"}, {std::string("a\0", 2), "1.5"}, {"ab", "2"}}));
}

TEST(Dictionary, KeysMayComeInAnyOrder)
{
    EXPECT_EQ(read(pairs({{"z", "1"}, {"a", "2"}, {"m", "3"}})), (VBFDictionary{{"a", "2"}, {"m", "3"}, {"z", "1"}}));
}

TEST(Dictionary, OfTwoEqualKeysTheLastWins)
{
    EXPECT_EQ(read(pairs({{"k", "first"}, {"x", ""}, {"k", "second"}, {"k", "third"}})),
              (VBFDictionary{{"k", "third"}, {"x", ""}}));
}

TEST(Dictionary, AnEmptyKeyEndsItForAReader)
{
    Bytes bytes = pairs({{"a", "1"}});
    const std::size_t end = bytes.size();
    append_text(bytes, "more behind it");
    MemoryStream stream(bytes);
    VBFDictionary dictionary;

    read_dictionary(stream, dictionary);

    EXPECT_EQ(dictionary, (VBFDictionary{{"a", "1"}}));
    EXPECT_EQ(stream.tell(), end) << "nothing is read behind the empty key";
}

TEST(Dictionary, APairWithAnEmptyKeyIsWrittenAndEndsItForAReader)
{
    const Bytes bytes = written({{"", "lost"}, {"a", "lost too"}});

    EXPECT_EQ(bytes, pairs({{"", "lost"}, {"a", "lost too"}}));
    EXPECT_EQ(read(bytes), VBFDictionary());
}

TEST(Dictionary, TextsMayHoldAnyBytes)
{
    std::string all_bytes;
    for (int i = 0; i < 256; ++i)
        all_bytes += static_cast<char>(i);
    const VBFDictionary dictionary = {{all_bytes, "key of all bytes"}, {"value of all bytes", all_bytes}};

    EXPECT_EQ(read(written(dictionary)), dictionary);
    EXPECT_EQ(read(pairs({{all_bytes, all_bytes}})), (VBFDictionary{{all_bytes, all_bytes}}));
}

TEST(Dictionary, ALongValueIsWhole)
{
    std::string text(5 * 1024 * 1024 + 3, 'x');
    text.front() = 'a';
    text.back() = 'z';

    EXPECT_EQ(read(pairs({{"k", text}})), (VBFDictionary{{"k", text}}));
    EXPECT_EQ(written({{"k", text}}), pairs({{"k", text}}));
}

TEST(Dictionary, ReadingStartsFromAnEmptyOne)
{
    MemoryStream stream(literal_dictionary);
    VBFDictionary dictionary = {{"old", "1"}, {"a", "old too"}};

    read_dictionary(stream, dictionary);

    EXPECT_EQ(dictionary, (VBFDictionary{{"a", ""}, {"b", "second"}}));
}

TEST(Dictionary, ReadsAndWritesAtTheCurrentPosition)
{
    Bytes bytes = {7, 7, 7};
    append_bytes(bytes, literal_dictionary);
    MemoryStream stream(Bytes{7, 7, 7}, 3);
    write_dictionary(stream, {{"a", ""}, {"b", "second"}});
    EXPECT_EQ(stream.bytes(), bytes);

    VBFDictionary dictionary;
    stream.seek(3);
    read_dictionary(stream, dictionary);
    EXPECT_EQ(dictionary, (VBFDictionary{{"a", ""}, {"b", "second"}}));
}

TEST_F(DictionaryTest, AFileHoldsTheSameBytes)
{
    {
        VFile out(file_name(path("out")), VFile::write_mode);
        write_dictionary(out, {{"a", ""}, {"b", "second"}});
        EXPECT_EQ(out.tell(), literal_dictionary.size());
    }
    EXPECT_EQ(get_bytes(path("out")), literal_dictionary);

    VBFDictionary dictionary;
    read_dictionary(reopen(literal_dictionary), dictionary);
    EXPECT_EQ(dictionary, (VBFDictionary{{"a", ""}, {"b", "second"}}));
}

TEST_F(DictionaryTest, ACompressedSegmentHoldsTheSameBytes)
{
    const VBFDictionary dictionary = {{"a", ""}, {"b", "second"}};
    VFile out(file_name(path("out")), VFile::write_mode);
    VZippedSegment segment;
    segment.init_w(out, 6, VFileAccess::all_ones);
    write_dictionary(segment, dictionary);
    EXPECT_EQ(segment.tell(), literal_dictionary.size());
    const std::uint64_t length_on_disk = segment.write_end();

    segment.init_r(out, 6, 0, length_on_disk, literal_dictionary.size());
    VBFDictionary again;
    read_dictionary(segment, again);
    EXPECT_EQ(again, dictionary);
}

TEST_F(DictionaryTest, ACutOneFailsOnItsFieldAndKeepsThePairsBefore)
{
    const Bytes whole = pairs({{"alpha", "one"}, {"be", "second"}});
    // End of each field and its size: lengths, texts, terminator.
    const std::pair<std::size_t, int> fields[] = {{4, 4},  {9, 5},  {13, 4}, {16, 3}, {20, 4},
                                                  {22, 2}, {26, 4}, {32, 6}, {36, 4}};
    ASSERT_EQ(whole.size(), 36u);
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        SCOPED_TRACE(size);
        int field_size = 0;
        for (const auto& [end, field] : fields)
            if (field_size == 0 && size < end)
                field_size = field;
        VBFDictionary expected;
        if (size >= 16)
            expected["alpha"] = "one";
        if (size >= 32)
            expected["be"] = "second";
        VBFDictionary dictionary = {{"old", "pair"}};
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));

        EXPECT_VELA_ERROR(read_dictionary(reopen(cut), dictionary), -3,
                          "Failed reading " + std::to_string(field_size) + " bytes from file!");
        EXPECT_EQ(dictionary, expected);
    }
}

TEST_F(DictionaryTest, ALengthThatTheFileDoesNotHaveFailsOnThatLength)
{
    const std::pair<std::uint32_t, const char*> cases[] = {
        {100, "Failed reading 100 bytes from file!"},
        {0x7fffffff, "Failed reading 2147483647 bytes from file!"},
        {0x80000000, "Failed reading -2147483648 bytes from file!"},
        {0xffffffff, "Failed reading -1 bytes from file!"},
    };
    for (const auto& [length, message] : cases)
    {
        SCOPED_TRACE(length);
        Bytes of_key;
        append_u32(of_key, length);
        append_text(of_key, "key and more");
        Bytes of_value;
        append_string(of_value, "key");
        append_u32(of_value, length);
        append_text(of_value, "value");
        VBFDictionary dictionary;

        EXPECT_VELA_ERROR(read_dictionary(reopen(of_key), dictionary), -3, message);
        EXPECT_VELA_ERROR(read_dictionary(reopen(of_value), dictionary), -3, message);
        EXPECT_EQ(dictionary, VBFDictionary()) << "a key without its value is no pair";
    }
}

TEST(Dictionary, AFailureOfAnotherStreamPassesThrough)
{
    Bytes bytes = pairs({{"a", "1"}});
    bytes.pop_back();
    MemoryStream stream(bytes);
    VBFDictionary dictionary;

    EXPECT_THROW_TEXT(read_dictionary(stream, dictionary), std::out_of_range, "the memory ends");
    EXPECT_EQ(dictionary, (VBFDictionary{{"a", "1"}}));
}

TEST_F(DictionaryTest, AFileOpenForReadingIsNotWritten)
{
    VFile& read_only = reopen(Bytes{1, 2, 3, 4});

    EXPECT_VELA_ERROR(write_dictionary(read_only, {}), -3, "Failed writing 4 bytes to file!");
    file.close();
    EXPECT_EQ(get_bytes(path("test.vbf")), (Bytes{1, 2, 3, 4}));
}
