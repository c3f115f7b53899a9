/// Where the data of a command go.
#pragma once

#include "new_file.h"

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>

/// Standard output, or a file that is created by the first write.
///
/// A command that fails leaves an older file of that name alone, and no half of a new one.
class Output
{
public:
    /// An empty `output_path` means standard output.
    ///
    /// @throws UsageFailure: the output is the file `input_path`.
    Output(std::string output_path, const std::string& input_path);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output();

    /// @throws std::runtime_error with the system's text
    void write(const void* data, std::size_t size_bytes);

    /// The stream for a writer of its own; `finish` finds what went wrong on it.
    ///
    /// @throws std::runtime_error with the system's text: the file cannot be created.
    std::FILE* stream();

    /// Hands everything to the system. Nothing is written afterwards.
    ///
    /// @throws std::runtime_error with the system's text
    void finish();

private:
    [[noreturn]] void throw_failed_write(int system_error) const;

    std::string path;
    std::optional<NewFile> place; ///< none: standard output
    std::FILE* file = nullptr;
};
