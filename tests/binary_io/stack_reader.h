/// Reads the samples of a stack as far as its header tells how, without what stands behind the data.
#pragma once

#include <VelaBase/vela_dt.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include "binary_io/manifest.h"
#include "binary_io/vbf_file_test.h"

#include <cstdint>

namespace vela_test {

/// A file with its chain, whose stacks are read through segments.
class StackReader
{
public:
    explicit StackReader(const DataFile& data_file) : file(file_name(data_file.path()), VFile::read_mode)
    {
        file.seek(data_file.start());
        chain = scan_chain(file);
    }

    const VBFChainEntry& entry(std::size_t stack) const { return chain.stacks.at(stack); }
    const VBFStackHeader& header(std::size_t stack) const { return entry(stack).header; }

    std::size_t stack_count() const { return chain.stacks.size(); }

    bool is_compressed(std::size_t stack) const { return level(stack) > 0; }

    std::uint64_t sample_size_bytes(std::size_t stack) const
    {
        return vela_dt_get_size(static_cast<std::uint32_t>(copied(header(stack).data_type)));
    }

    std::uint64_t size_bytes(std::size_t stack) const
    {
        std::uint64_t size = sample_size_bytes(stack);
        for (std::uint32_t i = 0; i < copied(header(stack).rank); ++i)
            size *= copied(header(stack).dimension_sizes[i]);
        return size;
    }

    void start(VZippedSegment& segment, std::size_t stack)
    {
        segment.init_r(file, level(stack), chain.stacks.at(stack).data_pos, copied(header(stack).data_length_on_disk),
                       size_bytes(stack));
    }

private:
    int level(std::size_t stack) const
    {
        return copied(header(stack).compression_type) == 1 ? copied(header(stack).compression_level) : 0;
    }

    VFile file;
    VBFChain chain;
};

/// The next bytes, into a buffer that held something else.
inline Bytes read_bytes(VZippedSegment& segment, std::uint64_t size_bytes)
{
    Bytes bytes(size_bytes, 0xcd);
    segment.read(bytes.data(), bytes.size());
    return bytes;
}

} // namespace vela_test
