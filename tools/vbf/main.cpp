// vbf: makes, lists, reads, shows and mends the image stacks of VBF files, and reads physical quantities.
//
// Data go to standard output, messages to standard error.
// Exit status: 0 done, 1 failed, 2 wrong usage.
#include "arguments.h"
#include "commands.h"
#include "failure.h"

#include <VelaBase/version.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <iostream>
#include <new>
#include <utility>

namespace {

enum ExitStatus : int
{
    done = 0,
    failed = 1,
    wrong_usage = 2,
};

std::string version_text()
{
    return "vbf " + std::to_string(VELA_VERSION_MAJOR) + "." + std::to_string(VELA_VERSION_MINOR) + "." +
           std::to_string(VELA_VERSION_PATCH);
}

/// Help and version are no failures, though CLI11 throws them.
int answer(const CLI::App& app, const CLI::ParseError& error)
{
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success))
        throw UsageFailure(std::string(error.what()) + ". Try vbf --help.");
    app.exit(error, std::cout, std::cerr);
    if (!std::cout.flush())
        throw std::runtime_error("Cannot write to standard output");
    return done;
}

int run(int argc, char** argv)
{
    CLI::App app("Makes, lists, reads, shows and mends the image stacks of VBF files, and reads physical quantities.",
                 "vbf");
    app.set_version_flag("--version", version_text());
    app.require_subcommand(1);
    std::vector<Command> commands = add_reading_commands(app);
    for (Command& command : add_writing_commands(app))
        commands.push_back(std::move(command));
    try
    {
        std::vector<std::string> arguments = arguments_of(app, argc, argv);
        std::reverse(arguments.begin(), arguments.end()); // CLI11 takes them from the end
        app.parse(std::move(arguments));
    }
    catch (const CLI::ParseError& error)
    {
        return answer(app, error);
    }
    for (const Command& command : commands)
    {
        if (command.arguments->parsed() && !command.run())
            return failed;
    }
    return done;
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes away becomes a failed write
    std::signal(SIGXFSZ, SIG_IGN); // and so does the limit of a file's size
    try
    {
        return run(argc, argv);
    }
    catch (const UsageFailure& failure)
    {
        report(failure.what());
        return wrong_usage;
    }
    catch (const std::bad_alloc&)
    {
        report("There is not enough memory.");
    }
    catch (const std::exception& error)
    {
        report(message_of(error));
    }
    return failed;
}
