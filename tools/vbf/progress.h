/// How far a long command has come.
#pragma once

#include <cstdint>
#include <string>

/// One line on standard error that counts to 100 %, if standard error is a terminal; else nothing at all. The line
/// goes away at the end.
class Progress
{
public:
    Progress(std::string in_label, std::uint64_t in_whole);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void add(std::uint64_t part);

    /// So much of the whole is done now.
    void set(std::uint64_t in_done);

private:
    const std::string label;
    const std::uint64_t whole;
    std::uint64_t done = 0;
    int shown_percent = -1;
    bool visible;
};
