/// The dynamic value of the library: what the metadata records lie on and what both readers give.
#pragma once

#include <Json/ListSource.h>
#include <Json/Map.h>
#include <VelaBase/export.h>

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace detail {

struct ListKeeper;
struct TreeCopier;
struct TreeDestroyer;

/// Throws a `std::bad_cast` with the text "bad cast".
[[noreturn]] VELA_API void throw_bad_cast();

/// Whether `integer` has become the same number as `decimal`; false where no integer is.
VELA_API bool get_integer(double decimal, std::int64_t& integer) noexcept;

/// Characters of Unicode, which are texts and no numbers.
template <class T>
constexpr bool is_wide_character = std::is_same_v<T, wchar_t> || std::is_same_v<T, char16_t> ||
#ifdef __cpp_char8_t
                                   std::is_same_v<T, char8_t> ||
#endif
                                   std::is_same_v<T, char32_t>;

/// The integers that a value can be made from: up to 64 bits, but no `bool` and no characters of Unicode.
template <class T>
constexpr bool is_integer_type = std::is_integral_v<T> && sizeof(T) <= sizeof(std::int64_t) &&
                                 !std::is_same_v<T, bool> && !is_wide_character<T>;

}

/// One of seven kinds of payload, held in place: null, boolean, integer, decimal, string, list, object.
///
/// A value owns its string, its list and its map; copying copies deeply, and a moved-from value is null.
/// Trees of any depth can be copied, compared, destroyed and written: nothing here recurses by depth.
///
/// Looking at a value may change it. A lookup by key or index makes what it looks for, and converting access
/// (`as_...`) changes the kind in place; so even readers of one tree have to take turns.
///
/// Every failed access throws `std::bad_cast` with the text "bad cast" and leaves the value as it was.
///
/// References to elements of lists and to entries of maps stay valid while others are added. A value must not be moved
/// into a part of itself; copied it may be.
struct VELA_API Value
{
    /// The order is fixed: it is the number of the kind.
    enum class Kind : std::int32_t
    {
        null = 0,
        boolean = 1,
        integer = 2, ///< signed, 64 bits
        decimal = 3, ///< `double`
        string = 4,  ///< bytes, of any encoding
        list = 5,    ///< `std::list<Value>`
        object = 6,  ///< `Map<std::string, Value>`
    };

    using List = std::list<Value>;
    using Object = Map<std::string, Value>;

    /// Null.
    Value() noexcept;
    Value(const Value& other);
    Value(Value&& other) noexcept;
    ~Value() // here, as most values of a tree own nothing
    {
        if (owns_memory())
            destroy_payload();
    }

    template <class T, std::enable_if_t<std::is_same_v<T, bool>, int> = 0>
    Value(T boolean) noexcept : kind_(Kind::boolean), boolean_(boolean)
    {
    }

    /// An integer of 8 to 64 bits.
    /// @throws std::bad_cast "bad cast": an unsigned one above the largest signed 64-bit number
    template <class T, std::enable_if_t<detail::is_integer_type<T>, int> = 0>
    Value(T integer) : kind_(Kind::integer), integer_(static_cast<std::int64_t>(integer))
    {
        if (std::is_unsigned_v<T> && integer_ < 0)
            detail::throw_bad_cast();
    }

    Value(float decimal) noexcept : kind_(Kind::decimal), decimal_(static_cast<double>(decimal)) {}
    Value(double decimal) noexcept : kind_(Kind::decimal), decimal_(decimal) {}

    Value(std::string text) noexcept;
    /// A zero-terminated text.
    Value(const char* text);
    Value(std::nullptr_t) = delete;

    Value(Object object) noexcept;
    Value(List list) noexcept;

    /// An enumeration whose namespace has a function `get_enumeration_text`: the string that it gives.
    template <class Enumeration, std::enable_if_t<std::is_enum_v<Enumeration>, int> = 0,
              class = decltype(get_enumeration_text(std::declval<Enumeration>()))>
    Value(Enumeration enumerator) : Value(std::string(get_enumeration_text(enumerator)))
    {
    }

    /// A list that fills itself from `source` as far as it is looked at. `source` must not be null.
    explicit Value(boost::shared_ptr<const ListSource> source);

    Value& operator=(const Value& other);
    Value& operator=(Value&& other) noexcept;

    /// @name Tests. None changes the value.
    /// @{
    Kind kind() const noexcept { return kind_; }
    bool is_null() const noexcept { return kind_ == Kind::null; }
    bool is_boolean() const noexcept { return kind_ == Kind::boolean; }
    bool is_integer() const noexcept { return kind_ == Kind::integer; }
    bool is_decimal() const noexcept { return kind_ == Kind::decimal; }
    /// Integer or decimal.
    bool is_number() const noexcept { return is_integer() || is_decimal(); }
    bool is_string() const noexcept { return kind_ == Kind::string; }
    bool is_list() const noexcept { return kind_ == Kind::list; }
    bool is_object() const noexcept { return kind_ == Kind::object; }
    /// @}

    /// @name The payload, or null where the kind is another. None changes the value.
    /// A list that still waits for its source is filled whole.
    /// @{
    const bool* if_boolean() const noexcept { return is_boolean() ? &boolean_ : nullptr; }
    bool* if_boolean() noexcept { return is_boolean() ? &boolean_ : nullptr; }
    const std::int64_t* if_integer() const noexcept { return is_integer() ? &integer_ : nullptr; }
    std::int64_t* if_integer() noexcept { return is_integer() ? &integer_ : nullptr; }
    const double* if_decimal() const noexcept { return is_decimal() ? &decimal_ : nullptr; }
    double* if_decimal() noexcept { return is_decimal() ? &decimal_ : nullptr; }
    const std::string* if_string() const noexcept { return is_string() ? &string_ : nullptr; }
    std::string* if_string() noexcept { return is_string() ? &string_ : nullptr; }
    const List* if_list() const;
    List* if_list();
    const Object* if_object() const noexcept { return is_object() ? &object_ : nullptr; }
    Object* if_object() noexcept { return is_object() ? &object_ : nullptr; }
    /// @}

    /// @name Converting access: the payload, after the value has been changed to that kind where it says so.
    /// @throws std::bad_cast "bad cast": any other kind
    /// @{

    /// A boolean alone.
    bool& as_boolean();
    /// An integer becomes a decimal.
    double& as_decimal();
    /// A decimal becomes an integer if it is whole and an integer holds it.
    std::int64_t& as_integer();
    /// Null becomes the empty string.
    std::string& as_string();
    /// Null becomes the empty object.
    Object& as_object();
    /// Null becomes the empty list, and any other kind a list of one element, the old value. Never throws
    /// `std::bad_cast`. A list that still waits for its source is filled whole.
    List& as_list();
    /// @}

    /// The entry under `key`, made null if it is missing. Accesses the value as object.
    /// @throws std::bad_cast "bad cast": neither an object nor null
    Value& at(const std::string& key);

    /// The element `index`. Accesses the value as list; an index at or past the end makes the list `index` + 1
    /// elements long, the new ones null. A list has to be walked, from its nearer end.
    /// @throws std::length_error "Unsupported list index": no list can be that long; the value is as it was
    Value& at(std::size_t index);

    /// The size of a list, 0 for null, 1 for anything else.
    std::size_t count() const noexcept;

    /// Equal kinds and equal payloads: integer 1 differs from decimal 1.0, and NaN from itself.
    friend VELA_API bool operator==(const Value& left, const Value& right);
    friend bool operator!=(const Value& left, const Value& right) { return !(left == right); }

    /// @name A list that fills itself
    /// @{

    /// Where the rest of a list comes from; null where nothing is left to come.
    boost::shared_ptr<const ListSource> list_source() const noexcept;

    /// Replaces where the rest of a list comes from, leaving its first `filled_count()` elements. Accesses the
    /// value as list, unfilled. A source that counts no more than those is dropped.
    void set_list_source(boost::shared_ptr<const ListSource> source);

    /// How many elements of a list are there without asking the source; 0 for any other kind.
    std::size_t filled_count() const noexcept;

    /// Accesses the value as list, and fills it up to `end` elements or its count, whatever is less. The
    /// list that comes back may hold only these: `count()` tells how many there will be. Its elements may be changed;
    /// but as the rest goes by its size, nothing may be added or taken away before it is whole.
    List& fill_list(std::size_t end);
    /// @}

private:
    bool owns_memory() const noexcept { return is_string() || is_list() || is_object(); }

    /// A list, and what makes the elements that it does not hold yet.
    struct SourcedList
    {
        List elements;
        std::unique_ptr<boost::shared_ptr<const ListSource>> source; ///< a pointer, since few lists have one
    };

    void copy_scalar(const Value& other);
    void take_from(Value& other) noexcept;
    void clear() noexcept;
    void destroy_payload() noexcept;
    SourcedList& as_sourced_list();
    void fill_to(std::size_t end) const;

    friend struct detail::ListKeeper;
    friend struct detail::TreeCopier;
    friend struct detail::TreeDestroyer;

    /// Who has got the list that the value holds now, to do with it what he wants.
    enum class ListHolder : std::uint8_t
    {
        none,
        keeper, ///< the library, which leaves the elements in their places
        caller,
    };

    Kind kind_;
    ListHolder list_holder_ = ListHolder::none;
    union
    {
        bool boolean_;
        std::int64_t integer_;
        double decimal_;
        std::string string_;
        mutable SourcedList list_; ///< filled while it is only looked at
        Object object_;
    };
};

VELA_ABI_NAMESPACE_END
}
