// A character is looked at by the first of these that applies: string, number, keyword, key, colon, value,
// structure. What several of them say about a run of characters is done for the run at once: text without
// escapes, digits, white space.

#include <Json/Reader.h>

#include "json/characters.h"
#include "json/number_text.h"

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

Reader::Unexpected::Unexpected(char character, const std::string& kind)
    : std::runtime_error("Unexpected '" + std::string(1, character) + "' character in " + kind + " value")
{
}

Reader::Unexpected::Unexpected(const std::string& text, const std::string& kind)
    : std::runtime_error("Unexpected '" + text + "' string in " + kind + " value")
{
}

Reader::Unexpected::Unexpected(const Unexpected&) = default;
Reader::Unexpected& Reader::Unexpected::operator=(const Unexpected&) = default;
Reader::Unexpected::~Unexpected() = default;

Reader::Reader() : root_(Value::Object()) {}

Reader::~Reader() = default;

bool Reader::read(const char*& p, const char* const& end)
{
    while (p != end)
    {
        if (text_ != nullptr)
            read_string(p, end);
        else if (in_number_)
            read_number(p, end);
        else if (keyword_ != nullptr)
        {
            read_keyword(*p);
            ++p;
        }
        else if (detail::is_space(*p))
            ++p;
        else
        {
            const bool complete = read_token(*p);
            ++p;
            if (complete)
                return true;
        }
    }
    return false;
}

const Value::Object& Reader::object() const
{
    return *root_.if_object();
}

void Reader::clear()
{
    // The member that is being read stays: what reads it refers to it, or to what is in it.
    const Value* const container = open_.size() > 1 ? open_[1] : nullptr;
    const auto is_read = [&](const Value& member)
    { return &member == container || &member == slot_ || (text_ != nullptr && member.if_string() == text_); };
    erase_if(root_.as_object(), [&](const auto& member) { return !is_read(member.second); });
}

void Reader::read_string(const char*& p, const char* end)
{
    if (in_escape_)
    {
        read_escape(*p);
        ++p;
        return;
    }
    const char* const begin = p;
    while (p != end && *p != '"' && *p != '\\')
        ++p;
    text_->append(begin, p);
    if (p == end)
        return;
    if (*p == '\\')
        in_escape_ = true;
    else
        end_string();
    ++p;
}

void Reader::read_escape(char c)
{
    switch (c)
    {
    case '"':
    case '\\':
    case '/':
        *text_ += c;
        break;
    case 'b':
        *text_ += '\b';
        break;
    case 'f':
        *text_ += '\f';
        break;
    case 'n':
        *text_ += '\n';
        break;
    case 'r':
        *text_ += '\r';
        break;
    case 't':
        *text_ += '\t';
        break;
    default:
        throw Unexpected(std::string("\\") + c, "string");
    }
    in_escape_ = false;
}

void Reader::end_string()
{
    if (text_ == &key_)
    {
        expect_colon_ = true;
        // What our own writers made comes in the order of the map.
        slot_ = &members_->try_emplace(members_->end(), std::move(key_))->second;
        key_.clear();
    }
    text_ = nullptr;
}

void Reader::read_number(const char*& p, const char* end)
{
    const char* const begin = p;
    p = detail::skip_class(p, end, detail::number_class);
    number_.append(begin, p);
    // What ends a number is structure: nothing else is due behind it.
    if (p != end)
        store_number();
}

void Reader::store_number()
{
    in_number_ = false;
    const std::size_t point = number_.find('.');
    if (point == std::string::npos)
    {
        const detail::StreamedNumber<std::int64_t> integer = detail::read_integer(number_);
        if (integer.failed)
            throw Unexpected(number_, "number");
        *slot_ = integer.value;
    }
    else
    {
        const detail::StreamedNumber<double> decimal = detail::read_decimal(number_);
        if (decimal.failed || number_.find('.', point + 1) != std::string::npos)
            throw Unexpected(number_, "number");
        *slot_ = decimal.value;
    }
    number_.clear();
    slot_ = nullptr;
}

void Reader::read_keyword(char c)
{
    if (c != keyword_[keyword_position_])
        throw Unexpected(c, std::string("'") + keyword_ + "'");
    ++keyword_position_;
    if (keyword_[keyword_position_] == 0)
        keyword_ = nullptr;
}

/// Reads a character outside strings, numbers and keywords that is no white space, which none of these steps
/// minds. True when it completes the document.
bool Reader::read_token(char c)
{
    if (expect_key_)
    {
        if (!begin_key(c))
            return false;
    }
    else if (expect_colon_)
    {
        read_colon(c);
        return false;
    }
    else if (slot_ != nullptr)
    {
        if (!begin_value(c))
            return false;
    }
    return read_structure(c);
}

/// True when the character is still to be read as structure.
bool Reader::begin_key(char c)
{
    if (c == '"')
    {
        expect_key_ = false;
        text_ = &key_;
        return false;
    }
    // An object that has members waits for another key: there was a comma, or they are those of the document before.
    const bool may_end = members_ != nullptr && members_->empty();
    if (c != '}' || !may_end)
        throw Unexpected(c, "object");
    expect_key_ = false;
    return true;
}

void Reader::read_colon(char c)
{
    if (c != ':')
        throw Unexpected(c, "object");
    expect_colon_ = false;
}

/// True when the character is still to be read as structure.
bool Reader::begin_value(char c)
{
    switch (c)
    {
    case '"':
        text_ = &take_slot().as_string();
        return false;
    case 'n':
        take_slot();
        begin_keyword("null");
        return false;
    case 't':
        take_slot() = true;
        begin_keyword("true");
        return false;
    case 'f':
        take_slot() = false;
        begin_keyword("false");
        return false;
    case '{':
        open_object(take_slot());
        return false;
    case '[':
        open_list(take_slot());
        return false;
    case ']':
        // The list has no element but the one that was made for its first value.
        if (list_ == nullptr || list_->size() != 1)
            throw Unexpected(c, "value");
        list_->pop_back();
        slot_ = nullptr;
        return true;
    default:
        if (c != '-' && !detail::is_digit(c))
            throw Unexpected(c, "value");
        number_ += c;
        in_number_ = true; // the slot waits for its end
        return false;
    }
}

void Reader::begin_keyword(const char* keyword)
{
    keyword_ = keyword;
    keyword_position_ = 1;
}

/// The slot, made null, where no further value is due.
Value& Reader::take_slot()
{
    Value& slot = *slot_;
    if (!slot.is_null())
        slot = Value();
    slot_ = nullptr;
    return slot;
}

bool Reader::read_structure(char c)
{
    if (list_ != nullptr)
    {
        if (c == ',')
            slot_ = &list_->emplace_back();
        else if (c == ']')
            close();
        else
            throw Unexpected(c, "array");
        return false;
    }
    if (members_ == nullptr && c == '{')
        open_object(root_);
    else if (members_ != nullptr && c == ',')
        expect_key_ = true;
    else if (members_ != nullptr && c == '}')
        close();
    else
        throw Unexpected(c, "object");
    return open_.empty();
}

void Reader::open_object(Value& value)
{
    members_ = &value.as_object();
    list_ = nullptr;
    open_.push_back(&value);
    expect_key_ = true;
}

void Reader::open_list(Value& value)
{
    list_ = &value.as_list();
    members_ = nullptr;
    open_.push_back(&value);
    slot_ = &list_->emplace_back();
}

void Reader::close()
{
    open_.pop_back();
    Value* const container = open_.empty() ? nullptr : open_.back();
    list_ = container == nullptr ? nullptr : container->if_list();
    members_ = container == nullptr ? nullptr : container->if_object();
}

VELA_ABI_NAMESPACE_END
}
