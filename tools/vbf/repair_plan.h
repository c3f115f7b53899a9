/// What would mend a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class VFile;

/// Bytes of a file that have to be written.
struct Patch
{
    std::uint64_t position;
    std::string bytes;
};

/// Every patch is made only when those before it are on disk, so that a repair that breaks off can be repaired.
struct RepairPlan
{
    std::vector<Patch> patches;    ///< none: nothing has to be done
    std::vector<std::string> done; ///< what the patches do, a sentence each
};

/// Finds out what keeps a file of format version 2 from opening, if its writer did not come to an end:
///
/// - The file was not closed: `meta_data_pos` leads to no dictionary. A new one goes to the end of the file.
/// - Stacks were appended: the first 8 bytes of the file have the position of the new dictionary in the place of the magic.
///   That position goes to `meta_data_pos`, where it leads to a dictionary; else a new one is made. Then the
///   magic is put back.
///
/// A new dictionary has the pairs of the old one where that can be read, else an OME document without content. Stacks are
/// not touched, nor are the bytes of one that was being written.
///
/// @throws VelaError as `scan_chain` does: there is something else wrong with the file.
RepairPlan plan_repair(VFile& file);

/// Writes the patches into `file`, which is open for writing.
///
/// @throws VelaError as `VFile` does
void mend_in_place(VFile& file, const RepairPlan& plan);
