/// Runs the program vbf as a user does.
#pragma once

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vela_test {

struct RunResult
{
    int status; ///< exit status; -1 where a signal ended the program
    std::string out;
    std::string err;
};

/// Runs a program with its standard output on `out_descriptor` and its standard error in `err_path`. Gives its exit status,
/// -1 where a signal ended it.
inline int run_program_into(const char* program, const std::vector<std::string>& arguments, int out_descriptor,
                            const std::string& err_path)
{
    std::vector<std::string> texts = {program};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out_descriptor, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t child = 0;
    const int error = posix_spawn(&child, program, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start the program");
    int status = 0;
    if (waitpid(child, &status, 0) != child)
        throw std::runtime_error("cannot wait for the program");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

inline int run_vbf_into(const std::vector<std::string>& arguments, int out_descriptor, const std::string& err_path)
{
    return run_program_into(VELA_VBF_PROGRAM, arguments, out_descriptor, err_path);
}

/// A test that runs the program and looks at all that it leaves behind.
class ProgramTest : public FolderTest
{
protected:
    RunResult run(const std::vector<std::string>& arguments) const
    {
        const std::string out_path = path("standard_output");
        const int descriptor = open(out_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        const int status = run_vbf_into(arguments, descriptor, path("standard_error"));
        close(descriptor);
        return {status, text_of(out_path), messages()};
    }

    /// What the last run wrote to standard error.
    std::string messages() const { return text_of(path("standard_error")); }

    /// The output of a run that has to succeed without a message.
    std::string output_of(const std::vector<std::string>& arguments) const
    {
        const RunResult result = run(arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        return result.out;
    }

    Bytes bytes_of(const std::vector<std::string>& arguments) const
    {
        const std::string out = output_of(arguments);
        return Bytes(out.begin(), out.end());
    }

    /// The run fails with this one line on standard error and nothing on standard output.
    void expect_failure(const std::vector<std::string>& arguments, int status, const std::string& message) const
    {
        const RunResult result = run(arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.err, "vbf: " + message + "\n");
        EXPECT_EQ(result.out, "");
    }

    /// Puts a file into the folder and gives its path.
    std::string put(const Bytes& bytes, const std::string& name = "test.vbf") const
    {
        put_bytes(path(name), bytes);
        return path(name);
    }

private:
    static std::string text_of(const std::string& file)
    {
        const Bytes bytes = get_bytes(file);
        return std::string(bytes.begin(), bytes.end());
    }
};

} // namespace vela_test
