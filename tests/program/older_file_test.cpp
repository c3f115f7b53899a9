// What had the name of the output before.
#include "build_vbf.h"
#include "transfer_test.h"

#include <VelaBinaryIO/VBFFile.h>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <sys/stat.h>

using namespace vela_test;

namespace {

class OlderFileTest : public TransferTest
{
protected:
    /// An image that fails when its samples are read.
    std::string damaged_image() const
    {
        TiffRecipe recipe = ramp(2);
        recipe.compression = COMPRESSION_ADOBE_DEFLATE;
        const std::string file = tiff(recipe, "damaged.tif");
        Bytes bytes = get_bytes(file);
        std::fill(bytes.begin() + 8, bytes.begin() + 24, std::uint8_t{0xff}); // the first strip
        put_bytes(file, bytes);
        return file;
    }

    std::string damaged_file() const
    {
        Bytes bytes = get_bytes(VELA_GOLGI_FILE);
        bytes[442 + 486477 - 1] ^= 1; // the checksum of the samples
        return put(bytes, "damaged.vbf");
    }

    std::size_t count_files() const
    {
        const std::filesystem::directory_iterator files(std::filesystem::path(path("x")).parent_path());
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    /// The command fails and changes nothing in the folder.
    void expect_untouched(const std::vector<std::string>& arguments, const std::string& out) const
    {
        run({"--version"}); // the files of standard output and standard error are there
        const Bytes before = get_bytes(out);
        const std::size_t count = count_files();
        EXPECT_EQ(run(arguments).status, 1);
        EXPECT_EQ(get_bytes(out), before);
        EXPECT_EQ(count_files(), count);
    }
};

} // namespace

TEST_F(OlderFileTest, IsNotOverwrittenIfItIsAnImage)
{
    const std::string first = tiff(ramp(1), "first.tif");
    const std::string last = tiff(ramp(2), "last.tif");
    const Bytes before = get_bytes(last);
    const std::string message = "'" + last + "' exists and is no VBF file.";
    expect_failure({"import", first, last}, 2, message);
    expect_failure({"copy", VELA_GOLGI_FILE, last}, 2, message);
    EXPECT_EQ(get_bytes(last), before);
    put_bytes(path("few"), {'V', 'E'});
    expect_failure({"import", first, path("few")}, 2, "'" + path("few") + "' exists and is no VBF file.");
    const std::string parent = std::filesystem::path(path("x")).parent_path();
    expect_failure({"import", first, parent}, 2, "'" + parent + "' exists and is no VBF file.");
}

TEST_F(OlderFileTest, IsReplacedIfItIsAVbfFileOrEmpty)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    output_of({"import", tiff(ramp(3)), file});
    EXPECT_EQ(samples(file).size(), 48u);
    output_of({"copy", VELA_GOLGI_FILE, file});
    EXPECT_EQ(samples(file), samples(VELA_GOLGI_FILE));
    put_bytes(file, {});
    output_of({"import", tiff(ramp(3)), file});
    EXPECT_TRUE(in_order(file));
}

TEST_F(OlderFileTest, StaysWhenTheCommandFails)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    expect_untouched({"import", damaged_image(), file}, file);
    expect_untouched({"copy", damaged_file(), file}, file);
    const std::string image = tiff(ramp(1), "older.tif");
    expect_untouched({"export", damaged_file(), "0", image}, image);
    put_bytes(path("raw"), {1, 2, 3});
    expect_untouched({"read", damaged_file(), "0", "--out", path("raw")}, path("raw"));
}

TEST_F(OlderFileTest, StaysWhenTheProgramIsKilled)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    const Bytes before = get_bytes(file);
    const std::string image = path("image.pipe");
    ASSERT_EQ(mkfifo(image.c_str(), 0600), 0);
    const std::size_t count = count_files();
    // The program creates its output, opens the pipe and waits for the image.
    const pid_t child = fork();
    if (child == 0)
    {
        execl(VELA_VBF_PROGRAM, VELA_VBF_PROGRAM, "import", image.c_str(), file.c_str(), nullptr);
        _exit(1);
    }
    const int pipe_end = open(image.c_str(), O_WRONLY | O_CLOEXEC); // returns when the program has opened it
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(pipe_end);
    EXPECT_EQ(get_bytes(file), before);
    EXPECT_EQ(count_files(), count + 1); // the bytes of the new one were beside it
}

TEST_F(OlderFileTest, KeepsItsPermissionsAndItsLinks)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    std::filesystem::create_symlink(file, path("link.vbf"));
    output_of({"import", tiff(ramp(3)), path("link.vbf")});
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.vbf")));
    EXPECT_EQ(samples(file).size(), 48u);
    struct stat status = {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
}

TEST_F(OlderFileTest, LinkToAFileThatIsNotThereYetIsFollowed)
{
    std::filesystem::create_directory(path("folder"));
    std::filesystem::create_symlink("folder/second", path("first"));
    std::filesystem::create_symlink("file.vbf", path("folder/second"));
    output_of({"import", tiff(ramp(3)), path("first")});
    EXPECT_TRUE(std::filesystem::is_symlink(path("first")));
    EXPECT_TRUE(std::filesystem::is_symlink(path("folder/second")));
    EXPECT_EQ(samples(path("folder/file.vbf")).size(), 48u);
}

TEST_F(OlderFileTest, ThatIsInUseStays)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    const Bytes before = get_bytes(file);
    {
        const VBFFile reader(file_name(file), VFile::read_mode);
        EXPECT_EQ(run({"import", tiff(ramp(3)), file}).status, 1);
        EXPECT_THAT(messages(), testing::StartsWith("vbf: Could not open file!"));
    }
    EXPECT_EQ(get_bytes(file), before);
}

TEST_F(OlderFileTest, NameOfAnotherFormatIsRefused)
{
    const std::string file = path("file.dbl");
    const std::string message = "'" + file + "': files that end with .dbl are read as DBL files, not as VBF files.";
    expect_failure({"import", tiff(ramp(1)), file}, 2, message);
    expect_failure({"copy", VELA_GOLGI_FILE, file}, 2, message);
    expect_failure({"repair", VELA_GOLGI_FILE, "--out", file}, 2, message);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(OlderFileTest, NewFileInAMissingFolderIsNamed)
{
    const std::string file = path("missing/out");
    const std::string message = "Cannot create '" + file + "' (No such file or directory)";
    expect_failure({"import", tiff(ramp(1)), file}, 1, message);
    expect_failure({"copy", VELA_GOLGI_FILE, file}, 1, message);
    expect_failure({"export", VELA_GOLGI_FILE, "0", file}, 1, message);
}
