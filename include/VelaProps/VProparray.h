/// Arrays of the property tree: the shape, and the elements.
#pragma once

#include <VelaBase/export.h>
#include <VelaProps/VPropstring.h>

#include <complex>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

class VProp;
class VPropstruct;

/// @name Growth of what holds `VProp` values
///
/// An ordinary reallocation copies: that drops the attachments of the values and clones those that are locked. These
/// move the values by `VProp::swap`, so nothing of them changes. Nothing happens where `n` is below the
/// capacity; otherwise the capacity becomes exactly `n`, also where it was `n` already. An `n` below the size is
/// therefore below the capacity too.
/// @{
VELA_API void vela_prop_reserve(std::vector<VProp>& v, std::size_t n);
VELA_API void vela_prop_reserve(std::vector<std::pair<std::string, VProp>>& v, std::size_t n);
/// @}

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // the table of virtual operations is fixed
#endif

/// The shape of an array: how many elements there are along each dimension.
///
/// Elements lie in column-major order: the first index varies fastest, (p0, p1, p2, ...) is the element
/// p0 + p1 * s0 + p2 * s0 * s1 + ... All indices are counted from 0. A row of n elements has the sizes (1, n);
/// sizes of rank 1 are legal too.
///
/// The elements lie in a vector that anybody may lengthen, so the sizes may be out of date: `get_size` mends its
/// answer.
///
/// An array has no destructor in its table: destroy it as what it is.
///
/// Where there is no memory for the elements, what comes is the exception of the vector: `std::bad_alloc`, or
/// `std::length_error` for more elements than any vector holds.
class VELA_API VProparrayBase
{
public:
    /// What `set_size` does where the product of the new sizes differs from the count of elements. Callers may pass
    /// any number; an unknown one is as `set_resize`.
    enum set_mode : std::int32_t
    {
        set_only = 0,   ///< the sizes are stored, the elements stay as they are
        set_strict = 1, ///< the call fails
        set_resize = 2, ///< the sizes are stored, the elements become as many, and keep their linear positions
        set_reset = 3,  ///< also where the product is the count: the elements become defaults, the sizes are stored
    };

    /// A coordinate that is not given.
    static constexpr std::size_t absent = static_cast<std::size_t>(-1);

    /// The number of elements that are there.
    virtual std::size_t count() const = 0;

    /// With `reset` the elements become `n` defaults: 0, or the empty value, string or struct. Otherwise there are `n`
    /// elements afterwards, of which the old ones keep their linear positions. The sizes stay as they are.
    virtual void resize(std::size_t n, bool reset) = 0;

    /// The shape. Without `check` the sizes as they were set; with it, as they fit the count of elements: a row
    /// becomes as long as there are elements, and so do sizes of rank 1. Where no sizes were set, a row, or (0, 0)
    /// without elements. Nothing is stored.
    /// @throws VelaError id -1 "Invalid size vector in property array!": `check`, and the shape is no row and does not
    ///         fit
    std::vector<std::size_t> get_size(bool check) const;

    /// The number of dimensions of `get_size(true)`, which may throw.
    std::size_t get_rank() const;

    /// Sets the shape. Elements keep their linear positions, so old elements stay in their cells only if nothing but
    /// the last size grows.
    /// @throws VelaError id -1 "Invalid size set!": `set_strict`, and there are not as many elements; or, whatever the
    ///         mode, the product of the sizes is beyond what can be counted
    void set_size(const std::vector<std::size_t>& sizes, set_mode mode);
    /// The same with `val2size(a, b, c, d)`.
    void set_size(std::size_t a, std::size_t b, std::size_t c, std::size_t d, set_mode mode);

    /// The linear index of a position, which names every dimension.
    ///
    /// With `grow`, an array without elements takes the shape that the position needs, and any other grows along its
    /// last dimension if the position lies behind it.
    ///
    /// @throws VelaError id -1 "Input rank '%d' too high (> '%d')!": more coordinates than dimensions, without `grow`.
    ///         The first number is the rank of the array, the second that of the position: this order is wanted.
    /// @throws VelaError id -1 "Input rank '%d' too low (< '%d')!": fewer, with the same numbers
    /// @throws VelaError id -1 "Index %d out of bounds! (%d >= %d)!": dimension, coordinate, size
    /// @throws VelaError id -1 "Invalid size vector in property array!": as `get_size`
    std::size_t get_idx(const std::vector<std::size_t>& pos) const;
    std::size_t get_idx(const std::vector<std::size_t>& pos, bool grow);
    /// The same with `val2pos(a, b, c, d)`.
    std::size_t get_idx(std::size_t a, std::size_t b = absent, std::size_t c = absent, std::size_t d = absent) const;
    std::size_t get_idx(std::size_t a, std::size_t b, std::size_t c, std::size_t d, bool grow);

    /// The position of a linear index, which is not held against the count. Where no sizes were set it is
    /// `val2size(idx)`, with a leading 1: this is wanted. Behind a size of 0 all coordinates but the last are 0.
    std::vector<std::size_t> get_pos(std::size_t idx) const;

    /// @name Sizes and positions from values
    /// @{

    /// The `n` values. The two are the same.
    static std::vector<std::size_t> ptr2size(std::size_t n, const std::size_t* values);
    static std::vector<std::size_t> ptr2pos(std::size_t n, const std::size_t* values);

    /// (a, b), (a, b, c) or (a, b, c, d), as far as they are given. With `a` alone (1, a), but (0, 0) for 0 or
    /// without any.
    static std::vector<std::size_t> val2size(std::size_t a = absent, std::size_t b = absent, std::size_t c = absent,
                                             std::size_t d = absent);
    /// The same, with `a` alone (0, a).
    static std::vector<std::size_t> val2pos(std::size_t a = absent, std::size_t b = absent, std::size_t c = absent,
                                            std::size_t d = absent);
    /// @}

    /// The product of the sizes; 0 for none. A product that cannot be counted gives the largest number.
    static std::size_t size(const std::vector<std::size_t>& sizes);

    /// Flags of the caller. Bit 0 marks an array of strings in the XML form.
    std::uint64_t userbits = 0;

protected:
    VProparrayBase();
    VProparrayBase(const VProparrayBase& other);
    VProparrayBase(VProparrayBase&& other) noexcept;
    VProparrayBase& operator=(const VProparrayBase& other);
    VProparrayBase& operator=(VProparrayBase&& other) noexcept;
    ~VProparrayBase();

private:
    std::vector<std::size_t> sizes;
};

/// An array of the property tree: a vector with a shape.
///
/// `T` is one of the plain types "uint8" to "logical", `std::complex` of the ten plain number types, `VProp` (a cell
/// array), `VPropstring` or `VPropstruct`. Of the members of the vector, `resize` and `at` are hidden.
template <class T>
class VELA_API VProparray : public VProparrayBase, public std::vector<T>
{
public:
    using Elements = std::vector<T>;
    using Elements::size;
    using VProparrayBase::size;

    VProparray() = default;
    VProparray(const VProparray& other) = default;
    VProparray(VProparray&& other) noexcept = default;
    /// `other` may lie in this array.
    VProparray& operator=(const VProparray& other)
    {
        VProparray copy(other);
        return *this = std::move(copy);
    }
    VProparray& operator=(VProparray&& other) noexcept = default;

    std::size_t count() const override { return Elements::size(); }

    void resize(std::size_t n, bool reset) override
    {
        if (reset)
        {
            Elements defaults(n);
            Elements::swap(defaults);
            return;
        }
        if constexpr (std::is_same_v<T, VProp>)
            vela_prop_reserve(*this, n);
        else
            Elements::reserve(n);
        Elements::resize(n);
    }

    /// The element at a position; throws, and may grow, as `get_idx`.
    typename Elements::reference at(const std::vector<std::size_t>& pos, bool grow)
    {
        return (*this)[get_idx(pos, grow)];
    }
    typename Elements::const_reference at(const std::vector<std::size_t>& pos) const { return (*this)[get_idx(pos)]; }
};

extern template class VProparray<unsigned char>;
extern template class VProparray<char>;
extern template class VProparray<unsigned short>;
extern template class VProparray<short>;
extern template class VProparray<unsigned int>;
extern template class VProparray<int>;
extern template class VProparray<std::uint64_t>;
extern template class VProparray<std::int64_t>;
extern template class VProparray<float>;
extern template class VProparray<double>;
extern template class VProparray<bool>;
extern template class VProparray<std::complex<unsigned char>>;
extern template class VProparray<std::complex<char>>;
extern template class VProparray<std::complex<unsigned short>>;
extern template class VProparray<std::complex<short>>;
extern template class VProparray<std::complex<unsigned int>>;
extern template class VProparray<std::complex<int>>;
extern template class VProparray<std::complex<std::uint64_t>>;
extern template class VProparray<std::complex<std::int64_t>>;
extern template class VProparray<std::complex<float>>;
extern template class VProparray<std::complex<double>>;
extern template class VProparray<VPropstring>;

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
