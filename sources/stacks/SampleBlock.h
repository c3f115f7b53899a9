/// The private samples of a stack: bytes that grow.
#pragma once

#include <VelaBase/export.h>

#include <boost/shared_ptr.hpp>
#include <cstdint>

namespace Vela {
VELA_ABI_NAMESPACE_BEGIN

/// New bytes are 0. Large blocks get their zeros from the system, which has them anyway, and not by being written.
class SampleBlock
{
public:
    SampleBlock() = default;
    SampleBlock(const SampleBlock&) = delete;
    SampleBlock& operator=(const SampleBlock&) = delete;
    ~SampleBlock();

    std::uint64_t size() const { return size_bytes; }
    unsigned char* data() { return size_bytes == 0 ? nullptr : bytes; }

    /// Old bytes stay. The memory of a block that shrinks is kept.
    /// @throws std::bad_alloc; the block is as it was then
    void resize(std::uint64_t new_size_bytes);

    /// Empties the block and gives its memory back.
    void clear();

    /// New bytes that were left as they are become 0.
    void set_the_rest();

    class Overwriting;

private:
    unsigned char* bytes = nullptr;
    std::uint64_t size_bytes = 0;
    std::uint64_t capacity_bytes = 0;
    std::uint64_t unset_from = all_set; ///< behind here bytes are not set yet
    bool leaves_new_bytes = false;

    static constexpr std::uint64_t all_set = UINT64_MAX;
    void set_new_bytes(std::uint64_t from, std::uint64_t to);
};

/// While it lives, the new bytes of a block are left as they are, since all of them are about to be written. Those that
/// were not written become 0 at the end. The block stays until then, also if its stack lets go of it.
class SampleBlock::Overwriting
{
public:
    /// `overwritten` may be null: a block that does not grow.
    explicit Overwriting(boost::shared_ptr<SampleBlock> overwritten);
    Overwriting(const Overwriting&) = delete;
    Overwriting& operator=(const Overwriting&) = delete;
    ~Overwriting();

    /// The `size` bytes from `first` on have been written. Counts where they are the first ones of the block.
    void written(const unsigned char* first, std::uint64_t size);

    /// Not every byte is going to be written: the new ones become 0 now.
    void fill();

private:
    const boost::shared_ptr<SampleBlock> block;
};

VELA_ABI_NAMESPACE_END
}
