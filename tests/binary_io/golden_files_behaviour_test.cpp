// The good files of tests/data: all that their manifest says and a caller can see, through a handle inside a stream.
#include <VelaBinaryIO/VBFFile.h>
#include <VelaStacks/VStack.h>

#include "binary_io/manifest.h"
#include "binary_io/outcome.h"
#include "binary_io/property_of_manifest.h"
#include "binary_io/vbf_reading_test.h"
#include "support/sha256.h"

#include <algorithm>

using namespace vela_test;

namespace {

using nlohmann::json;

std::vector<std::string> texts_of(const json& values)
{
    std::vector<std::string> texts;
    for (const json& value : values)
        texts.push_back(text_of(value));
    return texts;
}

void expect_numbers(const std::vector<double>& got, const json& expected)
{
    ASSERT_EQ(got.size(), expected.size());
    for (std::size_t i = 0; i < got.size(); ++i)
        EXPECT_TRUE(same_number(got[i], number_of(expected[i]))) << i << ": " << got[i] << ", not " << expected[i];
}

void expect_unit(const si::value& unit, const json& expected)
{
    const json& exponents = expected.at("exponents");
    for (std::size_t i = 0; i < si::value::dimension_count; ++i)
    {
        EXPECT_EQ(unit.exponent(i).numerator(), exponents.at(i).at(0).get<int>()) << i;
        EXPECT_EQ(unit.exponent(i).denominator(), exponents.at(i).at(1).get<int>()) << i;
    }
    EXPECT_TRUE(same_number(unit.value_in_baseunits(), number_of(expected.at("number"))));
}

void expect_header(const VBFStackInterface& stack, const json& expected)
{
    EXPECT_EQ(stack.get_rank(), expected.at("rank").get<std::uint64_t>());
    EXPECT_EQ(stack.get_sizes(), expected.at("sizes").get<std::vector<std::uint64_t>>());
    EXPECT_EQ(stack.get_number_of_elements(), expected.at("number_of_elements").get<std::uint64_t>());
    EXPECT_EQ(stack.get_size(0), expected.at("uncompressed_size").get<std::uint64_t>());
    EXPECT_EQ(static_cast<std::uint32_t>(stack.get_dt()), low_bits_of(expected.at("data_type")));
    EXPECT_EQ(vela_dt_get_name(stack.get_dt()), expected.at("data_type_name").get<std::string>());
    EXPECT_EQ(vela_dt_get_size(static_cast<std::uint32_t>(stack.get_dt())),
              expected.at("sample_size").get<std::uint64_t>());
    EXPECT_EQ(stack.get_name(), text_of(expected.at("name")));
    EXPECT_EQ(stack.get_description(), text_of(expected.at("description")));
    EXPECT_EQ(stack.get_state(), 0);
    expect_numbers(stack.get_lengths(), expected.at("lengths"));
    expect_numbers(stack.get_offsets(), expected.at("offsets"));
    int type = 0;
    int level = 0;
    stack.get_compression(type, level);
    EXPECT_EQ(static_cast<std::uint32_t>(type), low_bits_of(expected.at("compression_type")));
    EXPECT_EQ(static_cast<std::uint32_t>(level), low_bits_of(expected.at("compression_level")));
}

void expect_axes(const VBFStackInterface& stack, const json& expected)
{
    EXPECT_EQ(stack.get_labels(), texts_of(expected.at("labels")));
    expect_unit(stack.get_data_units(), expected.at("data_units"));
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
    {
        SCOPED_TRACE(testing::Message() << "axis " << axis);
        const std::string key = std::to_string(axis);
        expect_unit(stack.get_units(axis), expected.at("get_units").at(axis));
        EXPECT_EQ(stack.is_equidistant(axis), !expected.at("col_positions").contains(key));
        if (expected.at("col_positions").contains(key))
            expect_numbers(stack.get_col_positions(axis), expected.at("col_positions").at(key));
        EXPECT_EQ(stack.get_col_labels(axis), expected.at("col_labels").contains(key)
                                                  ? texts_of(expected.at("col_labels").at(key))
                                                  : std::vector<std::string>());
    }
}

void expect_position(const VBFStackInterface& stack, const json& expected)
{
    const json& text = expected.at("metadata_text");
    EXPECT_EQ(stack.get_meta_data_string(), text.is_null() ? std::string() : text_of(text));
    const json& place = expected.at("position");
    const VStackPosition& position = stack.get_stack_position();
    std::vector<std::string> labels;
    for (const VPropstring& label : position.labels)
        labels.push_back(label.to(VPropstring::enc_utf8));
    EXPECT_EQ(labels, texts_of(place.at("axes")));
    expect_numbers(position.origin, place.at("origin"));
    expect_numbers(position.matrix, place.at("projection").at("values"));
    EXPECT_EQ(position.matrix.get_size(true), place.at("projection").at("size").get<std::vector<std::size_t>>());
}

/// A single number of this type, read as such.
template <class T>
void expect_typed_number(const VBFStackInterface& stack, const std::string& key, const json& expected)
{
    const auto expect = [&](auto value)
    {
        EXPECT_TRUE(stack.get_tag(key, VProp::type_id<decltype(value)>, &value));
        EXPECT_TRUE(is_element(value, expected.at("value"))) << expected;
    };
    if (expected.at("type") == vela_dt_get_name(VProp::type_id<T>))
        expect(T());
    if constexpr (!std::is_same_v<T, bool>)
        if (expected.at("type") == vela_dt_get_name(VProp::type_id<std::complex<T>>))
            expect(std::complex<T>());
}

void expect_tags(const VBFStackInterface& stack, const json& expected)
{
    std::vector<std::string> keys;
    for (const json& tag : expected.at("tags"))
    {
        keys.push_back(text_of(tag.at(0)));
        EXPECT_EQ(stack.get_tag(keys.back()), text_of(tag.at(1))) << keys.back();
    }
    EXPECT_EQ(stack.get_tag_keys(), keys);
    for (const auto& [key, typed] : expected.at("tags_typed").items())
    {
        SCOPED_TRACE(key);
        VProp prop;
        EXPECT_TRUE(stack.get_tag(key, vela_dt_cell, &prop));
        EXPECT_TRUE(is_property(prop, typed)) << typed;
        if (!typed.contains("value"))
            continue;
        expect_typed_number<bool>(stack, key, typed);
        expect_typed_number<std::uint8_t>(stack, key, typed);
        expect_typed_number<char>(stack, key, typed);
        expect_typed_number<std::uint16_t>(stack, key, typed);
        expect_typed_number<std::int16_t>(stack, key, typed);
        expect_typed_number<std::uint32_t>(stack, key, typed);
        expect_typed_number<std::int32_t>(stack, key, typed);
        expect_typed_number<std::uint64_t>(stack, key, typed);
        expect_typed_number<std::int64_t>(stack, key, typed);
        expect_typed_number<float>(stack, key, typed);
        expect_typed_number<double>(stack, key, typed);
    }
}

/// Runs in an order that goes forth and back.
void expect_probes(VBFStackInterface& stack, const json& expected)
{
    const json& probes = expected.at("probes");
    for (std::size_t i = 0; i < 2 * probes.size(); ++i)
    {
        const json& probe = probes[i % 2 == 0 ? probes.size() - 1 - i / 2 : i / 2];
        const Bytes bytes = read_at(stack, stack.get_dt(), probe.at("count").get<std::uint64_t>(),
                                    probe.at("first").get<std::uint64_t>());
        const std::string head = probe.at("head").get<std::string>();
        EXPECT_EQ(sha256(bytes), probe.at("sha256").get<std::string>()) << probe;
        EXPECT_EQ(hexadecimal(bytes.data(), std::min(bytes.size(), head.size() / 2)), head) << probe;
    }
}

void expect_samples(VBFFile& file, std::uint64_t index, const json& expected)
{
    const StackPointer stack = file->get_stack(index);
    if (expected.at("empty").get<bool>())
    {
        // It may declare more than memory holds.
        if (stack->get_size(0) <= 1 << 20)
        {
            EXPECT_EQ(read_whole(*stack, stack->get_dt()), Bytes(stack->get_size(0), 0));
        }
        return;
    }
    const Bytes samples = read_whole(*stack, stack->get_dt());
    EXPECT_EQ(sha256(samples), expected.at("samples_sha256").get<std::string>());
    expect_probes(*stack, expected);
    const boost::shared_ptr<VStackInterface> memory = file->read_stack(index, 0);
    ASSERT_EQ(memory->get_size(0), samples.size());
    EXPECT_TRUE(std::equal(samples.begin(), samples.end(), memory->get_data_ptr()));
    EXPECT_EQ(memory->get_sizes(), stack->get_sizes());
    EXPECT_EQ(memory->get_dt(), stack->get_dt());
    expect_numbers(memory->get_lengths(), expected.at("lengths"));
    expect_numbers(memory->get_offsets(), expected.at("offsets"));
}

class GoldenFiles : public testing::TestWithParam<DataFile>
{
protected:
    const json& entry() const { return GetParam().entry; }
    bool opens() const { return entry().at("open").at("result") == "ok"; }
};

class FlushedGoldenFiles : public FolderTest, public testing::WithParamInterface<DataFile>
{
};

/// Those that have flush positions.
std::vector<DataFile> flushed_files()
{
    std::vector<DataFile> files;
    for (const DataFile& file : good_files())
        for (const json& stack : file.entry.at("stacks"))
            if (!stack.at("flush_positions").empty())
            {
                files.push_back(file);
                break;
            }
    return files;
}

/// Behind each flush point the samples are right although the begin of the data is damaged.
void expect_flush_points(VBFFile& good, VBFFile& damaged, std::uint64_t index, const json& expected)
{
    const std::uint64_t sample_size = expected.at("sample_size").get<std::uint64_t>();
    const std::uint64_t block = expected.at("flush_block_size").get<std::uint64_t>();
    const std::uint64_t count = expected.at("number_of_elements").get<std::uint64_t>();
    const vela_dt type = good->get_stack(index)->get_dt();
    const Bytes samples = read_whole(*good->get_stack(index), type);
    for (std::size_t k = 0; k < expected.at("flush_positions").size(); ++k)
    {
        const std::uint64_t first = ((k + 1) * block + sample_size - 1) / sample_size;
        if (first >= count)
            break;
        const std::uint64_t run = std::min<std::uint64_t>(100, count - first);
        ASSERT_EQ(read_at(*damaged->get_stack(index), type, run, first),
                  slice(samples, first * sample_size, (first + run) * sample_size))
            << k;
    }
    // From the first to the last sample that begins in the first block there is no other way than through it.
    for (const std::uint64_t first : {std::uint64_t(0), std::min(count, block / sample_size) - 1})
    {
        Bytes bytes(sample_size, stale);
        std::uint64_t pos = first;
        EXPECT_THROW(damaged->get_stack(index)->read(type, bytes.data(), nullptr, 1, pos), VelaError) << first;
    }
}

} // namespace

TEST_P(GoldenFiles, OpenOrFailAsTheirManifestSays)
{
    AttachedFile attached(GetParam().path(), GetParam().start());
    EXPECT_TRUE(fits(outcome_of([&] { attached.attach(); }), entry().at("open")));
    if (!opens())
        return;
    const json& header = entry().at("header");
    EXPECT_EQ(attached.file->number_of_stacks(), entry().at("stacks").size());
    std::string description;
    attached.file->get_file_desc(description);
    EXPECT_EQ(description, text_of(header.at("description")));
    const bool has_dictionary = header.at("format_version").get<std::uint32_t>() > 1;
    EXPECT_EQ(attached.position(), GetParam().start() + 26 + description.size() + (has_dictionary ? 8 : 0));
    for (std::size_t i = 0; i < entry().at("stacks").size(); ++i)
        EXPECT_EQ(attached.file->seek_to_end_of_stack(i),
                  entry().at("stacks")[i].at("stack_end_pos").get<std::uint64_t>());
    attached.file->detach();
    if (has_dictionary)
    {
        EXPECT_EQ(attached.position(), header.at("meta_end_pos").get<std::uint64_t>());
    }
}

TEST_P(GoldenFiles, EachStackIsAsTheirManifestSays)
{
    if (!opens())
        return;
    AttachedFile attached(GetParam().path(), GetParam().start());
    attached.attach();
    for (std::size_t i = 0; i < entry().at("stacks").size(); ++i)
    {
        SCOPED_TRACE(testing::Message() << "stack " << i);
        const json& expected = entry().at("stacks")[i];
        const StackPointer stack = attached.file->get_stack(i);
        expect_header(*stack, expected);
        expect_axes(*stack, expected);
        expect_position(*stack, expected);
        expect_tags(*stack, expected);
        expect_samples(attached.file, i, expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Good, GoldenFiles, testing::ValuesIn(good_files()),
                         [](const auto& instance) { return test_name(instance.param); });

TEST_P(FlushedGoldenFiles, EachFlushPointIsAPlaceToStartFrom)
{
    Bytes bytes = get_bytes(GetParam().path());
    const json& stacks = GetParam().entry.at("stacks");
    put_bytes(path("good.vbf"), bytes);
    // The first deflate block gets a type that does not exist.
    for (const json& stack : stacks)
        if (!stack.at("flush_positions").empty())
            bytes.at(stack.at("data_pos").get<std::size_t>() + 2) = 0xff;
    put_bytes(path("damaged.vbf"), bytes);
    AttachedFile good(path("good.vbf"), GetParam().start());
    AttachedFile damaged(path("damaged.vbf"), GetParam().start());
    good.attach();
    damaged.attach();
    for (std::size_t i = 0; i < stacks.size(); ++i)
    {
        SCOPED_TRACE(testing::Message() << "stack " << i);
        if (!stacks[i].at("flush_positions").empty())
            expect_flush_points(good.file, damaged.file, i, stacks[i]);
    }
}

INSTANTIATE_TEST_SUITE_P(Good, FlushedGoldenFiles, testing::ValuesIn(flushed_files()),
                         [](const auto& instance) { return test_name(instance.param); });

class GoldenDblFiles : public testing::TestWithParam<DataFile>
{
};

TEST_P(GoldenDblFiles, AreOneStackEach)
{
    const json& entry = GetParam().entry;
    VBFFile file(file_name(GetParam().path()), VFile::read_mode);
    ASSERT_EQ(file->number_of_stacks(), 1u);
    const StackPointer stack = file->get_stack(0);
    EXPECT_EQ(stack->get_rank(), entry.at("rank").get<std::uint64_t>());
    EXPECT_EQ(stack->get_sizes(), entry.at("sizes").get<std::vector<std::uint64_t>>());
    EXPECT_EQ(stack->get_dt(), entry.at("data_type").get<vela_dt>());
    EXPECT_EQ(stack->get_dt(), entry.at("single").get<bool>() ? vela_dt_single : vela_dt_double);
    expect_numbers(stack->get_lengths(), entry.at("stack_lengths"));
    const Bytes samples = read_whole(*stack, stack->get_dt());
    EXPECT_EQ(samples.size(), entry.at("data_length").get<std::size_t>());
    EXPECT_EQ(sha256(samples), entry.at("samples_sha256").get<std::string>());
    const boost::shared_ptr<VStackInterface> memory = file->read_stack(0, 0);
    EXPECT_EQ(Bytes(memory->get_data_ptr(), memory->get_data_ptr() + memory->get_size(0)), samples);
}

INSTANTIATE_TEST_SUITE_P(Good, GoldenDblFiles, testing::ValuesIn(data_files("dbl")),
                         [](const auto& instance) { return test_name(instance.param); });
