/// TIFF files as stacks.
#pragma once

#include "stack_options.h"
#include "tiff_file.h"
#include "tiff_layout.h"

#include <VelaStacks/VStackInfo.h>

#include <map>
#include <string>

class Progress;
class VBFFileInterface;

/// A TIFF file with the description that its stack will have. The axes are X, Y, Z, T, C, the last ones only where they have
/// extent: that is how the library lays its OME record on a stack.
class TiffStack
{
public:
    /// Reads the file's directories, and fails wherever the description cannot be.
    ///
    /// @throws UsageFailure: `options` do not fit, more labels than axes for example.
    /// @throws std::runtime_error as `TiffFile` and `parse_quantity` do
    /// @throws what `VStackInfoInterface` throws
    TiffStack(const std::string& path, const StackOptions& in_options);

    std::uint64_t get_size_bytes() const { return info->get_size(0); }

    /// What of the file could not be honoured; empty: nothing.
    const std::string& get_remark() const { return layout.remark; }

    /// Adds the stack to `target`, plane by plane.
    void add_to(VBFFileInterface& target, Progress& progress);

private:
    void describe();
    void set_labels();
    void set_lengths();
    void set_length(std::size_t axis, double length, const si::value& unit);

    TiffFile file;
    const TiffLayout layout;
    const StackOptions options;
    VStackInfo info;
    std::map<std::size_t, si::value> units; ///< of axes with a length; `create` does not take them over
};
