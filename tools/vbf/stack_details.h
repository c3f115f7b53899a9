/// What an open file says of a stack beyond its header.
#pragma once

#include "footer.h"

#include <VelaBinaryIO/VBFFile.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

struct AxisDetails
{
    std::string label;
    std::string unit; ///< as it is printed; empty: none was set
    bool equidistant = true;
    std::vector<std::string> col_labels; ///< empty: none
};

struct StackDetails
{
    std::vector<AxisDetails> axes;
    std::map<std::string, std::string> tags;
    std::uint64_t count_flush_points = 0;
    std::uint64_t flush_block_bytes = 0;
};

/// The details of every stack; why there are none, where the file does not open.
struct FileDetails
{
    std::vector<StackDetails> stacks;
    std::optional<std::string> open_failure;
};

/// Opens the file, which must not be open already. `footers` are those of its stacks.
///
/// @throws std::runtime_error as `file_name` does
FileDetails read_details(const std::string& path, const std::vector<FooterParts>& footers);
