// Stacks that a writer has finished and let go of: whatever the file keeps of them, they look the same.
#include <Json/write.h>
#include <VelaStacks/VStackPosition.h>

#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"

#include <boost/weak_ptr.hpp>
#include <si/value.h>

#include <algorithm>
#include <sstream>

using namespace vela_test;

namespace {

class FinishedStacks : public WritingTest
{
protected:
    Stack add_described()
    {
        const Stack stack = add({3, 2, 1}, vela_dt_uint16);
        stack->set_name("name \xc3\xa4");
        stack->set_description("text\nof two lines");
        stack->set_labels({"a", "", "c"});
        stack->set_len(0, 0.1);
        stack->set_len(1, 1e300);
        stack->set_off(0, 1.0 / 3);
        stack->set_units(1, si::value("3 ms"));
        stack->set_data_units(si::value("2 V"));
        stack->set_col_labels(1, {"first", "second"});
        stack->set_tag("key", "value");
        VStackPosition position = stack->get_stack_position();
        position.labels[0] = VPropstring(L"x<&>\t");
        position.origin[1] = 1.0 / 3;
        position.matrix[2] = 0.1;
        stack->set_stack_position(position);
        stack->set_compression(1, 6);
        return stack;
    }

    static void write_all(VBFStackInterface& stack)
    {
        const std::uint16_t samples[] = {1, 2, 3, 4, 5, 600};
        stack.write(vela_dt_uint16, samples, nullptr, VBFStackInterface::all_samples);
    }

    /// Whatever the file kept of a stack that stood last.
    void add_more()
    {
        add_complete({1});
        add_complete({2});
        add_complete({3});
    }
};

template <class T>
void print(std::ostream& out, const VProparray<T>& array)
{
    for (const std::size_t size : array.get_size(false))
        out << size << ' ';
    for (std::size_t i = 0; i < array.count(); ++i)
        out << array[i] << ' ';
}

/// All that a caller can ask a stack for but the OME record.
std::string description_of(VBFStackInterface& stack)
{
    std::ostringstream out;
    out.precision(17);
    int type = 0;
    int level = 0;
    stack.get_compression(type, level);
    out << stack.get_name() << '|' << stack.get_description() << '|' << stack.get_dt() << '|' << stack.get_state()
        << '|' << type << ' ' << level << '|' << stack.get_data_units() << '|' << stack.get_meta_data_string() << '|'
        << stack.get_number_of_elements() << '\n';
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
    {
        out << stack.get_dimension_size(axis) << ' ' << stack.get_length(axis) << ' ' << stack.get_offset(axis) << ' '
            << stack.get_label(axis) << ' ' << stack.get_units(axis) << ' ' << stack.is_equidistant(axis);
        for (const std::string& label : stack.get_col_labels(axis))
            out << ' ' << label;
        out << '\n';
    }
    for (const std::string& key : stack.get_tag_keys())
        out << key << '=' << stack.get_tag(key) << '\n';
    const VStackPosition& position = stack.get_stack_position();
    for (std::size_t i = 0; i < position.labels.count(); ++i)
        out << position.labels[i].to(VPropstring::enc_utf8) << ' ';
    print(out, position.origin);
    print(out, position.matrix);
    return out.str();
}

std::string ome_record_of(VBFStackInterface& stack)
{
    std::ostringstream out;
    out << stack.meta_data().structure.get();
    return out.str();
}

} // namespace

TEST_F(FinishedStacks, CopiesAreTheSameAsBefore)
{
    Stack stack = add_described();
    write_all(*stack);
    const std::string expected = description_of(*file->get_stack(0));
    const Bytes samples = samples_of(*file->get_stack(0)); // the place where `stack` stops would hold it
    const boost::weak_ptr<VBFStackInterface> weak = stack;
    stack.reset();
    add_more();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(description_of(*file->get_stack(0)), expected);
    EXPECT_EQ(samples_of(*file->get_stack(0)), samples);
    EXPECT_VELA_ERROR(file->get_stack(0)->set_name("b"), -1, "Cannot set values. Object locked!");
    EXPECT_VELA_ERROR(file->get_stack(0)->write(vela_dt_uint8, "a", nullptr, 1), -1,
                      "Stack is already complete. Invalid call to write()!");
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), samples);
}

TEST_F(FinishedStacks, ThoseThatNobodyHoldsAreLetGo)
{
    const boost::weak_ptr<VBFStackInterface> weak = add_complete({2});
    EXPECT_FALSE(weak.expired());
    add_complete({3});
    EXPECT_TRUE(weak.expired());
}

TEST_F(FinishedStacks, ThoseThatSomebodyHoldsStayTheSameObject)
{
    const Stack stack = add_complete({2});
    add_more();
    stack->set_tag("late", "tag");
    EXPECT_EQ(file->get_stack(0)->get_tag("late"), "tag");
    file->close();
    EXPECT_VELA_ERROR(samples_of(*stack), -1, "Cannot access VBFStack, file has been closed!");
}

TEST_F(FinishedStacks, CopiesOutliveWhatTheyWereMadeFrom)
{
    add_complete({3});
    const Stack copy = file->get_stack(0);
    add_more();
    EXPECT_EQ(samples_of(*copy), counted_bytes(3));
    file->close();
    EXPECT_VELA_ERROR(samples_of(*copy), -1, "Cannot access VBFStack, file has been closed!");
}

TEST_F(FinishedStacks, KeepWhatSomebodyPutIntoTheirOmeRecord)
{
    Stack stack = add({2});
    stack->meta_data().id = "Image:7";
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    stack.reset();
    add_more();
    const std::string id = file->get_stack(0)->meta_data().id;
    EXPECT_EQ(id, "Image:7");
}

TEST_F(FinishedStacks, KeepTheirAcquisitionDate)
{
    Stack stack = add({2});
    stack->set_acquisition_date();
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    const std::string expected = ome_record_of(*file->get_stack(0));
    EXPECT_NE(expected.find("AcquisitionDate"), std::string::npos);
    stack.reset();
    add_more();
    EXPECT_EQ(ome_record_of(*file->get_stack(0)), expected);
}

TEST_F(FinishedStacks, KeepWhatTheOmeRecordHasOfFurtherAxes)
{
    Stack with_lengths = add({2});
    with_lengths->set_len({1, 2, 3});
    with_lengths->write(vela_dt_uint8, "ab", nullptr, 2);
    Stack with_offsets = add({2});
    with_offsets->set_off({1, 2, 3});
    with_offsets->write(vela_dt_uint8, "ab", nullptr, 2);
    const std::string lengths = ome_record_of(*file->get_stack(0));
    const std::string offsets = ome_record_of(*file->get_stack(1));
    EXPECT_NE(lengths.find("PhysicalSizeZ"), std::string::npos);
    with_lengths.reset();
    with_offsets.reset();
    add_more();
    EXPECT_EQ(ome_record_of(*file->get_stack(0)), lengths);
    EXPECT_EQ(ome_record_of(*file->get_stack(1)), offsets);
}

/// Those that a getter filled in stay when the length of the axis changes.
TEST_F(FinishedStacks, KeepPositionsOfColumnsThatWereAskedFor)
{
    Stack stack = add({3});
    stack->get_col_positions(0);
    stack->set_len(0, 30);
    stack->write(vela_dt_uint8, "abc", nullptr, 3);
    const std::vector<double> expected = file->get_stack(0)->get_col_positions(0);
    stack.reset();
    add_more();
    EXPECT_TRUE(file->get_stack(0)->is_equidistant(0));
    EXPECT_EQ(file->get_stack(0)->get_col_positions(0), expected);
}

/// What is equal in neighbours is kept once; here one thing differs between one stack and the next.
TEST_F(FinishedStacks, KeepTheirPlaceBesideOthersThatLieElsewhere)
{
    std::vector<std::string> expected;
    const auto add_with = [&](auto change)
    {
        const Stack stack = add({2, 2});
        VStackPosition position = stack->get_stack_position();
        change(position);
        stack->set_stack_position(position);
        stack->write(vela_dt_uint8, "abcd", nullptr, 4);
        expected.push_back(description_of(*file->get_stack(expected.size())));
    };
    const auto same = [](VStackPosition&) {};
    add_with(same);
    add_with([](VStackPosition& position) { position.labels[1] = VPropstring(L"other"); });
    add_with(same);
    add_with([](VStackPosition& position) { position.origin[1] = 5; });
    add_with(same);
    add_with([](VStackPosition& position) { position.matrix[1] = 0.5; });
    add_with(same);
    add_more();
    for (std::size_t index = 0; index < expected.size(); ++index)
        EXPECT_EQ(description_of(*file->get_stack(index)), expected[index]) << index;
}

/// The front of the samples is destroyed on disk: only a reader that starts at a flush point gets those behind.
TEST_F(FinishedStacks, KeepTheirFlushPoints)
{
    const Bytes samples = sparse_bytes(200000);
    Stack stack = add({1000, 200});
    stack->set_compression(1, 6);
    stack->set_flush_block_size(100000);
    stack->write(vela_dt_uint8, samples.data(), nullptr, VBFStackInterface::all_samples);
    stack.reset();
    add_more();
    Bytes damaged = get_bytes(path("written.vbf"));
    std::fill_n(damaged.begin() + first_record_pos + stack_header_size, 100, static_cast<unsigned char>(0xff));
    put_bytes(path("written.vbf"), damaged);
    Bytes read(100, 0xcd);
    std::uint64_t pos = 150000;
    EXPECT_EQ(file->get_stack(0)->read(vela_dt_uint8, read.data(), nullptr, 100, pos), 100u);
    EXPECT_TRUE(read == slice(samples, 150000, 150100));
    EXPECT_THROW(samples_of(*file->get_stack(0)), VelaError);
}

TEST_F(FinishedStacks, KeepPositionsOfColumns)
{
    Stack stack = add({3});
    stack->set_col_positions(0, {1, 2, 4});
    stack->write(vela_dt_uint8, "abc", nullptr, 3);
    stack.reset();
    add_more();
    EXPECT_FALSE(file->get_stack(0)->is_equidistant(0));
    EXPECT_EQ(file->get_stack(0)->get_col_positions(0), (std::vector<double>{1, 2, 4}));
}

TEST_F(FinishedStacks, KeepThePlaceWhereSomebodyStoppedReading)
{
    Stack stack = add_complete({4});
    unsigned char sample = 0;
    std::uint64_t pos = 0;
    stack->read(vela_dt_uint8, &sample, nullptr, 1, pos);
    stack.reset();
    add_more();
    pos = VBFStackInterface::continued;
    file->get_stack(0)->read(vela_dt_uint8, &sample, nullptr, 1, pos);
    EXPECT_EQ(sample, 1);
}

TEST_F(FinishedStacks, ThoseThatGrewHaveTheirSize)
{
    Stack stack = add({2, 0});
    stack->write(vela_dt_uint8, "abcd", nullptr, 4);
    stack.reset();
    add_more();
    EXPECT_EQ(file->get_stack(0)->get_sizes(), (Sizes{2, 2}));
    EXPECT_EQ(samples_of(*file->get_stack(0)), (Bytes{'a', 'b', 'c', 'd'}));
}

TEST_F(FinishedStacks, EmptyOnesReadAsZeros)
{
    Stack stack = file->add_stack(true);
    stack->create({3}, vela_dt_uint8);
    stack.reset();
    add_more();
    EXPECT_EQ(samples_of(*file->get_stack(0)), Bytes(3, 0));
}
