#include "new_vbf_file.h"

#include "failure.h"
#include "file_dictionary.h"
#include "file_magic.h"
#include "file_name.h"
#include "open_file.h"

#include <VelaFile/VFile.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace {

/// An older file is overwritten only if that is what it is: who forgets to name the output names an image last. An empty one
/// holds nothing that could be lost.
void check_older_file(const std::string& path)
{
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (!std::filesystem::exists(status))
        return;
    const auto refuse = [&] { throw UsageFailure("'" + path + "' exists and is no VBF file."); };
    if (!std::filesystem::is_regular_file(status))
        refuse();
    VFile file(file_name(path), VFile::append_mode); // fails as long as the file is in use
    const std::uint64_t size_bytes = file.seek(VFileAccess::all_ones);
    VBFFileHeader header = {};
    if (size_bytes == 0)
        return;
    if (size_bytes < sizeof header)
        refuse();
    file.seek(0);
    file.read_value(header);
    if (!std::equal(std::begin(header.magic), std::end(header.magic), file_magic.begin()))
        refuse();
}

const std::string& checked(const std::string& path)
{
    check_vbf_name(path);
    return path;
}

} // namespace

void check_vbf_name(const std::string& path)
{
    if (is_dbl(path))
        throw UsageFailure("'" + path + "': files that end with .dbl are read as DBL files, not as VBF files.");
    file_name(path);
}

NewVbfFile::NewVbfFile(const std::string& out_path, const std::vector<std::string>& inputs)
    : place(checked(out_path), inputs)
{
    check_older_file(out_path);
    file.open(file_name(place.create()), VFile::write_mode);
}

void NewVbfFile::finish(const VBFDictionary& pairs)
{
    file->close();
    if (!pairs.empty())
        set_pairs(place.get_path(), pairs);
    place.finish();
}
