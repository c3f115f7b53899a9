/// Files that tests write through the library and then look at byte by byte.
#pragma once

#include <VelaBinaryIO/VBFFile.h>

#include "support/temporary_folder.h"
#include "support/vbf_bytes.h"

#include <bit>
#include <cstdint>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace vela_test {

using Stack = boost::shared_ptr<VBFStackInterface>;
using Sizes = std::vector<std::uint64_t>;

/// Numbers and texts at given positions.
class ByteMap
{
public:
    explicit ByteMap(Bytes in_bytes) : bytes(std::move(in_bytes)) {}

    std::uint64_t number(std::uint64_t position, int width_bytes) const
    {
        std::uint64_t value = 0;
        for (int i = width_bytes - 1; i >= 0; --i)
            value = value << 8 | bytes.at(position + static_cast<std::uint64_t>(i));
        return value;
    }

    std::uint32_t u32(std::uint64_t position) const { return static_cast<std::uint32_t>(number(position, 4)); }
    std::int32_t i32(std::uint64_t position) const { return static_cast<std::int32_t>(u32(position)); }
    std::uint64_t u64(std::uint64_t position) const { return number(position, 8); }
    double f64(std::uint64_t position) const { return std::bit_cast<double>(u64(position)); }

    std::string text(std::uint64_t position, std::uint64_t length) const
    {
        std::string result;
        for (std::uint64_t i = 0; i < length; ++i)
            result += static_cast<char>(bytes.at(position + i));
        return result;
    }

    /// A text behind its length; `position` moves behind it.
    std::string string(std::uint64_t& position) const
    {
        const std::uint32_t length = u32(position);
        const std::string result = text(position + 4, length);
        position += 4 + length;
        return result;
    }

    std::uint64_t size() const { return bytes.size(); }

private:
    Bytes bytes;
};

/// Where failures of files and stacks come from.
constexpr const char* vbf_sources = "sources/binary_io";

/// Positions in a file of version 2 without a description.
constexpr std::uint64_t first_record_pos = 34;
constexpr std::uint64_t stack_header_size = 368;
constexpr std::uint64_t stack_footer_size = 1444;

/// `count` bytes 0, 1, 2 and so on.
inline Bytes counted_bytes(std::size_t count)
{
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    return bytes;
}

/// A test with a file that is open for writing.
class WritingTest : public FolderTest
{
protected:
    WritingTest() : file(file_name(path("written.vbf")), VFile::write_mode) {}

    Stack add(const Sizes& sizes, int dt = vela_dt_uint8)
    {
        const Stack stack = file->add_stack(false);
        stack->create(sizes, dt);
        return stack;
    }

    /// A stack of bytes with all its samples.
    Stack add_complete(const Sizes& sizes)
    {
        const Stack stack = add(sizes);
        const Bytes samples = counted_bytes(stack->get_number_of_elements());
        stack->write(vela_dt_uint8, samples.data(), nullptr, VBFStackInterface::all_samples);
        return stack;
    }

    /// What is on disk, whether the file is open or not.
    ByteMap on_disk() const { return ByteMap(get_bytes(path("written.vbf"))); }

    ByteMap closed()
    {
        file->close();
        return on_disk();
    }

    VBFFile& reopen(VFile::mode mode = VFile::read_mode)
    {
        file->close();
        file.open(file_name(path("written.vbf")), mode);
        return file;
    }

    VBFFile file;
};

/// All samples in their own type.
inline Bytes samples_of(VBFStackInterface& stack)
{
    Bytes samples(stack.get_size(vela_dt_none), 0xcd);
    stack.read(stack.get_dt(), samples.data(), nullptr);
    return samples;
}

} // namespace vela_test
