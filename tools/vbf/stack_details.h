/// What an open file says of its stacks beyond their headers.
#pragma once

#include "file_document.h"

#include <VelaBinaryIO/VBFHeaders.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

struct AxisDetails
{
    std::string label;
    std::string unit;                    ///< as it is printed; empty: none was set
    std::vector<double> col_positions;   ///< empty: columns are equidistant
    std::vector<std::string> col_labels; ///< empty: none
};

/// Where a stack lies in global axes.
struct GlobalPosition
{
    std::vector<std::string> labels;         ///< of the global axes
    std::vector<double> origin;              ///< one for each global axis
    std::vector<std::vector<double>> matrix; ///< a row for each global axis, with a number for each axis of the stack
};

struct StackDetails
{
    std::vector<AxisDetails> axes;
    std::string data_unit;                  ///< as it is printed; empty: none was set
    std::optional<GlobalPosition> position; ///< none: the axes of the stack are the global ones
    std::map<std::string, std::string> tags;
    std::uint64_t count_flush_points = 0;
    std::uint64_t flush_block_bytes = 0;
};

/// The details of every stack; why there are none, where the file does not open.
struct FileDetails
{
    FileDocument document;
    std::vector<StackDetails> stacks;
    std::optional<std::string> open_failure;
};

/// Opens the file, which must not be open already. Memory: what the library takes for the file, and one footer.
///
/// @throws std::runtime_error as `file_name` does
FileDetails read_details(const std::string& path);
