/// A fixture for tests on VBF files that they build themselves.
#pragma once

#include <VelaFile/VFile.h>

#include "support/temporary_folder.h"
#include "support/vbf_bytes.h"

#include <cstdint>
#include <filesystem>

namespace vela_test {

class VbfFileTest : public FolderTest
{
protected:
    /// Writes `bytes` to a file and opens it for reading at `position`.
    VFile& reopen(const Bytes& bytes, std::uint64_t position = 0)
    {
        file.close();
        // A new file, because some file systems wait for the disk when an old one is cut and written.
        std::filesystem::remove(path("test.vbf"));
        put_bytes(path("test.vbf"), bytes);
        file.open(file_name(path("test.vbf")), VFile::read_mode);
        file.seek(position);
        return file;
    }

    /// The same with the position of the file header.
    VFile& reopen(const VbfBytes& built) { return reopen(built.bytes(), built.start_pos()); }

    VFile file;
};

/// A copy of a field of a packed record, which no reference may be bound to.
template <class T>
T copied(T field)
{
    return field;
}

} // namespace vela_test
