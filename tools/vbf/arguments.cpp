#include "arguments.h"

#include "text.h"

#include <algorithm>

namespace {

bool has_paths_without_end(const CLI::App& command)
{
    const std::vector<const CLI::Option*> options = command.get_options();
    return std::any_of(options.begin(), options.end(),
                       [](const CLI::Option* option)
                       { return option->get_positional() && option->get_allow_extra_args(); });
}

/// The name of an option, whose value follows. No command with paths without end has flags.
bool is_option(const CLI::App& command, const std::string& argument)
{
    return argument.rfind("--", 0) == 0 && argument != "--" && command.get_option_no_throw(argument) != nullptr;
}

bool is_bracketed(const std::string& argument)
{
    return !argument.empty() && argument.front() == '[' && argument.back() == ']';
}

} // namespace

std::uint64_t parse_number(const std::string& name, const std::string& text)
{
    const std::optional<std::uint64_t> number = number_in(text);
    if (!number)
        throw CLI::ValidationError(name, "'" + text + "' is no number from 0 to 18446744073709551615");
    return *number;
}

std::vector<std::string> split(const std::string& list)
{
    std::vector<std::string> texts(1);
    for (const char c : list)
    {
        if (c == ',')
            texts.emplace_back();
        else
            texts.back() += c;
    }
    return texts;
}

CLI::Option* add_list(CLI::App& command, const std::string& name, std::vector<std::string>& target,
                      const std::string& description)
{
    const auto store = [&target](const std::string& list) { target = split(list); };
    return command.add_option_function<std::string>(name, store, description);
}

std::vector<std::string> arguments_of(const CLI::App& app, int argc, const char* const* argv)
{
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    const auto is_named = [&](const CLI::App* command)
    { return !arguments.empty() && command->get_name() == arguments[0] && has_paths_without_end(*command); };
    const std::vector<const CLI::App*> commands = app.get_subcommands(is_named);
    if (commands.empty())
        return arguments;
    bool only_paths = false; // behind "--"
    for (std::size_t i = 1; i < arguments.size(); ++i)
    {
        const bool is_value = !only_paths && is_option(*commands[0], arguments[i - 1]);
        if (!is_value && is_bracketed(arguments[i]))
            arguments[i].insert(0, "./");
        only_paths = only_paths || (!is_value && arguments[i] == "--");
    }
    return arguments;
}

void add_file(CLI::App& command, std::string& path)
{
    command.add_option("FILE", path, "a VBF file")->required()->type_name("");
}

CLI::Option* add_index(CLI::App& command, std::uint64_t& index)
{
    return add_number(command, "INDEX", index, "the stack, counted from 0")->required()->type_name("");
}

void add_json(CLI::App& command, bool& json)
{
    command.add_flag("--json", json, "print one JSON document");
}
