// Each character is looked at by one step, chosen by what is open: name, value, attribute, tag. What the step would
// do with each of a run of characters alike is done for the run at once: see `read_run`.

#include <Json/XmlReader.h>

#include "json/characters.h"
#include "json/number_text.h"

#include <cstdint>
#include <istream>
#include <utility>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace {

constexpr char element_text = '<'; ///< the delimiter of the text of an element
constexpr char true_letters[] = "true";
constexpr char false_letters[] = "false";

struct Reference
{
    const char* name;
    char character;
};

constexpr Reference references[] = {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"apos", '\''}, {"quot", '"'}};

/// One letter more of a keyword, of which `position` letters have been read. False, and back to 0, if it is no such
/// letter.
bool advance(int& position, const char* letters, char c)
{
    const bool next = letters[position] != 0 && letters[position] == c;
    position = next ? position + 1 : 0;
    return next;
}

}

XmlReader::Unexpected::Unexpected(char character, const std::string& words)
    : std::runtime_error("Unexpected " + std::string(1, character) + " " + words)
{
}

XmlReader::Unexpected::Unexpected(const std::string& text, const std::string& words)
    : std::runtime_error("Unexpected " + text + " " + words)
{
}

XmlReader::Unexpected::Unexpected(const Unexpected&) = default;
XmlReader::Unexpected& XmlReader::Unexpected::operator=(const Unexpected&) = default;
XmlReader::Unexpected::~Unexpected() = default;

XmlReader::XmlReader(Value& target) : target_(target)
{
    target_ = Value();
}

XmlReader::~XmlReader() = default;

bool XmlReader::read(std::istream& in)
{
    char c = 0;
    while (in.get(c))
    {
        if (read(c))
            return true;
    }
    return false;
}

bool XmlReader::read(const char*& p, const char* const& end)
{
    for (read_run(p, end); p != end; read_run(p, end))
    {
        const bool complete = read(*p);
        ++p;
        if (complete)
            return true;
    }
    return false;
}

const Value::Object& XmlReader::object() const
{
    return declaration_;
}

void XmlReader::clear()
{
    // What is being read goes on: it has its name, and its value is still to come.
    erase_if(declaration_, [this](const auto& attribute) { return &attribute.second != slot_; });
}

/// Takes the characters from `p` on that leave the state as it is: they are appended, or skipped.
void XmlReader::read_run(const char*& p, const char* end)
{
    const char* const begin = p;
    if (in_name_)
        p = detail::skip_class(p, end, detail::name_class);
    else if (plain_text_ && !in_entity_)
    {
        while (p != end && *p != delimiter_ && *p != '&')
            ++p;
    }
    else if (in_number_)
        p = detail::skip_class(p, end, detail::number_class);
    else
    {
        // Between tags, and before the text of an element.
        if (delimiter_ == 0 ? !tag_open_ : delimiter_ == element_text && text_.empty())
            p = detail::skip_class(p, end, detail::space_class);
        return;
    }
    text_.append(begin, p);
}

/// True when the character closes the last open element by way of an end tag.
bool XmlReader::read(char c)
{
    if (in_name_ && detail::is_of_class(c, detail::name_class))
        text_ += c;
    else if (delimiter_ != 0)
        read_value(c);
    else if (in_attribute_)
        read_attribute(c);
    else if (tag_body_)
        return read_tag_body(c);
    else if (!tag_open_)
        read_between_tags(c);
    else
        return read_tag_name(c);
    return false;
}

void XmlReader::read_value(char c)
{
    if (in_entity_)
        read_reference(c);
    else if (c == delimiter_)
        end_value();
    else if (!plain_text_)
        read_undecided(c);
    else if (c == '&')
        in_entity_ = true;
    else
        text_ += c;
}

void XmlReader::read_reference(char c)
{
    if (c != ';')
    {
        entity_ += c;
        return;
    }
    for (const Reference& reference : references)
    {
        if (entity_ != reference.name)
            continue;
        text_ += reference.character;
        entity_.clear();
        in_entity_ = false;
        return;
    }
    throw Unexpected("&" + entity_ + ";", "reference");
}

/// A character of a value that may still be a number or a keyword. A "&" among them is wanted as it stands: only in
/// plain text it begins a reference.
void XmlReader::read_undecided(char c)
{
    if (in_number_)
    {
        in_number_ = detail::is_of_class(c, detail::number_class);
        plain_text_ = !in_number_;
    }
    else if (true_position_ > 0)
        plain_text_ = !advance(true_position_, true_letters, c);
    else if (false_position_ > 0)
        plain_text_ = !advance(false_position_, false_letters, c);
    else if (delimiter_ == element_text && detail::is_space(c))
        return;
    else if (c == '-' || detail::is_digit(c))
        in_number_ = true;
    else
        plain_text_ = !advance(true_position_, true_letters, c) && !advance(false_position_, false_letters, c);
    text_ += c;
}

void XmlReader::end_value()
{
    const bool in_element = delimiter_ == element_text;
    delimiter_ = 0;
    if (in_number_)
        store_number();
    else if (true_position_ == 4)
        *slot_ = true;
    else if (false_position_ == 5)
        *slot_ = false;
    else if (!text_.empty() || !in_element)
        *slot_ = std::move(text_);
    in_number_ = false;
    true_position_ = 0;
    false_position_ = 0;
    plain_text_ = false;
    text_.clear();
    slot_ = nullptr;
    if (in_element)
        tag_open_ = true;
    else
    {
        expect_attribute_value_ = false;
        in_attribute_ = false;
    }
}

/// The end of the stream is the only test, so a failed read that took the whole text counts: "-" is 0, and what is
/// out of range the nearest number.
void XmlReader::store_number()
{
    if (const detail::StreamedNumber<std::int64_t> integer = detail::read_integer(text_); integer.at_end)
        *slot_ = integer.value;
    else if (const detail::StreamedNumber<double> decimal = detail::read_decimal(text_); decimal.at_end)
        *slot_ = decimal.value;
    else
        *slot_ = std::move(text_);
}

void XmlReader::read_attribute(char c)
{
    if (in_name_)
        begin_attribute();
    if (after_attribute_name_ && c == '=')
    {
        after_attribute_name_ = false;
        expect_attribute_value_ = true;
    }
    else if (expect_attribute_value_ && (c == '"' || c == '\''))
        delimiter_ = c;
    else if (!detail::is_space(c))
        throw Unexpected(c, "in attribute");
}

/// The name of an attribute has ended.
void XmlReader::begin_attribute()
{
    in_name_ = false;
    Value::Object& attributes = processing_ ? declaration_ : open_.back().value->as_object();
    const std::size_t count = attributes.size();
    const auto attribute = attributes.try_emplace(attributes.end(), std::move(text_));
    if (attributes.size() == count)
        throw Unexpected(attribute->first, "duplicate attribute");
    slot_ = &attribute->second;
    text_.clear();
    after_attribute_name_ = true;
}

bool XmlReader::read_tag_body(char c)
{
    if (c == '>')
        return end_tag_body();
    if (!expect_close_ && detail::is_space(c))
        return false;
    if (!expect_close_ && !end_tag_ && detail::is_letter(c))
    {
        in_attribute_ = true;
        in_name_ = true;
        text_ += c;
        return false;
    }
    if (!expect_close_ && !end_tag_ && !processing_ && c == '/')
    {
        open_.pop_back();
        end_tag_ = true;
        expect_close_ = true;
        return false;
    }
    if (!expect_close_ && processing_ && c == '?')
    {
        expect_close_ = true;
        return false;
    }
    throw Unexpected(c, "in tag");
}

bool XmlReader::end_tag_body()
{
    tag_body_ = false;
    tag_open_ = false;
    expect_close_ = false;
    if (processing_)
    {
        processing_ = false;
        return false;
    }
    if (end_tag_)
        return end_of_end_tag();
    // An element that "/" closed directly behind its name comes here too, and keeps its slot.
    if (slot_ == nullptr)
        slot_ = &open_.back().value->at(std::string());
    delimiter_ = element_text;
    return false;
}

bool XmlReader::end_of_end_tag()
{
    end_tag_ = false;
    return open_.empty();
}

void XmlReader::read_between_tags(char c)
{
    if (c == '<')
        tag_open_ = true;
    else if (!detail::is_space(c))
        throw Unexpected(c, "at the beginning");
}

bool XmlReader::read_tag_name(char c)
{
    if (detail::is_letter(c))
    {
        text_ += c;
        in_name_ = true;
        return false;
    }
    if (!in_name_)
    {
        begin_tag(c);
        return false;
    }
    in_name_ = false;
    const std::string name = std::exchange(text_, std::string());
    end_tag_name(name);
    return after_tag_name(c, name);
}

void XmlReader::begin_tag(char c)
{
    if (c == '?' && !processing_)
        processing_ = true;
    else if (c == '/' && !end_tag_)
        end_tag_ = true;
    else
        throw Unexpected(c, "in tag name");
}

void XmlReader::end_tag_name(const std::string& name)
{
    if (!processing_)
        end_tag_ ? close_element(name) : open_element(name);
    else if (name != "xml")
        throw Unexpected(name, "processing tag");
}

void XmlReader::close_element(const std::string& name)
{
    if (open_.empty())
        throw Unexpected(name, "end tag at the beginning");
    if (name != *open_.back().name)
        throw Unexpected(name, "end tag");
    open_.pop_back();
}

void XmlReader::open_element(const std::string& name)
{
    Value* place = &target_;
    if (!open_.empty())
    {
        Value& parent = *open_.back().value;
        if (!parent.is_null() && !parent.is_object())
            throw Unexpected(name, "after value");
        place = &parent.at(std::string());
    }
    if (!place->is_null() && !place->is_object())
        throw Unexpected(name, "after content");
    Value::Object& elements = place->as_object();
    const std::size_t count = elements.size();
    const auto element = elements.try_emplace(elements.end(), name);
    slot_ = &element->second;
    // A null element of that name is taken again, and what it would have held is what comes now.
    if (elements.size() == count && !slot_->is_null())
        slot_ = &slot_->as_list().emplace_back();
    open_.push_back({&element->first, slot_});
}

bool XmlReader::after_tag_name(char c, const std::string& name)
{
    if (c == '?' && processing_)
    {
        tag_body_ = true;
        expect_close_ = true;
    }
    else if (c == '>' && !processing_)
    {
        tag_open_ = false;
        if (end_tag_)
            return end_of_end_tag();
        delimiter_ = element_text;
    }
    else if (c == '/' && !processing_ && !end_tag_)
    {
        // Wanted: it is no end tag, so ">" will let the text of the element begin.
        open_.pop_back();
        tag_body_ = true;
        expect_close_ = true;
    }
    else if (detail::is_space(c))
        tag_body_ = true;
    else
        throw Unexpected(c, "in tag " + name);
    return false;
}

VELA_ABI_NAMESPACE_END
}
