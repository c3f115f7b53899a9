/// The fixed records of a VBF file, its dictionary, and the walk along its chain of stacks.
///
/// With this header alone a caller can tell whether a file is a VBF file and what stacks it holds.
/// All numbers in a file are little-endian; position fields are absolute file positions.
/// The byte layout is explained in docs/format.md.
#pragma once

#include <VelaBase/export.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class VFile;
class VFileAccess;

#pragma pack(push, 1)

/// The fixed 26 bytes at the start of a file, as they lie on disk.
/// Packed: copy a field out before you refer to it.
struct VBFFileHeader
{
    char magic[10];                   ///< "VELA_BF\n" FF FF
    std::uint32_t format_version;     ///< 2 is written; 0 and 1 have no `meta_data_pos`
    std::uint64_t first_stack_pos;    ///< 0: no stack
    std::uint32_t description_length; ///< bytes of the description that follows
};

/// The fixed 368 bytes of a stack header, as they lie on disk; name and description follow.
/// Packed: copy a field out before you refer to it.
struct VBFStackHeader
{
    static constexpr std::uint32_t max_rank = 15;

    char magic[16];                          ///< "VELA_BF_STACK\n" FF FF
    std::uint32_t format_version;            ///< 5 is written
    std::uint32_t rank;                      ///< number of dimensions, at most 15
    std::uint32_t dimension_sizes[max_rank]; ///< samples; the first `rank` count
    double lengths[max_rank];                ///< physical lengths; the first `rank` count
    double offsets[max_rank];                ///< physical offsets; the first `rank` count
    std::int32_t data_type;                  ///< sample type id (`VelaBase/vela_dt.h`)
    std::uint32_t compression_type;          ///< 0 none, 1 zlib
    std::int32_t compression_level;          ///< zlib level
    std::uint32_t name_length;               ///< bytes
    std::uint32_t description_length;        ///< bytes
    std::uint64_t data_present;              ///< 1 with data, 0 for a stack declared empty; no reader uses it
    std::uint64_t data_length_on_disk;       ///< bytes of the data segment; 0: empty, or not finished
    std::uint64_t next_stack_pos;            ///< 0: last stack of the chain
};

#pragma pack(pop)

static_assert(sizeof(VBFFileHeader) == 26, "on-disk size");
static_assert(offsetof(VBFFileHeader, format_version) == 10, "on-disk offset");
static_assert(offsetof(VBFFileHeader, first_stack_pos) == 14, "on-disk offset");
static_assert(offsetof(VBFFileHeader, description_length) == 22, "on-disk offset");
static_assert(sizeof(VBFStackHeader) == 368, "on-disk size");
static_assert(offsetof(VBFStackHeader, format_version) == 16, "on-disk offset");
static_assert(offsetof(VBFStackHeader, rank) == 20, "on-disk offset");
static_assert(offsetof(VBFStackHeader, dimension_sizes) == 24, "on-disk offset");
static_assert(offsetof(VBFStackHeader, lengths) == 84, "on-disk offset");
static_assert(offsetof(VBFStackHeader, offsets) == 204, "on-disk offset");
static_assert(offsetof(VBFStackHeader, data_type) == 324, "on-disk offset");
static_assert(offsetof(VBFStackHeader, compression_type) == 328, "on-disk offset");
static_assert(offsetof(VBFStackHeader, compression_level) == 332, "on-disk offset");
static_assert(offsetof(VBFStackHeader, name_length) == 336, "on-disk offset");
static_assert(offsetof(VBFStackHeader, description_length) == 340, "on-disk offset");
static_assert(offsetof(VBFStackHeader, data_present) == 344, "on-disk offset");
static_assert(offsetof(VBFStackHeader, data_length_on_disk) == 352, "on-disk offset");
static_assert(offsetof(VBFStackHeader, next_stack_pos) == 360, "on-disk offset");

/// A file header with the text and the position that follow it.
struct VBFFileInfo
{
    VBFFileHeader header = {};
    std::string description;
    /// Position of the file dictionary. 0 where the format version has none, and in a file that was not closed.
    std::uint64_t meta_data_pos = 0;
};

/// A stack header with the texts that follow it.
struct VBFStackRecord
{
    /// As on disk, but for a NaN among the first `rank` lengths, which became 1.
    VBFStackHeader header = {};
    std::string name;
    std::string description;
};

/// One stack of the chain.
struct VBFChainEntry : VBFStackRecord
{
    std::uint64_t position = 0; ///< of the stack header
    std::uint64_t data_pos = 0; ///< of the data segment: behind the two texts
};

/// What a file holds.
struct VBFChain
{
    VBFFileInfo file;
    std::vector<VBFChainEntry> stacks; ///< in the order of the chain
};

/// A string dictionary: sorted by key, as on disk when this library wrote it.
typedef std::map<std::string, std::string> VBFDictionary;

/// Reads the file header at the current position, its description and, with a format version above 1,
/// `meta_data_pos`. The stream then stands behind them.
///
/// @throws VelaError id -4 "No VBF file header found!": wrong magic.
/// @throws VelaError id -3 "Failed reading %d bytes from file!" on the size of the field that the stream no longer has
VELA_API VBFFileInfo read_file_header(VFileAccess& file);

/// Reads the stack header at the current position and its two texts. The stream then stands at the data segment.
///
/// @throws VelaError id -4 "Stack header not in vbf format!": wrong magic, or a rank above 15.
/// @throws VelaError id -3 "Failed reading %d bytes from file!" on the size of the field that the stream no longer has
VELA_API VBFStackRecord read_stack_header(VFileAccess& file);

/// Reads the file header at the current position and walks the chain of stack headers, without a look
/// at the data, at what follows them, or at the dictionary. A file that was not closed is listed as far
/// as its chain reaches. The file then stands behind the last thing read.
///
/// @throws VelaError as `read_file_header` and `read_stack_header` do
/// @throws VelaError id -4 "Invalid stack position specified in header!": the system refuses the position, the chain
///         comes back to a position that it has visited, or the stacks share so many bytes that their texts together
///         are longer than the file.
/// @throws VelaError id -1 "File not open!"
VELA_API VBFChain scan_chain(VFile& file);

/// Reads a dictionary at the current position into `dictionary`, which is emptied first: pairs of
/// strings with 4-byte lengths, ended by an empty key. Of two equal keys the last one wins.
///
/// @throws VelaError id -3 "Failed reading %d bytes from file!"; `dictionary` then holds the pairs before.
VELA_API void read_dictionary(VFileAccess& file, VBFDictionary& dictionary);

/// Writes `dictionary` at the current position. A pair with an empty key would end it for a reader.
///
/// @throws VelaError as `VFileAccess::write_str` does
VELA_API void write_dictionary(VFileAccess& file, const VBFDictionary& dictionary);
