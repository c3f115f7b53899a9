/// The commands of the program.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <vector>

/// A command as the command line knows it, and what it does.
struct Command
{
    const CLI::App* arguments;
    std::function<bool()> run; ///< true when all is well
};

/// A command that does `act` with its options.
template <class Options>
Command command(const CLI::App* arguments, const std::shared_ptr<Options>& options, void (*act)(const Options&))
{
    return {arguments, [options, act]
            {
                act(*options);
                return true;
            }};
}

/// Commands that read VBF files, or none.
std::vector<Command> add_reading_commands(CLI::App& app);

/// Commands that make and change VBF files.
std::vector<Command> add_writing_commands(CLI::App& app);
