/// A fresh folder for each test, removed at its end.
#pragma once

#include <VelaProps/VPropstring.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>
#include <string>
#include <vector>

namespace vela_test {

/// The bytes of a test.
typedef std::vector<unsigned char> Bytes;

class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "vela_test_XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        root = pattern;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }

    std::string path(const std::string& name) const { return (root / name).string(); }

private:
    std::filesystem::path root;
};

/// The form in which the library takes file names.
inline VPropstring file_name(const std::string& path)
{
    return VPropstring(path, VPropstring::enc_utf8);
}

/// Reads and writes whole files without the library.
inline void put_bytes(const std::string& path, const Bytes& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush())
        throw std::runtime_error("cannot write " + path);
}

inline Bytes get_bytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot read " + path);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/// A test with a fresh folder.
class FolderTest : public testing::Test
{
protected:
    std::string path(const std::string& name) const { return folder.path(name); }

    TemporaryFolder folder;
};

} // namespace vela_test
