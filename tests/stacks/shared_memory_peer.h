/// A second process that makes segments of shared memory and attaches to them; see shared_memory_peer.cpp.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace vela_test {

/// Runs as long as this object. Each order waits for its answer, so that nothing depends on time.
class SharedMemoryPeer
{
public:
    SharedMemoryPeer()
    {
        // Close-on-exec: the peer keeps the two ends that it is given and no other.
        std::array<int, 2> orders = {};
        std::array<int, 2> answers = {};
        if (pipe2(orders.data(), O_CLOEXEC) != 0 || pipe2(answers.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipes");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, orders[0], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, answers[1], STDOUT_FILENO);
        std::string program = VELA_SHARED_MEMORY_PEER;
        char* const argv[] = {program.data(), nullptr};
        const int error = posix_spawn(&process, argv[0], &actions, nullptr, argv, environ);
        posix_spawn_file_actions_destroy(&actions);
        close(orders[0]);
        close(answers[1]);
        if (error != 0)
            throw std::runtime_error("cannot start the peer");
        to_peer = orders[1];
        from_peer = answers[0];
    }
    SharedMemoryPeer(const SharedMemoryPeer&) = delete;
    SharedMemoryPeer& operator=(const SharedMemoryPeer&) = delete;

    /// The end of its input ends the peer.
    ~SharedMemoryPeer()
    {
        close(to_peer);
        int status = 0;
        EXPECT_EQ(waitpid(process, &status, 0), process);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        close(from_peer);
    }

    pid_t process_id() const { return process; }

    std::string order(const std::string& line)
    {
        const std::string text = line + '\n';
        if (write(to_peer, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
            throw std::runtime_error("the peer does not listen");
        std::string answer;
        char c = 0;
        while (read(from_peer, &c, 1) == 1 && c != '\n')
            answer += c;
        return answer;
    }

private:
    pid_t process = -1;
    int to_peer = -1;
    int from_peer = -1;
};

} // namespace vela_test
