#include "read.h"

#include "box.h"
#include "failure.h"
#include "output.h"
#include "plane.h"
#include "progress.h"
#include "sample_size.h"
#include "scanned_file.h"
#include "stack_reader.h"
#include "stack_shape.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <limits>
#include <vector>

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

void check_choice(const ReadOptions& options)
{
    const int choices =
        (options.from || options.count ? 1 : 0) + (options.plane ? 1 : 0) + (options.region.empty() ? 0 : 1);
    if (choices > 1)
        throw UsageFailure("A run (--from, --count), --plane and --region exclude each other.");
}

/// Calls `read` for each run that was asked for.
void for_each_chosen_run(const ReadOptions& options, const VBFStackHeader& header,
                         const std::function<void(std::uint64_t from, std::uint64_t count)>& read)
{
    constexpr std::uint64_t all = std::numeric_limits<std::uint64_t>::max();
    if (options.plane)
    {
        const Plane plane = find_plane(header, options.plane);
        read(plane.first_sample, plane.get_count_samples());
    }
    else if (!options.region.empty())
    {
        const std::vector<std::uint32_t> sizes = StackShape(header).sizes;
        count_of(sizes); // a product that overflows is refused
        for_each_run(parse_box(options.region, sizes), sizes, read);
    }
    else
        read(options.from.value_or(0), options.count.value_or(all));
}

std::uint64_t count_chosen(const ReadOptions& options, const VBFStackHeader& header, std::uint64_t count_samples)
{
    std::uint64_t result = 0;
    for_each_chosen_run(options, header,
                        [&](std::uint64_t from, std::uint64_t count)
                        { result += std::min(count, count_samples - std::min(from, count_samples)); });
    return result;
}

} // namespace

void read_samples(const ReadOptions& options)
{
    const std::optional<vela_dt> type = requested_type(options);
    check_choice(options);
    Output output(options.out, options.path);
    ScannedFile input(options.path);
    const VBFChainEntry& stack = input.get_stack(options.index);
    StackReader reader(input.get_file(), stack);
    const vela_dt target = type.value_or(reader.get_type());
    Progress progress("reading", count_chosen(options, stack.header, reader.get_count_samples()));
    const auto write = [&](const unsigned char* samples, std::uint64_t size_bytes)
    {
        output.write(samples, size_bytes);
        progress.add(size_bytes / size_of(target));
    };
    for_each_chosen_run(options, stack.header,
                        [&](std::uint64_t from, std::uint64_t count) { reader.read(from, count, target, write); });
    output.finish();
}
