/// A value tree in the plainest form, for tests to hold the library's one against: every operation is written as
/// the tables of the value say it, by recursion and without care for speed.
#pragma once

#include "json/value_text.h"

#include <Json/Value.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace json_test {

struct PlainValue
{
    struct BadCast
    {
    };

    int kind = 0;
    bool boolean = false;
    std::int64_t integer = 0;
    double decimal = 0;
    std::string text;
    std::vector<PlainValue> list;
    std::map<std::string, PlainValue> object;

    void as_decimal()
    {
        if (kind == 2)
            decimal = static_cast<double>(integer);
        else if (kind != 3)
            throw BadCast();
        kind = 3;
    }

    void as_integer()
    {
        if (kind != 2 && kind != 3)
            throw BadCast();
        if (kind == 3)
        {
            if (!(decimal >= -9223372036854775808.0 && decimal < 9223372036854775808.0) ||
                std::trunc(decimal) != decimal)
                throw BadCast();
            integer = static_cast<std::int64_t>(decimal);
        }
        kind = 2;
    }

    void as_string()
    {
        if (kind == 0)
            text.clear();
        else if (kind != 4)
            throw BadCast();
        kind = 4;
    }

    void as_object()
    {
        if (kind == 0)
            object.clear();
        else if (kind != 6)
            throw BadCast();
        kind = 6;
    }

    void as_list()
    {
        if (kind == 5)
            return;
        std::vector<PlainValue> elements;
        if (kind != 0)
            elements.push_back(*this);
        list = elements;
        kind = 5;
    }

    PlainValue& at(const std::string& key)
    {
        as_object();
        return object[key];
    }

    PlainValue& at(std::size_t index)
    {
        as_list();
        if (index >= list.size())
            list.resize(index + 1);
        return list[index];
    }

    std::size_t count() const { return kind == 0 ? 0 : kind == 5 ? list.size() : 1; }

    bool equals(const PlainValue& other) const
    {
        if (kind != other.kind)
            return false;
        switch (kind)
        {
        case 1:
            return boolean == other.boolean;
        case 2:
            return integer == other.integer;
        case 3:
            return decimal == other.decimal;
        case 4:
            return text == other.text;
        case 5:
            return lists_are_equal(other);
        case 6:
            return objects_are_equal(other);
        default:
            return true;
        }
    }

    /// In the form of `value_text`.
    std::string shown() const
    {
        switch (kind)
        {
        case 0:
            return "null";
        case 1:
            return boolean ? "true" : "false";
        case 2:
            return "i:" + std::to_string(integer);
        case 3:
            return decimal_text(decimal);
        case 4:
            return "'" + text + "'";
        default:
            return kind == 5 ? shown_list() : shown_object();
        }
    }

private:
    bool lists_are_equal(const PlainValue& other) const
    {
        if (list.size() != other.list.size())
            return false;
        for (std::size_t i = 0; i < list.size(); ++i)
            if (!list[i].equals(other.list[i]))
                return false;
        return true;
    }

    bool objects_are_equal(const PlainValue& other) const
    {
        if (object.size() != other.object.size())
            return false;
        for (const auto& [key, member] : object)
            if (other.object.count(key) == 0 || !member.equals(other.object.at(key)))
                return false;
        return true;
    }

    std::string shown_list() const
    {
        std::string shown = "[";
        for (const PlainValue& element : list)
            shown += (shown.size() == 1 ? "" : ", ") + element.shown();
        return shown + "]";
    }

    std::string shown_object() const
    {
        std::string shown = "{";
        for (const auto& [key, member] : object)
            shown += (shown.size() == 1 ? "" : ", ") + key + " = " + member.shown();
        return shown + "}";
    }
};

}
