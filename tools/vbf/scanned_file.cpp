#include "scanned_file.h"

#include "open_file.h"

#include <VelaBase/VelaError.h>

#include <cstring>
#include <vector>

namespace {

constexpr std::uint64_t dbl_header_bytes = 128;

template <class T, class U>
void put_entries(VBFStackHeader& header, std::size_t offset_bytes, const std::vector<U>& entries)
{
    const std::vector<T> narrow(entries.begin(), entries.end());
    if (!narrow.empty())
        std::memcpy(reinterpret_cast<char*>(&header) + offset_bytes, narrow.data(), narrow.size() * sizeof(T));
}

/// A DBL file as a file of one stack of version 0, which has nothing behind its samples.
VBFChain chain_of_dbl(const std::string& path)
{
    VBFFile file = open_vbf(path, VFile::read_mode);
    const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(0);
    VBFChainEntry entry;
    entry.header.rank = static_cast<std::uint32_t>(stack->get_rank());
    put_entries<std::uint32_t>(entry.header, offsetof(VBFStackHeader, dimension_sizes), stack->get_sizes());
    put_entries<double>(entry.header, offsetof(VBFStackHeader, lengths), stack->get_lengths());
    put_entries<double>(entry.header, offsetof(VBFStackHeader, offsets), stack->get_offsets());
    entry.header.data_type = stack->get_dt();
    entry.header.data_length_on_disk = stack->get_size(0);
    entry.data_pos = dbl_header_bytes;
    VBFChain chain;
    chain.stacks.push_back(entry);
    return chain;
}

} // namespace

ScannedFile::ScannedFile(const std::string& path)
    : dbl(::is_dbl(path)), chain(dbl ? chain_of_dbl(path) : VBFChain()), file(open_bytes(path, VFile::read_mode))
{
    if (!dbl)
        chain = scan_chain(file);
}

const VBFChainEntry& ScannedFile::get_stack(std::uint64_t index) const
{
    if (index >= chain.stacks.size())
        throw VelaError("ScannedFile::get_stack", __FILE__, __LINE__)("Invalid stack index %d!",
                                                                      static_cast<std::int32_t>(index))(-4);
    return chain.stacks[index];
}

VBFDictionary ScannedFile::read_file_dictionary()
{
    VBFDictionary dictionary;
    if (!has_dictionary())
        return dictionary;
    // A position that the system refuses leaves the file behind its header: there the reader goes on.
    file.seek(sizeof(VBFFileHeader) + chain.file.description.size() + sizeof chain.file.meta_data_pos);
    file.seek(chain.file.meta_data_pos);
    read_dictionary(file, dictionary);
    return dictionary;
}
