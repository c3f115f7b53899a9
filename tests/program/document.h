/// The pages of the tree, as texts with fenced blocks.
#pragma once

#include "support/temporary_folder.h"

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace vela_test {

/// A file of the tree.
inline std::string text_of(const std::string& path_in_tree)
{
    const Bytes bytes = get_bytes((std::filesystem::path(VELA_SOURCE_ROOT) / path_in_tree).string());
    return std::string(bytes.begin(), bytes.end());
}

inline std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

/// A fenced block, with the line that stands before its fence.
struct Block
{
    std::string line_before;
    std::string kind;
    std::string text;
};

inline std::vector<Block> blocks_of(const std::string& document)
{
    std::vector<Block> blocks;
    std::string previous;
    bool inside = false;
    for (const std::string& line : lines_of(document))
    {
        const bool fence = line.rfind("```", 0) == 0;
        if (fence && !inside)
            blocks.push_back({previous, line.substr(3), ""});
        else if (!fence && inside)
            blocks.back().text += line + "\n";
        inside = inside != fence;
        previous = line;
    }
    return blocks;
}

} // namespace vela_test
