/// Arguments of the command line that several commands have.
#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// @throws CLI::ValidationError: `text` is no number without sign.
std::uint64_t parse_number(const std::string& name, const std::string& text);

/// The texts between commas; also empty ones, which CLI11 would drop.
std::vector<std::string> split(const std::string& list);

/// An option that takes a number without sign. CLI11's own reading of one lets -1 wrap and takes 010 as 8.
template <class Target>
CLI::Option* add_number(CLI::App& command, const std::string& name, Target& target, const std::string& description)
{
    const auto store = [&target, name](const std::string& text) { target = parse_number(name, text); };
    return command.add_option_function<std::string>(name, store, description)->type_name("N");
}

/// An option that takes texts with commas between them.
CLI::Option* add_list(CLI::App& command, const std::string& name, std::vector<std::string>& target,
                      const std::string& description);

/// The arguments of the command line behind the program's name.
///
/// CLI11 takes "[a,b]" for a list where a command has paths without end; so such a path becomes "./[a,b]", which is the same.
std::vector<std::string> arguments_of(const CLI::App& app, int argc, const char* const* argv);

/// The argument FILE.
void add_file(CLI::App& command, std::string& path);

/// The argument INDEX.
CLI::Option* add_index(CLI::App& command, std::uint64_t& index);

/// The flag --json.
void add_json(CLI::App& command, bool& json);
