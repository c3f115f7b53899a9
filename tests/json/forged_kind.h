/// Values whose tag names none of the seven kinds, which only damaged memory has.
#pragma once

#include <Json/Value.h>

#include <cstdint>
#include <cstring>

namespace json_test {

/// Gives `value`, whose payload needs no destruction, another tag for as long as this lives. The tag stands first
/// in a value.
class ForgedKind
{
public:
    ForgedKind(Json::Value& value, std::int32_t tag) : value_(value), true_tag_(static_cast<std::int32_t>(value.kind()))
    {
        set_tag(tag);
    }
    ~ForgedKind() { set_tag(true_tag_); }
    ForgedKind(const ForgedKind&) = delete;
    ForgedKind& operator=(const ForgedKind&) = delete;

private:
    void set_tag(std::int32_t tag) { std::memcpy(static_cast<void*>(&value_), &tag, sizeof tag); }

    Json::Value& value_;
    std::int32_t true_tag_;
};

}
