/// Several TIFF files, each as a stack.
#pragma once

#include "tiff_stack.h"

#include <memory>
#include <string>
#include <vector>

/// Every file is opened and described before anything is written.
class TiffStacks
{
public:
    /// What could not be honoured is reported on standard error.
    ///
    /// @throws as `TiffStack`, `check_level` and `split_tags` do
    TiffStacks(const std::vector<std::string>& paths, const StackOptions& options);

    /// Shows how far it is.
    void add_to(VBFFileInterface& target);

private:
    std::vector<std::unique_ptr<TiffStack>> stacks;
};
