// Random calls on a stack, against a model of its states.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

#include <random>

using namespace vela_test;

namespace {

/// What the calls have to say: the text of the failure, or nothing.
class StackModel
{
public:
    explicit StackModel(bool is_empty) : empty(is_empty) {}

    std::string create(const Sizes& new_sizes, vela_dt new_dt)
    {
        if (state != -1)
            return "Cannot set data layout!";
        sizes = new_sizes;
        dt = new_dt;
        variable = !sizes.empty() && sizes.back() == 0;
        for (std::size_t i = 0; variable && i + 1 < sizes.size(); ++i)
            step *= sizes[i];
        state = 1;
        return "";
    }

    std::string write(vela_dt type, const Bytes& data, bool with_imaginary, std::uint64_t count)
    {
        if (state == -1)
            return "Stack not ready to be commited. Meta-information missing!";
        if (state == 0)
            return "Stack is already complete. Invalid call to write()!";
        const bool first = state == 1;
        if (first)
        {
            const std::string refusal = begin(type, with_imaginary, count);
            if (!refusal.empty())
                return refusal;
        }
        const std::string refusal = check(type, with_imaginary, count);
        if (!refusal.empty())
        {
            lost = first; // The segment was not started.
            return refusal;
        }
        const bool finishing = count == 0 || (!variable && count == left);
        samples.insert(samples.end(), data.begin(), data.begin() + static_cast<std::ptrdiff_t>(count));
        written += count;
        left -= variable ? 0 : count;
        if (finishing)
            state = 0;
        return "";
    }

    std::string set_compression() const { return state == -1 || state == 1 ? "" : "Cannot change compression mode!"; }
    std::string set_flush_block_size() const
    {
        return state == 1 ? "" : "Flush block size can only be set before starting to write!";
    }

    std::uint64_t steps() const { return written / step; }

    bool empty;
    bool variable = false;
    bool lost = false; ///< cannot be mended any more
    int state = -1;
    vela_dt dt = vela_dt_none;
    Sizes sizes;
    std::uint64_t step = 1;
    std::uint64_t left = 0;
    std::uint64_t written = 0;
    Bytes samples;

private:
    /// The first call. `count` becomes what was meant.
    std::string begin(vela_dt type, bool with_imaginary, std::uint64_t& count)
    {
        if (variable)
            count = count == all_samples ? 0 : count;
        else if (empty && count != 0)
            return "Trying to write to empty stack!";
        else if (!empty)
        {
            left = 1;
            for (const std::uint64_t size : sizes)
                left *= size;
            count = count == all_samples ? left : count;
        }
        if (dt == vela_dt_none && type != vela_dt_none)
            dt = with_imaginary ? type | vela_dt_complex : type;
        if (dt == vela_dt_none)
            return "Stack data type not set. Cannot commit stack to file!";
        state = 2;
        return "";
    }

    std::string check(vela_dt type, bool with_imaginary, std::uint64_t count) const
    {
        if (with_imaginary && (type & vela_dt_complex) != 0)
            return "Imaginary block given but buffer is already complex!";
        if (with_imaginary && (dt & vela_dt_complex) == 0)
            return "Imaginary block given but stack is not complex!";
        if (count != 0 && !variable && count > left)
            return "Trying to write more samples than the stack is long!";
        if (count == 0 && variable && written % step != 0)
            return "Not on sample boundary!";
        if (count == 0 && !variable && !empty && left != 0)
            return "Not enough samples written!";
        return "";
    }
};

class StateModelWriting : public VbfWritingTest
{
protected:
    template <class Call>
    static std::string failure_of(Call call)
    {
        try
        {
            call();
            return "";
        }
        catch (const VelaError& error)
        {
            EXPECT_EQ(error.get_id(), -1);
            return error.get_msg();
        }
    }

    std::uint64_t below(std::uint64_t limit) { return random() % limit; }

    std::uint64_t any_count(const StackModel& model)
    {
        const Sizes choices = {1, 2, 3, 5, 6, 12, model.left, model.left + 1, all_samples};
        const std::uint64_t count = choices[below(choices.size())];
        // What it would mean to a variable stack on a later call, nobody has laid down.
        if (model.variable && model.state == 2 && count == all_samples)
            return 6;
        return count;
    }

    void make_call(const Stack& stack, StackModel& model)
    {
        static const std::vector<Sizes> shapes = {{4, 3}, {3, 0}, {2, 3, 0}, {0}, {0, 4}, {}, {24}, {5}};
        switch (below(model.state == -1 ? 5u : 12u))
        {
        case 0:
        case 1: {
            const Sizes& sizes = shapes[below(shapes.size())];
            const vela_dt dt = below(4) == 0 ? vela_dt_none : vela_dt_uint8;
            EXPECT_EQ(failure_of([&] { stack->create(sizes, dt); }), model.create(sizes, dt));
            break;
        }
        case 2:
            EXPECT_EQ(failure_of([&] { stack->set_compression(1, 6); }), model.set_compression());
            break;
        case 3:
            EXPECT_EQ(failure_of([&] { stack->set_flush_block_size(100); }), model.set_flush_block_size());
            break;
        case 4: {
            const vela_dt dt = below(2) == 0 ? vela_dt_none : vela_dt_uint8;
            EXPECT_EQ(failure_of([&] { stack->commit(dt); }), model.write(dt, {}, false, 0));
            break;
        }
        default: {
            const std::uint64_t count = any_count(model);
            // A left open type is not left open to complex ones here: bytes have no complex record.
            const bool with_imaginary = model.dt != vela_dt_none && below(12) == 0;
            const vela_dt type = with_imaginary && below(2) == 0 ? complex_single : vela_dt_uint8;
            const Bytes data = noisy_bytes(1000, static_cast<unsigned>(random()));
            EXPECT_EQ(
                failure_of([&] { stack->write(type, data.data(), with_imaginary ? data.data() : nullptr, count); }),
                model.write(type, data, with_imaginary, count))
                << count;
        }
        }
        EXPECT_EQ(stack->get_state(), model.state);
        EXPECT_EQ(stack->get_dt(), model.dt);
        if (model.variable)
        {
            EXPECT_EQ(stack->get_sizes().back(), model.steps());
        }
    }

    std::mt19937 random;
};

TEST_F(StateModelWriting, EveryCallAnswersAsTheModelSays)
{
    int complete = 0;
    int lost = 0;
    for (unsigned run = 0; run < 300; ++run)
    {
        SCOPED_TRACE(run);
        random.seed(run);
        begin_file();
        StackModel model(below(6) == 0);
        const Stack stack = file->add_stack(model.empty);
        for (int i = 0; i < 25 && !model.lost && !HasFailure(); ++i)
            make_call(stack, model);
        ASSERT_FALSE(HasFailure());
        const WrittenFile chain = read_written_chain(content());
        ASSERT_EQ(chain.stacks.size(), model.state == 0 ? 1u : 0u);
        if (model.state == 0)
        {
            ++complete;
            const WrittenStack& written = chain.stacks[0];
            EXPECT_EQ(complaints_about(written), "");
            EXPECT_EQ(written.samples(), model.samples);
            EXPECT_EQ(written.data_present, model.empty ? 0u : 1u);
            if (model.variable)
            {
                EXPECT_EQ(written.sizes.back(), model.steps());
            }
        }
        lost += model.lost ? 1 : 0;
        file.reset();
        std::filesystem::remove(file_path);
    }
    EXPECT_GT(complete, 60);
    EXPECT_GT(lost, 10);
}

} // namespace
