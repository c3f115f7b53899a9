/// The pairs in the dictionary of a file.
#pragma once

#include "support/temporary_folder.h"

#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace vela_test {

inline VBFDictionary pairs_of(const std::string& path)
{
    VFile file(file_name(path), VFile::read_mode);
    file.seek(read_file_header(file).meta_data_pos);
    VBFDictionary pairs;
    read_dictionary(file, pairs);
    return pairs;
}

/// Puts `pairs` in the place of the dictionary, as another writer would.
inline void put_pairs(const std::string& path, const VBFDictionary& pairs)
{
    VFile file(file_name(path), VFile::append_mode);
    const std::uint64_t position = read_file_header(file).meta_data_pos;
    file.seek(position);
    write_dictionary(file, pairs);
    const std::uint64_t end = file.tell();
    file.close();
    std::filesystem::resize_file(path, end);
}

} // namespace vela_test
