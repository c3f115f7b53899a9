#include "stack_options.h"

#include "failure.h"

void check_level(std::uint64_t level)
{
    if (level > max_level)
        throw UsageFailure("--level: " + std::to_string(level) + " is none of zlib, they go from 0 to " +
                           std::to_string(max_level) + ".");
}

std::map<std::string, std::string> split_tags(const std::vector<std::string>& tags)
{
    std::map<std::string, std::string> result;
    for (const std::string& tag : tags)
    {
        const std::size_t sign = tag.find('=');
        if (sign == std::string::npos || sign == 0)
            throw UsageFailure("--tag: '" + tag + "' is not of the form key=text.");
        result[tag.substr(0, sign)] = tag.substr(sign + 1);
    }
    return result;
}
