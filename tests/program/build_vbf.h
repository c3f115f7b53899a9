/// Builds VBF files byte by byte, without the library.
#pragma once

#include "support/temporary_folder.h"

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>
#include <zlib.h>

namespace vela_test {

/// Adds the bytes of numbers and texts to the end of a file.
class ByteWriter
{
public:
    template <class T>
    void put(T number)
    {
        unsigned char raw[sizeof number];
        std::memcpy(raw, &number, sizeof number);
        bytes.insert(bytes.end(), raw, raw + sizeof number);
    }
    void put_text(const std::string& text) { bytes.insert(bytes.end(), text.begin(), text.end()); }
    void put_bytes(const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

    template <class T>
    void set(std::uint64_t position, T number)
    {
        std::memcpy(bytes.data() + position, &number, sizeof number);
    }
    std::uint64_t position() const { return bytes.size(); }

    Bytes bytes;
};

struct StackRecipe
{
    std::vector<std::uint32_t> sizes;
    Bytes segment; ///< as on disk
    std::int32_t data_type = 1;
    std::int32_t compression_type = 0;
    std::int32_t compression_level = 0;
    std::string name;
    std::string description;
    std::vector<double> lengths; ///< missing ones are 1
    std::vector<double> offsets; ///< missing ones are 0
};

struct FileRecipe
{
    std::vector<StackRecipe> stacks;
    std::uint32_t format_version = 2;
    std::string description;
    bool closed = true;
};

/// 15 entries, as a stack header has them.
template <class T>
void put_15(ByteWriter& writer, const std::vector<T>& entries, std::size_t rank, T missing)
{
    for (std::size_t i = 0; i < 15; ++i)
        writer.put(i < entries.size() ? entries[i] : i < rank ? missing : T{});
}

/// A footer without anything but its neutral units, and the empty parts behind it.
inline void put_footer(ByteWriter& writer, std::size_t rank)
{
    const std::uint64_t start = writer.position();
    writer.put<std::uint32_t>(1444);
    writer.put_bytes(Bytes(124)); // flags of columns, length of the metadata
    for (int unit = 0; unit < 16; ++unit)
    {
        for (int exponent = 0; exponent < 9; ++exponent)
        {
            writer.put<std::int32_t>(0);
            writer.put<std::int32_t>(1);
        }
        writer.put(1.0);
    }
    writer.put_bytes(Bytes(16)); // flush points
    writer.put<std::uint64_t>(4);
    writer.put<std::uint64_t>(start + 1444 + 4 * rank + 4);
    writer.put<std::uint32_t>(0);
    writer.put_bytes(Bytes(4 * rank)); // labels
    writer.put_bytes(Bytes(4));        // tags
}

/// Gives the position of the field that leads to the next stack.
inline std::uint64_t put_stack(ByteWriter& writer, const StackRecipe& stack)
{
    const std::uint64_t start = writer.position();
    const std::size_t rank = stack.sizes.size();
    writer.put_text("VELA_BF_STACK\n\xff\xff");
    writer.put<std::uint32_t>(5);
    writer.put(static_cast<std::uint32_t>(rank));
    put_15<std::uint32_t>(writer, stack.sizes, rank, 0);
    put_15(writer, stack.lengths, rank, 1.0);
    put_15(writer, stack.offsets, rank, 0.0);
    writer.put(stack.data_type);
    writer.put(stack.compression_type);
    writer.put(stack.compression_level);
    writer.put(static_cast<std::uint32_t>(stack.name.size()));
    writer.put(static_cast<std::uint32_t>(stack.description.size()));
    writer.put<std::uint64_t>(1);
    writer.put<std::uint64_t>(stack.segment.size());
    writer.put<std::uint64_t>(0);
    writer.put_text(stack.name);
    writer.put_text(stack.description);
    writer.put_bytes(stack.segment);
    put_footer(writer, rank);
    return start + 360;
}

inline Bytes build_vbf(const FileRecipe& file)
{
    ByteWriter writer;
    writer.put_text("VELA_BF\n\xff\xff");
    writer.put(file.format_version);
    writer.put<std::uint64_t>(0);
    writer.put(static_cast<std::uint32_t>(file.description.size()));
    writer.put_text(file.description);
    const std::uint64_t meta_field = writer.position();
    if (file.format_version > 1)
        writer.put<std::uint64_t>(0);

    std::uint64_t next_field = 14;
    for (const StackRecipe& stack : file.stacks)
    {
        writer.set(next_field, writer.position());
        next_field = put_stack(writer, stack);
    }
    if (file.format_version > 1 && file.closed)
    {
        writer.set(meta_field, writer.position());
        writer.put<std::uint32_t>(0);
    }
    return writer.bytes;
}

/// A file of one stack.
inline Bytes build_vbf(const StackRecipe& stack)
{
    FileRecipe file;
    file.stacks.push_back(stack);
    return build_vbf(file);
}

/// A stack of plain samples.
template <class T>
StackRecipe plain_stack(std::vector<std::uint32_t> sizes, std::int32_t data_type, std::initializer_list<T> samples)
{
    ByteWriter writer;
    for (const T sample : samples)
        writer.put(sample);
    StackRecipe stack;
    stack.sizes = std::move(sizes);
    stack.data_type = data_type;
    stack.segment = writer.bytes;
    return stack;
}

/// One zlib stream.
inline Bytes deflated(const Bytes& bytes)
{
    uLongf length_bytes = compressBound(bytes.size());
    Bytes result(length_bytes);
    if (compress2(result.data(), &length_bytes, bytes.data(), bytes.size(), 6) != Z_OK)
        throw std::runtime_error("cannot deflate");
    result.resize(length_bytes);
    return result;
}

/// What one zlib stream holds.
inline Bytes inflated(const Bytes& bytes, std::size_t size_bytes)
{
    Bytes result(size_bytes);
    uLongf length_bytes = size_bytes;
    if (uncompress(result.data(), &length_bytes, bytes.data(), bytes.size()) != Z_OK || length_bytes != size_bytes)
        throw std::runtime_error("cannot inflate");
    return result;
}

/// The samples of the example file, inflated in one piece.
inline Bytes golgi_samples()
{
    const Bytes file = get_bytes(VELA_GOLGI_FILE);
    return inflated(Bytes(file.begin() + 442, file.begin() + 442 + 486477), 147 * 137 * 25 * 2);
}

} // namespace vela_test
