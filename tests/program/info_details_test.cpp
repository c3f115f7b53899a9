// What vbf info tells of files that open, beyond their headers.
#include "build_vbf.h"
#include "run_vbf.h"

#include <VelaFile/VFile.h>

#include <nlohmann/json.hpp>

using namespace vela_test;
using ParsedJson = nlohmann::json;

namespace {

class InfoDetailsTest : public ProgramTest
{
protected:
    /// A copy, since others may have the file open.
    std::string golden(const std::string& name) const
    {
        return put(get_bytes((std::filesystem::path(VELA_TEST_DATA) / "golden" / name).string()), name);
    }

    std::string text(const std::string& name) const { return output_of({"info", golden(name)}); }
    ParsedJson json(const std::string& name) const
    {
        return ParsedJson::parse(output_of({"info", golden(name), "--json"}));
    }
};

} // namespace

TEST_F(InfoDetailsTest, UnitsOfTheSamples)
{
    EXPECT_THAT(text("units.vbf"), testing::HasSubstr("  axes         X in \xc2\xb5m, Y in m, Z in ms\n"
                                                      "  unit of data V\n"));
    const ParsedJson stacks = json("units.vbf")["stacks"];
    EXPECT_EQ(stacks[0]["data_unit"], "V");
    EXPECT_EQ(stacks[3]["data_unit"], nullptr);
}

TEST_F(InfoDetailsTest, PositionsOfColumns)
{
    EXPECT_THAT(text("columns.vbf"), testing::HasSubstr("  positions 2  0, 0.5, 2.5\n"));
    const ParsedJson axes = json("columns.vbf")["stacks"][0]["axes"];
    EXPECT_EQ(axes[2]["column_positions"], ParsedJson({0, 0.5, 2.5}));
    EXPECT_EQ(axes[2]["equidistant"], false);
    EXPECT_EQ(axes[0].count("column_positions"), 0u);
}

TEST_F(InfoDetailsTest, LongListsOfPositionsAreShortened)
{
    StackRecipe stack = plain_stack<std::uint8_t>({10}, 1, {});
    stack.segment = Bytes(10);
    ByteWriter writer{build_vbf(stack)};
    const std::uint64_t footer_pos = 34 + 368 + 10;
    ByteWriter positions;
    for (int column = 0; column < 10; ++column)
        positions.put(column * 0.5);
    writer.set<std::uint32_t>(footer_pos + 4, 1);
    const auto behind_label = static_cast<std::ptrdiff_t>(footer_pos + 1444 + 4);
    writer.bytes.insert(writer.bytes.begin() + behind_label, positions.bytes.begin(), positions.bytes.end());
    writer.set<std::uint64_t>(footer_pos + 1432, footer_pos + 1444 + 4 + 80 + 4);
    writer.set<std::uint64_t>(26, writer.position() - 4);
    EXPECT_THAT(output_of({"info", put(writer.bytes)}),
                testing::HasSubstr("  positions 0  0, 0.5, 1, 1.5, ... 4.5 (10 columns)\n"));
}

TEST_F(InfoDetailsTest, PositionInGlobalAxes)
{
    EXPECT_THAT(text("positions.vbf"), testing::HasSubstr("  global x     from 1.5, axes by 1, 0\n"
                                                          "  global y     from -2, axes by 0, 0.866025\n"
                                                          "  global z     from 100, axes by 0, 0.5\n"));
    const ParsedJson position = json("positions.vbf")["stacks"][0]["global_position"];
    EXPECT_EQ(position["labels"], ParsedJson({"x", "y", "z"}));
    EXPECT_EQ(position["origin"], ParsedJson({1.5, -2, 100}));
    EXPECT_EQ(position["matrix"][2], ParsedJson({0, 0.5}));
}

TEST_F(InfoDetailsTest, CreatorAndUuid)
{
    EXPECT_THAT(text("creator_only.vbf"), testing::HasSubstr("\n  creator      a<b>c&d\"e'f\n"));
    EXPECT_EQ(json("creator_only.vbf")["creator"], "a<b>c&d\"e'f");
    EXPECT_EQ(json("creator_only.vbf")["uuid"], nullptr);
    EXPECT_THAT(text("uuid_only.vbf"), testing::HasSubstr("\n  UUID         "));
    EXPECT_TRUE(json("uuid_only.vbf")["uuid"].is_string());
}

TEST_F(InfoDetailsTest, FileThatIsInUseIsNamed)
{
    const std::string file = put(build_vbf(plain_stack<std::uint8_t>({1}, 1, {1})));
    const VFile user(file_name(file), VFile::read_mode);
    for (const char* const command : {"info", "verify", "ome"})
        expect_failure({command, file}, 1, "'" + file + "': Could not open file! (it is in use)");
    expect_failure({"tags", file, "0"}, 1, "'" + file + "': Could not open file! (it is in use)");
    expect_failure({"info", "/dev/null"}, 1, "'/dev/null': Could not open file! (it is no regular file)");
}
