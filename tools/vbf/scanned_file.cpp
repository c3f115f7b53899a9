#include "scanned_file.h"

#include "file_name.h"

#include <VelaBase/VelaError.h>

ScannedFile::ScannedFile(const std::string& path) : file(file_name(path), VFile::read_mode)
{
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
