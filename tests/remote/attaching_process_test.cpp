// A stack crosses into another process: its description by values, its samples by the id of their segment.
#include <Remote/StackObject.h>
#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>

#include "support/shared_names.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Sizes = std::vector<std::uint64_t>;

/// What a binding carries over by means of its own.
std::string carried(const Remote::Stack& stack, const std::string& id)
{
    std::ostringstream text;
    text << id << "\n" << stack.name() << "\n" << stack.description() << "\n" << stack.type() << "\n";
    const Sizes sizes = stack.sizes();
    text << sizes.size() << "\n";
    for (std::size_t axis = 0; axis < sizes.size(); ++axis)
        text << sizes[axis] << "\n"
             << stack.labels()[axis] << "\n"
             << stack.lengths()[axis] << "\n"
             << stack.offsets()[axis] << "\n";
    return text.str();
}

struct Answer
{
    int status = -1;
    std::string text;
};

class AttachingProcess : public vela_test::FolderTest
{
protected:
    /// Runs the other process with this input until its end.
    Answer run(const std::string& input) const
    {
        vela_test::put_bytes(path("in"), vela_test::Bytes(input.begin(), input.end()));
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, path("in").c_str(), O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, path("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                         0600);
        std::string program = VELA_ATTACHING_BINDING;
        char* const argv[] = {program.data(), nullptr};
        pid_t process = -1;
        const int error = posix_spawn(&process, argv[0], &actions, nullptr, argv, environ);
        posix_spawn_file_actions_destroy(&actions);
        Answer answer;
        int status = -1;
        if (error != 0 || waitpid(process, &status, 0) != process || !WIFEXITED(status))
            return answer;
        answer.status = WEXITSTATUS(status);
        const vela_test::Bytes bytes = vela_test::get_bytes(path("out"));
        answer.text.assign(bytes.begin(), bytes.end());
        return answer;
    }
};

std::unique_ptr<Remote::Stack> described_stack()
{
    std::unique_ptr<Remote::Stack> stack(Remote::get_stack(vela_dt_uint8, {3, 2}));
    stack->set_name("two cells");
    stack->set_description("under water");
    stack->set_labels({"X", "Y"});
    stack->set_lengths({1.5, 2.5});
    stack->set_offsets({-1.0, 0.25});
    return stack;
}

TEST_F(AttachingProcess, SeesDescriptionAndSamplesAndWritesThem)
{
    const auto stack = described_stack();
    const std::string id = stack->share();
    Vela::SharedMemory segment(id);
    auto* const bytes = static_cast<unsigned char*>(segment.data());
    for (unsigned char i = 0; i < 6; ++i)
        bytes[i] = static_cast<unsigned char>(10 * i);

    const Answer answer = run(carried(*stack, id));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.text, "two cells|under water|1|3 X 1.5 -1|2 Y 2.5 0.25|0 10 20 30 40 50\n");
    EXPECT_THAT(std::vector<unsigned char>(bytes, bytes + 6), testing::ElementsAre(1, 11, 21, 31, 41, 51));
    EXPECT_EQ(vela_test::shared_names_left().size(), 1U);
    EXPECT_EQ(VStackImp(*stack).get_data_ptr()[5], 51);
}

TEST_F(AttachingProcess, IsRefusedMoreThanThereIs)
{
    const std::unique_ptr<Remote::Stack> small(Remote::get_stack(vela_dt_uint8, {5}));
    const Answer answer = run(carried(*described_stack(), small->share()));
    EXPECT_EQ(answer.status, 3);
    EXPECT_THAT(answer.text, testing::HasSubstr("Shared memory smaller than the stack!"));
}

TEST_F(AttachingProcess, IsRefusedWhenTheStackIsGone)
{
    auto stack = described_stack();
    const std::string text = carried(*stack, stack->share());
    stack.reset();
    EXPECT_EQ(run(text).status, 3);
}

}
