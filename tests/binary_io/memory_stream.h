/// A stream over bytes in memory, to see what the readers and writers ask of a stream that is no file.
#pragma once

#include <VelaFile/VFileAccess.h>

#include "support/temporary_folder.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

namespace vela_test {

class MemoryStream : public VFileAccess
{
public:
    MemoryStream() = default;
    explicit MemoryStream(Bytes bytes, std::uint64_t start = 0) : content(std::move(bytes)), pos(start) {}
    virtual ~MemoryStream() = default;

    std::uint64_t tell() const override { return pos; }

    std::uint64_t seek(std::uint64_t target) override
    {
        pos = target == all_ones ? content.size() : target;
        return pos;
    }

    /// Fails with an exception that is not the library's own.
    void read(void* buffer, std::uint64_t size_bytes) override
    {
        read_sizes.push_back(size_bytes);
        if (pos > content.size() || size_bytes > content.size() - pos)
            throw std::out_of_range("the memory ends");
        const auto begin = content.begin() + static_cast<std::ptrdiff_t>(pos);
        std::copy_n(begin, size_bytes, static_cast<unsigned char*>(buffer));
        pos += size_bytes;
    }

    void write(const void* buffer, std::uint64_t size_bytes) override
    {
        write_sizes.push_back(size_bytes);
        if (pos + size_bytes > content.size())
            content.resize(pos + size_bytes);
        const unsigned char* source = static_cast<const unsigned char*>(buffer);
        std::copy_n(source, size_bytes, content.begin() + static_cast<std::ptrdiff_t>(pos));
        pos += size_bytes;
    }

    const Bytes& bytes() const { return content; }

    std::vector<std::uint64_t> read_sizes;  ///< of each transfer
    std::vector<std::uint64_t> write_sizes; ///< of each transfer

private:
    Bytes content;
    std::uint64_t pos = 0;
};

} // namespace vela_test
