// Files that another implementation wrote, written again from what stands in them.
#include "binary_io/record_model.h"
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

#include <bit>

using namespace vela_test;

namespace {

/// A description that takes lengths and offsets as they are.
class PlainInfo : public VStackInfoImp
{
public:
    using VStackInfoImp::store_lengths;
    using VStackInfoImp::store_offsets;
};

si::value unit_from(const WrittenUnit& unit)
{
    std::array<si::fraction, 9> exponents;
    for (std::size_t i = 0; i < exponents.size(); ++i)
        exponents[i] = si::fraction::unreduced(unit.exponents[i].first, unit.exponents[i].second);
    return si::value(unit.number, exponents);
}

VStackPosition position_from(const std::string& metadata)
{
    VProp tree;
    vela_import_xml(metadata, tree, 0);
    VStackPosition position;
    position.labels = tree["global_pos.axes"].get<VProparray<VPropstring>>();
    position.origin = tree["global_pos.offset"].get<VProparray<double>>();
    position.matrix = tree["global_pos.projection"].get<VProparray<double>>();
    return position;
}

std::string unescaped(std::string text)
{
    const std::vector<std::pair<std::string, std::string>> entities = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&apos;", "'"}, {"&quot;", "\""}, {"&amp;", "&"}};
    for (const auto& [entity, character] : entities)
        for (std::size_t at = text.find(entity); at != std::string::npos; at = text.find(entity, at + 1))
            text.replace(at, entity.size(), character);
    return text;
}

/// The value of an attribute; false where it is missing.
bool attribute(const std::string& document, const std::string& name, std::string& value)
{
    const std::string start = " " + name + "=\"";
    const std::size_t at = document.find(start);
    if (at == std::string::npos)
        return false;
    const std::size_t begin = at + start.size();
    value = unescaped(document.substr(begin, document.find('"', begin) - begin));
    return true;
}

class GoldenWriting : public VbfWritingTest, public testing::WithParamInterface<const char*>
{
protected:
    void write_again(const WrittenStack& old)
    {
        PlainInfo info;
        info.create(Sizes(old.sizes.begin(), old.sizes.end()), old.data_type);
        info.store_lengths(old.lengths);
        info.store_offsets(old.offsets);
        info.set_labels(old.labels);
        info.set_name(old.name);
        info.set_description(old.description);
        for (const auto& [axis, labels] : old.col_labels)
            info.set_col_labels(axis, labels);
        for (const auto& [axis, positions] : old.col_positions)
            info.set_col_positions(axis, positions);
        info.set_stack_position(position_from(old.metadata));

        const Stack stack = file->add_stack(old.data_present == 0);
        stack->create(&info, 0);
        for (std::size_t axis = 0; axis < old.rank(); ++axis)
            stack->set_units(axis, unit_from(old.dimension_units[axis]));
        stack->set_data_units(unit_from(old.data_units));
        stack->set_compression(old.compression_type, old.compression_level);
        stack->set_flush_block_size(old.flush_block_size);
        for (const auto& [key, value] : old.tags)
            stack->set_tag(key, value);
        if (old.data_present == 0)
            stack->commit(0);
        else
            stack->write(old.data_type, old.samples().data(), nullptr, all_samples);
        EXPECT_EQ(stack->get_state(), 0);
    }

    /// What `stack` says, at a fixed place and with its samples as they are.
    static Bytes comparable(const WrittenStack& stack)
    {
        RecordModel model(Sizes(stack.sizes.begin(), stack.sizes.end()));
        model.lengths = stack.lengths;
        model.offsets = stack.offsets;
        model.data_type = stack.data_type;
        model.compression_type = stack.compression_type;
        model.compression_level = stack.compression_level;
        model.empty = stack.data_present == 0;
        model.name = stack.name;
        model.description = stack.description;
        model.data = stack.samples();
        model.data_units = stack.data_units;
        model.dimension_units = stack.dimension_units;
        model.labels = stack.labels;
        model.col_positions = stack.col_positions;
        model.col_labels = stack.col_labels;
        model.metadata = stack.metadata;
        model.flush_block_size = stack.flush_block_size;
        model.flush_positions.resize(stack.flush_positions.size());
        model.tags = {stack.tags.begin(), stack.tags.end()};
        return record_bytes(model, 0, 0);
    }
};

TEST_P(GoldenWriting, GivesTheSameFile)
{
    Bytes golden = get_bytes(std::string(VELA_TEST_DATA) + "/golden/" + GetParam());
    const WrittenFile old = read_written(golden);
    ASSERT_EQ(complaints_about(old), "");
    begin_file();
    file->set_file_desc(old.description);
    std::string value;
    if (attribute(old.dictionary.at(0).second, "Creator", value))
        file->set_creator(value);
    if (attribute(old.dictionary.at(0).second, "UUID", value))
        file->set_uuid(value);
    for (const WrittenStack& stack : old.stacks)
        write_again(stack);

    const WrittenFile again = close_file();
    ASSERT_EQ(again.stacks.size(), old.stacks.size());
    bool is_compressed = false;
    for (std::size_t i = 0; i < old.stacks.size(); ++i)
    {
        EXPECT_EQ(comparable(again.stacks[i]), comparable(old.stacks[i])) << old.stacks[i].name;
        is_compressed = is_compressed || (!old.stacks[i].data.empty() && old.stacks[i].is_compressed());
    }
    EXPECT_EQ(again.dictionary, old.dictionary);
    EXPECT_EQ(again.description, old.description);
    if (is_compressed)
        return; // Every version of zlib may give another stream.
    Bytes now = content();
    for (std::size_t i = 0; i < old.stacks.size(); ++i)
    {
        clear_undefined(now, again.stacks[i]);
        clear_undefined(golden, old.stacks[i]);
    }
    EXPECT_EQ(now, golden);
}

std::string test_name(const testing::TestParamInfo<const char*>& info)
{
    const std::string file_name = info.param;
    return file_name.substr(0, file_name.find('.'));
}

INSTANTIATE_TEST_SUITE_P(Files, GoldenWriting,
                         testing::Values("chain0.vbf", "chain0_text.vbf", "chain1.vbf", "chain3.vbf", "columns.vbf",
                                         "creator_empty.vbf", "creator_only.vbf", "empty.vbf", "flush_choice.vbf",
                                         "flush_custom.vbf", "flush_edges.vbf", "lengths.vbf", "names.vbf",
                                         "positions.vbf", "rank15_zero.vbf", "rank4_centred.vbf", "rank4_late.vbf",
                                         "rank4_one_step.vbf", "rank5.vbf", "rank6_zero.vbf", "ranks.vbf", "tags.vbf",
                                         "types.vbf", "types_plain.vbf", "units.vbf", "uuid_only.vbf", "variable.vbf",
                                         "variable_rank15.vbf"),
                         test_name);

} // namespace
