/// Whether the data segment of a stack holds its samples.
#pragma once

#include "footer.h"

#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

class Findings;

/// Inspects the bytes of the segment, which lies inside the file. A compressed one is inflated from its start to its
/// trailer, and each block once more from its flush point, and both have to give the same. Memory: 256 KiB and 4 bytes a
/// flush point.
///
/// Gives the number of samples, or 0 where the header says none that could be.
std::uint64_t inspect_samples(VFile& file, const VBFChainEntry& stack, const FlushTable& table, Findings& findings);
