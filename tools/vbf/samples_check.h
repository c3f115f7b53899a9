/// Whether the data segment of a stack holds its samples.
#pragma once

#include "footer.h"

#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

class Findings;
class Progress;

/// Inspects the bytes of the segment, which lies inside the file. A compressed one is inflated from its start to its
/// trailer, and each block once more from its flush point, and both have to give the same. Memory: 256 KiB and 4 bytes a
/// flush point.
///
/// Gives the bytes of the samples, uncompressed; 0 where the stack has none on disk, or the header says no number that
/// could be.
/// `progress` counts each byte of the file twice.
std::uint64_t inspect_samples(VFile& file, const VBFChainEntry& stack, const FlushPoints& table, Findings& findings,
                              Progress& progress);
