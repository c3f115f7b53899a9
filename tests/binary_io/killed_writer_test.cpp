// A writer that dies at any byte leaves every stack whose link it has written.
#include "binary_io/doomed_stacks.h"
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <signal.h>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

using namespace vela_test;

namespace {

class KilledWriter : public FolderTest
{
protected:
    /// Runs the writer. Gives what it printed; `status` is how it ended.
    std::vector<std::uint64_t> run(std::uint64_t bytes, int& status) const
    {
        std::array<int, 2> pipe = {};
        if (pipe2(pipe.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
        std::string program = VELA_DOOMED_WRITER;
        std::string file = path("doomed.vbf");
        std::string limit = std::to_string(bytes);
        char* const arguments[] = {program.data(), file.data(), limit.data(), nullptr};
        pid_t process = -1;
        const int error = posix_spawn(&process, program.c_str(), &actions, nullptr, arguments, environ);
        posix_spawn_file_actions_destroy(&actions);
        close(pipe[1]);
        std::string printed;
        std::array<char, 512> buffer = {};
        for (ssize_t count = 1; error == 0 && count > 0;)
        {
            count = read(pipe[0], buffer.data(), buffer.size());
            printed.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
        }
        close(pipe[0]);
        if (error != 0 || waitpid(process, &status, 0) != process)
            throw std::runtime_error("cannot run the writer");
        std::istringstream numbers(printed);
        return {std::istream_iterator<std::uint64_t>(numbers), {}};
    }

    bool ends_killed(std::uint64_t bytes) const
    {
        int status = 0;
        run(bytes, status);
        return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    }

    /// Opens what the writer left: with an empty dictionary behind it, to which its field leads.
    VBFFile salvaged() const
    {
        Bytes bytes = get_bytes(path("doomed.vbf"));
        const std::uint64_t end = bytes.size();
        append_u32(bytes, 0);
        for (std::size_t i = 0; i < 8; ++i)
            bytes.at(26 + i) = static_cast<unsigned char>(end >> (8 * i));
        put_bytes(path("salvaged.vbf"), bytes);
        return VBFFile(file_name(path("salvaged.vbf")), VFile::read_mode);
    }

    void expect_stacks(VBFFileInterface& file, std::uint64_t count) const
    {
        ASSERT_EQ(file.number_of_stacks(), count);
        for (std::uint64_t index = 0; index < count; ++index)
        {
            const DoomedStack written(index);
            const Stack read = file.get_stack(index);
            EXPECT_EQ(read->get_name(), written.name);
            EXPECT_EQ(read->get_tag("name"), written.name);
            EXPECT_EQ(read->get_sizes(), written.sizes);
            EXPECT_TRUE(samples_of(*read) == written.samples) << written.name;
        }
    }
};

TEST_F(KilledWriter, LeavesEveryStackThatIsLinked)
{
    int status = -1;
    std::vector<std::uint64_t> finished = run(~std::uint64_t{0}, status);
    ASSERT_EQ(status, 0);
    ASSERT_EQ(finished.size(), doomed_stack_count + 1);
    const std::uint64_t total = finished.back();
    finished.pop_back();
    VBFFile whole(file_name(path("doomed.vbf")), VFile::read_mode);
    expect_stacks(*whole.shared(), doomed_stack_count);
    whole.reset();

    // The link is the last that is written of a stack, so its last byte decides.
    std::vector<std::uint64_t> places;
    for (const std::uint64_t bytes : finished)
        for (const std::uint64_t before : {0u, 1u, 8u, 9u})
            places.push_back(bytes - before);
    std::mt19937 random(7);
    for (int i = 0; i < 40; ++i)
        places.push_back(first_record_pos + random() % (total - first_record_pos));
    for (const std::uint64_t place : places)
    {
        SCOPED_TRACE(testing::Message() << "killed after " << place << " bytes");
        ASSERT_TRUE(ends_killed(place));
        std::uint64_t linked = 0;
        while (linked < finished.size() && finished[linked] <= place)
            ++linked;
        expect_stacks(*salvaged().shared(), linked);
    }
}

TEST_F(KilledWriter, LeavesAFileThatDoesNotOpen)
{
    ASSERT_TRUE(ends_killed(5000));
    // The dictionary seems to begin with the file, and its first text to be as long as the magic says.
    EXPECT_VELA_ERROR(VBFFile(file_name(path("doomed.vbf")), VFile::read_mode), -3,
                      "Failed reading 1095517526 bytes from file!");
}

}
