/// The pairs of a file, read by the library and written byte by byte.
#pragma once

#include "build_vbf.h"
#include "run_vbf.h"

#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

namespace vela_test {

inline void put_counted(ByteWriter& writer, const std::string& text)
{
    writer.put(static_cast<std::uint32_t>(text.size()));
    writer.put_text(text);
}

inline VBFDictionary dictionary_of(const std::string& file_path)
{
    VFile file(file_name(file_path), VFile::read_mode);
    file.seek(scan_chain(file).file.meta_data_pos);
    VBFDictionary dictionary;
    read_dictionary(file, dictionary);
    return dictionary;
}

} // namespace vela_test
