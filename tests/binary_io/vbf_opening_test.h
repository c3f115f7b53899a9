/// A fixture for tests that open and attach files of two stacks.
#pragma once

#include "binary_io/vbf_reading_test.h"

namespace vela_test {

constexpr VFile::mode no_mode = static_cast<VFile::mode>(-1);
constexpr VFile::mode unknown_mode = static_cast<VFile::mode>(3);
constexpr const char* no_header = "No VBF file header found!";
constexpr const char* bad_position = "Invalid stack position specified in header!";
constexpr const char* bad_stack_header = "Stack header not in vbf format!";
constexpr const char* function_attach = "VBFFileImp::attach_imp";

class VbfOpening : public VbfReadingTest
{
protected:
    /// A file of format version 2 with two stacks.
    static VbfRecords two_stacks(std::size_t foreign_bytes = 0)
    {
        VbfRecords built(2, "two stacks", foreign_bytes);
        built.add_stack_record(bytes_record({1, 2, 3}));
        built.add_stack_record(bytes_record({4, 5, 6, 7}));
        built.add_dictionary();
        return built;
    }

    /// Nothing keeps the file from being opened.
    void expect_free(const std::string& name = "test.vbf")
    {
        VFile other;
        EXPECT_NO_THROW(other.open(file_name(path(name)), VFile::read_mode));
    }

    void expect_not_open()
    {
        EXPECT_FALSE(file->is_open());
        EXPECT_EQ(file->get_mode(), no_mode);
        expect_free();
    }
};

} // namespace vela_test
