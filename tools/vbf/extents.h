/// Who owns which bytes of a file.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// Stretches of a file that must not overlap.
class Extents
{
public:
    struct Stretch
    {
        std::uint64_t begin;
        std::uint64_t end;
    };

    /// Takes the bytes from `begin` to `end` for `owner`. Gives the owner that has some of them already, and takes none then.
    std::optional<std::string> claim(std::uint64_t begin, std::uint64_t end, const std::string& owner);

    bool is_free(std::uint64_t position) const;

    /// The stretches between 0 and `end` that nobody owns.
    std::vector<Stretch> gaps(std::uint64_t end) const;

private:
    struct Owned
    {
        std::uint64_t end;
        std::string owner;
    };
    std::map<std::uint64_t, Owned> owned; ///< by begin
};
