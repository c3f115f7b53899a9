// Good files of an independent writer, read and written again: the same bytes come out. Only those without compressed
// samples, whose bytes are the affair of zlib, and without anything that this writer does not do.
#include "binary_io/manifest.h"
#include "binary_io/opened_file.h"
#include "binary_io/written_vbf.h"

#include <VelaStacks/VStackInfo.h>

#include <array>
#include <stdexcept>
#include <typeinfo>

using namespace vela_test;

namespace {

/// A stack of a file, of which some things are taken from its bytes: getters guess and repair.
class Original
{
public:
    Original(const ByteMap& in_map, std::uint64_t in_header_pos) : map(in_map), header_pos(in_header_pos) {}

    std::uint64_t rank() const { return map.u32(header_pos + stack_rank_at); }
    bool declared_empty() const { return map.u64(header_pos + stack_data_present_at) == 0; }
    bool has_data() const { return map.u64(header_pos + stack_data_length_at) != 0; }

    double length(std::uint64_t axis) const { return map.f64(header_pos + stack_lengths_at + 8 * axis); }
    double offset(std::uint64_t axis) const { return map.f64(header_pos + stack_offsets_at + 8 * axis); }

    si::value data_units() const { return unit(footer_pos() + footer_data_units_at); }
    si::value units(std::uint64_t axis) const { return unit(footer_pos() + footer_dimension_units_at + 80 * axis); }
    bool has_positions(std::uint64_t axis) const { return flag(footer_col_positions_at, axis); }
    bool has_labels(std::uint64_t axis) const { return flag(footer_col_labels_at, axis); }

    std::uint64_t next() const { return map.u64(header_pos + stack_next_at); }

private:
    std::uint64_t footer_pos() const
    {
        return header_pos + stack_header_size + map.u32(header_pos + stack_name_length_at) +
               map.u32(header_pos + stack_description_length_at) + map.u64(header_pos + stack_data_length_at);
    }

    bool flag(std::uint64_t offset, std::uint64_t axis) const { return map.u32(footer_pos() + offset + 4 * axis) != 0; }

    si::value unit(std::uint64_t at) const
    {
        std::array<si::fraction, 9> exponents;
        for (std::uint64_t i = 0; i < 9; ++i)
            exponents[i] = si::fraction::unreduced(map.i32(at + 8 * i), map.i32(at + 8 * i + 4));
        return {map.f64(at + 72), exponents};
    }

    const ByteMap& map;
    std::uint64_t header_pos;
};

class GoldenRewrite : public WritingTest, public testing::WithParamInterface<const char*>
{
};

DataFile golden_file(const std::string& name)
{
    for (const DataFile& data_file : data_files("golden"))
        if (data_file.name() == name)
            return data_file;
    throw std::runtime_error("no file " + name);
}

/// Lengths and offsets that the record cannot express are stored all the same.
template <class Set>
void set_in_any_case(Set set)
{
    try
    {
        set();
    }
    catch (const std::invalid_argument&)
    {
    }
    catch (const std::bad_cast&)
    {
    }
}

void describe(VBFStackInterface& stack, const Original& original, VBFStackInterface& read)
{
    stack.set_name(read.get_name());
    stack.set_description(read.get_description());
    stack.set_labels(read.get_labels());
    stack.set_data_units(original.data_units());
    for (std::uint64_t axis = 0; axis < original.rank(); ++axis)
    {
        set_in_any_case([&] { stack.set_len(axis, original.length(axis)); });
        set_in_any_case([&] { stack.set_off(axis, original.offset(axis)); });
        stack.set_units(axis, original.units(axis));
        if (original.has_positions(axis))
            stack.set_col_positions(axis, read.get_col_positions(axis));
        stack.set_col_labels(axis, read.get_col_labels(axis));
    }
    stack.set_stack_position(read.get_stack_position());
    for (const std::string& key : read.get_tag_keys())
        stack.set_tag(key, read.get_tag(key));
    int type = 0;
    int level = 0;
    read.get_compression(type, level);
    stack.set_compression(type, level);
}

TEST_P(GoldenRewrite, GivesTheSameBytes)
{
    const DataFile data_file = golden_file(GetParam());
    OpenedFile source(data_file);
    const ByteMap map(get_bytes(data_file.path()));
    std::string text;
    source->get_file_desc(text);
    file->set_file_desc(text);
    std::uint64_t header_pos = map.u64(14);
    for (std::uint64_t index = 0; index < source->number_of_stacks(); ++index)
    {
        const Original original(map, header_pos);
        const Stack read = source->get_stack(index);
        const Stack stack = file->add_stack(original.declared_empty());
        VStackInfo fixed; // which does not grow, even if its last size is 0
        fixed->create(read->get_sizes(), read->get_dt());
        stack->create(fixed, vela_dt_none);
        describe(*stack, original, *read);
        const Bytes samples = original.has_data() ? samples_of(*read) : Bytes();
        stack->write(read->get_dt(), samples.data(), nullptr, original.has_data() ? read->get_number_of_elements() : 0);
        header_pos = original.next();
    }
    file->close();
    EXPECT_TRUE(get_bytes(path("written.vbf")) == get_bytes(data_file.path()));
}

INSTANTIATE_TEST_SUITE_P(GoldenFiles, GoldenRewrite,
                         testing::Values("chain0.vbf", "chain0_text.vbf", "chain1.vbf", "empty.vbf", "positions.vbf",
                                         "rank15_zero.vbf", "rank4_one_step.vbf", "rank6_zero.vbf", "types_plain.vbf",
                                         "units.vbf"),
                         [](const auto& tested)
                         {
                             const std::string name = tested.param;
                             return name.substr(0, name.find('.'));
                         });

}
