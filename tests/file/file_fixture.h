/// A test of `VFile` in a fresh folder.
#pragma once

#include <VelaFile/VFile.h>

#include "support/temporary_folder.h"

#include <filesystem>

namespace vela_test {

constexpr VFile::mode closed_mode = static_cast<VFile::mode>(-1);
constexpr VFile::mode all_modes[] = {VFile::read_mode, VFile::write_mode, VFile::append_mode};

class VFileTest : public FolderTest
{
protected:
    VPropstring name(const std::string& file) const { return file_name(path(file)); }

    bool exists(const std::string& file) const { return std::filesystem::exists(path(file)); }

    /// Reads into a buffer of something wrong.
    static Bytes read_bytes(VFile& file, std::size_t count)
    {
        Bytes bytes(count, 0xA5);
        file.read(bytes.data(), count);
        return bytes;
    }

    static void write_bytes(VFile& file, const Bytes& bytes) { file.write(bytes.data(), bytes.size()); }
};

} // namespace vela_test
