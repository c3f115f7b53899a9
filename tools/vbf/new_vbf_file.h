/// A VBF file that is being made.
#pragma once

#include "new_file.h"

#include <VelaBinaryIO/VBFFile.h>
#include <VelaBinaryIO/VBFHeaders.h>

#include <string>
#include <vector>

/// @throws UsageFailure: the name has the ending of DBL files, with which the library would not open it.
/// @throws std::runtime_error as `file_name` does
void check_vbf_name(const std::string& path);

/// Takes the place of an older VBF file when it is finished, and never of any other.
class NewVbfFile
{
public:
    /// @throws UsageFailure: the output is one of `inputs`, or a file with other contents.
    /// @throws as `check_vbf_name` and `NewFile::create` do
    /// @throws VelaError as `VBFFile::open` does: the older file is in use.
    NewVbfFile(const std::string& out_path, const std::vector<std::string>& inputs);
    NewVbfFile(const NewVbfFile&) = delete;
    NewVbfFile& operator=(const NewVbfFile&) = delete;

    VBFFileInterface& get() { return *file.operator->(); }

    /// Closes the file, which has its name then, and `pairs` in its dictionary.
    ///
    /// @throws VelaError as `VBFFile::close` and `set_pairs` do
    /// @throws std::runtime_error as `NewFile::finish` does
    void finish(const VBFDictionary& pairs = {});

private:
    NewFile place; ///< removes what is not finished, after `file` is closed
    VBFFile file;
};
