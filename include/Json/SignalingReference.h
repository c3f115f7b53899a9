/// Typed fields that keep their data in a value tree, check every write and report changes.
#pragma once

#include <Json/Value.h>
#include <VelaBase/export.h>

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

/// Is told when a field has changed. `T` is the type that the field is read as.
template <class T>
class VELA_API ChangeHandler
{
public:
    virtual ~ChangeHandler() = default;

    /// `value` is what the field holds now. Null counts as false, 0, the empty text or object, or the
    /// enumeration value with all bits set. A text or an object is the one in the slot: the reference is good
    /// until the field changes again.
    virtual void changed(const T& value) = 0;
};

namespace detail {

/// How a slot is read as each type; an enumeration by the function `get_enumeration` of its namespace.
/// `read` is converting access; `look` changes nothing and is given only values that passed the field's check. It gives
/// the payload itself, or null, where the field is read as a reference.
template <class T, class = void>
struct Access
{
    static_assert(std::is_enum_v<T>, "a field is read as bool, int64, double, string, object or an enumeration");

    static T read(Value& slot)
    {
        T result{};
        get_enumeration(slot.as_string(), result);
        return result;
    }
    static T look(const Value& slot)
    {
        T result{};
        get_enumeration(slot.if_string() == nullptr ? std::string() : *slot.if_string(), result);
        return result;
    }
};

/// A null slot is false.
template <>
struct Access<bool>
{
    static bool read(Value& slot) { return slot.as_boolean(); }
    static bool look(const Value& slot) { return slot.if_boolean() != nullptr && *slot.if_boolean(); }
};

/// A whole decimal is read as an integer, a null slot as 0.
template <>
struct Access<std::int64_t>
{
    static std::int64_t read(Value& slot) { return slot.as_integer(); }
    static std::int64_t look(const Value& slot)
    {
        std::int64_t integer = 0;
        if (const double* decimal = slot.if_decimal())
            get_integer(*decimal, integer);
        return slot.if_integer() == nullptr ? integer : *slot.if_integer();
    }
};

/// An integer is read as a decimal, a null slot as 0.
template <>
struct Access<double>
{
    static double read(Value& slot) { return slot.as_decimal(); }
    static double look(const Value& slot)
    {
        if (const std::int64_t* integer = slot.if_integer())
            return static_cast<double>(*integer);
        return slot.if_decimal() == nullptr ? 0.0 : *slot.if_decimal();
    }
};

/// Looking gives null where there is no text.
template <>
struct Access<std::string>
{
    static const std::string& read(Value& slot) { return slot.as_string(); }
    static const std::string* look(const Value& slot) { return slot.if_string(); }
};

/// Looking gives null where there is no object.
template <>
struct Access<Value::Object>
{
    static Value::Object& read(Value& slot) { return slot.as_object(); }
    static const Value::Object* look(const Value& slot) { return slot.if_object(); }
};

/// Calls `handler` with what `slot` holds.
template <class T>
void tell(ChangeHandler<T>& handler, const Value& slot)
{
    const auto held = Access<T>::look(slot);
    if constexpr (!std::is_pointer_v<decltype(held)>)
        handler.changed(held);
    else if (held != nullptr)
        handler.changed(*held);
    else
        handler.changed(T());
}

}

/// A reference to one slot of a value tree, which must outlive it.
///
/// Its fields are `SignalingReference::Field<T>`. The records of `Ome/` are templates over this class.
class VELA_API SignalingReference
{
public:
    SignalingReference(Value& slot) noexcept : slot_(&slot) {}

    /// What the slot holds, as it stands.
    const Value& value() const noexcept { return *slot_; }

    /// The slot itself. Writing through it is neither checked nor reported.
    Value& slot() const noexcept { return *slot_; }

    /// A slot for a field to bind to.
    struct Binding
    {
        Binding(Value& bound_slot) noexcept : slot(&bound_slot) {}
        Binding(const SignalingReference& reference) noexcept : slot(&reference.slot()) {}

        Value* slot;
        /// The slot has been checked and given its default before: neither is done again.
        bool settled = false;
    };

    /// A field of a record. `T` says what it may hold and what it is read as:
    ///
    ///     struct PositiveInt
    ///     {
    ///         using type = std::int64_t;           // bool, std::int64_t, double, std::string,
    ///                                              // Value::Object or an enumeration
    ///         static bool check(const Value& v);   // not asked about null, which always passes
    ///     };
    ///
    /// A field holds no data but the pointer to its slot and its handler.
    template <class T>
    class Field;

private:
    Value* slot_;
};

template <class T>
class VELA_API SignalingReference::Field : public SignalingReference
{
public:
    /// What the field is read as.
    using type = typename T::type;

    /// Binds the slot.
    /// @throws std::bad_cast "bad cast": the slot is neither null nor passes the check
    explicit Field(const Binding& binding) : SignalingReference(*binding.slot)
    {
        if (!binding.settled)
            check(value());
    }

    /// The same; a null slot is given `default_value` before the check.
    Field(const Binding& binding, const Value& default_value) : SignalingReference(*binding.slot)
    {
        if (binding.settled)
            return;
        if (value().is_null())
            slot() = default_value;
        check(value());
    }

    Field(const Field&) = delete;

    /// Does nothing if the slot equals `new_value`. Otherwise checks it, stores it, and calls the handler.
    /// What the handler throws comes out, and the new value stays.
    /// @throws std::bad_cast "bad cast": the check fails; the slot is unchanged
    Field& operator=(const Value& new_value)
    {
        if (value() == new_value)
            return *this;
        check(new_value);
        slot() = new_value;
        if (const boost::shared_ptr<ChangeHandler<type>> handler = handler_ ? *handler_ : nullptr)
            detail::tell(*handler, value()); // which may replace the handler, and assign to this field
        return *this;
    }

    /// Assigns what another field holds, as it stands.
    Field& operator=(const Field& other) { return *this = other.value(); }
    template <class Other>
    Field& operator=(const Field<Other>& other)
    {
        return *this = other.value();
    }

    /// The payload, by the converting access of the field's type: a null text becomes the empty text, an
    /// integer read as a decimal becomes one. A structure comes as a reference to its map; what is written
    /// into that is not reported. A text outside the table of an enumeration has all bits set.
    ///
    /// Reading a null text or enumeration, or comparing it with a text, leaves "" in the slot for good. Where the check
    /// refuses "", no field of that type can be bound to the slot any more, nor to a copy of it: `std::bad_cast`. So
    /// ask `is_null` first.
    /// @throws std::bad_cast "bad cast": null, where the type is `bool` or a number
    decltype(auto) get() const { return detail::Access<type>::read(slot()); }
    operator decltype(detail::Access<type>::read(std::declval<Value&>()))() const { return get(); }

    bool is_null() const noexcept { return value().is_null(); }

    /// Texts compare with a field of text; numbers and enumerators compare by what the field converts to.
    template <class Text = type, class = std::enable_if_t<std::is_same_v<Text, std::string>>>
    friend bool operator==(const Field& left, const Text& right)
    {
        return left.get() == right;
    }
    template <class Text = type, class = std::enable_if_t<std::is_same_v<Text, std::string>>>
    friend bool operator!=(const Field& left, const Text& right)
    {
        return left.get() != right;
    }
    template <class Text = type, class = std::enable_if_t<std::is_same_v<Text, std::string>>>
    friend bool operator==(const Field& left, const char* right)
    {
        return left.get() == right;
    }
    template <class Text = type, class = std::enable_if_t<std::is_same_v<Text, std::string>>>
    friend bool operator!=(const Field& left, const char* right)
    {
        return left.get() != right;
    }

    /// Has `handler` called at each change from now on; null ends that. A field is made without one.
    void set_change_handler(boost::shared_ptr<ChangeHandler<type>> handler)
    {
        handler_ = handler ? std::make_unique<boost::shared_ptr<ChangeHandler<type>>>(std::move(handler)) : nullptr;
    }

private:
    static void check(const Value& candidate)
    {
        if (!candidate.is_null() && !T::check(candidate))
            detail::throw_bad_cast();
    }

    /// A pointer, since few fields have one and there are many fields.
    std::unique_ptr<boost::shared_ptr<ChangeHandler<type>>> handler_;
};

VELA_ABI_NAMESPACE_END
}
