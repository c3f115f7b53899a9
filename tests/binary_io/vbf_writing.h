/// A fixture for tests that write VBF files with the library and take them apart without it.
#pragma once

#include "binary_io/sample_types.h"
#include "binary_io/written_vbf.h"
#include "support/dissected_vbf.h"
#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace vela_test {

constexpr std::uint64_t all_samples = VBFStackInterface::all_samples;

/// Failures of the two classes, with the place that they name.
#define EXPECT_FILE_ERROR(statement, operation, id, text)                                                              \
    EXPECT_VELA_ERROR_IN(statement, "VBFFileImp::" operation, "sources/binary_io", id, text)
#define EXPECT_STACK_ERROR(statement, operation, id, text)                                                             \
    EXPECT_VELA_ERROR_IN(statement, "VBFStackImp::" operation, "sources/binary_io", id, text)

/// The bytes of numbers, as they lie in memory and on disk.
template <class T>
Bytes bytes_of_numbers(const std::vector<T>& numbers)
{
    Bytes bytes(numbers.size() * sizeof(T));
    if (!bytes.empty())
        std::memcpy(bytes.data(), numbers.data(), bytes.size());
    return bytes;
}

/// 1, 2, 3 and so on.
inline Bytes numbered_bytes(std::size_t count)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(i + 1);
    return bytes;
}

/// The text of the only entry that `close` puts into the dictionary of a file without creator and UUID.
inline const std::string& plain_document()
{
    static const std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
                                    "<ome:OME xmlns:ome=\"http://www.openmicroscopy.org/Schemas/OME/2015-01\""
                                    " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
                                    " xsi:schemaLocation=\"http://www.openmicroscopy.org/Schemas/OME/2015-01"
                                    " http://www.openmicroscopy.org/Schemas/OME/2015-01/ome.xsd\"></ome:OME>";
    return text;
}

/// A new stack of `file` with these sizes and this type.
inline Stack add_to(VBFFile& file, const Sizes& sizes, vela_dt dt, bool empty = false)
{
    const Stack stack = file->add_stack(empty);
    stack->create(sizes, dt);
    return stack;
}

/// Writes all bytes of `data` as samples of the type of the stack.
inline void write_bytes(const Stack& stack, const Bytes& data)
{
    stack->write(stack->get_dt(), data.data(), nullptr, data.size() / size_of(stack->get_dt()));
}

class VbfWritingTest : public FolderTest
{
protected:
    /// Opens a new file. Its name is new each time: some file systems wait for the disk when a file is cut and written
    /// anew.
    VBFFile& begin_file()
    {
        file_path = path("written" + std::to_string(files_begun++) + ".vbf");
        file.open(file_name(file_path), VFile::write_mode);
        return file;
    }

    Stack add(const Sizes& sizes, vela_dt dt = vela_dt_uint8, bool empty = false)
    {
        return add_to(file, sizes, dt, empty);
    }

    /// A stack of 4 by 3 bytes, 1 to 12, that is complete.
    Stack add_whole(const std::string& name)
    {
        const Stack stack = add({4, 3});
        stack->set_name(name);
        write_bytes(stack, numbered_bytes(12));
        return stack;
    }

    /// What is on disk now.
    Bytes content() const { return get_bytes(file_path); }
    WrittenFile on_disk() const { return read_written(content()); }

    /// Closes the file and takes it apart; nothing is wrong with it.
    WrittenFile close_file()
    {
        file->close();
        const WrittenFile written = on_disk();
        EXPECT_EQ(complaints_about(written), "");
        return written;
    }

    /// The same for a file with one stack.
    WrittenStack close_file_with_one_stack()
    {
        const WrittenFile written = close_file();
        EXPECT_EQ(written.stacks.size(), 1u);
        return written.stacks.empty() ? WrittenStack() : written.stacks.front();
    }

    VBFFile file;
    std::string file_path;

private:
    int files_begun = 0;
};

} // namespace vela_test
