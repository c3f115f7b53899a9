/// Files that are being made.
#pragma once

#include <string>
#include <vector>

/// True when both names lead to one file, which is there.
bool is_same_file(const std::string& one, const std::string& other);

/// A file gets its name when it is finished. Until then its bytes are in another one beside it, which is removed unless
/// the command comes to its end. So what had the name before stays as it was, whatever happens; of a program that is killed
/// a file "OUT.NUMBER.part" is left.
///
/// A link is followed. Devices and pipes are written as they are.
class NewFile
{
public:
    /// Nothing is created yet.
    ///
    /// @throws UsageFailure: the output is one of `inputs`.
    NewFile(const std::string& out_path, const std::vector<std::string>& inputs);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    /// Creates the file that is to be written, without a byte, and gives its path.
    ///
    /// @throws std::runtime_error with the system's text: it cannot be, or may not be overwritten.
    const std::string& create();

    /// Where the bytes are until the end.
    const std::string& get_path() const { return part_path; }

    /// Gives the file its name. It must be closed.
    ///
    /// @throws std::runtime_error with the system's text
    void finish();

private:
    void open_and_close(const std::string& name, const char* mode) const;
    [[noreturn]] void fail(int system_error) const;

    const std::string path; ///< as the user named it
    std::string target;     ///< behind all links
    std::string part_path;
    bool unfinished = false; ///< there is a file to be removed
};
