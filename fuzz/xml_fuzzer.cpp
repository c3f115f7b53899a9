// Any bytes end as elements or with Json::XmlReader::Unexpected, the same wherever they are cut and from a stream; what
// was read can be written in both forms, and reads again as the same where the form keeps it.

#include "fuzz/text_pieces.h"

#include <Json/Reader.h>
#include <Json/XmlReader.h>

#include <cmath>

namespace {

using Json::Value;
using vela_fuzz::Cuts;
using vela_fuzz::Outcome;
using vela_fuzz::require;

Outcome read(const std::string& text, const Cuts& cuts)
{
    Outcome outcome;
    Value target("what was there before");
    Json::XmlReader reader(target);
    vela_fuzz::feed<Json::XmlReader::Unexpected>(reader, text, cuts, outcome);
    outcome.values.push_back(std::move(target));
    outcome.values.emplace_back(reader.object());
    return outcome;
}

Outcome read_stream(const std::string& text)
{
    Outcome outcome;
    Value target;
    Json::XmlReader reader(target);
    std::istringstream in(text);
    try
    {
        while (reader.read(in))
            outcome.completed_at.push_back(static_cast<std::size_t>(in.tellg()));
        outcome.stopped_at = text.size();
    }
    catch (const Json::XmlReader::Unexpected& unexpected)
    {
        outcome.error = unexpected.what();
        outcome.stopped_at = static_cast<std::size_t>(in.tellg()) - 1;
    }
    outcome.values.push_back(std::move(target));
    outcome.values.emplace_back(reader.object());
    return outcome;
}

bool is_one_of(char c, const char* characters)
{
    return std::string(characters).find(c) != std::string::npos;
}

/// Strings are taken for numbers and keywords, lose white space, and keep references that they begin with.
bool keeps_text(const Value& value)
{
    if (const std::string* text = value.if_string())
        return !text->empty() && !is_one_of(text->front(), " \t\n\v\f\r-0123456789tf<>&'\"");
    if (const double* decimal = value.if_decimal())
        return std::trunc(*decimal) == *decimal; // the others are written with ten digits
    return value.is_boolean() || value.is_integer();
}

bool keeps_elements(const Value::Object& elements);

/// Null is not written, and what has no attributes and no children is no object when it comes again.
bool keeps_element(const Value& value)
{
    const Value::Object* const object = value.if_object();
    if (object == nullptr)
        return keeps_text(value);
    for (const auto& [key, child] : *object)
    {
        const Value::Object* const children = child.if_object();
        const bool kept = key.empty() && children != nullptr ? keeps_elements(*children) : keeps_text(child);
        if (!kept)
            return false;
    }
    return object->size() > 1 ||
           (object->size() == 1 && (!object->begin()->first.empty() || object->begin()->second.is_object()));
}

bool keeps_elements(const Value::Object& elements)
{
    for (const auto& [key, value] : elements)
    {
        const Value::List* const list = value.if_list();
        if (list == nullptr ? !keeps_element(value) : !std::all_of(list->begin(), list->end(), keeps_element))
            return false;
    }
    return !elements.empty();
}

void check_written(const Value& value)
{
    std::ostringstream out;
    Json::write_xml(value, out);
    const std::string text = out.str();
    const Outcome again = read(text, {text.size()});
    if (value.is_null() || !keeps_elements(*value.if_object()))
        return;
    require(again.error.empty());
    require(!again.completed_at.empty() && again.completed_at.back() == text.size());
    require(again.values.front() == value);
    require(vela_fuzz::json_text(again.values.back()) == R"({"encoding":"UTF-8","version":1.0})");
}

void check_written_as_json(const Value& value)
{
    if (value.is_null())
        return;
    const std::string text = vela_fuzz::json_text(value);
    Json::Reader reader;
    const char* p = text.data();
    require(reader.read(p, text.data() + text.size()));
    require(p == text.data() + text.size());
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Outcome whole = read(text, {text.size()});
    for (const Cuts& cuts : vela_fuzz::cuts_for(text))
        require(text.empty() || read(text, cuts) == whole);
    require(read_stream(text) == whole);
    vela_fuzz::check_copies(whole.values.front());
    check_written(whole.values.front());
    check_written_as_json(whole.values.front());
    return 0;
}
