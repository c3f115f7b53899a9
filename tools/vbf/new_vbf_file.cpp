#include "new_vbf_file.h"

#include "failure.h"
#include "file_name.h"

#include <filesystem>
#include <utility>

namespace {

/// `path`, if it is none of `inputs`.
std::string other_than(std::string path, const std::vector<std::string>& inputs)
{
    for (const std::string& input : inputs)
    {
        std::error_code one_is_missing;
        if (std::filesystem::equivalent(path, input, one_is_missing))
            throw UsageFailure("The output would overwrite the input.");
    }
    return path;
}

} // namespace

NewVbfFile::NewVbfFile(std::string out_path, const std::vector<std::string>& inputs)
    : path(other_than(std::move(out_path), inputs)), file(file_name(path), VFile::write_mode)
{
}

NewVbfFile::~NewVbfFile()
{
    if (finished)
        return;
    file.reset();
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored))
        std::filesystem::remove(path, ignored);
}

void NewVbfFile::finish()
{
    file->close();
    finished = true;
}
