// Files of random stacks: every byte is as it has to be.
#include "binary_io/flush_block_model.h"
#include "binary_io/record_model.h"
#include "binary_io/vbf_writing.h"

#include <VelaBase/vela_dt_convert.h>

#include <gtest/gtest.h>

#include <random>

using namespace vela_test;

namespace {

std::uint64_t size_of(vela_dt dt)
{
    return vela_dt_get_size(static_cast<std::uint32_t>(dt));
}

bool is_complex(vela_dt dt)
{
    return (dt & vela_dt_complex) != 0;
}

const std::vector<vela_dt> real_types = {vela_dt_uint8,  vela_dt_int8,  vela_dt_uint16, vela_dt_int16,
                                         vela_dt_uint32, vela_dt_int32, vela_dt_single, vela_dt_double};

/// A stack that was asked for, and what it has to look like. The data of `record` are the samples, as they are.
struct AskedStack
{
    RecordModel record = RecordModel(Sizes());
    Sizes created_sizes;
    bool variable = false;
    std::uint64_t requested_block = all_samples;
    Stack stack;
};

class RandomWriting : public VbfWritingTest
{
protected:
    std::uint64_t below(std::uint64_t limit) { return random() % limit; }
    bool one_in(std::uint64_t count) { return below(count) == 0; }
    double number() { return static_cast<double>(static_cast<std::int64_t>(below(20001)) - 10000) / 64.0; }

    std::string text(std::size_t most)
    {
        std::string result(below(most + 1), '\0');
        for (char& byte : result)
            byte = static_cast<char>(below(256));
        return result;
    }

    /// Letters, as the property XML may hold them.
    VPropstring word()
    {
        std::string letters(below(6), 'a');
        for (char& letter : letters)
            letter = static_cast<char>('a' + below(26));
        return VPropstring(letters, VPropstring::enc_utf8);
    }

    vela_dt any_type()
    {
        if (one_in(4))
            return one_in(2) ? complex_single : complex_double;
        return real_types[below(real_types.size())];
    }

    Sizes random_sizes()
    {
        if (one_in(5)) // large enough for flush points
            return {200 + below(300), 100 + below(300)};
        Sizes sizes(below(6));
        for (std::uint64_t& size : sizes)
            size = 1 + below(6);
        return sizes;
    }

    void create(AskedStack& asked)
    {
        asked.record = RecordModel(random_sizes());
        asked.record.data_type = any_type();
        asked.record.empty = one_in(8);
        asked.created_sizes = asked.record.sizes;
        asked.variable = !asked.record.empty && !asked.record.sizes.empty() && one_in(4);
        if (asked.variable)
        {
            asked.created_sizes.back() = 0;
            asked.record.sizes.back() = below(6);
        }
        asked.stack = file->add_stack(asked.record.empty);
        asked.stack->create(asked.created_sizes, asked.record.data_type);
    }

    void describe_axes(AskedStack& asked)
    {
        RecordModel& record = asked.record;
        for (std::size_t axis = 0; axis < record.sizes.size(); ++axis)
        {
            // The record of a stack has no length of a channel, and no times that are not above 0.
            if (axis < 4 && one_in(2))
                asked.stack->set_len(axis, record.lengths[axis] = 0.5 + static_cast<double>(below(1000)) / 8.0);
            if (axis < 3 && one_in(2))
                asked.stack->set_off(axis, record.offsets[axis] = number());
            if (one_in(2))
                asked.stack->set_label(axis, record.labels[axis] = one_in(2) ? "X" : "\xc2\xb5 of it");
            if (one_in(3))
            {
                const si::value unit(number(), {si::fraction(1), si::fraction::unreduced(2, 4), si::fraction(-1)});
                asked.stack->set_units(axis, unit);
                record.dimension_units[axis] = unit_of(unit);
            }
            describe_columns(asked, axis);
        }
    }

    void describe_columns(AskedStack& asked, std::size_t axis)
    {
        const auto columns = static_cast<std::size_t>(asked.created_sizes[axis]);
        if (columns == 0)
            return;
        if (one_in(4))
        {
            std::vector<double> positions(columns);
            for (double& position : positions)
                position = number();
            asked.stack->set_col_positions(axis, positions);
            asked.record.col_positions[axis] = positions;
        }
        if (one_in(4))
        {
            std::vector<std::string> labels(columns);
            for (std::string& label : labels)
                label = text(5);
            asked.stack->set_col_labels(axis, labels);
            asked.record.col_labels[axis] = labels;
        }
    }

    void describe_whole(AskedStack& asked)
    {
        RecordModel& record = asked.record;
        asked.stack->set_name(record.name = text(20));
        asked.stack->set_description(record.description = text(one_in(5) ? 5000 : 20));
        if (one_in(2))
        {
            const si::value unit("mV");
            asked.stack->set_data_units(unit);
            record.data_units = unit_of(unit);
        }
        VStackPosition position;
        if (one_in(2))
        {
            position.create(asked.stack.get(), record.sizes.size() + below(3));
            for (VPropstring& label : position.labels)
                label = word();
            for (double& value : position.origin)
                value = number();
            for (double& value : position.matrix)
                value = number();
            asked.stack->set_stack_position(position);
        }
        else
            position.create(asked.stack.get(), 0);
        record.metadata = metadata_of(position);
        for (std::uint64_t i = below(4); i > 0; --i)
        {
            const std::string key = "k" + text(4);
            asked.stack->set_tag(key, record.tags[key] = text(30));
        }
    }

    void choose_storage(AskedStack& asked)
    {
        if (one_in(3))
        {
            asked.record.compression_type = static_cast<std::int32_t>(below(2));
            asked.record.compression_level = static_cast<std::int32_t>(below(11)) - 1;
            asked.stack->set_compression(asked.record.compression_type, asked.record.compression_level);
        }
        else
        {
            asked.record.compression_type = default_type;
            asked.record.compression_level = default_level;
        }
        if (one_in(2))
        {
            const Sizes choices = {0, 5000, 70000, all_samples};
            asked.requested_block = choices[below(choices.size())];
            asked.stack->set_flush_block_size(asked.requested_block);
        }
    }

    /// Writes `count` samples from a buffer of a random type.
    void write_piece(AskedStack& asked, std::uint64_t count)
    {
        const vela_dt to = asked.record.data_type;
        const bool split = is_complex(to) && one_in(2);
        vela_dt from = one_in(2) ? to : any_type();
        if (split || (is_complex(from) && !is_complex(to)))
            from = real_types[below(real_types.size())];
        const Bytes source = one_in(2) ? noisy_bytes(static_cast<std::size_t>(count * size_of(from)), seed())
                                       : sparse_bytes(static_cast<std::size_t>(count * size_of(from)), seed());
        const Bytes imaginary = split ? noisy_bytes(source.size(), seed()) : Bytes();
        Bytes expected = source;
        if (from != to || split)
        {
            expected.resize(static_cast<std::size_t>(count * size_of(to)));
            EXPECT_EQ(vela_dt_convert(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to), source.data(),
                                      expected.data(), count, split ? imaginary.data() : nullptr, nullptr),
                      0);
        }
        seen.split += split ? 1 : 0;
        seen.converted += from != to ? 1 : 0;
        asked.stack->write(from, source.data(), split ? imaginary.data() : nullptr, count);
        append_bytes(asked.record.data, expected);
    }

    /// Behind the last sample.
    static int expected_state(const AskedStack& asked)
    {
        if (asked.record.data.empty())
            return 1;
        return asked.variable ? 2 : 0;
    }

    void write_samples(AskedStack& asked)
    {
        std::uint64_t left = 1;
        for (const std::uint64_t size : asked.record.sizes)
            left *= size;
        if (asked.record.empty)
            left = 0;
        while (left > 0)
        {
            const std::uint64_t count = one_in(2) ? left : 1 + below(left);
            write_piece(asked, count);
            left -= count;
        }
        EXPECT_EQ(asked.stack->get_state(), expected_state(asked));
        if (asked.stack->get_state() != 0 && one_in(2))
            asked.stack->commit(0);
    }

    /// What stands on disk is what was asked for.
    void expect_asked(const Bytes& cleared, const WrittenStack& written, AskedStack& asked)
    {
        RecordModel& record = asked.record;
        ASSERT_TRUE(written.samples() == record.data);
        record.data = written.data;
        record.flush_positions = written.flush_positions;
        record.flush_block_size = chosen_block(asked.created_sizes, size_of(record.data_type), asked.requested_block);
        const Bytes expected = record_bytes(record, written.pos, written.next_stack_pos);
        const Bytes found =
            slice(cleared, static_cast<std::size_t>(written.pos), static_cast<std::size_t>(written.end));
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t i = 0; i < found.size(); ++i)
            ASSERT_EQ(found[i], expected[i]) << "byte " << i << " of the record";
    }

    /// What has come up, so that nothing is left out unseen.
    struct Seen
    {
        std::size_t stacks = 0;
        std::size_t variable = 0;
        std::size_t empty = 0;
        std::size_t split = 0;
        std::size_t converted = 0;
        std::size_t flush_points = 0;
        std::size_t stored_bytes = 0;
        std::size_t compressed_bytes = 0;
        std::size_t columns = 0;
    } seen;

    void note(const AskedStack& asked)
    {
        ++seen.stacks;
        seen.variable += asked.variable ? 1 : 0;
        seen.empty += asked.record.empty ? 1 : 0;
        seen.flush_points += asked.record.flush_positions.size();
        seen.columns += asked.record.col_positions.size() + asked.record.col_labels.size();
        const bool compressed = asked.record.compression_type == 1 && asked.record.compression_level > 0;
        (compressed ? seen.compressed_bytes : seen.stored_bytes) += asked.record.data.size();
    }

    void expect_enough_seen() const
    {
        EXPECT_GT(seen.stacks, 150u);
        EXPECT_GT(seen.variable, 20u);
        EXPECT_GT(seen.empty, 10u);
        EXPECT_GT(seen.split, 20u);
        EXPECT_GT(seen.converted, 100u);
        EXPECT_GT(seen.flush_points, 50u);
        EXPECT_GT(seen.stored_bytes, 1000000u);
        EXPECT_GT(seen.compressed_bytes, 1000000u);
        EXPECT_GT(seen.columns, 100u);
    }

    unsigned seed() { return static_cast<unsigned>(random()); }

    std::mt19937 random;
    std::int32_t default_type = 0;
    std::int32_t default_level = 1;
};

TEST_F(RandomWriting, EveryRecordIsAsItWasAskedFor)
{
    for (unsigned run = 0; run < 150; ++run)
    {
        SCOPED_TRACE(run);
        random.seed(run);
        begin_file();
        const std::string description = text(30);
        file->set_file_desc(description);
        const std::vector<std::uint32_t> chunks = {0, 1, 13, 1000, 65536, 0x400000};
        file->set_chunk_size(chunks[below(chunks.size())]);
        default_type = static_cast<std::int32_t>(below(2));
        default_level = static_cast<std::int32_t>(below(10));
        file->set_default_compression(default_type, default_level);
        std::vector<AskedStack> all(below(4));
        for (AskedStack& asked : all)
        {
            create(asked);
            describe_axes(asked);
            describe_whole(asked);
            choose_storage(asked);
            write_samples(asked);
        }
        const WrittenFile written = close_file();
        EXPECT_EQ(written.description, description);
        EXPECT_EQ(written.dictionary, (WrittenPairs{{"ome_xml", plain_document()}}));
        ASSERT_EQ(written.stacks.size(), all.size());
        Bytes cleared = content();
        for (const WrittenStack& stack : written.stacks)
            clear_undefined(cleared, stack);
        for (std::size_t i = 0; i < all.size(); ++i)
        {
            SCOPED_TRACE(i);
            expect_asked(cleared, written.stacks[i], all[i]);
            note(all[i]);
            if (HasFatalFailure())
                return;
        }
        std::filesystem::remove(file_path);
    }
    expect_enough_seen();
}

} // namespace
