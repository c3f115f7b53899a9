// What `write` and `commit` refuse, and what is left of the stack then.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"

#include <stdexcept>

using namespace vela_test;

namespace {

constexpr std::uint64_t all = VBFStackInterface::all_samples;

class WriteStates : public WritingTest
{
};

#define EXPECT_WRITE_ERROR(statement, text) EXPECT_VELA_ERROR_IN(statement, "VBFStackImp::write", vbf_sources, -1, text)

TEST_F(WriteStates, AFirstCallThatIsRefusedCannotBeMended)
{
    const Stack stack = add({3});
    const std::uint64_t size_before = on_disk().size();
    EXPECT_WRITE_ERROR(stack->commit(0), "Not enough samples written!");
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "abc", nullptr, 3), -1, "Trying to write to file in read mode!");
    EXPECT_WRITE_ERROR(stack->commit(0), "Not enough samples written!");
    EXPECT_WRITE_ERROR(file->close(), "Not enough samples written!");
    EXPECT_EQ(on_disk().size(), size_before);
    EXPECT_EQ(on_disk().u64(14), 0u);
}

TEST_F(WriteStates, NoFooterWithoutAHeader)
{
    add_complete({8});
    const std::uint64_t size_before = on_disk().size();
    const Stack stack = add({2, 0});
    EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "ab", "cd", 2), "Imaginary block given but stack is not complex!");
    EXPECT_VELA_ERROR(stack->commit(0), -1, "Trying to write to file in read mode!");
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(on_disk().size(), size_before);
    EXPECT_EQ(on_disk().u64(first_record_pos + stack_next_at), 0u);
    EXPECT_EQ(on_disk().u64(first_record_pos + stack_data_length_at), 8u);
}

TEST_F(WriteStates, AnOpenTypeThatNoRecordHasIsRefusedEachTimeAndNotTaken)
{
    add_complete({3});
    const Bytes samples(64, 1);
    const Stack stack = add({2, 0}, vela_dt_none);
    const std::uint64_t size_before = on_disk().size();
    for (const vela_dt type : {vela_dt_uint64, vela_dt_int64, vela_dt_complex | vela_dt_int16, vela_dt_complex | 4096})
        for (int repetition = 0; repetition < 3; ++repetition)
        {
            EXPECT_THROW_TEXT(stack->write(type, samples.data(), nullptr, 2), std::invalid_argument,
                              "Unsupported data type");
            EXPECT_EQ(stack->get_state(), 1);
            EXPECT_EQ(stack->get_dt(), vela_dt_none);
        }
    for (int repetition = 0; repetition < 2; ++repetition)
        EXPECT_THROW_TEXT(stack->write(vela_dt_int16, samples.data(), samples.data(), 2), std::invalid_argument,
                          "Unsupported data type");
    EXPECT_WRITE_ERROR(file->close(), "Stack data type not set. Cannot commit stack to file!");
    EXPECT_EQ(on_disk().size(), size_before);
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    VBFFile& opened = reopen();
    ASSERT_EQ(opened->number_of_stacks(), 2u);
    EXPECT_EQ(samples_of(*opened->get_stack(0)), counted_bytes(3));
    EXPECT_EQ(samples_of(*opened->get_stack(1)), (Bytes{'a', 'b'}));
}

TEST_F(WriteStates, MoreBytesThanCanBeCountedAreRefusedBeforeAnythingIsWritten)
{
    const Stack stack = file->add_stack(true);
    stack->create({std::uint64_t{1} << 31, std::uint64_t{1} << 30}, vela_dt_double);
    const std::uint64_t size_before = on_disk().size();
    for (int repetition = 0; repetition < 2; ++repetition)
    {
        EXPECT_WRITE_ERROR(stack->commit(0), "The size increases the maximum size");
        EXPECT_EQ(stack->get_state(), 1);
    }
    EXPECT_EQ(on_disk().size(), size_before);
}

TEST_F(WriteStates, AsManyBytesAsCanBeCountedAreWritten)
{
    const Stack stack = file->add_stack(true);
    stack->create({std::uint64_t{1} << 31, std::uint64_t{1} << 30}, vela_dt_int32);
    stack->commit(0);
    std::uint64_t pos = std::uint64_t{1} << 60;
    std::int32_t sample = -1;
    EXPECT_EQ(reopen()->get_stack(0)->read(vela_dt_int32, &sample, nullptr, 1, pos), 1u);
    EXPECT_EQ(sample, 0);
}

TEST_F(WriteStates, ATypeWithoutSizeIsRefusedBeforeAnythingIsWritten)
{
    const Stack stack = add({2}, vela_dt_none);
    EXPECT_THROW_TEXT(stack->write(vela_dt_char, "ab", nullptr, 2), std::invalid_argument, "Unsupported data type");
    const std::uint64_t size_before = on_disk().size();
    EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "ab", nullptr, 2),
                       "Invalid on-the-fly conversion from 'uint8' to 'char'!");
    EXPECT_EQ(on_disk().size(), size_before);
    EXPECT_EQ(stack->get_state(), 1);
}

TEST_F(WriteStates, ACopyOfAStackCannotTakeItsPlace)
{
    const Stack first = add({2});
    const Stack copy = file->get_stack(0);
    EXPECT_VELA_ERROR_IN(copy->write(vela_dt_uint8, "xy", nullptr, 2), "VBFFileImp::on_stack_finished", vbf_sources, -1,
                         "Invalid call to on_stack_finished()!");
    EXPECT_VELA_ERROR(copy->commit(0), -1, "File not open!");
    EXPECT_EQ(on_disk().u64(14), 0u);
    first->write(vela_dt_uint8, "ab", nullptr, 2);
    VBFFile& opened = reopen();
    ASSERT_EQ(opened->number_of_stacks(), 1u);
    EXPECT_EQ(samples_of(*opened->get_stack(0)), (Bytes{'a', 'b'}));
}

class VariableStack : public WritingTest
{
};

TEST_F(VariableStack, AllSamplesInALaterCallAreTooMany)
{
    const Stack stack = add({0});
    stack->write(vela_dt_uint8, "a", nullptr, 1);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "b", nullptr, all), -1,
                      "Trying to write more samples than the stack is long!");
    stack->commit(0);
    EXPECT_EQ(reopen()->get_stack(0)->get_sizes(), Sizes{1});
}

TEST_F(VariableStack, WhoseStepsHaveNoSamplesTakesNone)
{
    const Stack stack = add({0, 3, 0});
    const std::uint64_t size_before = on_disk().size();
    EXPECT_VELA_ERROR_IN(stack->write(vela_dt_uint8, "a", nullptr, 1), "VBFStackImp::write", vbf_sources, -1,
                         "Not on sample boundary!");
    EXPECT_EQ(on_disk().size(), size_before);
    EXPECT_EQ(stack->get_state(), 1);
    stack->commit(0);
    EXPECT_EQ(reopen()->get_stack(0)->get_sizes(), (Sizes{0, 3, 0}));
}

TEST_F(VariableStack, CannotGrowBeyondItsHeader)
{
    const Stack stack = add({1, 0});
    const std::uint64_t size_before = on_disk().size();
    EXPECT_VELA_ERROR_IN(stack->write(vela_dt_uint8, "a", nullptr, std::uint64_t{1} << 32), "VBFStackImp::write",
                         vbf_sources, -1, "Size of axis 1 does not fit the file format!");
    EXPECT_EQ(on_disk().size(), size_before);
    stack->write(vela_dt_uint8, "a", nullptr, 1);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "b", nullptr, 0xffffffff), -1,
                      "Size of axis 1 does not fit the file format!");
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "b", nullptr, all - 1), -1,
                      "Size of axis 1 does not fit the file format!");
    stack->commit(0);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), Bytes{'a'});
}

TEST_F(VariableStack, OfSixAxesTakesNoSamplesThatNobodyCouldRead)
{
    const Stack stack = add({1, 1, 1, 1, 1, 0});
    const std::uint64_t size_before = on_disk().size();
    EXPECT_THROW_TEXT(stack->write(vela_dt_uint8, "a", nullptr, 1), std::invalid_argument,
                      "Unsupported number of sizes");
    EXPECT_EQ(stack->get_state(), 1);
    EXPECT_EQ(on_disk().size(), size_before);
    VBFFile& opened = reopen();
    ASSERT_EQ(opened->number_of_stacks(), 1u);
    EXPECT_EQ(opened->get_stack(0)->get_sizes(), (Sizes{1, 1, 1, 1, 1, 0}));
}

}
