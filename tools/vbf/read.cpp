#include "read.h"

#include "failure.h"
#include "output.h"
#include "scanned_file.h"
#include "stack_reader.h"

#include <bit>
#include <limits>

static_assert(std::endian::native == std::endian::little, "samples are written as they lie in memory");

namespace {

std::optional<vela_dt> requested_type(const ReadOptions& options)
{
    if (!options.type)
        return std::nullopt;
    const vela_dt type = vela_dt_from_name(options.type->c_str());
    if (type == vela_dt_none)
        throw UsageFailure("There is no sample type '" + *options.type +
                           "'. Types are uint8, int8, uint16, int16, uint32, int32, uint64, int64, single, double, "
                           "and each of them with cplx_ before it.");
    return type;
}

} // namespace

void read_samples(const ReadOptions& options)
{
    const std::optional<vela_dt> type = requested_type(options);
    Output output(options.out, options.path);
    ScannedFile input(options.path);
    StackReader reader(input.get_file(), input.get_stack(options.index));
    reader.read(options.from, options.count.value_or(std::numeric_limits<std::uint64_t>::max()),
                type.value_or(reader.get_type()),
                [&](const unsigned char* samples, std::uint64_t size_bytes) { output.write(samples, size_bytes); });
    output.finish();
}
