// Files with anything in them, taken apart without the library: every byte of every record is known beforehand.
#include "binary_io/flush_block_model.h"
#include "binary_io/random_stack.h"
#include "binary_io/record_model.h"
#include "support/sample_bytes.h"

#include <VelaBase/vela_dt.h>
#include <VelaStacks/VStackInfo.h>

#include <gtest/gtest.h>

#include <utility>

using namespace vela_test;

namespace {

/// What has come up, so that nothing is left out unseen.
struct Seen
{
    std::size_t stacks = 0;
    std::size_t growing = 0;
    std::size_t empty = 0;
    std::size_t flush_points = 0;
    std::size_t stored_bytes = 0;
    std::size_t compressed_bytes = 0;
    std::size_t columns = 0;
};

class RandomRecord : public WritingTest
{
protected:
    static RecordModel model_of(const RandomStack& stack, const VBFStackInterface& written)
    {
        RecordModel model(stack.sizes);
        model.lengths = stack.lengths;
        model.offsets = stack.offsets;
        model.data_type = stack.dt;
        model.compression_type = stack.compression_type;
        model.compression_level = stack.compression_level;
        model.empty = stack.empty;
        model.name = stack.name;
        model.description = stack.description;
        model.data_units = unit_of(stack.data_units);
        for (std::size_t axis = 0; axis < stack.units.size(); ++axis)
            model.dimension_units[axis] = unit_of(stack.units[axis]);
        model.labels = stack.labels;
        model.col_positions = {stack.col_positions.begin(), stack.col_positions.end()};
        model.col_labels = {stack.col_labels.begin(), stack.col_labels.end()};
        model.metadata = metadata_of(stack.position ? *stack.position : position_without_one(stack, written));
        model.flush_block_size = block_of(stack);
        model.tags = stack.tags;
        return model;
    }

    /// One that does not grow takes over that of another description, which has no labels yet.
    static VStackPosition position_without_one(const RandomStack& stack, const VBFStackInterface& written)
    {
        VStackInfoImp unlabelled;
        unlabelled.create(stack.sizes, stack.dt);
        VStackPosition position;
        if (stack.grows)
            position.create(&written, 0);
        else
            position.create(&unlabelled, 0);
        return position;
    }

    static std::uint64_t block_of(const RandomStack& stack)
    {
        Sizes at_first = stack.sizes;
        if (stack.grows)
            at_first.back() = 0;
        return chosen_block(at_first, vela_dt_get_size(static_cast<std::uint32_t>(stack.dt)),
                            stack.flush_block_size.value_or(~std::uint64_t{0}));
    }

    void note(const RandomStack& stack, const WrittenStack& written)
    {
        ++seen.stacks;
        seen.growing += stack.grows ? 1 : 0;
        seen.empty += stack.empty ? 1 : 0;
        seen.flush_points += written.flush_positions.size();
        seen.columns += stack.col_positions.size() + stack.col_labels.size();
        (written.is_compressed() ? seen.compressed_bytes : seen.stored_bytes) += stack.samples.size();
    }

    /// Writes a file of stacks that `draw` gives.
    std::vector<RandomStack> write_stacks(Draw& draw)
    {
        std::vector<RandomStack> stacks;
        file.open(file_name(path("written.vbf")), VFile::write_mode);
        file->set_file_desc(description = draw.text(30));
        for (std::uint64_t count = draw.below(7); count > 0; --count)
        {
            stacks.emplace_back(draw);
            file->set_chunk_size(stacks.back().draw_chunk_size(draw));
            stacks.back().write(*file.shared(), draw);
        }
        return stacks;
    }

    void expect_file(const std::vector<RandomStack>& stacks, std::vector<RecordModel> models)
    {
        const Bytes bytes = get_bytes(path("written.vbf"));
        const WrittenFile written = read_written(bytes);
        EXPECT_EQ(complaints_about(written), "");
        EXPECT_EQ(written.description, description);
        ASSERT_EQ(written.stacks.size(), stacks.size());
        for (std::size_t i = 0; i < stacks.size(); ++i)
        {
            SCOPED_TRACE(i);
            ASSERT_TRUE(written.stacks[i].samples() == (stacks[i].empty ? Bytes() : stacks[i].samples));
            // These are left to the segment: the bytes of the samples, and where its flush points lie.
            models[i].data = written.stacks[i].data;
            models[i].flush_positions = written.stacks[i].flush_positions;
            expect_record(bytes, written.stacks[i], models[i]);
            note(stacks[i], written.stacks[i]);
        }
    }

    std::string description;
    Seen seen;
};

TEST_F(RandomRecord, IsByteByByteAsItWasAskedFor)
{
    for (unsigned seed = 1; seed <= 80 && !HasFailure(); ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Draw draw(seed);
        const std::vector<RandomStack> stacks = write_stacks(draw);
        std::vector<RecordModel> models;
        for (std::size_t i = 0; i < stacks.size(); ++i)
            models.push_back(model_of(stacks[i], *file->get_stack(i)));
        file->close();
        expect_file(stacks, std::move(models));
    }
    EXPECT_GT(seen.stacks, 150u);
    EXPECT_GT(seen.growing, 20u);
    EXPECT_GT(seen.empty, 5u);
    EXPECT_GT(seen.flush_points, 5u);
    EXPECT_GT(seen.stored_bytes, 500000u);
    EXPECT_GT(seen.compressed_bytes, 500000u);
    EXPECT_GT(seen.columns, 50u);
}

} // namespace
