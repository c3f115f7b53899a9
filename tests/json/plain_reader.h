/// A second reader of JSON text, for tests to hold the library's one against: the table of tests that every
/// character passes, one after the other, and nothing else.
#pragma once

#include <Json/Value.h>

#include <cstdint>
#include <deque>
#include <sstream>
#include <stdexcept>
#include <string>

namespace json_test {

inline bool is_white_space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

class PlainReader
{
public:
    struct Unexpected : std::runtime_error
    {
        Unexpected(char c, const std::string& kind)
            : std::runtime_error("Unexpected '" + std::string(1, c) + "' character in " + kind + " value")
        {
        }
        Unexpected(const std::string& text, const std::string& kind)
            : std::runtime_error("Unexpected '" + text + "' string in " + kind + " value")
        {
        }
    };

    PlainReader() { root_.as_object(); }

    bool read(const char*& p, const char* const& end)
    {
        for (; p != end; ++p)
            if (read_character(*p))
            {
                ++p;
                return true;
            }
        return false;
    }

    const Json::Value::Object& object() const { return *root_.if_object(); }
    void clear() { root_.if_object()->clear(); }

private:
    bool read_character(char c)
    {
        if (target_ != nullptr)
            return read_string(c);
        if (in_number_)
        {
            if (std::string("0123456789.eE+-").find(c) != std::string::npos)
            {
                number_ += c;
                return false;
            }
            end_number();
            return read_structure(c);
        }
        if (true_at_ != 0)
            return read_keyword(c, "true", true_at_);
        if (false_at_ != 0)
            return read_keyword(c, "false", false_at_);
        if (null_at_ != 0)
            return read_keyword(c, "null", null_at_);
        if (expect_key_)
            return read_before_key(c);
        if (expect_colon_)
            return read_before_colon(c);
        if (slot_ != nullptr)
            return begin_value(c);
        return read_structure(c);
    }

    bool read_string(char c)
    {
        if (in_escape_)
        {
            static const std::string letters = "\"\\/bfnrt";
            static const std::string meanings = "\"\\/\b\f\n\r\t";
            const std::size_t at = letters.find(c);
            if (at == std::string::npos)
                throw Unexpected(std::string("\\") + c, "string");
            *target_ += meanings[at];
            in_escape_ = false;
        }
        else if (c == '\\')
            in_escape_ = true;
        else if (c != '"')
            *target_ += c;
        else
        {
            if (target_ == &key_ && object_ != nullptr)
            {
                expect_colon_ = true;
                slot_ = &(*object_)[key_];
                key_.clear();
            }
            target_ = nullptr;
        }
        return false;
    }

    void end_number()
    {
        in_number_ = false;
        std::istringstream stream(number_);
        Json::Value number;
        if (number_.find('.') == std::string::npos)
        {
            std::int64_t integer = 0;
            stream >> integer;
            number = Json::Value(integer);
        }
        else
        {
            double decimal = 0;
            stream >> decimal;
            number = Json::Value(decimal);
        }
        if (stream.fail() || number_.find('.') != number_.rfind('.'))
            throw Unexpected(number_, "number");
        *slot_ = number;
        number_.clear();
        slot_ = nullptr;
    }

    static bool read_keyword(char c, const std::string& keyword, std::size_t& position)
    {
        if (c != keyword[position])
            throw Unexpected(c, "'" + keyword + "'");
        position = (position + 1) % keyword.size();
        return false;
    }

    bool read_before_key(char c)
    {
        if (c == '"')
        {
            expect_key_ = false;
            target_ = &key_;
            return false;
        }
        if (c == '}' && object_ != nullptr && object_->empty())
        {
            expect_key_ = false;
            return read_structure(c);
        }
        if (is_white_space(c))
            return read_structure(c);
        throw Unexpected(c, "object");
    }

    bool read_before_colon(char c)
    {
        if (c == ':')
            expect_colon_ = false;
        else if (is_white_space(c))
            return read_structure(c);
        else
            throw Unexpected(c, "object");
        return false;
    }

    bool begin_value(char c)
    {
        if (is_white_space(c))
            return read_structure(c);
        if (c == '-' || (c >= '0' && c <= '9'))
        {
            number_ += c;
            in_number_ = true;
            return false;
        }
        if (c == ']' && list_ != nullptr && list_->size() == 1)
        {
            list_->clear();
            slot_ = nullptr;
            return read_structure(c);
        }
        if (c == '[')
        {
            *slot_ = Json::Value(Json::Value::List{Json::Value()});
            open(slot_);
            slot_ = &list_->front();
            return false;
        }
        begin_rest(c);
        slot_ = nullptr;
        return false;
    }

    void begin_rest(char c)
    {
        switch (c)
        {
        case '"':
            *slot_ = Json::Value("");
            target_ = slot_->if_string();
            return;
        case 'n':
            *slot_ = Json::Value();
            null_at_ = 1;
            return;
        case 't':
            *slot_ = Json::Value(true);
            true_at_ = 1;
            return;
        case 'f':
            *slot_ = Json::Value(false);
            false_at_ = 1;
            return;
        case '{':
            *slot_ = Json::Value(Json::Value::Object());
            open(slot_);
            expect_key_ = true;
            return;
        default:
            throw Unexpected(c, "value");
        }
    }

    bool read_structure(char c)
    {
        if (is_white_space(c))
            return false;
        if (list_ != nullptr)
        {
            if (c == ']')
                close();
            else if (c == ',')
            {
                list_->emplace_back();
                slot_ = &list_->back();
            }
            else
                throw Unexpected(c, "array");
            return false;
        }
        if (object_ != nullptr)
        {
            if (c == ',')
                expect_key_ = true;
            else if (c == '}')
            {
                close();
                return open_.empty();
            }
            else
                throw Unexpected(c, "object");
            return false;
        }
        if (c != '{')
            throw Unexpected(c, "object");
        open(&root_);
        expect_key_ = true;
        return false;
    }

    void open(Json::Value* container)
    {
        open_.push_back(container);
        list_ = container->if_list();
        object_ = container->if_object();
    }

    void close()
    {
        open_.pop_back();
        list_ = open_.empty() ? nullptr : open_.back()->if_list();
        object_ = open_.empty() ? nullptr : open_.back()->if_object();
    }

    Json::Value root_;
    std::deque<Json::Value*> open_;
    std::string key_;
    std::string number_;
    std::string* target_ = nullptr;
    Json::Value* slot_ = nullptr;
    Json::Value::List* list_ = nullptr;
    Json::Value::Object* object_ = nullptr;
    bool in_number_ = false;
    bool in_escape_ = false;
    std::size_t true_at_ = 0;
    std::size_t false_at_ = 0;
    std::size_t null_at_ = 0;
    bool expect_key_ = false;
    bool expect_colon_ = false;
};

}
