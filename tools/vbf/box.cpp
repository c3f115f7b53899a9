#include "box.h"

#include "failure.h"
#include "text.h"

#include <optional>
#include <stdexcept>

namespace {

[[noreturn]] void refuse(const std::string& text)
{
    throw UsageFailure("--region: '" + text + "' is not of the form begin:end.");
}

std::optional<std::uint64_t> parse_bound(const std::string& bound, const std::string& text)
{
    if (bound.empty())
        return std::nullopt;
    const std::optional<std::uint64_t> number = number_in(bound);
    if (!number)
        refuse(text);
    return number;
}

Range parse_range(const std::string& text, std::uint32_t size)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos)
    {
        const std::optional<std::uint64_t> column = parse_bound(text, text);
        return column ? Range{*column, *column + 1} : Range{0, size};
    }
    return {parse_bound(text.substr(0, colon), text).value_or(0),
            parse_bound(text.substr(colon + 1), text).value_or(size)};
}

} // namespace

std::vector<Range> parse_box(const std::vector<std::string>& texts, const std::vector<std::uint32_t>& sizes)
{
    if (texts.size() > sizes.size())
        throw UsageFailure("--region: the stack has " + std::to_string(sizes.size()) + " dimensions.");
    std::vector<Range> box;
    for (std::size_t axis = 0; axis < sizes.size(); ++axis)
    {
        const Range range = axis < texts.size() ? parse_range(texts[axis], sizes[axis]) : Range{0, sizes[axis]};
        if (range.begin > range.end || range.end > sizes[axis])
            throw std::runtime_error("The region leaves dimension " + std::to_string(axis) + ", which has " +
                                     std::to_string(sizes[axis]) + " columns.");
        box.push_back(range);
    }
    return box;
}

void for_each_run(const std::vector<Range>& box, const std::vector<std::uint32_t>& sizes,
                  const std::function<void(std::uint64_t from, std::uint64_t count)>& take)
{
    for (const Range& range : box)
    {
        if (range.begin == range.end)
            return;
    }
    // Dimensions that are taken whole make one run with the first one that is not.
    std::size_t outer = 0;
    std::uint64_t step = 1; ///< samples of a column of `outer`
    while (outer < box.size() && box[outer].begin == 0 && box[outer].end == sizes[outer])
        step *= sizes[outer++];
    const std::uint64_t count = outer < box.size() ? (box[outer].end - box[outer].begin) * step : step;
    std::vector<std::uint64_t> at;
    at.reserve(box.size());
    for (const Range& range : box)
        at.push_back(range.begin);
    for (;;)
    {
        std::uint64_t from = 0;
        for (std::size_t axis = box.size(); axis-- > 0;)
            from = from * sizes[axis] + at[axis];
        take(from, count);
        std::size_t axis = outer + 1;
        while (axis < box.size() && ++at[axis] == box[axis].end)
        {
            at[axis] = box[axis].begin;
            ++axis;
        }
        if (axis >= box.size())
            return;
    }
}
