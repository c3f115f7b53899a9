#include "verify.h"

#include "file_check.h"
#include "output.h"
#include "text.h"

#include <nlohmann/json.hpp>

namespace {

std::string counted(std::uint64_t count, const std::string& thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

/// "wrong  stack 0, byte 123: ..."
std::string line(const Finding& finding)
{
    const std::string place = finding.stack ? "stack " + std::to_string(*finding.stack) + ", " : std::string();
    return std::string(finding.wrong ? "wrong  " : "odd    ") + place + "byte " + std::to_string(finding.position) +
           ": " + terminal_safe(finding.text) + "\n";
}

std::string verdict(const Inspected& inspected)
{
    const std::uint64_t count_wrong = inspected.findings.get_count_wrong();
    if (count_wrong != 0)
        return counted(count_wrong, "thing") + (count_wrong == 1 ? " is wrong" : " are wrong");
    return "ok, " + counted(inspected.count_stacks, "stack") + ", " + counted(inspected.size_samples_bytes, "byte") +
           " of samples, " + counted(inspected.count_flush_points, "flush point");
}

std::string as_text(const std::string& path, const Inspected& inspected)
{
    std::string result;
    for (const Finding& finding : inspected.findings.get_list())
        result += line(finding);
    if (const std::uint64_t more = inspected.findings.get_count_not_listed(); more != 0)
        result += "and " + std::to_string(more) + " more\n";
    return result + terminal_safe(path) + ": " + verdict(inspected) + "\n";
}

std::string as_json(const Inspected& inspected)
{
    typedef nlohmann::ordered_json Json;
    Json result;
    result["ok"] = inspected.findings.get_count_wrong() == 0;
    result["stacks"] = inspected.count_stacks;
    result["size_samples"] = inspected.size_samples_bytes;
    result["flush_points"] = inspected.count_flush_points;
    Json& list = result["findings"] = Json::array();
    for (const Finding& finding : inspected.findings.get_list())
        list.push_back({{"severity", finding.wrong ? "wrong" : "odd"},
                        {"stack", finding.stack ? Json(*finding.stack) : Json(nullptr)},
                        {"position", finding.position},
                        {"text", valid_utf8(finding.text)}});
    result["not_listed"] = inspected.findings.get_count_not_listed();
    return result.dump(2) + "\n";
}

} // namespace

bool verify_file(const VerifyOptions& options)
{
    Output output("", options.path);
    const Inspected inspected = inspect_file(options.path);
    const std::string report = options.json ? as_json(inspected) : as_text(options.path, inspected);
    output.write(report.data(), report.size());
    output.finish();
    return inspected.findings.get_count_wrong() == 0;
}
