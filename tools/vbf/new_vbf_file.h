/// A VBF file that is being made.
#pragma once

#include <VelaBinaryIO/VBFFile.h>

#include <string>
#include <vector>

/// Opens a file for writing and removes it again unless it was finished.
class NewVbfFile
{
public:
    /// @throws UsageFailure: the file is one of `inputs`.
    /// @throws VelaError as `VBFFile::open` does; a file that cannot be opened stays as it is.
    NewVbfFile(std::string out_path, const std::vector<std::string>& inputs);
    NewVbfFile(const NewVbfFile&) = delete;
    NewVbfFile& operator=(const NewVbfFile&) = delete;
    ~NewVbfFile();

    VBFFileInterface& get() { return *file.operator->(); }

    /// Closes the file, which stays now.
    void finish();

private:
    const std::string path;
    VBFFile file;
    bool finished = false;
};
