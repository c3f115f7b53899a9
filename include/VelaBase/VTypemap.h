/// A small two-way table from an integer key to a value.
#pragma once

#include <VelaBase/VelaError.h>
#include <VelaBase/export.h>

#include <cstdint>
#include <map>

namespace Vela {
VELA_ABI_NAMESPACE_BEGIN

/// Raises the failure of `VTypemap::get`.
[[noreturn]] VELA_API void throw_typemap_entry_not_found();

VELA_ABI_NAMESPACE_END
}

/// A two-way table whose keys are taken through a mask. A lookup of an unknown key falls back to
/// the value of key 0.
template <class T>
class VTypemap
{
public:
    /// Fills a table.
    typedef void (*initializer)(VTypemap& table);

    /// Calls `init` on the new table unless it is null.
    explicit VTypemap(std::uint32_t key_mask, initializer init = nullptr) : mask(key_mask)
    {
        if (init != nullptr)
            init(*this);
    }

    /// Enters the pair in both directions; each direction overwrites what stood there.
    void add(int key, const T& value)
    {
        forward[masked(key)] = value;
        reverse[value] = masked(key);
    }

    /// The value of `key`, that of key 0 if there is none. Valid until that entry is overwritten.
    ///
    /// @throws VelaError id -1 "Map entry not found and no default specified!": neither key is in the table.
    const T& get(int key) const
    {
        auto entry = forward.find(masked(key));
        if (entry == forward.end())
            entry = forward.find(0);
        if (entry == forward.end())
            Vela::throw_typemap_entry_not_found();
        return entry->second;
    }

    /// The masked key of `value`, 0 if it is not in the table.
    int get_key(const T& value) const
    {
        const auto entry = reverse.find(value);
        return entry == reverse.end() ? 0 : entry->second;
    }

private:
    int masked(int key) const { return static_cast<int>(static_cast<std::uint32_t>(key) & mask); }

    std::uint32_t mask;
    std::map<int, T> forward;
    std::map<T, int> reverse;
};
