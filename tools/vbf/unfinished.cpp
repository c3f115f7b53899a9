#include "unfinished.h"

#include "chain_check.h"
#include "old_dictionary.h"
#include "open_file.h"

#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include <algorithm>
#include <filesystem>

namespace {

/// Where the last record ends; the end of the file where a record is damaged.
std::uint64_t end_of_records(VFile& file)
{
    const std::uint64_t file_size = file.seek(VFileAccess::all_ones);
    file.seek(0);
    const VBFFileInfo info = read_file_header(file);
    const std::uint64_t end_of_header = file.tell();
    Extents extents;
    const std::uint64_t end = std::max(claim_chain(file, info.header.first_stack_pos, extents), end_of_header);
    if (info.header.format_version <= 1)
        return end;
    const FoundDictionary dictionary = find_dictionary(file, info.meta_data_pos);
    return dictionary.whole ? std::max(end, dictionary.end) : file_size;
}

} // namespace

void remove_unfinished(const std::string& path, std::uint64_t size_bytes)
{
    VFile file = open_bytes(path, VFile::append_mode); // nobody else appends meanwhile
    const std::uint64_t end = std::max(end_of_records(file), size_bytes);
    if (end < file.seek(VFileAccess::all_ones))
        std::filesystem::resize_file(path, end);
}
