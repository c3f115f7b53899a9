// Where data go, and what is left of them after a failure.
#include "build_vbf.h"
#include "run_vbf.h"

using namespace vela_test;

namespace {

class OutputTest : public ProgramTest
{
protected:
    /// A name of a device that may be lost: a program that wrongly removes its output removes this link,
    /// and not the device of the machine that runs the test.
    std::string link_to_device(const std::string& name) const
    {
        std::filesystem::create_symlink("/dev/" + name, path(name));
        return path(name);
    }

    static bool is_there(const std::string& name) { return std::filesystem::is_symlink(name); }

    /// A file whose stream holds one chunk and a half, and claims two.
    std::string put_stream_that_breaks_off() const
    {
        StackRecipe stack;
        stack.sizes = {8 * 1024 * 1024};
        stack.segment = deflated(Bytes(6 * 1024 * 1024));
        stack.compression_type = 1;
        stack.compression_level = 6;
        return put(build_vbf(stack));
    }
};

/// A pipe that nobody reads.
class BrokenPipe
{
public:
    BrokenPipe()
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        close(ends[0]);
        write_end = ends[1];
    }
    BrokenPipe(const BrokenPipe&) = delete;
    BrokenPipe& operator=(const BrokenPipe&) = delete;
    ~BrokenPipe() { close(write_end); }

    int write_end;
};

} // namespace

TEST_F(OutputTest, OutWritesTheFileAndNothingElse)
{
    const std::string name = put(build_vbf(plain_stack<std::uint8_t>({2, 2}, 1, {1, 2, 3, 4})));
    put_bytes(path("out"), Bytes(100, 9));
    EXPECT_EQ(output_of({"read", name, "0", "--out", path("out")}), "");
    EXPECT_EQ(get_bytes(path("out")), (Bytes{1, 2, 3, 4}));
}

TEST_F(OutputTest, OutIsCreatedForNoSamplesToo)
{
    const std::string name = put(build_vbf(plain_stack<std::uint8_t>({0}, 1, {})));
    EXPECT_EQ(output_of({"read", name, "0", "--out", path("out")}), "");
    EXPECT_EQ(get_bytes(path("out")), Bytes());
}

TEST_F(OutputTest, HalfWrittenFileIsRemoved)
{
    expect_failure({"read", put_stream_that_breaks_off(), "0", "--out", path("out")}, 1, "Inconsistency in segment!");
    EXPECT_FALSE(std::filesystem::exists(path("out")));
}

TEST_F(OutputTest, HalfWrittenDeviceIsLeftAlone)
{
    const std::string device = link_to_device("null");
    expect_failure({"read", put_stream_that_breaks_off(), "0", "--out", device}, 1, "Inconsistency in segment!");
    EXPECT_TRUE(is_there(device));
}

TEST_F(OutputTest, OlderFileStaysWhenNothingWasRead)
{
    put_bytes(path("out"), {1, 2, 3});
    const std::string name = put(build_vbf(plain_stack<std::uint8_t>({2}, 1, {1, 2})));
    expect_failure({"read", name, "0", "--out", path("out"), "--from", "3"}, 1, "Invalid position in segment!");
    expect_failure({"preview", name, "1", "--out", path("out")}, 1, "Invalid stack index 1!");
    EXPECT_EQ(get_bytes(path("out")), (Bytes{1, 2, 3}));
}

TEST_F(OutputTest, InputIsNeverOverwritten)
{
    const Bytes file = build_vbf(plain_stack<std::uint8_t>({2}, 1, {1, 2}));
    const std::string name = put(file);
    std::filesystem::create_symlink(name, path("link"));
    expect_failure({"read", name, "0", "--out", name}, 2, "The output would overwrite the input.");
    expect_failure({"read", name, "0", "--out", path("link")}, 2, "The output would overwrite the input.");
    expect_failure({"preview", name, "0", "--out", name}, 2, "The output would overwrite the input.");
    EXPECT_EQ(get_bytes(name), file);
}

TEST_F(OutputTest, FileThatCannotBeCreatedFails)
{
    const std::string out = path("missing/out");
    const std::string name = put(build_vbf(plain_stack<std::uint8_t>({2}, 1, {1, 2})));
    const std::string message = "Cannot create '" + out + "' (No such file or directory)";
    expect_failure({"read", name, "0", "--out", out}, 1, message);
    expect_failure({"preview", name, "0", "--out", out}, 1, message);
}

TEST_F(OutputTest, FullDiskFails)
{
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    const std::string error_path = path("standard_error");
    const std::string expected = "vbf: Cannot write to standard output (No space left on device)\n";
    EXPECT_EQ(run_vbf_into({"read", VELA_GOLGI_FILE, "0"}, full, error_path), 1);
    EXPECT_EQ(messages(), expected);
    EXPECT_EQ(run_vbf_into({"read", VELA_GOLGI_FILE, "0", "--count", "1"}, full, error_path), 1);
    EXPECT_EQ(messages(), expected);
    EXPECT_EQ(run_vbf_into({"info", VELA_GOLGI_FILE, "--json"}, full, error_path), 1);
    EXPECT_EQ(messages(), expected);
    EXPECT_EQ(run_vbf_into({"--help"}, full, error_path), 1);
    EXPECT_EQ(messages(), "vbf: Cannot write to standard output\n");
    close(full);
}

TEST_F(OutputTest, FullDiskBehindOutFailsAndTheDeviceStays)
{
    const std::string device = link_to_device("full");
    expect_failure({"read", VELA_GOLGI_FILE, "0", "--out", device}, 1,
                   "Cannot write to '" + device + "' (No space left on device)");
    EXPECT_TRUE(is_there(device));
    const RunResult preview = run({"preview", VELA_GOLGI_FILE, "0", "--out", device});
    EXPECT_EQ(preview.status, 1);
    EXPECT_THAT(preview.err, testing::StartsWith("vbf: Cannot write the PNG image: "));
    EXPECT_TRUE(is_there(device));
}

TEST_F(OutputTest, ReaderThatGoesAwayIsAFailureAndNoSignal)
{
    const BrokenPipe pipe;
    const std::string expected = "vbf: Cannot write to standard output (Broken pipe)\n";
    EXPECT_EQ(run_vbf_into({"read", VELA_GOLGI_FILE, "0"}, pipe.write_end, path("standard_error")), 1);
    EXPECT_EQ(messages(), expected);
    EXPECT_EQ(run_vbf_into({"info", VELA_GOLGI_FILE}, pipe.write_end, path("standard_error")), 1);
    EXPECT_EQ(messages(), expected);
}
