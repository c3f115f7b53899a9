#include "json/list_keeper.h"
#include "json/tree.h"

#include <Json/Value.h>

#include <cmath>
#include <iterator>
#include <new>
#include <stdexcept>
#include <typeinfo>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace {

/// The standard's exception, with the same text on every platform.
struct BadCast final : std::bad_cast
{
    const char* what() const noexcept override { return "bad cast"; }
};

/// 2^63, the first number above the integers.
constexpr double integer_limit = 9223372036854775808.0;

constexpr bool is_known(Value::Kind kind)
{
    return kind >= Value::Kind::null && kind <= Value::Kind::object;
}

}

void detail::throw_bad_cast()
{
    throw BadCast();
}

bool detail::get_integer(double decimal, std::int64_t& integer) noexcept
{
    const bool held = decimal >= -integer_limit && decimal < integer_limit && std::trunc(decimal) == decimal;
    if (held)
        integer = static_cast<std::int64_t>(decimal);
    return held;
}

ListSource::~ListSource() = default;

Value::Value() noexcept : kind_(Kind::null), integer_(0) {}

// The delegation has ~Value called when the copy fails halfway.
Value::Value(const Value& other) : Value()
{
    if (other.is_list() || other.is_object())
        detail::copy_tree(other, *this);
    else
        copy_scalar(other);
}

Value::Value(Value&& other) noexcept : Value()
{
    take_from(other);
}

Value::Value(std::string text) noexcept : kind_(Kind::string), string_(std::move(text)) {}

Value::Value(const char* text) : kind_(Kind::string), string_(text) {}

Value::Value(Object object) noexcept : kind_(Kind::object), object_(std::move(object)) {}

Value::Value(List list) noexcept : kind_(Kind::list), list_{std::move(list), {}} {}

Value::Value(boost::shared_ptr<const ListSource> source) : Value()
{
    set_list_source(std::move(source));
}

Value& Value::operator=(const Value& other)
{
    if (is_string() && other.is_string())
        string_ = other.string_;
    else if (this != &other)
        *this = Value(other); // which may be part of this one
    return *this;
}

Value& Value::operator=(Value&& other) noexcept
{
    if (this == &other)
        return *this;
    if (!is_list() && !is_object()) // nothing is part of this one
    {
        clear();
        take_from(other);
        return *this;
    }
    Value taken(std::move(other)); // which may be part of this one
    clear();
    take_from(taken);
    return *this;
}

/// Null takes over a copy of a payload that owns no values.
void Value::copy_scalar(const Value& other)
{
    switch (other.kind_)
    {
    case Kind::null:
        break;
    case Kind::boolean:
        boolean_ = other.boolean_;
        break;
    case Kind::integer:
        integer_ = other.integer_;
        break;
    case Kind::decimal:
        decimal_ = other.decimal_;
        break;
    case Kind::string:
        new (&string_) std::string(other.string_);
        break;
    default:
        detail::throw_bad_cast();
    }
    kind_ = other.kind_;
}

/// Null takes over the payload of `other`, which becomes null.
void Value::take_from(Value& other) noexcept
{
    switch (other.kind_)
    {
    case Kind::null:
        break;
    case Kind::boolean:
        boolean_ = other.boolean_;
        break;
    case Kind::integer:
        integer_ = other.integer_;
        break;
    case Kind::decimal:
        decimal_ = other.decimal_;
        break;
    case Kind::string:
        new (&string_) std::string(std::move(other.string_));
        break;
    case Kind::list:
        new (&list_) SourcedList(std::move(other.list_));
        break;
    case Kind::object:
        new (&object_) Object(std::move(other.object_));
        break;
    }
    kind_ = other.kind_;
    other.clear();
}

void Value::clear() noexcept
{
    if (owns_memory())
        destroy_payload();
    kind_ = Kind::null;
    list_holder_ = ListHolder::none;
}

void Value::destroy_payload() noexcept
{
    if (!is_string())
        detail::TreeDestroyer::empty(*this); // which may turn a list into an object, and back
    switch (kind_)
    {
    case Kind::string:
        string_.~basic_string();
        break;
    case Kind::list:
        list_.~SourcedList();
        break;
    case Kind::object:
        object_.~Object();
        break;
    default:
        break;
    }
}

const Value::List* Value::if_list() const
{
    if (!is_list())
        return nullptr;
    fill_to(count());
    return &list_.elements;
}

Value::List* Value::if_list()
{
    return is_list() ? &as_list() : nullptr;
}

bool& Value::as_boolean()
{
    if (!is_boolean())
        detail::throw_bad_cast();
    return boolean_;
}

double& Value::as_decimal()
{
    if (is_integer())
        *this = static_cast<double>(integer_);
    if (!is_decimal())
        detail::throw_bad_cast();
    return decimal_;
}

std::int64_t& Value::as_integer()
{
    std::int64_t whole = 0;
    if (is_decimal() && detail::get_integer(decimal_, whole))
        *this = whole;
    if (!is_integer())
        detail::throw_bad_cast();
    return integer_;
}

std::string& Value::as_string()
{
    if (is_null())
        *this = std::string();
    if (!is_string())
        detail::throw_bad_cast();
    return string_;
}

Value::Object& Value::as_object()
{
    if (is_null())
        *this = Object();
    if (!is_object())
        detail::throw_bad_cast();
    return object_;
}

Value::List& Value::as_list()
{
    SourcedList& list = as_sourced_list();
    fill_to(count());
    list_holder_ = ListHolder::caller;
    return list.elements;
}

Value::SourcedList& Value::as_sourced_list()
{
    if (is_null())
        *this = List();
    if (!is_known(kind_))
        detail::throw_bad_cast();
    if (!is_list())
    {
        List only;
        only.push_back(std::move(*this));
        *this = Value(std::move(only));
    }
    return list_;
}

Value& Value::at(const std::string& key)
{
    return as_object()[key];
}

Value& Value::at(std::size_t index)
{
    if (index >= List().max_size())
        throw std::length_error("Unsupported list index");
    List& elements = detail::ListKeeper::fill(*this, index < count() ? index + 1 : count());
    if (index >= elements.size())
        elements.resize(index + 1);
    const std::size_t from_end = elements.size() - index;
    if (from_end <= index)
        return *std::prev(elements.end(), static_cast<std::ptrdiff_t>(from_end));
    return *std::next(elements.begin(), static_cast<std::ptrdiff_t>(index));
}

std::size_t Value::count() const noexcept
{
    if (is_list())
        return list_.source ? (*list_.source)->count() : list_.elements.size();
    return is_null() ? 0 : 1;
}

boost::shared_ptr<const ListSource> Value::list_source() const noexcept
{
    return is_list() && list_.source ? *list_.source : nullptr;
}

void Value::set_list_source(boost::shared_ptr<const ListSource> source)
{
    SourcedList& list = as_sourced_list();
    if (!source || source->count() <= list.elements.size())
        list.source.reset();
    else if (list.source)
        *list.source = std::move(source);
    else
        list.source = std::make_unique<boost::shared_ptr<const ListSource>>(std::move(source));
}

std::size_t Value::filled_count() const noexcept
{
    return is_list() ? list_.elements.size() : 0;
}

Value::List& Value::fill_list(std::size_t end)
{
    List& elements = detail::ListKeeper::fill(*this, end);
    list_holder_ = ListHolder::caller;
    return elements;
}

void Value::fill_to(std::size_t end) const
{
    if (!list_.source)
        return;
    const boost::shared_ptr<const ListSource> source = *list_.source;
    const std::size_t total = source->count();
    if (list_.elements.size() < end)
        source->fill(list_.elements, end < total ? end : total);
    if (list_.elements.size() >= total)
        list_.source.reset();
}

VELA_ABI_NAMESPACE_END
}
