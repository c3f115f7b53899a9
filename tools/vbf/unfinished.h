/// What a failed append leaves behind.
#pragma once

#include <cstdint>
#include <string>

/// Cuts off what lies behind all stacks and the dictionary of a file that opens, but none of its first `size_bytes` bytes.
///
/// @throws VelaError as `VFile` and `scan_chain` do, std::runtime_error as `claim_chain` does, and
///         std::filesystem::filesystem_error. The file stays as it is then.
void remove_unfinished(const std::string& path, std::uint64_t size_bytes);
