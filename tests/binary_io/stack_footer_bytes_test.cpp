// The footer of a stack and what stands behind it, field by field at its offset.
#include "binary_io/written_vbf.h"

#include <VelaStacks/VStackInfo.h>

#include <array>
#include <vector>

using namespace vela_test;

namespace {

/// The footer of a first stack with `data_length` bytes of samples and no texts.
constexpr std::uint64_t footer_pos(std::uint64_t data_length)
{
    return first_record_pos + stack_header_size + data_length;
}

class StackFooterBytes : public WritingTest
{
};

/// The metadata of a stack whose position in global axes has these members.
std::string metadata(const std::string& axes, const std::string& offset, const std::string& projection)
{
    return "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">\n"
           "    <global_pos idx=\"1\" type=\"struct\" size=\"1 1\">\n"
           "        <axes idx=\"1\" userbits=\"1\" type=\"cell\" " +
           axes +
           "        </axes>\n"
           "        <offset idx=\"1\" " +
           offset + "</offset>\n        <projection idx=\"1\" " + projection +
           "</projection>\n"
           "    </global_pos>\n"
           "</root>\n";
}

TEST_F(StackFooterBytes, EachFieldStandsAtItsOffset)
{
    add_complete({6});
    const ByteMap map = closed();
    const std::uint64_t at = footer_pos(6);
    const std::uint64_t metadata_length = map.u32(at + footer_metadata_length_at);
    EXPECT_EQ(map.u32(at), 1444u);
    EXPECT_GT(metadata_length, 0u);
    EXPECT_EQ(map.u64(at + footer_flush_point_count_at), 0u);
    EXPECT_EQ(map.u64(at + footer_flush_block_size_at), 0u);
    EXPECT_EQ(map.u64(at + footer_tag_dictionary_length_at), 4u);
    EXPECT_EQ(map.u32(at + footer_required_reader_version_at), 0u);
    for (std::uint64_t axis = 0; axis < 15; ++axis)
    {
        EXPECT_EQ(map.u32(at + footer_col_positions_at + 4 * axis), 0u) << axis;
        EXPECT_EQ(map.u32(at + footer_col_labels_at + 4 * axis), 0u) << axis;
    }
    const std::uint64_t end = at + stack_footer_size + 4 + metadata_length + 4;
    EXPECT_EQ(map.u64(at + footer_stack_end_pos_at), end);
    EXPECT_EQ(map.u32(end - 4), 0u); // no tags
    EXPECT_EQ(map.u64(26), end);     // the dictionary of the file
}

/// Expects nine exponents and a number at `at`.
void expect_unit(const ByteMap& map, std::uint64_t at, const std::array<std::array<int, 2>, 9>& exponents,
                 double number)
{
    for (std::uint64_t i = 0; i < 9; ++i)
    {
        EXPECT_EQ(map.i32(at + 8 * i), exponents[i][0]) << i;
        EXPECT_EQ(map.i32(at + 8 * i + 4), exponents[i][1]) << i;
    }
    EXPECT_EQ(map.f64(at + 72), number);
}

constexpr std::array<std::array<int, 2>, 9> no_dimension = {
    {{0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}}};

TEST_F(StackFooterBytes, UnitsAreThoseThatWereSetAndNotGuessed)
{
    const Stack stack = add({2, 1, 1});
    std::array<si::fraction, 9> exponents = {};
    exponents[0] = si::fraction::unreduced(2, 4);
    exponents[8] = si::fraction::unreduced(-1, 2);
    stack->set_units(1, si::value(2.5, exponents));
    stack->set_label(0, "X"); // whose unit is guessed
    stack->set_data_units(si::value("3 kg/s"));
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    const ByteMap map = closed();
    const std::uint64_t at = footer_pos(2);
    expect_unit(map, at + footer_data_units_at,
                {{{0, 1}, {1, 1}, {-1, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}}}, 3.0);
    expect_unit(map, at + footer_dimension_units_at, no_dimension, 1.0);
    expect_unit(map, at + footer_dimension_units_at + 80,
                {{{2, 4}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {-1, 2}}}, 2.5);
    for (std::uint64_t axis = 2; axis < 15; ++axis)
        expect_unit(map, at + footer_dimension_units_at + 80 * axis, no_dimension, 1.0);
}

TEST_F(StackFooterBytes, PartsStandBehindItInTheirOrder)
{
    const Stack stack = add({2, 3, 1});
    stack->set_labels({"X", "", "third"});
    stack->set_col_positions(1, {-1.5, 0.25, 8.0});
    stack->set_col_labels(0, {"left", ""});
    stack->set_col_labels(2, {"only"});
    stack->set_tag("b", "second");
    stack->set_tag("a", "");
    const Bytes samples = counted_bytes(6);
    stack->write(vela_dt_uint8, samples.data(), nullptr, 6);
    const ByteMap map = closed();

    const std::uint64_t footer = footer_pos(6);
    EXPECT_EQ(map.u32(footer + footer_col_positions_at), 0u);
    EXPECT_EQ(map.u32(footer + footer_col_positions_at + 4), 1u);
    EXPECT_EQ(map.u32(footer + footer_col_positions_at + 8), 0u);
    EXPECT_EQ(map.u32(footer + footer_col_labels_at), 1u);
    EXPECT_EQ(map.u32(footer + footer_col_labels_at + 4), 0u);
    EXPECT_EQ(map.u32(footer + footer_col_labels_at + 8), 1u);

    std::uint64_t at = footer + stack_footer_size;
    EXPECT_EQ(map.string(at), "X");
    EXPECT_EQ(map.string(at), "");
    EXPECT_EQ(map.string(at), "third");
    EXPECT_EQ(map.f64(at), -1.5);
    EXPECT_EQ(map.f64(at + 8), 0.25);
    EXPECT_EQ(map.f64(at + 16), 8.0);
    at += 24;
    EXPECT_EQ(map.string(at), "left");
    EXPECT_EQ(map.string(at), "");
    EXPECT_EQ(map.string(at), "only");
    EXPECT_EQ(map.text(at, 5), "<root");
    at += map.u32(footer + footer_metadata_length_at);
    EXPECT_EQ(map.u64(footer + footer_tag_dictionary_length_at), 4u + 8 + 1 + 8 + 1 + 6);
    EXPECT_EQ(map.string(at), "a");
    EXPECT_EQ(map.string(at), "");
    EXPECT_EQ(map.string(at), "b");
    EXPECT_EQ(map.string(at), "second");
    EXPECT_EQ(map.string(at), "");
    EXPECT_EQ(map.u64(footer + footer_stack_end_pos_at), at);
}

TEST_F(StackFooterBytes, MetadataIsThePositionInGlobalAxes)
{
    const Stack stack = add({2});
    stack->set_label(0, "X");
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    EXPECT_EQ(stack->get_meta_data_string(),
              metadata("size=\"1\">\n            <item idx=\"0\" type=\"char\" size=\"1 1\">X</item>\n",
                       "isarr=\"1\" userbits=\"0\" type=\"double\" size=\"1\">0",
                       "isarr=\"1\" userbits=\"0\" type=\"double\" size=\"1 1\">1"));
    const ByteMap map = closed();
    const std::uint64_t length = map.u32(footer_pos(2) + footer_metadata_length_at);
    EXPECT_EQ(map.text(footer_pos(2) + stack_footer_size + 5, length), stack->get_meta_data_string());
}

TEST_F(StackFooterBytes, APositionThatWasSetIsTheOneOnDisk)
{
    const Stack stack = add({2});
    VStackPosition position;
    position.create(stack.get(), 2);
    position.labels[0] = VPropstring(L"a");
    position.labels[1] = VPropstring(L"b");
    position.origin[1] = -2.5;
    stack->set_stack_position(position);
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    EXPECT_EQ(stack->get_meta_data_string(),
              metadata("size=\"2\">\n            <item idx=\"0\" type=\"char\" size=\"1 1\">a</item>\n"
                       "            <item idx=\"1\" type=\"char\" size=\"1 1\">b</item>\n",
                       "userbits=\"0\" type=\"double\" size=\"2\">0 -2.5",
                       "userbits=\"0\" type=\"double\" size=\"2 1\">1 0"));
}

TEST_F(StackFooterBytes, ColumnsThatAGetterFilledAreWritten)
{
    const Stack stack = add({4});
    stack->set_len(0, 4.0);
    stack->get_col_positions(0);
    stack->write(vela_dt_uint8, "abcd", nullptr, 4);
    const ByteMap map = closed();
    EXPECT_EQ(map.u32(footer_pos(4) + footer_col_positions_at), 1u);
    for (std::uint64_t i = 0; i < 4; ++i)
        EXPECT_EQ(map.f64(footer_pos(4) + stack_footer_size + 4 + 8 * i), -1.5 + static_cast<double>(i));
}

TEST_F(StackFooterBytes, ColumnsFollowAnAxisThatHasGrown)
{
    const Stack stack = add({1, 0});
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    stack->get_col_positions(1);
    stack->write(vela_dt_uint8, "cd", nullptr, 2);
    stack->commit(vela_dt_none);
    const ByteMap map = closed();
    EXPECT_EQ(map.u32(footer_pos(4) + footer_col_positions_at + 4), 1u);
    for (std::uint64_t i = 0; i < 4; ++i)
        EXPECT_EQ(map.f64(footer_pos(4) + stack_footer_size + 8 + 8 * i), -0.375 + 0.25 * static_cast<double>(i));
    EXPECT_EQ(map.text(footer_pos(4) + stack_footer_size + 8 + 32, 5), "<root");
}

TEST_F(StackFooterBytes, LabelsOfColumnsAreAsManyAsTheColumns)
{
    // A `create` that failed has left sizes for which columns could be labelled.
    for (const std::uint64_t size : {3u, 1u})
    {
        const Stack stack = file->add_stack(false);
        EXPECT_THROW(stack->create({2, 1, 1, 1, 1, 1}, vela_dt_uint8), std::invalid_argument);
        stack->set_col_labels(0, {"a", "b"});
        stack->set_col_positions(0, {5.0, 6.0});
        stack->create({size}, vela_dt_uint8);
        stack->write(vela_dt_uint8, "abc", nullptr, size);
    }
    VBFFile& opened = reopen();
    EXPECT_EQ(opened->get_stack(0)->get_col_labels(0), (std::vector<std::string>{"a", "b", ""}));
    EXPECT_EQ(opened->get_stack(1)->get_col_labels(0), (std::vector<std::string>{"a"}));
    const std::vector<double> thirds = opened->get_stack(0)->get_col_positions(0);
    ASSERT_EQ(thirds.size(), 3u);
    EXPECT_NEAR(thirds[0], -1.0 / 3, 1e-15);
    EXPECT_NEAR(thirds[1], 0.0, 1e-15);
    EXPECT_NEAR(thirds[2], 1.0 / 3, 1e-15);
    EXPECT_EQ(opened->get_stack(1)->get_col_positions(0), (std::vector<double>{0.0}));
}

TEST_F(StackFooterBytes, FlushPointsLieInTheSegment)
{
    const Stack stack = add({0x10000, 3});
    stack->set_compression(1, 6);
    const Bytes samples = counted_bytes(3 * 0x10000);
    stack->write(vela_dt_uint8, samples.data(), nullptr, samples.size());
    const ByteMap map = closed();
    const std::uint64_t length = map.u64(first_record_pos + stack_data_length_at);
    const std::uint64_t footer = footer_pos(length);
    EXPECT_EQ(map.u64(footer + footer_flush_block_size_at), 0x10000u);
    ASSERT_EQ(map.u64(footer + footer_flush_point_count_at), 3u);
    const std::uint64_t points = footer + stack_footer_size + 8 + map.u32(footer + footer_metadata_length_at);
    EXPECT_GT(map.u64(points), 0u);
    EXPECT_LT(map.u64(points), map.u64(points + 8));
    EXPECT_LT(map.u64(points + 8), map.u64(points + 16));
    EXPECT_LT(map.u64(points + 16), length);
}

TEST_F(StackFooterBytes, AStackWithoutCompressionKeepsTheBlockSizeAndHasNoPoints)
{
    const Stack stack = add({0x10000});
    stack->set_flush_block_size(1234);
    const Bytes samples = counted_bytes(0x10000);
    stack->write(vela_dt_uint8, samples.data(), nullptr, samples.size());
    const ByteMap map = closed();
    EXPECT_EQ(map.u64(footer_pos(0x10000) + footer_flush_block_size_at), 1234u);
    EXPECT_EQ(map.u64(footer_pos(0x10000) + footer_flush_point_count_at), 0u);
}

TEST_F(StackFooterBytes, AVariableStackHasNoFlushPoints)
{
    const Stack stack = add({0x10000, 0});
    stack->set_compression(1, 1);
    stack->set_flush_block_size(1000);
    const Bytes samples = counted_bytes(2 * 0x10000);
    stack->write(vela_dt_uint8, samples.data(), nullptr, samples.size());
    stack->commit(vela_dt_none);
    const ByteMap map = closed();
    const std::uint64_t footer = footer_pos(map.u64(first_record_pos + stack_data_length_at));
    EXPECT_EQ(map.u64(footer + footer_flush_block_size_at), 0u);
    EXPECT_EQ(map.u64(footer + footer_flush_point_count_at), 0u);
}

}
