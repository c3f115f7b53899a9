// Progress callbacks that do more than look on: they throw, and they close, destroy, finish, read or write what is in
// use.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"

#include <functional>
#include <stdexcept>

using namespace vela_test;

namespace {

constexpr std::uint64_t all = VBFStackInterface::all_samples;
constexpr const char* closed_text = "Cannot access VBFStack, file has been closed!";
constexpr const char* complete_text = "Stack is already complete. Invalid call to write()!";

/// Does something in the call with this number, counted from 1.
struct Callback
{
    std::function<void()> action;
    std::size_t at = 1;
    std::size_t calls = 0;
};

int act(std::uint64_t, void* user)
{
    Callback& callback = *static_cast<Callback*>(user);
    if (++callback.calls == callback.at)
        callback.action();
    return 1;
}

class Callbacks : public WritingTest
{
protected:
    /// From now on chunks have two bytes, and the call number `at` does this.
    void in_call(std::size_t at, std::function<void()> action)
    {
        callback = {std::move(action), at};
        file->set_chunk_size(2);
        file->set_progress_callback(act, &callback);
    }

    void leave_alone() { file->set_progress_callback(nullptr, nullptr); }

    /// "abcdef" in a file that is open for reading, as it is or compressed.
    Stack six(int level)
    {
        const Stack stack = add({6});
        stack->set_compression(1, level);
        stack->write(vela_dt_uint8, "abcdef", nullptr, 6);
        return reopen()->get_stack(0);
    }

    Callback callback;
};

class WriteCallbacks : public Callbacks
{
};

class ReadCallbacks : public Callbacks
{
protected:
    /// A read that converts, and one that does not.
    static constexpr vela_dt types[] = {vela_dt_uint8, vela_dt_uint16};

    Bytes buffer = Bytes(24, 0xcd);
    std::uint64_t pos = 1;
};

#define EXPECT_WRITE_ERROR(statement, text) EXPECT_VELA_ERROR_IN(statement, "VBFStackImp::write", vbf_sources, -1, text)
#define EXPECT_READ_ERROR(statement, text)                                                                             \
    EXPECT_VELA_ERROR_IN(statement, "VBFStackImp::read_imp", vbf_sources, -1, text)

} // namespace

TEST_F(WriteCallbacks, WhatOneThrowsComesOutAndTheChunkDoesNotCount)
{
    const Stack stack = add({6});
    in_call(2, [] { throw std::range_error("of the callback"); });
    EXPECT_THROW_TEXT(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), std::range_error, "of the callback");
    EXPECT_EQ(callback.calls, 2u);
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(on_disk().text(first_record_pos + stack_header_size, 4), "abcd");
    EXPECT_WRITE_ERROR(stack->commit(0), "Not enough samples written!");
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(on_disk().u64(14), 0u);
}

TEST_F(WriteCallbacks, WhatOneThrowsLeavesTheCountedStepsOfAVariableStack)
{
    const Stack stack = add({2, 0});
    in_call(3, [] { throw std::range_error("of the callback"); });
    EXPECT_THROW(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), std::range_error);
    stack->commit(0);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b', 'c', 'd'}));
}

TEST_F(WriteCallbacks, OneThatClosesTheFileHearsThatSamplesAreMissing)
{
    const Stack stack = add({6});
    in_call(2, [this] { file->close(); });
    EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), "Not enough samples written!");
    EXPECT_TRUE(file->is_open());
    EXPECT_EQ(stack->get_state(), 2);
}

TEST_F(WriteCallbacks, OneThatClosesTheFileOfAVariableStackEndsTheWrite)
{
    const Stack stack = add({2, 0});
    in_call(2, [this] { file->close(); });
    EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), closed_text);
    EXPECT_EQ(callback.calls, 2u);
    EXPECT_EQ(stack->get_sizes(), (Sizes{2, 1}));
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b'}));
}

TEST_F(WriteCallbacks, OneThatDestroysTheFileEndsTheWrite)
{
    for (const int level : {0, 6})
        for (const Sizes& sizes : {Sizes{2, 0}, Sizes{6}})
        {
            file.open(file_name(path("written.vbf")), VFile::write_mode);
            const Stack stack = add(sizes);
            stack->set_compression(1, level);
            in_call(2, [this] { file.reset(); });
            EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), closed_text);
            EXPECT_EQ(callback.calls, 2u);
            EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), closed_text);
        }
}

TEST_F(WriteCallbacks, OneThatDestroysTheFileAndCancelsDoesOnlyThat)
{
    const Stack stack = add({6});
    file->set_progress_callback(
        [](std::uint64_t, void* user)
        {
            static_cast<VBFFile*>(user)->reset();
            return 0;
        },
        &file);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), -11, "Cancelled by user!");
    EXPECT_WRITE_ERROR(stack->commit(0), closed_text);
}

TEST_F(WriteCallbacks, OneThatFinishesTheStackLeavesItAsItIsOnDisk)
{
    Stack stack;
    const std::function<void()> ways[] = {
        [this] { file->finish(); },
        [&stack] { stack->commit(0); },
        [this] { file->add_stack(true)->create({1}, vela_dt_uint8); },
    };
    for (const std::function<void()>& finish : ways)
        for (const int level : {0, 6})
        {
            file.open(file_name(path("written.vbf")), VFile::write_mode);
            stack = add({2, 0});
            stack->set_compression(1, level);
            in_call(2, finish);
            EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), complete_text);
            EXPECT_EQ(callback.calls, 2u);
            EXPECT_EQ(stack->get_state(), 0);
            EXPECT_EQ(stack->get_sizes(), (Sizes{2, 1}));
            EXPECT_EQ(on_disk().u32(first_record_pos + stack_sizes_at + 4), 1u);
            leave_alone();
            VBFFile& opened = reopen();
            EXPECT_EQ(opened->get_stack(0)->get_sizes(), (Sizes{2, 1}));
            EXPECT_EQ(samples_of(*opened->get_stack(0)), (Bytes{'a', 'b'}));
        }
}

TEST_F(WriteCallbacks, OneThatWritesToTheStackTakesThePlaceOfWhatIsNotCountedYet)
{
    const Stack stack = add({6});
    in_call(1, [&stack] { stack->write(vela_dt_uint8, "12345", nullptr, 5); });
    EXPECT_WRITE_ERROR(stack->write(vela_dt_uint8, "abcdef", nullptr, 6),
                       "Trying to write more samples than the stack is long!");
    EXPECT_EQ(stack->get_state(), 2);
}

TEST_F(WriteCallbacks, OneMayReadAnotherStack)
{
    add_complete({3});
    const Stack stack = add({6});
    Bytes samples(3);
    in_call(2, [&] { file->get_stack(0)->read(vela_dt_uint8, samples.data(), nullptr); });
    stack->write(vela_dt_uint8, "abcdef", nullptr, 6);
    EXPECT_EQ(samples, counted_bytes(3));
    leave_alone();
    EXPECT_EQ(samples_of(*reopen()->get_stack(1)), (Bytes{'a', 'b', 'c', 'd', 'e', 'f'}));
}

TEST_F(ReadCallbacks, WhatOneThrowsComesOutAndTheReadCanBeRepeated)
{
    for (const int level : {0, 6})
        for (const vela_dt type : types)
        {
            file.open(file_name(path("written.vbf")), VFile::write_mode);
            const Stack stack = six(level);
            VFile& bytes = dynamic_cast<VFile&>(*file.shared());
            const std::uint64_t place = bytes.tell();
            in_call(2, [] { throw std::range_error("of the callback"); });
            EXPECT_THROW_TEXT(stack->read(type, buffer.data(), nullptr, 5, pos), std::range_error, "of the callback");
            EXPECT_EQ(callback.calls, 2u);
            EXPECT_EQ(pos, 1u);
            EXPECT_EQ(bytes.tell(), place);
            leave_alone();
            stack->read(vela_dt_uint8, buffer.data(), nullptr, 4, pos);
            EXPECT_EQ(slice(buffer, 0, 4), (Bytes{'b', 'c', 'd', 'e'}));
            pos = 1;
        }
}

TEST_F(ReadCallbacks, OneThatClosesTheFileEndsTheRead)
{
    for (const int level : {0, 6})
        for (const std::size_t at : {1u, 2u})
            for (const vela_dt type : types)
            {
                file.open(file_name(path("written.vbf")), VFile::write_mode);
                const Stack stack = six(level);
                in_call(at, [this] { file->close(); });
                EXPECT_READ_ERROR(stack->read(type, buffer.data(), nullptr, all, pos), closed_text);
                EXPECT_EQ(callback.calls, at);
                EXPECT_EQ(pos, 1u);
            }
}

TEST_F(ReadCallbacks, OneThatDestroysTheFileEndsTheRead)
{
    for (const int level : {0, 6})
        for (const std::size_t at : {1u, 2u})
            for (const vela_dt type : types)
            {
                file.open(file_name(path("written.vbf")), VFile::write_mode);
                const Stack stack = six(level);
                in_call(at, [this] { file.reset(); });
                EXPECT_READ_ERROR(stack->read(type, buffer.data(), nullptr, all, pos), closed_text);
                EXPECT_EQ(callback.calls, at);
                EXPECT_EQ(pos, 1u);
                EXPECT_READ_ERROR(stack->read(type, buffer.data(), nullptr, all, pos), closed_text);
            }
}

TEST_F(ReadCallbacks, OneThatDestroysTheFileAndThrowsDoesOnlyThat)
{
    const Stack stack = six(0);
    in_call(1,
            [this]
            {
                file.reset();
                throw std::range_error("of the callback");
            });
    EXPECT_THROW_TEXT(stack->read(vela_dt_uint8, buffer.data(), nullptr), std::range_error, "of the callback");
}

TEST_F(ReadCallbacks, OneThatDestroysTheFileEndsTheReadOfAWholeStack)
{
    six(6);
    in_call(2, [this] { file.reset(); });
    EXPECT_READ_ERROR(file->read_stack(0, 0), closed_text);
}

TEST_F(ReadCallbacks, OneMayReadTheSameStack)
{
    for (const int level : {0, 6})
        for (const std::uint64_t count : {std::uint64_t{1}, all})
        {
            file.open(file_name(path("written.vbf")), VFile::write_mode);
            const Stack stack = six(level);
            in_call(2,
                    [&]
                    {
                        std::uint64_t other_pos = 4;
                        unsigned char samples[2];
                        stack->read(vela_dt_uint8, samples, nullptr, count, other_pos);
                        EXPECT_EQ(samples[0], 'e');
                    });
            EXPECT_EQ(stack->read(vela_dt_uint8, buffer.data(), nullptr, 4, pos), 4u);
            EXPECT_EQ(slice(buffer, 0, 5), (Bytes{'b', 'c', 'd', 'e', 0xcd}));
            pos = 1;
        }
}

TEST_F(ReadCallbacks, OneMayFinishAFileThatIsBeingWritten)
{
    const Stack done = add_complete({6});
    const Stack grown = add({2, 0});
    grown->write(vela_dt_uint8, "xy", nullptr, 2);
    in_call(2, [this] { file->finish(); });
    done->read(vela_dt_uint8, buffer.data(), nullptr);
    EXPECT_EQ(slice(buffer, 0, 6), counted_bytes(6));
    EXPECT_EQ(grown->get_state(), 0);
    leave_alone();
    EXPECT_EQ(samples_of(*reopen()->get_stack(1)), (Bytes{'x', 'y'}));
}
