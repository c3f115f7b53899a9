#include "repair.h"

#include "failure.h"
#include "new_vbf_file.h"
#include "open_failure.h"
#include "open_file.h"
#include "output.h"
#include "progress.h"
#include "repair_plan.h"
#include "text.h"

#include <VelaFile/VFile.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace {

constexpr std::uint64_t copy_chunk_bytes = std::uint64_t{1024} * 1024;

/// Puts what `patch` has of the bytes from `position` on into `chunk`.
void apply(const Patch& patch, std::uint64_t position, std::vector<char>& chunk)
{
    const std::uint64_t begin = std::max(position, patch.position);
    const std::uint64_t end = std::min(position + chunk.size(), patch.position + patch.bytes.size());
    if (begin < end)
        std::memcpy(chunk.data() + (begin - position), patch.bytes.data() + (begin - patch.position), end - begin);
}

/// What lies behind the end of the file comes in one patch.
void write_copy(VFile& file, const RepairPlan& plan, Output& output)
{
    const std::uint64_t file_size = file.seek(VFileAccess::all_ones);
    file.seek(0);
    Progress progress("copying", file_size);
    std::vector<char> chunk;
    for (std::uint64_t position = 0; position < file_size; position += chunk.size())
    {
        chunk.resize(std::min(copy_chunk_bytes, file_size - position));
        file.read(chunk.data(), chunk.size());
        for (const Patch& patch : plan.patches)
            apply(patch, position, chunk);
        output.write(chunk.data(), chunk.size());
        progress.add(chunk.size());
    }
    for (const Patch& patch : plan.patches)
    {
        if (patch.position == file_size)
            output.write(patch.bytes.data(), patch.bytes.size());
    }
    output.finish();
}

void print(const std::string& text)
{
    Output output("", "");
    output.write(text.data(), text.size());
    output.finish();
}

/// True when something had to be done.
bool mend(const RepairOptions& options)
{
    Output output(options.out, options.path);
    VFile file = open_bytes(options.path, options.in_place ? VFile::append_mode : VFile::read_mode);
    const RepairPlan plan = plan_repair(file);
    if (plan.patches.empty())
        return false;
    if (options.in_place)
        mend_in_place(file, plan);
    else
        write_copy(file, plan, output);
    std::string report = terminal_safe(options.in_place ? options.path : options.out) + "\n";
    for (const std::string& sentence : plan.done)
        report += "  " + sentence + "\n";
    print(report);
    return true;
}

} // namespace

void repair_file(const RepairOptions& options)
{
    if (options.in_place != options.out.empty())
        throw UsageFailure("Either --out or --in-place is needed.");
    if (is_dbl(options.path))
        throw UsageFailure("A DBL file has nothing that could be mended.");
    check_vbf_name(options.out);
    const bool mended = mend(options);
    const std::string& target = mended && !options.in_place ? options.out : options.path;
    if (const auto failure = open_failure(target))
        throw std::runtime_error("There is more that is wrong with the file, see vbf verify. It does not open: " +
                                 *failure);
    if (!mended)
        print(terminal_safe(options.path) + "\n  Nothing has to be done." +
              (options.in_place ? "" : " There is no copy.") + "\n");
}
