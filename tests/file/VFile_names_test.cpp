#include "file/file_fixture.h"

#include <VelaFile/VFile.h>

#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vela_test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

TEST_F(VFileTest, FileNameIsUtf8)
{
    const std::string text = "\xC3\xA4 \xE4\xBA\xBA \xF0\x9F\x94\xAC.vbf";
    VFile file(name(text), VFile::write_mode);
    write_bytes(file, {1});
    file.close();
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(path("x")).parent_path()))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, ElementsAre(text));
    EXPECT_NO_THROW(file.open(name(text), VFile::read_mode));
    file.close();
    EXPECT_NO_THROW(VFile::remove(name(text)));
    EXPECT_FALSE(exists(text));
}

TEST_F(VFileTest, NewFileIsAnOrdinaryFile)
{
    VFile file(name("a"), VFile::write_mode);
    const std::filesystem::file_status status = std::filesystem::status(path("a"));
    EXPECT_EQ(status.type(), std::filesystem::file_type::regular);
    typedef std::filesystem::perms perms;
    EXPECT_EQ(status.permissions() & (perms::owner_read | perms::owner_write), perms::owner_read | perms::owner_write);
    EXPECT_EQ(status.permissions() & (perms::owner_exec | perms::group_exec | perms::others_exec), perms::none);
}

TEST_F(VFileTest, ANameThatHasNoUtf8FormNamesNoOtherFile)
{
    // Dropping the unit that is no code point would name "ab".
    put_bytes(path("ab"), {1, 2, 3});
    VPropstring wrong = name("a");
    wrong.push_back(static_cast<wchar_t>(0xD800));
    wrong.push_back(L'b');
    VFile file;
    for (const auto mode : {VFile::read_mode, VFile::write_mode, VFile::append_mode})
        EXPECT_VELA_ERROR(file.open(wrong, mode), -1, "Could not open file!");
    EXPECT_VELA_ERROR(VFile::remove(wrong), -1, "Could not remove file.");
    EXPECT_EQ(get_bytes(path("ab")), (Bytes{1, 2, 3}));
}

TEST_F(VFileTest, RemoveRemovesAFile)
{
    put_bytes(path("a"), {1});
    put_bytes(path("b"), {2});
    VFile::remove(name("a"));
    EXPECT_FALSE(exists("a"));
    EXPECT_TRUE(exists("b"));
}

TEST_F(VFileTest, RemoveOfAMissingFileFailsWithTheSystemsText)
{
    EXPECT_VELA_ERROR_IN(VFile::remove(name("a")), "VFile::remove", "sources/file", -1, "Could not remove file.");
    try
    {
        VFile::remove(name("a"));
        FAIL() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_oserr_id(), 2);
        EXPECT_EQ(error.get_oserr(), "No such file or directory");
        EXPECT_THAT(error.what(), HasSubstr("os_error(2): No such file or directory"));
    }
}

TEST_F(VFileTest, RemoveOfAFolderFails)
{
    std::filesystem::create_directory(path("folder"));
    EXPECT_VELA_ERROR(VFile::remove(name("folder")), -1, "Could not remove file.");
    EXPECT_TRUE(exists("folder"));
}

TEST_F(VFileTest, PathWithANulNamesNoFile)
{
    put_bytes(path("a"), {1, 2});
    VPropstring with_nul = name("a");
    with_nul += std::wstring(L"\0b", 2);
    for (const VFile::mode mode : all_modes)
    {
        VFile file;
        EXPECT_VELA_ERROR(file.open(with_nul, mode), -1, "Could not open file!");
        EXPECT_FALSE(file.is_open());
    }
    EXPECT_VELA_ERROR(VFile::remove(with_nul), -1, "Could not remove file.");
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2));
}

TEST_F(VFileTest, EmptyPathNamesNoFile)
{
    for (const VFile::mode mode : all_modes)
    {
        VFile file;
        EXPECT_VELA_ERROR(file.open(VPropstring(), mode), -1, "Could not open file!");
    }
    EXPECT_VELA_ERROR(VFile::remove(VPropstring()), -1, "Could not remove file.");
}

TEST_F(VFileTest, PathThroughAMissingFolderDoesNotOpen)
{
    VFile file;
    EXPECT_VELA_ERROR(file.open(name("missing/a"), VFile::write_mode), -1, "Could not open file!");
    EXPECT_FALSE(exists("missing"));
}

} // namespace
