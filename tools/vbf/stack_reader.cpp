#include "stack_reader.h"

#include "footer.h"
#include "record_reader.h"
#include "sample_size.h"
#include "stack_shape.h"

#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt_convert.h>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr std::uint64_t chunk_bytes = std::uint64_t{4} * 1024 * 1024;

int convert(vela_dt source_type, vela_dt target_type, const void* source, void* target, std::uint64_t count)
{
    return vela_dt_convert(static_cast<std::uint32_t>(source_type), static_cast<std::uint32_t>(target_type), source,
                           target, count, nullptr, nullptr);
}

[[noreturn]] void throw_invalid_position()
{
    throw VelaError("StackReader::read", __FILE__, __LINE__)("Invalid position in segment!")(-1);
}

[[noreturn]] void throw_invalid_conversion(vela_dt source_type, vela_dt target_type)
{
    throw VelaError("StackReader::read", __FILE__, __LINE__)("Invalid on-the-fly conversion from '%s' to '%s'!",
                                                             vela_dt_get_name(source_type),
                                                             vela_dt_get_name(target_type))(-1);
}

/// None where they cannot be read: then the samples are read from their start.
FlushPoints flush_points_of(RecordReader& reader, const VBFChainEntry& stack)
{
    try
    {
        return read_flush_points(reader, read_footer_parts(reader, stack).flush);
    }
    catch (const Damage&)
    {
        return {};
    }
}

} // namespace

StackReader::StackReader(VFile& in_file, const VBFChainEntry& in_stack)
    : file(in_file), stack(in_stack), type(in_stack.header.data_type), sample_size_bytes(size_of(type)),
      count_samples(count_of(StackShape(in_stack.header).sizes))
{
    if (sample_size_bytes != 0 && count_samples > std::numeric_limits<std::uint64_t>::max() / sample_size_bytes)
        throw VelaError("StackReader::StackReader", __FILE__, __LINE__)("The product exceeds the maximum size.")(-1);
}

void StackReader::read(std::uint64_t from, std::uint64_t count, vela_dt target, const SampleSink& sink)
{
    if (sample_size_bytes == 0 || size_of(target) == 0)
        throw_invalid_conversion(type, target);
    if (from > count_samples || (from == count_samples && !is_empty()))
        throw_invalid_position();
    const std::uint64_t run = std::min(count, count_samples - from);
    if (is_empty())
        return read_zeros(run, target, sink);
    check_conversion(target);
    read_segment(from, run, target, sink);
}

void StackReader::check_conversion(vela_dt target) const
{
    if (target != type && convert(type, target, nullptr, nullptr, 0) != 0)
        throw_invalid_conversion(type, target);
}

void StackReader::read_zeros(std::uint64_t count, vela_dt target, const SampleSink& sink) const
{
    const std::uint64_t target_size_bytes = size_of(target);
    const std::uint64_t chunk = std::min(count, chunk_bytes / target_size_bytes);
    const std::vector<unsigned char> zeros(chunk * target_size_bytes);
    for (std::uint64_t left = count; left != 0;)
    {
        const std::uint64_t n = std::min(left, chunk);
        sink(zeros.data(), n * target_size_bytes);
        left -= n;
    }
}

void StackReader::start_segment()
{
    if (segment.is_initialized() != 0)
        return;
    const int level = stack.header.compression_type == 1 ? stack.header.compression_level : 0;
    segment.init_r(file, level, stack.data_pos, stack.header.data_length_on_disk, count_samples * sample_size_bytes);
    if (level <= 0)
        return;
    RecordReader reader(file);
    FlushPoints points = flush_points_of(reader, stack);
    segment.set_flush_positions(std::move(points.positions), points.block_bytes);
}

void StackReader::read_segment(std::uint64_t from, std::uint64_t count, vela_dt target, const SampleSink& sink)
{
    const std::uint64_t target_size_bytes = size_of(target);
    const std::uint64_t chunk = std::min(count, chunk_bytes / std::max(sample_size_bytes, target_size_bytes));
    std::vector<unsigned char> samples(chunk * sample_size_bytes);
    std::vector<unsigned char> converted(target == type ? 0 : chunk * target_size_bytes);

    start_segment();
    segment.seek(from * sample_size_bytes);
    for (std::uint64_t left = count; left != 0;)
    {
        const std::uint64_t n = std::min(left, chunk);
        segment.read(samples.data(), n * sample_size_bytes);
        if (target != type && convert(type, target, samples.data(), converted.data(), n) != 0)
            throw_invalid_conversion(type, target);
        sink(target == type ? samples.data() : converted.data(), n * target_size_bytes);
        left -= n;
    }
}
