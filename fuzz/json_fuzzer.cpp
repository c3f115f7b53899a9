// Any bytes end as documents or with Json::Reader::Unexpected, the same wherever they are cut; what was read is
// written as a document that reads again, and is equal but for its decimals.

#include "fuzz/text_pieces.h"

#include <Json/Reader.h>

#include <cmath>

namespace {

using Json::Value;
using vela_fuzz::Cuts;
using vela_fuzz::Outcome;
using vela_fuzz::require;

Outcome read(const std::string& text, const Cuts& cuts)
{
    Outcome outcome;
    Json::Reader reader;
    vela_fuzz::feed<Json::Reader::Unexpected>(reader, text, cuts, outcome);
    outcome.values.emplace_back(reader.object());
    return outcome;
}

/// Replaces decimals, which are written with ten digits, and small ones without a point.
void drop_decimals(Value& root)
{
    std::vector<Value*> open{&root};
    while (!open.empty())
    {
        Value& value = *open.back();
        open.pop_back();
        if (const double* decimal = value.if_decimal())
        {
            require(std::isfinite(*decimal));
            value = Value();
        }
        else if (value.is_list())
        {
            for (Value& element : value.as_list())
                open.push_back(&element);
        }
        else if (value.is_object())
        {
            for (auto& member : value.as_object())
                open.push_back(&member.second);
        }
    }
}

void check_written(Value value)
{
    const std::string with_decimals = vela_fuzz::json_text(value);
    require(read(with_decimals, {with_decimals.size()}).completed_at == std::vector<std::size_t>{with_decimals.size()});
    drop_decimals(value);
    const std::string text = vela_fuzz::json_text(value);
    const Outcome again = read(text, {text.size()});
    require(again.completed_at == std::vector<std::size_t>{text.size()});
    require(again.values.front() == value);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Outcome whole = read(text, {text.size()});
    for (const Cuts& cuts : vela_fuzz::cuts_for(text))
        require(text.empty() || read(text, cuts) == whole);
    vela_fuzz::check_copies(whole.values.front());
    check_written(whole.values.front());
    return 0;
}
