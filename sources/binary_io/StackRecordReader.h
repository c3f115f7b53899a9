/// Reads what a file says about its stacks.
#pragma once

#include "sources/binary_io/StackRecord.h"
#include "sources/binary_io/chain_walk.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Vela::detail {

/// Reads the stacks of one chain. What a stack cannot be fails here, though its description is built later.
///
/// Failures are those of `VBFFileInterface::open` for a stack, in the order of the bytes.
class StackRecordReader
{
public:
    explicit StackRecordReader(ReadAhead& in_stream) : stream(in_stream), budget(in_stream) {}

    /// The stack whose header stands at `position`, where the stream is.
    StackRecord read(std::uint64_t position);

private:
    void read_front(StackRecord& record);
    void read_back(StackRecord& record);
    StackFooter read_footer();
    void read_column_positions(const StackFooter& footer, StackRecord& record);
    void read_column_labels(const StackFooter& footer, StackRecord& record);
    [[noreturn]] void fail_in_labels(std::uint64_t count);
    void read_metadata(const StackFooter& footer, StackRecord& record);
    void try_metadata(const StackRecord& record);
    void read_flush_positions(const StackFooter& footer, StackRecord& record);
    void require_bytes(std::uint64_t size_bytes) const;

    ReadAhead& stream;
    ByteBudget budget;

    // The metadata that was tried last, and with what: mostly all stacks of a file have the same.
    std::shared_ptr<const std::string> good_metadata;
    std::uint32_t good_rank = 0;
    bool good_position = false;
};

} // namespace Vela::detail
