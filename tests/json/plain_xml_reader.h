/// A second reader of XML text, for tests to hold the library's one against: the six steps that every character goes
/// through, one after the other, and nothing else.
#pragma once

#include <Json/Value.h>

#include <cstdint>
#include <deque>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace json_test {

class PlainXmlReader
{
public:
    struct Unexpected : std::runtime_error
    {
        Unexpected(const std::string& text, const std::string& words)
            : std::runtime_error("Unexpected " + text + " " + words)
        {
        }
        Unexpected(char c, const std::string& words) : Unexpected(std::string(1, c), words) {}
    };

    explicit PlainXmlReader(Json::Value& target) : target_(target) { target_ = Json::Value(); }

    bool read(const char*& p, const char* const& end)
    {
        while (p != end)
            if (read_character(*p++))
                return true;
        return false;
    }

    const Json::Value::Object& object() const { return own_; }

private:
    typedef std::pair<const std::string, Json::Value> Element;

    static bool is_alphabetic(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
    static bool is_digit(char c) { return c >= '0' && c <= '9'; }
    static bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

    static Json::Value& current(Element& element)
    {
        Json::Value::List* const list = element.second.if_list();
        return list == nullptr ? element.second : list->back();
    }

    bool read_character(char c)
    {
        if (in_name_ && (is_alphabetic(c) || is_digit(c) || c == '_' || c == ':'))
        {
            text_ += c;
            return false;
        }
        if (delimiter_ != 0)
            return read_value(c);
        if (in_attribute_)
            return read_attribute(c);
        if (tag_body_)
            return read_body(c);
        if (!tag_open_)
        {
            if (c != '<' && !is_blank(c))
                throw Unexpected(c, "at the beginning");
            tag_open_ = c == '<';
            return false;
        }
        return read_tag(c);
    }

    bool read_value(char c)
    {
        if (in_entity_)
            read_entity(c);
        else if (c == delimiter_)
            end_value(c);
        else if (plain_)
        {
            if (c == '&')
                in_entity_ = true;
            else
                text_ += c;
        }
        else
            read_undecided(c);
        return false;
    }

    void read_entity(char c)
    {
        if (c != ';')
        {
            entity_ += c;
            return;
        }
        if (entity_ == "lt")
            text_ += '<';
        else if (entity_ == "gt")
            text_ += '>';
        else if (entity_ == "amp")
            text_ += '&';
        else if (entity_ == "apos")
            text_ += '\'';
        else if (entity_ == "quot")
            text_ += '"';
        else
            throw Unexpected("&" + entity_ + ";", "reference");
        entity_.clear();
        in_entity_ = false;
    }

    void end_value(char c)
    {
        delimiter_ = 0;
        if (in_number_)
            *slot_ = number();
        else if (true_at_ == 4)
            *slot_ = Json::Value(true);
        else if (false_at_ == 5)
            *slot_ = Json::Value(false);
        else if (!text_.empty() || c != '<')
            *slot_ = Json::Value(text_);
        in_number_ = false;
        true_at_ = false_at_ = 0;
        plain_ = false;
        text_.clear();
        slot_ = nullptr;
        if (c == '<')
            tag_open_ = true;
        else
            in_attribute_ = expect_value_ = false;
    }

    Json::Value number() const
    {
        std::istringstream as_integer(text_);
        std::int64_t integer = 0;
        as_integer >> integer;
        if (as_integer.eof())
            return Json::Value(integer);
        std::istringstream as_decimal(text_);
        double decimal = 0;
        as_decimal >> decimal;
        if (as_decimal.eof())
            return Json::Value(decimal);
        return Json::Value(text_);
    }

    void read_undecided(char c)
    {
        if (in_number_)
        {
            if (!is_digit(c) && std::string(".eE+-").find(c) == std::string::npos)
            {
                in_number_ = false;
                plain_ = true;
            }
        }
        else if (true_at_ != 0)
            read_keyword(c, "true", true_at_);
        else if (false_at_ != 0)
            read_keyword(c, "false", false_at_);
        else if (c == '-' || is_digit(c))
            in_number_ = true;
        else if (c == 't')
            true_at_ = 1;
        else if (c == 'f')
            false_at_ = 1;
        else if (is_blank(c) && delimiter_ == '<')
            return;
        else
            plain_ = true;
        text_ += c;
    }

    void read_keyword(char c, const std::string& keyword, std::size_t& position)
    {
        if (position < keyword.size() && c == keyword[position])
            ++position;
        else
        {
            position = 0;
            plain_ = true;
        }
    }

    bool read_attribute(char c)
    {
        if (in_name_)
        {
            in_name_ = false;
            Json::Value::Object& object = processing_ ? own_ : current(*open_.back()).as_object();
            if (object.count(text_) != 0)
                throw Unexpected(text_, "duplicate attribute");
            slot_ = &object[text_];
            text_.clear();
            after_attribute_name_ = true;
        }
        if (c == '=' && after_attribute_name_)
        {
            after_attribute_name_ = false;
            expect_value_ = true;
        }
        else if ((c == '"' || c == '\'') && expect_value_)
            delimiter_ = c;
        else if (!is_blank(c))
            throw Unexpected(c, "in attribute");
        return false;
    }

    bool read_body(char c)
    {
        if (is_alphabetic(c) && !end_tag_ && !expect_close_)
        {
            in_attribute_ = in_name_ = true;
            text_ += c;
            return false;
        }
        if (c == '/' && !processing_ && !end_tag_ && !expect_close_)
        {
            open_.pop_back();
            end_tag_ = expect_close_ = true;
            return false;
        }
        if (c == '?' && processing_ && !expect_close_)
        {
            expect_close_ = true;
            return false;
        }
        if (c == '>')
        {
            tag_body_ = tag_open_ = expect_close_ = false;
            return end_body();
        }
        if (!is_blank(c) || expect_close_)
            throw Unexpected(c, "in tag");
        return false;
    }

    bool end_body()
    {
        if (processing_)
        {
            processing_ = false;
            return false;
        }
        if (end_tag_)
        {
            end_tag_ = false;
            return open_.empty();
        }
        if (slot_ == nullptr)
            slot_ = &current(*open_.back()).as_object()[""];
        delimiter_ = '<';
        return false;
    }

    bool read_tag(char c)
    {
        if (is_alphabetic(c))
        {
            in_name_ = true;
            text_ += c;
            return false;
        }
        if (!in_name_)
        {
            if (c == '?' && !processing_)
                processing_ = true;
            else if (c == '/' && !end_tag_)
                end_tag_ = true;
            else
                throw Unexpected(c, "in tag name");
            return false;
        }
        in_name_ = false;
        const std::string name = text_;
        text_.clear();
        end_name(name);
        return read_behind_name(c, name);
    }

    void end_name(const std::string& name)
    {
        if (processing_)
        {
            if (name != "xml")
                throw Unexpected(name, "processing tag");
        }
        else if (end_tag_)
        {
            if (open_.empty())
                throw Unexpected(name, "end tag at the beginning");
            if (name != open_.back()->first)
                throw Unexpected(name, "end tag");
            open_.pop_back();
        }
        else
            open_element(name);
    }

    void open_element(const std::string& name)
    {
        Json::Value* place = &target_;
        if (!open_.empty())
        {
            Json::Value& parent = current(*open_.back());
            if (!parent.is_null() && !parent.is_object())
                throw Unexpected(name, "after value");
            place = &parent.as_object()[""];
        }
        if (!place->is_null() && !place->is_object())
            throw Unexpected(name, "after content");
        const auto [entry, is_new] = place->as_object().emplace(name, Json::Value());
        if (!is_new && !entry->second.is_null())
            entry->second.as_list().emplace_back();
        open_.push_back(&*entry);
        slot_ = &current(*entry);
    }

    bool read_behind_name(char c, const std::string& name)
    {
        if (c == '?' && processing_)
            tag_body_ = expect_close_ = true;
        else if (c == '>' && !processing_)
        {
            tag_open_ = false;
            if (end_tag_)
            {
                end_tag_ = false;
                return open_.empty();
            }
            delimiter_ = '<';
        }
        else if (c == '/' && !processing_ && !end_tag_)
        {
            open_.pop_back();
            tag_body_ = expect_close_ = true;
        }
        else if (is_blank(c))
            tag_body_ = true;
        else
            throw Unexpected(c, "in tag " + name);
        return false;
    }

    Json::Value::Object own_;
    Json::Value& target_;
    std::deque<Element*> open_;
    Json::Value* slot_ = nullptr;
    std::string text_;
    std::string entity_;
    bool tag_open_ = false;
    bool tag_body_ = false;
    bool processing_ = false;
    bool end_tag_ = false;
    bool expect_close_ = false;
    bool in_attribute_ = false;
    bool after_attribute_name_ = false;
    bool expect_value_ = false;
    bool in_name_ = false;
    char delimiter_ = 0;
    bool in_entity_ = false;
    bool plain_ = false;
    bool in_number_ = false;
    std::size_t true_at_ = 0;
    std::size_t false_at_ = 0;
};

}
