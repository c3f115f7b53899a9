/// The typed value of the property tree.
#pragma once

#include <VelaBase/VelaError.h>
#include <VelaBase/export.h>
#include <VelaBase/vela_dt.h>
#include <VelaProps/VProparray.h>
#include <VelaProps/VPropstring.h>

#include <boost/shared_ptr.hpp>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

class VProp;
class VPropstruct;

/// What a caller may attach to a value. The library only carries the pointer; callers define it.
struct VPropInfo;

namespace vela_prop {

/// The id of the types that a `VProp` holds; 0 for all others.
template <class T>
constexpr vela_dt id = vela_dt_none;
template <>
inline constexpr vela_dt id<unsigned char> = vela_dt_uint8;
template <>
inline constexpr vela_dt id<char> = vela_dt_int8;
template <>
inline constexpr vela_dt id<unsigned short> = vela_dt_uint16;
template <>
inline constexpr vela_dt id<short> = vela_dt_int16;
template <>
inline constexpr vela_dt id<unsigned int> = vela_dt_uint32;
template <>
inline constexpr vela_dt id<int> = vela_dt_int32;
template <>
inline constexpr vela_dt id<float> = vela_dt_single;
template <>
inline constexpr vela_dt id<double> = vela_dt_double;
template <>
inline constexpr vela_dt id<_s_vela_RGB> = vela_dt_rgb;
template <>
inline constexpr vela_dt id<std::uint64_t> = vela_dt_uint64;
template <>
inline constexpr vela_dt id<std::int64_t> = vela_dt_int64;
template <>
inline constexpr vela_dt id<bool> = vela_dt_logical;
template <>
inline constexpr vela_dt id<VPropstring> = vela_dt_char;
template <>
inline constexpr vela_dt id<VPropstruct> = vela_dt_struct;
/// There are no complex booleans.
template <class T>
inline constexpr vela_dt id<std::complex<T>> =
    std::is_arithmetic_v<T> && !std::is_same_v<T, bool> && id<T> != vela_dt_none ? id<T> | vela_dt_complex
                                                                                 : vela_dt_none;
/// There are no arrays of colours.
template <class T>
inline constexpr vela_dt id<VProparray<T>> =
    id<T> != vela_dt_none && !std::is_same_v<T, _s_vela_RGB> ? id<T> | vela_dt_array : vela_dt_none;
template <>
inline constexpr vela_dt id<VProparray<VProp>> = vela_dt_cell | vela_dt_array;

/// What a value becomes that is none of those types, but is a number by itself: one of an unscoped enumeration, or an
/// element of a `VProparray<bool>`. `void` for all others.
template <class T, class = void>
struct Plain
{
    using type = void;
};
/// An unscoped enumeration becomes the integer that it promotes to.
template <class T>
struct Plain<T, std::enable_if_t<std::is_enum_v<T> && std::is_convertible_v<T, std::underlying_type_t<T>>>>
{
    using type = decltype(+std::declval<T>());
};
/// An element of a `VProparray<bool>` becomes a `bool`.
template <>
struct Plain<std::vector<bool>::reference>
{
    using type = bool;
};

}

static_assert(std::is_signed_v<char>, "\"int8\" is plain char, which has to be signed");

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // the table of virtual operations is fixed
#endif

/// A value of the property tree: nothing, or one container with a number, a colour, a text, a struct or an array.
///
/// | id | type | array |
/// |---|---|---|
/// | 0 | none: the empty value | |
/// | `vela_dt_uint8` to `vela_dt_int64` | the ten integers and floating-point numbers | `VProparray` of them |
/// | the same with `vela_dt_complex` | `std::complex` of them | `VProparray` of them |
/// | `vela_dt_logical` | `bool` | `VProparray<bool>` |
/// | `vela_dt_rgb` | `_s_vela_RGB` | |
/// | `vela_dt_char` | `VPropstring` | `VProparray<VPropstring>` |
/// | `vela_dt_struct` | `VPropstruct` | `VProparray<VPropstruct>` |
/// | `vela_dt_cell` | | `VProparray<VProp>`, a cell array |
///
/// Copies share the container and take constant time. A container is detached (`own`) when somebody asks for the
/// value to write to, and then one level of it: members that are values share theirs with the original until they
/// are reached themselves. So whole trees are passed and stored by value.
///
/// The count of those who share is a plain number: a value, and all that share with it, belong to one thread at a time.
///
/// References to members and elements are good until their struct or array grows. So a member that is copied to a new
/// one needs a copy first: `p["b"] = VProp(p["a"])`. No value may be put into itself, as in `p["a"] = p`: `VProp(p)`
/// may.
///
/// Trees may be of any depth: copying, comparing and destroying them do not recurse. Comparing, visiting and writing
/// a tree takes time for every path through it: a container that is shared by many members is met as often.
class VELA_API VProp
{
public:
    class placeholder;
    template <class T>
    class holder;

    /// The id of the held type `T`, 0 where a `VProp` holds no `T`.
    template <class T>
    static constexpr vela_dt type_id = vela_prop::id<T>;

    /// Empty.
    VProp() noexcept : content(nullptr) {}

    /// Shares the container of `other`, or takes a clone where it is locked. The attachment does not come along.
    VProp(const VProp& other);

    /// A container of its own with a copy of `value`, of exactly one of the types of the table.
    template <class T, std::enable_if_t<vela_prop::id<T> != vela_dt_none, int> = 0>
    VProp(const T& value) : content(new holder<T>(value))
    {
    }

    /// The same with the number that an enumerator or an element of a `VProparray<bool>` stands for.
    template <class T, class Number = typename vela_prop::Plain<T>::type,
              std::enable_if_t<vela_prop::id<Number> != vela_dt_none, int> = 0>
    VProp(const T& value) : VProp(static_cast<Number>(value))
    {
    }

    /// A `VPropstring`, decoded from the system's encoding.
    VProp(const std::string& text);
    VProp(const char* text);
    /// A `VPropstring` with the text as it stands.
    VProp(const std::wstring& text);
    VProp(const wchar_t* text);

    /// Takes the value of `other` as a copy does. Any attachment of this value goes.
    VProp& operator=(const VProp& other);

    /// Takes a new value. The attachment of this value stays: the two assignments differ on purpose.
    template <class T,
              std::enable_if_t<!std::is_base_of_v<VProp, T> && std::is_constructible_v<VProp, const T&>, int> = 0>
    VProp& operator=(const T& value)
    {
        VProp made(value);
        return swap_value(made);
    }

    ~VProp() { drop(); }

    bool empty() const noexcept { return content == nullptr; }

    /// The id of the held type, 0 without one.
    int get_id() const noexcept;

    /// The held type, `void` without one.
    const std::type_info& type() const noexcept;

    /// The address of the held value, shared or not. Not for empty values.
    virtual const void* value_ptr() const;
    virtual void* value_ptr();

    /// The held value. Nothing is converted: `vela_prop_cast` does that.
    /// @throws VelaError id -1 "Type mismatch: found %s%s, expected %s%s": it is not exactly of type `T`; the names are
    ///         those of `vela_dt_get_name`, with "[]" behind those of arrays
    template <class T>
    const T& get() const;
    /// The same for writing: a shared container is detached first, even if the type does not match.
    template <class T>
    T& get();

    /// The shape of an array. Otherwise null.
    /// @throws VelaError id -1 "Type mismatch: expected 'array' type!": `demand`, and the value is no array
    VProparrayBase* get_arr(bool demand) const;

    /// `get<T>`; an empty value is given a default `T` first.
    template <class T>
    T& ensure();
    /// `get<VProparray<T>>`; an empty value is given an array of `count` elements first.
    template <class T>
    VProparray<T>& ensure_array(std::size_t count);

    /// The attachment. It is no part of the value: copies and clones do not have it, and anybody may set it.
    boost::shared_ptr<VPropInfo> get_info() const { return info; }
    void set_info(boost::shared_ptr<VPropInfo> new_info) const { info = std::move(new_info); }

    /// Makes the container private for good: from now on copies of this value take clones, so that pointers into the
    /// container stay with this value. True for an empty value, which stays as it is; false, without a change, where
    /// the container is shared.
    bool lock() const noexcept;

    /// Detaches the container: afterwards nobody shares it.
    void own()
    {
        if (is_shared())
            detach();
    }

    /// Exchanges value and attachment.
    VProp& swap(VProp& other) noexcept;
    /// Exchanges the value alone.
    VProp& swap_value(VProp& other) noexcept;
    /// Becomes empty. The attachment stays.
    void clear() noexcept;

    /// Values are equal if their types are the same and
    /// - numbers, colours and booleans are equal: a NaN is unequal to itself, so a value that holds one may be unequal
    ///   to its copy;
    /// - texts have the same wide characters;
    /// - structs have equal members under the same keys in the same order;
    /// - arrays have as many elements, equal in linear order; their sizes and flags do not count.
    ///
    /// Empty values are equal. Attachments do not count.
    bool operator==(const VProp& other) const;
    bool operator!=(const VProp& other) const { return !(*this == other); }

    /// @name Walks along a path, such as "scan.axes(2).label{1,3}": see `VPropstruct.h`
    /// @{

    /// The value at `path`; an empty path is this value. With `create`, what is missing is made on the way.
    /// Every shared container on the way is detached, also without `create`.
    /// @throws VelaError: see `VPropstruct.h`
    VProp& getp(const std::string& path, bool create);
    const VProp& getp(const std::string& path) const;

    /// `getp(path, true)`, also for a constant value, which gains what is missing: this is wanted.
    VProp& operator[](const std::string& path);
    const VProp& operator[](const std::string& path) const;
    void operator[](std::nullptr_t) const = delete; ///< the number 0 is no path
    /// @}

    /// @name Elements of cell arrays and of struct arrays, by position as in `VProparrayBase::val2pos`
    /// An empty value becomes such an array, and arrays grow, as in `VProparrayBase::get_idx`; not in the constant
    /// forms.
    /// @{
    VProp& operator()(std::size_t a, std::size_t b = VProparrayBase::absent, std::size_t c = VProparrayBase::absent,
                      std::size_t d = VProparrayBase::absent);
    const VProp& operator()(std::size_t a, std::size_t b = VProparrayBase::absent,
                            std::size_t c = VProparrayBase::absent, std::size_t d = VProparrayBase::absent) const;
    VPropstruct& s(std::size_t a, std::size_t b = VProparrayBase::absent, std::size_t c = VProparrayBase::absent,
                   std::size_t d = VProparrayBase::absent);
    const VPropstruct& s(std::size_t a, std::size_t b = VProparrayBase::absent, std::size_t c = VProparrayBase::absent,
                         std::size_t d = VProparrayBase::absent) const;
    /// @}

private:
    static placeholder* clone(const placeholder& container);
    static void destroy(placeholder* container) noexcept;
    bool is_shared() const noexcept;
    void share_locked();
    void detach();
    void drop() noexcept;
    [[noreturn]] void throw_mismatch(vela_dt expected) const;

    mutable placeholder* content; ///< also constant values detach, when somebody walks through them
    mutable boost::shared_ptr<VPropInfo> info;
};

/// What holds a value: shared by those that were copied from each other.
class VELA_API VProp::placeholder
{
public:
    placeholder();
    placeholder(const placeholder&) = delete;
    placeholder& operator=(const placeholder&) = delete;
    virtual ~placeholder();

    virtual const std::type_info& type() const noexcept = 0;
    virtual const void* value_ptr() const noexcept = 0;
    virtual void* value_ptr() noexcept = 0;
    /// A new container, unlocked and with one owner, with a copy of the value.
    virtual placeholder* clone() const = 0;
    virtual vela_dt get_id() const noexcept = 0;

    std::uint64_t refcount = 1; ///< how many values share this
    bool locked = false;        ///< never to be shared again
};

/// A held value of the type `T`.
template <class T>
class VELA_API VProp::holder final : public VProp::placeholder
{
public:
    static_assert(vela_prop::id<T> != vela_dt_none, "a VProp holds no such type");

    explicit holder(const T& held) : value(held) {}

    const std::type_info& type() const noexcept override { return typeid(T); }
    const void* value_ptr() const noexcept override { return &value; }
    void* value_ptr() noexcept override { return &value; }
    placeholder* clone() const override { return new holder(value); }
    vela_dt get_id() const noexcept override { return vela_prop::id<T>; }

    T value;
};

// Copies and their ends are here, as there are so many of them.
inline VProp::VProp(const VProp& other) : content(other.content)
{
    if (content == nullptr)
        return;
    if (content->locked)
        share_locked();
    else
        ++content->refcount;
}

inline void VProp::drop() noexcept
{
    if (content != nullptr && --content->refcount == 0)
        destroy(content);
}

inline bool VProp::is_shared() const noexcept
{
    return content != nullptr && content->refcount != 1;
}

inline int VProp::get_id() const noexcept
{
    return content ? content->get_id() : vela_dt_none;
}

inline const std::type_info& VProp::type() const noexcept
{
    return content ? content->type() : typeid(void);
}

template <class T>
const T& VProp::get() const
{
    static_assert(vela_prop::id<T> != vela_dt_none, "a VProp holds no such type");
    if (get_id() != vela_prop::id<T>)
        throw_mismatch(vela_prop::id<T>);
    return static_cast<const holder<T>*>(content)->value;
}

template <class T>
T& VProp::get()
{
    own();
    return const_cast<T&>(static_cast<const VProp&>(*this).get<T>());
}

template <class T>
T& VProp::ensure()
{
    if (empty())
    {
        VProp made{T()};
        swap_value(made);
    }
    return get<T>();
}

template <class T>
VProparray<T>& VProp::ensure_array(std::size_t count)
{
    const bool was_empty = empty();
    VProparray<T>& array = ensure<VProparray<T>>();
    if (was_empty)
        array.resize(count, false);
    return array;
}

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
extern template class VProparray<VProp>;
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

extern template class VProp::holder<unsigned char>;
extern template class VProp::holder<char>;
extern template class VProp::holder<unsigned short>;
extern template class VProp::holder<short>;
extern template class VProp::holder<unsigned int>;
extern template class VProp::holder<int>;
extern template class VProp::holder<float>;
extern template class VProp::holder<double>;
extern template class VProp::holder<_s_vela_RGB>;
extern template class VProp::holder<std::uint64_t>;
extern template class VProp::holder<std::int64_t>;
extern template class VProp::holder<bool>;
extern template class VProp::holder<VPropstring>;
extern template class VProp::holder<std::complex<unsigned char>>;
extern template class VProp::holder<std::complex<char>>;
extern template class VProp::holder<std::complex<unsigned short>>;
extern template class VProp::holder<std::complex<short>>;
extern template class VProp::holder<std::complex<unsigned int>>;
extern template class VProp::holder<std::complex<int>>;
extern template class VProp::holder<std::complex<float>>;
extern template class VProp::holder<std::complex<double>>;
extern template class VProp::holder<std::complex<std::uint64_t>>;
extern template class VProp::holder<std::complex<std::int64_t>>;
extern template class VProp::holder<VProparray<unsigned char>>;
extern template class VProp::holder<VProparray<char>>;
extern template class VProp::holder<VProparray<unsigned short>>;
extern template class VProp::holder<VProparray<short>>;
extern template class VProp::holder<VProparray<unsigned int>>;
extern template class VProp::holder<VProparray<int>>;
extern template class VProp::holder<VProparray<float>>;
extern template class VProp::holder<VProparray<double>>;
extern template class VProp::holder<VProparray<std::uint64_t>>;
extern template class VProp::holder<VProparray<std::int64_t>>;
extern template class VProp::holder<VProparray<bool>>;
extern template class VProp::holder<VProparray<VPropstring>>;
extern template class VProp::holder<VProparray<VProp>>;
extern template class VProp::holder<VProparray<std::complex<unsigned char>>>;
extern template class VProp::holder<VProparray<std::complex<char>>>;
extern template class VProp::holder<VProparray<std::complex<unsigned short>>>;
extern template class VProp::holder<VProparray<std::complex<short>>>;
extern template class VProp::holder<VProparray<std::complex<unsigned int>>>;
extern template class VProp::holder<VProparray<std::complex<int>>>;
extern template class VProp::holder<VProparray<std::complex<float>>>;
extern template class VProp::holder<VProparray<std::complex<double>>>;
extern template class VProp::holder<VProparray<std::complex<std::uint64_t>>>;
extern template class VProp::holder<VProparray<std::complex<std::int64_t>>>;

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
