#include "tags.h"

#include "open_file.h"
#include "output.h"
#include "text.h"

#include <VelaBinaryIO/VBFFile.h>

#include <nlohmann/json.hpp>

namespace {

std::string as_text(const VBFStackInterface& stack, const std::optional<std::string>& key)
{
    if (key)
        return stack.get_tag(*key);
    std::string result;
    for (const std::string& each : stack.get_tag_keys())
        result += terminal_safe(each) + "=" + terminal_safe(stack.get_tag(each)) + "\n";
    return result;
}

std::string as_json(const VBFStackInterface& stack, const std::optional<std::string>& key)
{
    nlohmann::ordered_json result = nlohmann::ordered_json::object();
    for (const std::string& each : stack.get_tag_keys())
    {
        if (!key || *key == each)
            result[valid_utf8(each)] = valid_utf8(stack.get_tag(each));
    }
    if (key)
        stack.get_tag(*key); // fails where there is none
    return result.dump(2) + "\n";
}

} // namespace

void print_tags(const TagsOptions& options)
{
    Output output("", options.path);
    VBFFile file = open_vbf(options.path, VFile::read_mode);
    const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(options.index);
    const std::string text = options.json ? as_json(*stack, options.key) : as_text(*stack, options.key);
    output.write(text.data(), text.size());
    output.finish();
}
