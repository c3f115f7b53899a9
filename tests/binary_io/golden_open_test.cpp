// The good files of tests/data: what an open file says of itself and of each stack.
#include <VelaBase/vela_dt.h>
#include <VelaBinaryIO/VBFHeaders.h>

#include "binary_io/manifest.h"
#include "binary_io/opened_file.h"
#include "binary_io/outcome.h"
#include "support/expect_vela_error.h"

#include <gmock/gmock.h>

using namespace vela_test;

namespace {

class GoldenOpenTest : public testing::TestWithParam<DataFile>
{
protected:
    const nlohmann::json& stacks() const { return GetParam().entry.at("stacks"); }
    bool opens() const { return GetParam().entry.at("open").at("result") == "ok"; }

    /// Calls `check(stack, what the manifest says)` for each stack of a file that opens.
    template <class Check>
    void for_each_stack(Check check) const
    {
        if (!opens())
            return;
        OpenedFile file(GetParam());
        ASSERT_EQ(file->number_of_stacks(), stacks().size());
        for (std::size_t i = 0; i < stacks().size(); ++i)
        {
            SCOPED_TRACE(testing::Message() << "stack " << i);
            check(*file->get_stack(i), stacks()[i]);
        }
    }
};

std::vector<std::string> texts_of(const nlohmann::json& values)
{
    std::vector<std::string> texts;
    for (const nlohmann::json& value : values)
        texts.push_back(text_of(value));
    return texts;
}

std::vector<double> numbers_of(const nlohmann::json& values)
{
    std::vector<double> numbers;
    for (const nlohmann::json& value : values)
        numbers.push_back(number_of(value));
    return numbers;
}

void expect_unit(const si::value& unit, const nlohmann::json& expected)
{
    for (std::size_t i = 0; i < si::value::dimension_count; ++i)
    {
        EXPECT_EQ(unit.exponent(i).numerator(), expected.at("exponents")[i][0].get<int>()) << i;
        EXPECT_EQ(unit.exponent(i).denominator(), expected.at("exponents")[i][1].get<int>()) << i;
    }
    EXPECT_THAT(unit.value_in_baseunits(), testing::NanSensitiveDoubleEq(number_of(expected.at("number"))));
}

void expect_numbers(const std::vector<double>& numbers, const nlohmann::json& expected)
{
    EXPECT_THAT(numbers, testing::Pointwise(testing::NanSensitiveDoubleEq(), numbers_of(expected)));
}

} // namespace

TEST_P(GoldenOpenTest, HasTheOutcomeOfItsManifest)
{
    EXPECT_TRUE(fits(outcome_of([] { OpenedFile file(GetParam()); }), GetParam().entry.at("open")));
}

TEST_P(GoldenOpenTest, TheDescriptionOfTheFile)
{
    if (!opens())
        return;
    OpenedFile file(GetParam());
    std::string description = "something else";
    file->get_file_desc(description);
    EXPECT_EQ(description, text_of(GetParam().entry.at("header").at("description")));
}

TEST_P(GoldenOpenTest, StacksAreCompleteAndLocked)
{
    for_each_stack(
        [](VBFStackInterface& stack, const nlohmann::json&)
        {
            EXPECT_EQ(stack.get_state(), 0);
            EXPECT_VELA_ERROR(stack.set_name(""), -1, "Cannot set values. Object locked!");
            EXPECT_VELA_ERROR(stack.create({}, vela_dt_uint8), -1, "Cannot set data layout!");
        });
}

TEST_P(GoldenOpenTest, TypeSizesLengthsAndOffsets)
{
    for_each_stack(
        [](const VBFStackInterface& stack, const nlohmann::json& expected)
        {
            EXPECT_EQ(stack.get_dt(), static_cast<vela_dt>(low_bits_of(expected.at("data_type"))));
            EXPECT_EQ(stack.get_sizes(), expected.at("sizes").get<std::vector<std::uint64_t>>());
            EXPECT_EQ(stack.get_size(vela_dt_none), expected.at("uncompressed_size").get<std::uint64_t>());
            expect_numbers(stack.get_lengths(), expected.at("lengths"));
            expect_numbers(stack.get_offsets(), expected.at("offsets"));
        });
}

TEST_P(GoldenOpenTest, NamesAndLabels)
{
    for_each_stack(
        [](const VBFStackInterface& stack, const nlohmann::json& expected)
        {
            EXPECT_EQ(stack.get_name(), text_of(expected.at("name")));
            EXPECT_EQ(stack.get_description(), text_of(expected.at("description")));
            EXPECT_EQ(stack.get_labels(), texts_of(expected.at("labels")));
        });
}

TEST_P(GoldenOpenTest, Units)
{
    for_each_stack(
        [](const VBFStackInterface& stack, const nlohmann::json& expected)
        {
            expect_unit(stack.get_data_units(), expected.at("data_units"));
            for (std::size_t axis = 0; axis < stack.get_rank(); ++axis)
                expect_unit(stack.get_units(axis), expected.at("get_units").at(axis));
        });
}

TEST_P(GoldenOpenTest, Columns)
{
    for_each_stack(
        [](const VBFStackInterface& stack, const nlohmann::json& expected)
        {
            for (std::size_t axis = 0; axis < stack.get_rank(); ++axis)
            {
                SCOPED_TRACE(axis);
                const std::string key = std::to_string(axis);
                const bool has_positions = expected.at("col_positions").contains(key);
                EXPECT_EQ(stack.is_equidistant(axis), !has_positions);
                if (has_positions)
                    expect_numbers(stack.get_col_positions(axis), expected.at("col_positions").at(key));
                EXPECT_EQ(stack.get_col_labels(axis),
                          texts_of(expected.at("col_labels").value(key, nlohmann::json::array())));
            }
        });
}

TEST_P(GoldenOpenTest, MetadataAndPosition)
{
    for_each_stack(
        [](const VBFStackInterface& stack, const nlohmann::json& expected)
        {
            const nlohmann::json& text = expected.at("metadata_text");
            EXPECT_EQ(stack.get_meta_data_string(), text.is_null() ? "" : text_of(text));
            const VStackPosition& position = stack.get_stack_position();
            const nlohmann::json& wanted = expected.at("position");
            ASSERT_EQ(position.labels.count(), wanted.at("axes").size());
            for (std::size_t i = 0; i < position.labels.count(); ++i)
                EXPECT_EQ(position.labels[i].to(VPropstring::enc_utf8), text_of(wanted.at("axes")[i]));
            expect_numbers({position.origin.begin(), position.origin.end()}, wanted.at("origin"));
            EXPECT_EQ(position.matrix.get_size(false),
                      wanted.at("projection").at("size").get<std::vector<std::size_t>>());
            expect_numbers({position.matrix.begin(), position.matrix.end()}, wanted.at("projection").at("values"));
        });
}

TEST_P(GoldenOpenTest, Compression)
{
    for_each_stack(
        [](const VBFStackInterface& stack, const nlohmann::json& expected)
        {
            int type = -7;
            int level = -7;
            stack.get_compression(type, level);
            EXPECT_EQ(type, static_cast<int>(low_bits_of(expected.at("compression_type"))));
            EXPECT_EQ(level, static_cast<int>(low_bits_of(expected.at("compression_level"))));
        });
}

TEST_P(GoldenOpenTest, Tags)
{
    for_each_stack(
        [](const VBFStackInterface& stack, const nlohmann::json& expected)
        {
            VBFDictionary tags;
            for (const nlohmann::json& pair : expected.at("tags"))
                tags[text_of(pair.at(0))] = text_of(pair.at(1));
            EXPECT_EQ(stack.get_tag_keys().size(), tags.size());
            for (const auto& [key, text] : tags)
                EXPECT_EQ(stack.get_tag(key), text) << key;
        });
}

TEST_P(GoldenOpenTest, SeekingToTheEndOfAStack)
{
    if (!opens())
        return;
    OpenedFile file(GetParam());
    for (std::size_t i = 0; i < stacks().size(); ++i)
        EXPECT_EQ(file->seek_to_end_of_stack(i), stacks()[i].at("stack_end_pos").get<std::uint64_t>()) << i;
}

INSTANTIATE_TEST_SUITE_P(Good, GoldenOpenTest, testing::ValuesIn(good_files()),
                         [](const auto& instance) { return test_name(instance.param); });
