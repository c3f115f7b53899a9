#include <VelaBase/VelaError.h>
#include <VelaProps/VProparray.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

using Sizes = std::vector<std::size_t>;

namespace {

/// Nothing where it cannot be counted.
std::optional<std::size_t> product(const Sizes& sizes)
{
    if (sizes.empty() || std::ranges::find(sizes, 0U) != sizes.end())
        return 0;
    std::size_t result = 1;
    for (const std::size_t size : sizes)
    {
        if (size > std::numeric_limits<std::size_t>::max() / result)
            return std::nullopt;
        result *= size;
    }
    return result;
}

bool is_row(const Sizes& sizes)
{
    return sizes == Sizes{0, 0} || (sizes.size() == 2 && sizes[0] == 1);
}

/// Messages show the low 32 bits.
int low_bits(std::size_t number)
{
    return static_cast<int>(static_cast<std::uint32_t>(number));
}

/// (first, a) where `a` is the only coordinate.
Sizes from_values(std::size_t first, std::size_t a, std::size_t b, std::size_t c, std::size_t d)
{
    constexpr std::size_t absent = VProparrayBase::absent;
    if (a == absent)
        return {0, 0};
    if (b == absent)
        return a == 0 ? Sizes{0, 0} : Sizes{first, a};
    if (c == absent)
        return {a, b};
    if (d == absent)
        return {a, b, c};
    return {a, b, c, d};
}

/// Where a position leads to.
struct Place
{
    std::size_t index;
    Sizes sizes;   ///< that hold the position
    bool is_grown; ///< they are not those of the array
};

/// The numbers of both messages stand opposite to what the words say; callers know them so.
void check_rank(std::size_t rank, std::size_t position_rank, bool grow)
{
    if (position_rank > rank && !grow)
        throw VelaError("VProparrayBase::get_idx", __FILE__, __LINE__)("Input rank '%d' too high (> '%d')!",
                                                                       low_bits(rank), low_bits(position_rank))(-1);
    if (position_rank < rank)
        throw VelaError("VProparrayBase::get_idx", __FILE__, __LINE__)("Input rank '%d' too low (< '%d')!",
                                                                       low_bits(rank), low_bits(position_rank))(-1);
}

[[noreturn]] void fail_size()
{
    throw VelaError("VProparrayBase::set_size", __FILE__, __LINE__)("Invalid size set!")(-1);
}

/// `sizes` are those of the array as it is now, `stored` those that were set.
Place find_place(Sizes sizes, const Sizes& stored, const Sizes& pos, bool grow)
{
    const std::size_t rank = sizes.size();
    const bool is_empty = VProparrayBase::size(stored) == 0;
    check_rank(rank, pos.size(), grow);
    sizes.resize(pos.size(), 1);
    Place place{0, std::move(sizes), false};
    std::size_t stride = 1;
    for (std::size_t i = 0; i < pos.size(); ++i)
    {
        std::size_t& size = place.sizes[i];
        if (pos[i] >= size)
        {
            if (!grow || (!is_empty && i + 1 != rank))
                throw VelaError("VProparrayBase::get_idx", __FILE__,
                                __LINE__)("Index %d out of bounds! (%d >= %d)!", low_bits(i), low_bits(pos[i]),
                                          low_bits(i < stored.size() ? stored[i] : size))(-1);
            if (pos[i] == VProparrayBase::absent)
                fail_size();
            size = pos[i] + 1;
            place.is_grown = true;
        }
        place.index += pos[i] * stride;
        stride *= size;
    }
    return place;
}

}

VProparrayBase::VProparrayBase() = default;
VProparrayBase::VProparrayBase(const VProparrayBase& other) = default;
VProparrayBase& VProparrayBase::operator=(const VProparrayBase& other) = default;
VProparrayBase::~VProparrayBase() = default;

Sizes VProparrayBase::get_size(bool check) const
{
    if (sizes.empty())
        return val2size(count());
    if (!check || product(sizes) == count())
        return sizes;
    if (is_row(sizes))
        return val2size(count());
    if (sizes.size() == 1)
        return {count()};
    throw VelaError("VProparrayBase::get_size", __FILE__, __LINE__)("Invalid size vector in property array!")(-1);
}

std::size_t VProparrayBase::get_rank() const
{
    return get_size(true).size();
}

void VProparrayBase::set_size(const Sizes& new_sizes, set_mode mode)
{
    const std::optional<std::size_t> n = product(new_sizes);
    Sizes stored(new_sizes); // before anything changes: it may be the last memory
    const bool fits = new_sizes.empty() || n == count() || mode == set_only;
    if (!n || (mode == set_strict && !fits))
        fail_size();
    if (mode == set_reset)
        resize(*n, true);
    else if (!fits)
        resize(*n, false);
    sizes.swap(stored);
}

void VProparrayBase::set_size(std::size_t a, std::size_t b, std::size_t c, std::size_t d, set_mode mode)
{
    set_size(val2size(a, b, c, d), mode);
}

std::size_t VProparrayBase::get_idx(const Sizes& pos) const
{
    return find_place(get_size(true), sizes, pos, false).index;
}

std::size_t VProparrayBase::get_idx(const Sizes& pos, bool grow)
{
    const Place place = find_place(get_size(true), sizes, pos, grow);
    if (place.is_grown)
        set_size(place.sizes, set_resize);
    return place.index;
}

std::size_t VProparrayBase::get_idx(std::size_t a, std::size_t b, std::size_t c, std::size_t d) const
{
    return get_idx(val2pos(a, b, c, d));
}

std::size_t VProparrayBase::get_idx(std::size_t a, std::size_t b, std::size_t c, std::size_t d, bool grow)
{
    return get_idx(val2pos(a, b, c, d), grow);
}

Sizes VProparrayBase::get_pos(std::size_t idx) const
{
    if (sizes.empty())
        return val2size(idx);
    Sizes pos(sizes.size(), 0);
    for (std::size_t i = 0; i + 1 < sizes.size(); ++i)
    {
        if (sizes[i] == 0)
            continue;
        pos[i] = idx % sizes[i];
        idx /= sizes[i];
    }
    pos.back() = idx;
    return pos;
}

Sizes VProparrayBase::ptr2size(std::size_t n, const std::size_t* values)
{
    return Sizes(values, values + n);
}

Sizes VProparrayBase::ptr2pos(std::size_t n, const std::size_t* values)
{
    return ptr2size(n, values);
}

Sizes VProparrayBase::val2size(std::size_t a, std::size_t b, std::size_t c, std::size_t d)
{
    return from_values(1, a, b, c, d);
}

Sizes VProparrayBase::val2pos(std::size_t a, std::size_t b, std::size_t c, std::size_t d)
{
    return from_values(0, a, b, c, d);
}

std::size_t VProparrayBase::size(const Sizes& values)
{
    return product(values).value_or(std::numeric_limits<std::size_t>::max());
}
