// What is written comes back.
#include <VelaBase/vela_dt.h>
#include <VelaBinaryIO/VBFFile.h>
#include <VelaStacks/VStack.h>

#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <cstring>

using namespace vela_test;

namespace {

class RoundTripTest : public FolderTest
{
protected:
    VPropstring name() const { return file_name(path("test.vbf")); }

    VBFFile written() const { return {name(), VFile::write_mode}; }
    VBFFile read() const { return {name(), VFile::read_mode}; }
};

const std::vector<vela_dt> types = {
    vela_dt_int8,
    vela_dt_uint8,
    vela_dt_int16,
    vela_dt_uint16,
    vela_dt_int32,
    vela_dt_uint32,
    vela_dt_single,
    vela_dt_double,
    vela_dt_complex | vela_dt_single,
    vela_dt_complex | vela_dt_double,
};

Bytes samples_of(VBFFile& file, std::uint64_t index)
{
    const auto stack = file->get_stack(index);
    Bytes samples(stack->get_size(vela_dt_none), 0xcd);
    stack->read(stack->get_dt(), samples.data(), nullptr);
    return samples;
}

} // namespace

TEST_F(RoundTripTest, EachTypeWithAndWithoutCompression)
{
    const std::vector<std::uint64_t> sizes = {61, 47, 3};
    const std::uint64_t count = 61 * 47 * 3;
    VBFFile file = written();
    for (const vela_dt type : types)
        for (const int compression : {0, 1})
        {
            file->set_default_compression(compression, 6);
            const auto stack = file->add_stack(false);
            stack->create(sizes, type);
            stack->write(type, sparse_bytes(count * vela_dt_get_size(static_cast<std::uint32_t>(type))).data(), nullptr,
                         VBFStackInterface::all_samples);
        }
    file->close();

    VBFFile again = read();
    ASSERT_EQ(again->number_of_stacks(), 2 * types.size());
    for (std::uint64_t i = 0; i < again->number_of_stacks(); ++i)
    {
        EXPECT_EQ(again->get_stack(i)->get_dt(), types[i / 2]);
        const Bytes samples = samples_of(again, i);
        EXPECT_TRUE(samples == sparse_bytes(samples.size())) << i;
    }
}

TEST_F(RoundTripTest, TheWholeDescription)
{
    VBFFile file = written();
    file->set_file_desc("a file");
    const auto stack = file->add_stack(false);
    stack->create({4, 3}, vela_dt_uint16);
    stack->set_name("name");
    stack->set_description("description");
    stack->set_len({8.0, 6.0});
    stack->set_off({0.5, -0.5});
    stack->set_labels({"X", "rows"});
    stack->set_units(1, si::value("s"));
    stack->set_data_units(si::value("mV"));
    stack->set_col_positions(0, {0.0, 1.0, 2.5, 7.0});
    stack->set_col_labels(1, {"a", "", "c"});
    stack->set_tag("key", "text");
    VStackPosition position;
    position.create(stack.get(), 3);
    position.origin[2] = 12.5;
    stack->set_stack_position(position);
    stack->write(vela_dt_uint16, Bytes(24, 7).data(), nullptr, VBFStackInterface::all_samples);
    file->close();

    VBFFile again = read();
    std::string text;
    again->get_file_desc(text);
    EXPECT_EQ(text, "a file");
    const auto copy = again->get_stack(0);
    EXPECT_EQ(copy->get_name(), "name");
    EXPECT_EQ(copy->get_description(), "description");
    EXPECT_EQ(copy->get_lengths(), std::vector<double>({8.0, 6.0}));
    EXPECT_EQ(copy->get_offsets(), std::vector<double>({0.5, -0.5}));
    EXPECT_EQ(copy->get_labels(), std::vector<std::string>({"X", "rows"}));
    EXPECT_EQ(copy->get_units(1), si::value("s"));
    EXPECT_EQ(copy->get_data_units(), si::value("mV"));
    EXPECT_EQ(copy->get_col_positions(0), std::vector<double>({0.0, 1.0, 2.5, 7.0}));
    EXPECT_TRUE(copy->is_equidistant(1));
    EXPECT_EQ(copy->get_col_labels(1), std::vector<std::string>({"a", "", "c"}));
    EXPECT_EQ(copy->get_tag_keys(), std::vector<std::string>({"key"}));
    EXPECT_EQ(copy->get_tag("key"), "text");
    EXPECT_EQ(copy->get_stack_position().labels.count(), 3U);
    EXPECT_EQ(copy->get_stack_position().origin[2], 12.5);
}

TEST_F(RoundTripTest, AWholeStackInMemory)
{
    VStackImp stack(Ome::Type::int16, {300, 200, 5}, Ome::DimensionOrder::XYZTC);
    const Bytes samples = sparse_bytes(stack.get_size(vela_dt_none));
    std::memcpy(stack.get_data_ptr(), samples.data(), samples.size());
    VBFFile file = written();
    file->set_default_compression(1, 1);
    file->write_stack(&stack, vela_dt_none);
    file->write_stack(&stack, vela_dt_int32);
    file->close();

    VBFFile again = read();
    const auto same = again->read_stack(0, vela_dt_none);
    EXPECT_TRUE(std::equal(samples.begin(), samples.end(), same->get_data_ptr()));
    const auto narrowed = again->read_stack(1, vela_dt_int16);
    EXPECT_EQ(again->get_stack(1)->get_dt(), vela_dt_int32);
    EXPECT_EQ(narrowed->get_dt(), vela_dt_int16);
    EXPECT_TRUE(std::equal(samples.begin(), samples.end(), narrowed->get_data_ptr()));
}

TEST_F(RoundTripTest, AStackThatGrows)
{
    const Bytes step = noisy_bytes(20);
    VBFFile file = written();
    const auto stack = file->add_stack(false);
    stack->create({5, 4, 0}, vela_dt_uint8);
    for (int i = 0; i < 7; ++i)
        stack->write(vela_dt_uint8, step.data(), nullptr, 20);
    file->close();

    VBFFile again = read();
    EXPECT_EQ(again->get_stack(0)->get_sizes(), std::vector<std::uint64_t>({5, 4, 7}));
    const Bytes samples = samples_of(again, 0);
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_EQ(slice(samples, i * 20, i * 20 + 20), step) << i;
}

TEST_F(RoundTripTest, TheStackThatWasWrittenReadsWhenItIsComplete)
{
    const Bytes samples = sparse_bytes(300000);
    VBFFile file = written();
    file->set_default_compression(1, 3);
    const auto stack = file->add_stack(false);
    stack->create({1000, 300}, vela_dt_uint8);
    Bytes back(samples.size());
    std::uint64_t pos = 0;
    stack->write(vela_dt_uint8, samples.data(), nullptr, 1000);
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, back.data(), nullptr, 1, pos), -1,
                      "Stack not committed to disk. Cannot read!");
    stack->write(vela_dt_uint8, samples.data() + 1000, nullptr, samples.size() - 1000);
    stack->read(vela_dt_uint8, back.data(), nullptr);
    EXPECT_TRUE(back == samples);
    // And the next stack stands where it should.
    const auto next = file->add_stack(false);
    next->create({3}, vela_dt_uint8);
    next->write(vela_dt_uint8, samples.data(), nullptr, 3);
    file->close();

    VBFFile again = read();
    EXPECT_TRUE(samples_of(again, 0) == samples);
    EXPECT_EQ(samples_of(again, 1), slice(samples, 0, 3));
}
