// What `write` and `commit` demand and how a stack goes through its states.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"

#include <VelaStacks/VStackInfo.h>

#include <stdexcept>
#include <vector>

using namespace vela_test;

namespace {

constexpr std::uint64_t all = VBFStackInterface::all_samples;

class WriteStates : public WritingTest
{
};

#define EXPECT_WRITE_ERROR(statement, text) EXPECT_VELA_ERROR_IN(statement, "VBFStackImp::write", vbf_sources, -1, text)

TEST_F(WriteStates, OneCallWithAllSamplesIsEnough)
{
    for (const std::uint64_t count : {std::uint64_t{4}, all})
    {
        const Stack stack = file->add_stack(false);
        EXPECT_EQ(stack->get_state(), -1);
        stack->create({2, 2}, vela_dt_uint8);
        EXPECT_EQ(stack->get_state(), 1);
        stack->write(vela_dt_uint8, "abcd", nullptr, count);
        EXPECT_EQ(stack->get_state(), 0);
        EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "abcd", nullptr, 4),
                           "Stack is already complete. Invalid call to write()!");
        EXPECT_WRITE_ERROR(stack->commit(0), "Stack is already complete. Invalid call to write()!");
    }
    EXPECT_EQ(reopen()->number_of_stacks(), 2u);
}

TEST_F(WriteStates, SamplesMayComeInPieces)
{
    const Stack stack = add({5});
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    EXPECT_EQ(stack->get_state(), 2);
    stack->write(vela_dt_uint8, "c", nullptr, 1);
    EXPECT_EQ(stack->get_state(), 2);
    stack->write(vela_dt_uint8, "de", nullptr, 2);
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b', 'c', 'd', 'e'}));
}

TEST_F(WriteStates, AStackWithoutDescriptionCannotBeWritten)
{
    const Stack stack = file->add_stack(false);
    EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "a", nullptr, 1),
                       "Stack not ready to be commited. Meta-information missing!");
    EXPECT_WRITE_ERROR(file->close(), "Stack not ready to be commited. Meta-information missing!");
    EXPECT_TRUE(file->is_open());
}

TEST_F(WriteStates, AStackTakesOneDescription)
{
    const Stack stack = add({2});
    const VStackInfo info;
    const VStackInfoInterface* const description = info;
    EXPECT_VELA_ERROR(stack->create({2}, vela_dt_uint8), -1, "Cannot set data layout!");
    EXPECT_VELA_ERROR(stack->create(description, 0), -1, "Cannot set data layout!");
}

TEST_F(WriteStates, TooManySamplesAreRefused)
{
    const Stack stack = add({3});
    stack->write(vela_dt_uint8, "a", nullptr, 1);
    EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "bcd", nullptr, 3),
                       "Trying to write more samples than the stack is long!");
    EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "bcd", nullptr, all),
                       "Trying to write more samples than the stack is long!");
    stack->write(vela_dt_uint8, "bc", nullptr, 2);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b', 'c'}));
}

TEST_F(WriteStates, ACommitDemandsAllSamples)
{
    const Stack stack = add({3});
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    EXPECT_WRITE_ERROR(stack->commit(0), "Not enough samples written!");
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_WRITE_ERROR(file->add_stack(false), "Not enough samples written!");
    EXPECT_EQ(file->number_of_stacks(), 1u);
    stack->write(vela_dt_uint8, "c", nullptr, 1);
    EXPECT_EQ(stack->get_state(), 0);
}

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

TEST_F(WriteStates, AnEmptyStackTakesNoSamples)
{
    const Stack stack = file->add_stack(true);
    stack->create({2, 2}, vela_dt_uint16);
    for (const std::uint64_t count : {std::uint64_t{1}, all})
        EXPECT_WRITE_ERROR(stack->write(vela_dt_uint16, "ab", nullptr, count), "Trying to write to empty stack!");
    EXPECT_EQ(stack->get_state(), 1);
    stack->commit(0);
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_EQ(samples_of(*stack), Bytes(8, 0));
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), Bytes(8, 0));
}

TEST_F(WriteStates, AnOpenTypeIsThatOfTheFirstSamples)
{
    const Stack plain = add({2}, vela_dt_none);
    plain->write(vela_dt_int16, "abcd", nullptr, 2);
    EXPECT_EQ(plain->get_dt(), vela_dt_int16);
    const Stack complex = add({1}, vela_dt_none);
    const float real = 1.0F;
    const float imaginary = 2.0F;
    complex->write(vela_dt_single, &real, &imaginary, 1);
    EXPECT_EQ(complex->get_dt(), vela_dt_single | vela_dt_complex);
    VBFFile& opened = reopen();
    EXPECT_EQ(opened->get_stack(0)->get_dt(), vela_dt_int16);
    EXPECT_EQ(opened->get_stack(1)->get_dt(), vela_dt_single | vela_dt_complex);
}

TEST_F(WriteStates, ACommitOfAnOpenTypeIsRefused)
{
    const Stack stack = add({2, 0}, vela_dt_none);
    EXPECT_WRITE_ERROR(stack->commit(0), "Stack data type not set. Cannot commit stack to file!");
    EXPECT_EQ(stack->get_state(), 1);
    EXPECT_WRITE_ERROR(file->add_stack(false), "Stack data type not set. Cannot commit stack to file!");
    stack->commit(vela_dt_double);
    EXPECT_EQ(reopen()->get_stack(0)->get_dt(), vela_dt_double);
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

TEST_F(WriteStates, ABufferTypeWithoutSizeIsRefusedBeforeAnythingIsWritten)
{
    const Stack stack = add({2});
    const std::uint64_t size_before = on_disk().size();
    EXPECT_WRITE_ERROR(stack->write(vela_dt_cell, "ab", nullptr, 2),
                       "Invalid on-the-fly conversion from 'cell' to 'uint8'!");
    EXPECT_EQ(on_disk().size(), size_before);
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b'}));
}

TEST_F(WriteStates, AConversionThatIsNotThereLeavesTheStackOpen)
{
    const Stack stack = add({1});
    const std::complex<float> value(1.0F, 2.0F);
    EXPECT_WRITE_ERROR(stack->write(vela_dt_single | vela_dt_complex, &value, nullptr, 1),
                       "Invalid on-the-fly conversion from 'cplx_single' to 'uint8'!");
    EXPECT_EQ(stack->get_state(), 2);
    stack->write(vela_dt_uint8, "a", nullptr, 1);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), Bytes{'a'});
}

TEST_F(WriteStates, AnImaginaryBlockNeedsAComplexStackAndARealBuffer)
{
    const Stack complex = add({2}, vela_dt_single | vela_dt_complex);
    const std::vector<float> parts = {1.0F, 2.0F, 3.0F, 4.0F};
    EXPECT_WRITE_ERROR(complex->write(vela_dt_single | vela_dt_complex, parts.data(), parts.data(), 1),
                       "Imaginary block given but buffer is already complex!");
    EXPECT_EQ(complex->get_state(), 2);
}

TEST_F(WriteStates, ImaginaryPartsComeFromTheirOwnBuffer)
{
    const Stack stack = add({3}, vela_dt_double | vela_dt_complex);
    file->set_chunk_size(16); // one sample
    const std::vector<short> real = {1, -2, 3};
    const std::vector<short> imaginary = {10, 20, -30};
    stack->write(vela_dt_int16, real.data(), imaginary.data(), 3);
    std::vector<std::complex<double>> read(3);
    reopen()->get_stack(0)->read(vela_dt_double | vela_dt_complex, read.data(), nullptr);
    EXPECT_EQ(read, (std::vector<std::complex<double>>{{1, 10}, {-2, 20}, {3, -30}}));
}

TEST_F(WriteStates, SamplesAreConverted)
{
    for (const std::uint32_t chunk_size : {0u, 1u, 7u, 4096u})
    {
        file->set_chunk_size(chunk_size);
        const Stack stack = add({5}, vela_dt_uint16);
        const std::vector<double> values = {0.0, 1.9, 2.0, 65535.0, 70000.0};
        stack->write(vela_dt_double, values.data(), nullptr, 5);
        std::vector<std::uint16_t> read(5);
        stack->read(vela_dt_uint16, read.data(), nullptr);
        EXPECT_EQ(read, (std::vector<std::uint16_t>{0, 1, 2, 65535, 70000 - 65536}));
    }
}

TEST_F(WriteStates, CompressionAndFlushBlockAreSetBeforeWriting)
{
    const Stack stack = file->add_stack(false);
    stack->set_compression(1, 3);
    EXPECT_VELA_ERROR_IN(stack->set_flush_block_size(7), "VBFStackImp::set_flush_block_size", vbf_sources, -1,
                         "Flush block size can only be set before starting to write!");
    stack->create({2}, vela_dt_uint8);
    stack->set_flush_block_size(7);
    stack->write(vela_dt_uint8, "a", nullptr, 1);
    EXPECT_VELA_ERROR_IN(stack->set_compression(0, 0), "VBFStackImp::set_compression", vbf_sources, -1,
                         "Cannot change compression mode!");
    EXPECT_VELA_ERROR(stack->set_flush_block_size(7), -1, "Flush block size can only be set before starting to write!");
    int type = -1;
    int level = -1;
    stack->get_compression(type, level);
    EXPECT_EQ(type, 1);
    EXPECT_EQ(level, 3);
}

TEST_F(WriteStates, NewStacksHaveTheDefaultCompression)
{
    file->set_default_compression(1, 7);
    int type = -1;
    int level = -1;
    file->add_stack(true)->get_compression(type, level);
    EXPECT_EQ(type, 1);
    EXPECT_EQ(level, 7);
}

TEST_F(WriteStates, AnUnfinishedStackIsCommittedByTheNextOne)
{
    const Stack grown = add({2, 0});
    grown->write(vela_dt_uint8, "abcd", nullptr, 4);
    EXPECT_EQ(grown->get_state(), 2);
    const Stack next = add({1});
    EXPECT_EQ(grown->get_state(), 0);
    next->write(vela_dt_uint8, "x", nullptr, 1);
    EXPECT_EQ(reopen()->get_stack(0)->get_sizes(), (Sizes{2, 2}));
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

TEST_F(WriteStates, AfterCloseTheStackKnowsNoFile)
{
    const Stack stack = add_complete({2});
    const Stack open = file->add_stack(true);
    open->create({2}, vela_dt_uint8);
    file->close();
    EXPECT_WRITE_ERROR(stack->commit(0), "Cannot access VBFStack, file has been closed!");
    EXPECT_WRITE_ERROR(open->write(vela_dt_uint8, "ab", nullptr, 2), "Cannot access VBFStack, file has been closed!");
    EXPECT_VELA_ERROR(file->add_stack(false), -1, "File not open for writing!");
    file->close();
    file->finish();
}

TEST_F(WriteStates, AFileForReadingTakesNoStacks)
{
    add_complete({2});
    EXPECT_VELA_ERROR_IN(reopen()->add_stack(false), "VBFFileImp::add_stack", vbf_sources, -1,
                         "File not open for writing!");
    EXPECT_VELA_ERROR(VBFFile()->add_stack(false), -1, "File not open for writing!");
}

}
