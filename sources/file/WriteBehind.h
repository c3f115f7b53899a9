/// Many small writes to a file through one buffer.
#pragma once

#include <VelaFile/VFile.h>
#include <VelaFile/VFileAccess.h>

#include <cstdint>
#include <vector>

namespace Vela::detail {

/// A writing face over a `VFile`, from where the file stands. Nothing is sure to be in the file before `flush`, which is
/// not called on its own: what is pending when this ends is dropped.
///
/// The file must not be moved by others meanwhile. A failing write names the bytes of the transfer, not of the field.
class WriteBehind final : public VFileAccess
{
public:
    explicit WriteBehind(VFile& in_file);
    WriteBehind(const WriteBehind&) = delete;
    WriteBehind& operator=(const WriteBehind&) = delete;
    ~WriteBehind() = default;

    std::uint64_t tell() const override { return position; }
    std::uint64_t seek(std::uint64_t pos) override;
    /// @throws VelaError always: this stream only writes
    void read(void* buffer, std::uint64_t size_bytes) override;
    void write(const void* buffer, std::uint64_t size_bytes) override;

    void flush();

private:
    VFile& file;
    std::uint64_t position;
    std::vector<unsigned char> pending;
};

} // namespace Vela::detail
