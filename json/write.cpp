// Both forms are written with a stack of the open containers instead of recursion: trees have any depth.

#include <Json/write.h>

#include <cmath>
#include <cstdint>
#include <ios>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace {

/// Puts precision and flags of a stream back, also when the stream throws.
class FormatKeeper
{
public:
    explicit FormatKeeper(std::ios_base& kept) : stream(kept), precision(kept.precision()), flags(kept.flags()) {}
    FormatKeeper(const FormatKeeper&) = delete;
    FormatKeeper& operator=(const FormatKeeper&) = delete;
    ~FormatKeeper()
    {
        stream.precision(precision);
        stream.flags(flags);
    }

private:
    std::ios_base& stream;
    std::streamsize precision;
    std::ios_base::fmtflags flags;
};

void write_decimal(double decimal, std::ostream& out)
{
    double whole = 0;
    const bool has_fraction = std::modf(decimal, &whole) != 0; // NaN has one, infinity none
    const FormatKeeper keeper(out);
    out.precision(has_fraction ? 10 : 1);
    out.flags(has_fraction ? std::ios_base::fmtflags() : std::ios_base::fixed);
    out << decimal;
}

/// What both forms write alike: boolean, integer, decimal. Any other kind but these, text, list, object and null,
/// which the callers have taken out, is none at all.
void write_plain(const Value& value, std::ostream& out)
{
    if (const bool* boolean = value.if_boolean())
        out << (*boolean ? "true" : "false");
    else if (const std::int64_t* integer = value.if_integer())
        out << *integer;
    else if (const double* decimal = value.if_decimal())
        write_decimal(*decimal, out);
    else
        detail::throw_bad_cast();
}

/// Writes the bytes of the text, and for those that `escape` knows what it gives instead.
template <class Escape>
void write_escaped(const std::string& text, std::ostream& out, Escape escape)
{
    const char* const end = text.data() + text.size();
    const char* written = text.data();
    for (const char* p = written; p != end; ++p)
    {
        const char* const replacement = escape(*p);
        if (replacement == nullptr)
            continue;
        out.write(written, p - written);
        out << replacement;
        written = p + 1;
    }
    out.write(written, end - written);
}

const char* json_escape(char c)
{
    if (c == '\\')
        return "\\\\";
    return c == '"' ? "\\\"" : nullptr;
}

const char* xml_escape(char c)
{
    switch (c)
    {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '\'':
        return "&apos;";
    case '"':
        return "&quot;";
    default:
        return nullptr;
    }
}

class JsonWriter
{
public:
    explicit JsonWriter(std::ostream& stream) : out(stream) {}

    void write(const Value& value)
    {
        begin(value);
        write_open();
    }

    void write(const Value::Object& object)
    {
        begin(object);
        write_open();
    }

private:
    /// An open list or object, and what of it is to come.
    struct Container
    {
        const Value::List* list;
        Value::List::const_iterator element;
        const Value::Object* object;
        Value::Object::const_iterator member;
    };

    void begin(const Value& value)
    {
        if (value.is_null())
            out << "null";
        else if (const std::string* text = value.if_string())
            write_string(*text);
        else if (const Value::List* list = value.if_list())
        {
            out << '[';
            open.push_back({list, list->begin(), nullptr, {}});
        }
        else if (const Value::Object* object = value.if_object())
            begin(*object);
        else
            write_plain(value, out);
    }

    void begin(const Value::Object& object)
    {
        out << '{';
        open.push_back({nullptr, {}, &object, object.begin()});
    }

    void write_open()
    {
        while (!open.empty())
        {
            if (open.back().list != nullptr)
                step_list(open.back());
            else
                step_object(open.back());
        }
    }

    void step_list(Container& container)
    {
        if (container.element == container.list->end())
        {
            out << ']';
            open.pop_back();
            return;
        }
        if (container.element != container.list->begin())
            out << ',';
        begin(*container.element++);
    }

    void step_object(Container& container)
    {
        if (container.member == container.object->end())
        {
            out << '}';
            open.pop_back();
            return;
        }
        if (container.member != container.object->begin())
            out << ',';
        const auto& [key, value] = *container.member++;
        write_string(key);
        out << ':';
        begin(value);
    }

    void write_string(const std::string& text)
    {
        out << '"';
        write_escaped(text, out, json_escape);
        out << '"';
    }

    std::ostream& out;
    std::vector<Container> open;
};

class XmlWriter
{
public:
    explicit XmlWriter(std::ostream& stream) : out(stream) {}

    void write(const Value::Object& content)
    {
        open.emplace_back(nullptr, content);
        while (!open.empty())
        {
            const std::string* key = nullptr;
            if (const Value* value = open.back().next(key))
                begin_element(*key, *value);
            else
                end_content();
        }
    }

private:
    /// The content of an open element: its members, a list of them entry by entry.
    class Content
    {
    public:
        Content(const std::string* element_key, const Value::Object& object)
            : owner(element_key), member(object.begin()), members_end(object.end())
        {
        }

        /// The next element and its key; null at the end.
        const Value* next(const std::string*& key)
        {
            while (entry == entries_end)
            {
                if (member == members_end)
                    return nullptr;
                member_key = key = &member->first;
                const Value& value = (member++)->second;
                const Value::List* const list = value.if_list();
                if (list == nullptr)
                    return &value;
                entry = list->begin();
                entries_end = list->end();
            }
            key = member_key;
            return &*entry++;
        }

        const std::string* key_of_owner() const { return owner; }

    private:
        const std::string* owner;
        Value::Object::const_iterator member;
        Value::Object::const_iterator members_end;
        const std::string* member_key = nullptr;
        Value::List::const_iterator entry{};
        Value::List::const_iterator entries_end{};
    };

    void begin_element(const std::string& key, const Value& value)
    {
        const std::string* const text = value.if_string();
        if (value.is_null() || (text != nullptr && text->empty()))
            return;
        out << '<' << key;
        const Value* content = &value;
        if (const Value::Object* attributes = value.if_object())
            content = write_attributes(*attributes);
        if (content == nullptr)
        {
            out << "/>";
            return;
        }
        out << '>';
        if (const Value::Object* children = content->if_object())
        {
            open.emplace_back(&key, *children);
            return;
        }
        if (content->is_list())
            throw std::invalid_argument("No xml content");
        write_text(*content);
        write_end_tag(key);
    }

    /// The content among them, null if there is none.
    const Value* write_attributes(const Value::Object& attributes)
    {
        const Value* content = nullptr;
        for (const auto& [key, value] : attributes)
        {
            if (value.is_null())
                continue;
            if (key.empty())
            {
                content = &value;
                continue;
            }
            out << ' ' << key << '=';
            if (value.is_list() || value.is_object())
                throw std::invalid_argument("No xml attribute");
            out << '"';
            write_text(value);
            out << '"';
        }
        return content;
    }

    void write_text(const Value& value)
    {
        if (const std::string* text = value.if_string())
            write_escaped(*text, out, xml_escape);
        else
            write_plain(value, out);
    }

    void end_content()
    {
        const std::string* const key = open.back().key_of_owner();
        open.pop_back();
        if (key != nullptr)
            write_end_tag(*key);
    }

    void write_end_tag(const std::string& key) { out << "</" << key << '>'; }

    std::ostream& out;
    std::vector<Content> open;
};

}

std::ostream& operator<<(std::ostream& out, const Value& value)
{
    JsonWriter(out).write(value);
    return out;
}

std::ostream& operator<<(std::ostream& out, const Map<std::string, Value>& object)
{
    JsonWriter(out).write(object);
    return out;
}

void write_xml(const Value& value, std::ostream& out)
{
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    if (value.is_null())
        return;
    const Value::Object* const object = value.if_object();
    if (object == nullptr)
        detail::throw_bad_cast();
    XmlWriter(out).write(*object);
}

VELA_ABI_NAMESPACE_END
}
