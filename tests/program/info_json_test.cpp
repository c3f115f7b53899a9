#include "build_vbf.h"
#include "run_vbf.h"

#include <nlohmann/json.hpp>

#include <limits>

using namespace vela_test;
using ParsedJson = nlohmann::json;

namespace {

class InfoJsonTest : public ProgramTest
{
protected:
    /// Parsed strictly: a document that is no UTF-8 or has text behind it fails.
    ParsedJson info(const std::string& file) const { return ParsedJson::parse(output_of({"info", file, "--json"})); }

    ParsedJson info_of(const Bytes& file) const { return info(put(file)); }
};

const char* const golgi_document = R"({
  "format": "VBF",
  "format_version": 2,
  "description": "Confocal stack of a Golgi apparatus",
  "meta_data_pos": 489114,
  "creator": null,
  "uuid": null,
  "stacks": [{
    "index": 0,
    "position": 69,
    "format_version": 5,
    "rank": 3,
    "sizes": [147, 137, 25],
    "lengths": [5.166098864371982e-05, 4.814663567475929e-05, 9.69e-06],
    "offsets": [2.583049432185991e-05, 2.4073317837379643e-05, 4.845e-06],
    "data_type": 4,
    "type": "uint16",
    "compression_type": 1,
    "compression_level": 1,
    "name": "Golgi",
    "description": "",
    "data_pos": 442,
    "data_length_on_disk": 486477,
    "axes": [
      {"label": "X", "unit": "m", "equidistant": true},
      {"label": "Y", "unit": "m", "equidistant": true},
      {"label": "Z", "unit": "m", "equidistant": true}
    ],
    "data_unit": null,
    "global_position": null,
    "tags": {
      "frame interval":
        "<root idx=\"1\" type=\"double\" size=\"1 1\" vprop_version=\"1\">59.859999999999999432</root>\n",
      "source": "golgi_zyx_u16.tif"
    },
    "flush_points": 5,
    "flush_block_size": 201390
  }]
})";

} // namespace

TEST_F(InfoJsonTest, ListsTheGolgiStack)
{
    EXPECT_EQ(info(VELA_GOLGI_FILE), ParsedJson::parse(golgi_document));
}

TEST_F(InfoJsonTest, KeysComeInTheOrderOfTheFormat)
{
    const auto document = nlohmann::ordered_json::parse(output_of({"info", VELA_GOLGI_FILE, "--json"}));
    EXPECT_EQ(document.dump(), nlohmann::ordered_json::parse(golgi_document).dump());
}

TEST_F(InfoJsonTest, ListsEveryStackOfTheChain)
{
    FileRecipe file;
    file.stacks = {plain_stack<std::uint8_t>({2}, 1, {1, 2}), plain_stack<float>({}, 0x40, {1.5f}),
                   plain_stack<std::int16_t>({1, 2, 1}, 8, {1, 2})};
    const ParsedJson stacks = info_of(build_vbf(file))["stacks"];
    ASSERT_EQ(stacks.size(), 3u);
    EXPECT_EQ(stacks[0]["position"], 34);
    EXPECT_EQ(stacks[0]["data_pos"], 402);
    EXPECT_EQ(stacks[0]["data_length_on_disk"], 2);
    EXPECT_EQ(stacks[1]["position"], 404 + 1444 + 4 + 4);
    EXPECT_EQ(stacks[1]["index"], 1);
    EXPECT_EQ(stacks[2]["type"], "int16");
    EXPECT_EQ(stacks[2]["sizes"], ParsedJson({1, 2, 1}));
}

TEST_F(InfoJsonTest, RankZeroHasEmptyLists)
{
    const ParsedJson stack = info_of(build_vbf(plain_stack<std::uint8_t>({}, 1, {7})))["stacks"][0];
    EXPECT_EQ(stack["rank"], 0);
    EXPECT_EQ(stack["sizes"], ParsedJson::array());
    EXPECT_EQ(stack["lengths"], ParsedJson::array());
    EXPECT_EQ(stack["offsets"], ParsedJson::array());
}

TEST_F(InfoJsonTest, EntriesBehindTheRankAreNotListed)
{
    StackRecipe stack = plain_stack<std::uint8_t>({2, 1}, 1, {1, 2});
    ByteWriter writer{build_vbf(stack)};
    writer.set<std::uint32_t>(34 + 24 + 2 * 4, 77);
    writer.set(34 + 84 + 2 * 8, 77.0);
    writer.set(34 + 204 + 2 * 8, 77.0);
    const ParsedJson listed = info_of(writer.bytes)["stacks"][0];
    EXPECT_EQ(listed["sizes"], ParsedJson({2, 1}));
    EXPECT_EQ(listed["lengths"], ParsedJson({1.0, 1.0}));
    EXPECT_EQ(listed["offsets"], ParsedJson({0.0, 0.0}));
}

TEST_F(InfoJsonTest, NumbersThatAreNotFiniteAreNull)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    StackRecipe stack = plain_stack<std::uint8_t>({1, 1, 1}, 1, {1});
    stack.lengths = {inf, 2.5, -inf};
    stack.offsets = {nan, inf, -0.5};
    const ParsedJson listed = info_of(build_vbf(stack))["stacks"][0];
    EXPECT_EQ(listed["lengths"], ParsedJson({nullptr, 2.5, nullptr}));
    EXPECT_EQ(listed["offsets"], ParsedJson({nullptr, nullptr, -0.5}));
}

TEST_F(InfoJsonTest, LengthThatIsNoNumberCountsAsOne)
{
    StackRecipe stack = plain_stack<std::uint8_t>({1}, 1, {1});
    stack.lengths = {std::numeric_limits<double>::quiet_NaN()};
    EXPECT_EQ(info_of(build_vbf(stack))["stacks"][0]["lengths"], ParsedJson({1.0}));
}

TEST_F(InfoJsonTest, BytesThatAreNoUtf8BecomeTheReplacementCharacter)
{
    FileRecipe file;
    file.description = "caf\xe9";
    file.stacks = {plain_stack<std::uint8_t>({1}, 1, {1})};
    file.stacks[0].name = "a\xff\xe2\x82z\xed\xa0\x80\xc0\x80|\xf0\x9f\x94\xac";
    file.stacks[0].description = "\xc2\xb5m \xf4\x90";
    const ParsedJson document = info_of(build_vbf(file));
    EXPECT_EQ(document["description"], "caf\xef\xbf\xbd");
    EXPECT_EQ(document["stacks"][0]["name"], "a\xef\xbf\xbd\xef\xbf\xbdz\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd"
                                             "\xef\xbf\xbd\xef\xbf\xbd|\xf0\x9f\x94\xac");
    EXPECT_EQ(document["stacks"][0]["description"], "\xc2\xb5m \xef\xbf\xbd\xef\xbf\xbd");
}

TEST_F(InfoJsonTest, ZeroByteInANameIsKept)
{
    StackRecipe stack = plain_stack<std::uint8_t>({1}, 1, {1});
    stack.name = std::string("a\0b", 3);
    EXPECT_EQ(info_of(build_vbf(stack))["stacks"][0]["name"], std::string("a\0b", 3));
}

TEST_F(InfoJsonTest, TypesWithoutANameAreNone)
{
    EXPECT_EQ(info_of(build_vbf(plain_stack<std::uint32_t>({1}, 0x800, {1})))["stacks"][0]["type"], "none");
    EXPECT_EQ(info_of(build_vbf(plain_stack<std::uint8_t>({1}, 0x300, {1})))["stacks"][0]["data_type"], 0x300);
}

TEST_F(InfoJsonTest, NumbersOfTheHeaderAreTakenAsTheyAre)
{
    StackRecipe stack = plain_stack<std::uint8_t>({0xffffffffu}, -1, {1});
    stack.compression_type = -7; // as the bytes F9 FF FF FF
    stack.compression_level = 1000;
    const ParsedJson listed = info_of(build_vbf(stack))["stacks"][0];
    EXPECT_EQ(listed["sizes"], ParsedJson({0xffffffffu}));
    EXPECT_EQ(listed["data_type"], -1);
    EXPECT_EQ(listed["compression_type"], 0xfffffff9u);
    EXPECT_EQ(listed["compression_level"], 1000);
}

TEST_F(InfoJsonTest, OldVersionsHaveNoMetaDataPos)
{
    for (const std::uint32_t version : {0u, 1u})
    {
        FileRecipe file;
        file.format_version = version;
        file.stacks = {plain_stack<std::uint8_t>({1}, 1, {1})};
        const ParsedJson document = info_of(build_vbf(file));
        EXPECT_EQ(document["format_version"], version);
        EXPECT_TRUE(document["meta_data_pos"].is_null());
        EXPECT_FALSE(document.contains("open"));
        EXPECT_EQ(document["stacks"][0]["position"], 26);
    }
}

TEST_F(InfoJsonTest, FileWithoutStacksHasAnEmptyList)
{
    const ParsedJson document = info_of(build_vbf(FileRecipe()));
    EXPECT_EQ(document["stacks"], ParsedJson::array());
    EXPECT_EQ(document["meta_data_pos"], 34);
    EXPECT_FALSE(document.contains("open"));
}

// The reader takes the first four bytes of the magic as the length of a key, and this is wanted.
TEST_F(InfoJsonTest, FileThatWasNotClosedIsListedAndSaysWhyItDoesNotOpen)
{
    FileRecipe file;
    file.closed = false;
    file.stacks = {plain_stack<std::uint8_t>({1}, 1, {1})};
    const ParsedJson document = info_of(build_vbf(file));
    EXPECT_EQ(document["meta_data_pos"], 0);
    EXPECT_EQ(document["open"], "Failed reading 1095517526 bytes from file!");
    EXPECT_EQ(document["stacks"].size(), 1u);
}

TEST_F(InfoJsonTest, CutDictionarySaysWhyTheFileDoesNotOpen)
{
    Bytes file = build_vbf(plain_stack<std::uint8_t>({1}, 1, {1}));
    file.pop_back();
    const ParsedJson document = info_of(file);
    EXPECT_EQ(document["open"], "Failed reading 4 bytes from file!");
    EXPECT_EQ(document["stacks"].size(), 1u);
}

TEST_F(InfoJsonTest, DictionaryBeyondAnyPositionSaysThatTheFileDoesNotOpen)
{
    ByteWriter writer{build_vbf(plain_stack<std::uint8_t>({1}, 1, {1}))};
    writer.set<std::uint64_t>(26, 0x8000000000000000u);
    const ParsedJson document = info_of(writer.bytes);
    EXPECT_EQ(document["meta_data_pos"], 0x8000000000000000u);
    EXPECT_EQ(document["open"], "Failed reading 1095517526 bytes from file!");
}
