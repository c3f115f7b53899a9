/// Whether the records of a chain are whole.
#pragma once

#include "extents.h"

#include <cstdint>

class VFile;

/// Walks the chain from the stack at `first_stack_pos` on, 0 for none, and claims the bytes of each stack, from its header to
/// the end of its footer. Gives the end of the one that reaches furthest, 0 without stacks.
///
/// @throws VelaError as `scan_chain` does
/// @throws std::runtime_error: a stack is cut off, or lies within what is claimed.
std::uint64_t claim_chain(VFile& file, std::uint64_t first_stack_pos, Extents& extents);
