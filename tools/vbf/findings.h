/// What an inspection of a file finds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// One thing that is not as it should be.
struct Finding
{
    bool wrong; ///< else it is odd, and readers cope with it
    std::optional<std::size_t> stack;
    std::uint64_t position; ///< in the file
    std::string text;
};

/// A list of findings, in the order in which they were made.
class Findings
{
public:
    /// A hostile file can be wrong in as many places as it has bytes. More than these are counted only.
    static constexpr std::size_t max_listed = 1000;

    /// What is found from now on belongs to this stack, or to the file itself.
    void set_stack(std::optional<std::size_t> index) { stack = index; }

    /// A rule of the format is broken.
    void add_wrong(std::uint64_t position, const std::string& text) { add(true, position, text); }

    /// Something that this library never writes, and that readers cope with.
    void add_odd(std::uint64_t position, const std::string& text) { add(false, position, text); }

    const std::vector<Finding>& get_list() const { return list; }
    std::uint64_t get_count_wrong() const { return count_wrong; }
    std::uint64_t get_count_not_listed() const { return count - list.size(); }

private:
    void add(bool wrong, std::uint64_t position, const std::string& text);

    std::optional<std::size_t> stack;
    std::vector<Finding> list;
    std::uint64_t count = 0;
    std::uint64_t count_wrong = 0;
};
