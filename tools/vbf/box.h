/// Boxes of samples.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// The columns of one dimension from `begin` to before `end`.
struct Range
{
    std::uint64_t begin;
    std::uint64_t end;
};

/// A box of a stack with these sizes, out of texts "begin:end" for the first dimensions. A bound that is left out is the end of
/// the dimension, a number alone is one column, and a dimension without a text is taken whole.
///
/// @throws UsageFailure: a text is none of these, or there are more texts than dimensions.
/// @throws std::runtime_error: the box leaves the stack.
std::vector<Range> parse_box(const std::vector<std::string>& texts, const std::vector<std::uint32_t>& sizes);

/// Calls `take` with the first sample and the number of samples of each run of the box, in storage order.
void for_each_run(const std::vector<Range>& box, const std::vector<std::uint32_t>& sizes,
                  const std::function<void(std::uint64_t from, std::uint64_t count)>& take);
