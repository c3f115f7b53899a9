// vbf append that is killed while it writes.
#include "build_vbf.h"
#include "run_vbf.h"

#include <signal.h>

using namespace vela_test;

namespace {

class AppendKilledTest : public ProgramTest
{
protected:
    /// Appends the example file and kills the program as soon as the file has `size_bytes`. Gives whether it was killed.
    bool append_until(const std::string& file, std::uintmax_t size_bytes) const
    {
        std::vector<std::string> texts = {VELA_VBF_PROGRAM, "append", file, "--from", path("other.vbf")};
        std::vector<char*> argv;
        for (std::string& text : texts)
            argv.push_back(text.data());
        argv.push_back(nullptr);
        pid_t child = 0;
        if (posix_spawn(&child, VELA_VBF_PROGRAM, nullptr, nullptr, argv.data(), environ) != 0)
            throw std::runtime_error("cannot start the program");
        int status = 0;
        while (waitpid(child, &status, WNOHANG) == 0)
        {
            if (std::filesystem::file_size(file) < size_bytes)
                continue;
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            break;
        }
        return WIFSIGNALED(status);
    }
};

} // namespace

TEST_F(AppendKilledTest, FirstStackIsWholeAndTheRestIsMended)
{
    const Bytes original = get_bytes(VELA_GOLGI_FILE);
    put(original, "other.vbf");
    const Bytes samples = golgi_samples();
    constexpr int count_kills = 12;
    int count_killed = 0;
    for (int i = 0; i < count_kills; ++i)
    {
        const std::string file = put(original);
        const std::uintmax_t more_bytes = original.size() * static_cast<std::uintmax_t>(i) / (count_kills - 1);
        count_killed += append_until(file, original.size() + more_bytes) ? 1 : 0;
        EXPECT_EQ(run({"repair", file, "--in-place"}).status, 0) << i << messages();
        EXPECT_EQ(run({"verify", file}).status, 0) << i;
        EXPECT_EQ(bytes_of({"read", file, "0"}), samples) << i;
    }
    EXPECT_GT(count_killed, 0);
}
