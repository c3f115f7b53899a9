#include "arguments.h"

#include <charconv>

std::uint64_t parse_number(const std::string& name, const std::string& text)
{
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        throw CLI::ValidationError(name, "'" + text + "' is no number from 0 to 18446744073709551615");
    return number;
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
