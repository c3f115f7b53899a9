/// Reads runs of samples of a scanned stack.
#pragma once

#include <VelaBase/vela_dt.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include <cstdint>
#include <functional>

/// Takes consecutive pieces of a run, each of whole samples. The bytes are aligned for any sample type
/// and valid during the call.
typedef std::function<void(const unsigned char* samples, std::uint64_t size_bytes)> SampleSink;

/// A stack as a run of samples in storage order, the first dimension fastest.
///
/// It knows of the stack what the header and the flush points say, so it also reads stacks that the library does not open.
/// Runs that ascend cost what lies between them, and others what lies behind the flush point before. Memory: at most
/// two chunks of 4 MiB beside the file's own, whatever the header claims.
class StackReader
{
public:
    /// `file` and `stack` have to outlive the reader.
    ///
    /// @throws VelaError id -1 "The product exceeds the maximum size.": the number of samples or of their bytes.
    StackReader(VFile& file, const VBFChainEntry& stack);

    std::uint64_t get_count_samples() const { return count_samples; }
    vela_dt get_type() const { return type; }

    /// Reads `count` samples from the sample `from` on, or those that are left, and gives them to `sink`
    /// in the type `target`. A stack without bytes on disk reads as zeros.
    ///
    /// @throws VelaError id -1 "Invalid position in segment!": `from` is above the number of samples, or is that number
    ///         and the stack has bytes on disk.
    /// @throws VelaError id -1 "Invalid on-the-fly conversion from '%s' to '%s'!": a type has no size, or
    ///         `vela_dt_convert` refuses the pair. Nothing has been read.
    /// @throws VelaError as `VZippedSegment` does, and what `sink` throws
    void read(std::uint64_t from, std::uint64_t count, vela_dt target, const SampleSink& sink);

private:
    bool is_empty() const { return stack.header.data_length_on_disk == 0; }
    void check_conversion(vela_dt target) const;
    void start_segment();
    void read_zeros(std::uint64_t count, vela_dt target, const SampleSink& sink) const;
    void read_segment(std::uint64_t from, std::uint64_t count, vela_dt target, const SampleSink& sink);

    VFile& file;
    const VBFChainEntry& stack;
    const vela_dt type;
    const std::uint64_t sample_size_bytes;
    std::uint64_t count_samples;
    VZippedSegment segment;
};
