/// A file that is open, with what a scan of it lists. A DBL file is listed as a file of one stack of version 0.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include <cstdint>
#include <string>

/// Opens and scans a file. The file stays open and in use as long as this object lives.
class ScannedFile
{
public:
    /// @throws VelaError as `scan_chain` does; as `VBFFile::open` does for a DBL file
    /// @throws std::runtime_error as `open_bytes` does
    explicit ScannedFile(const std::string& path);
    ScannedFile(const ScannedFile&) = delete;
    ScannedFile& operator=(const ScannedFile&) = delete;

    const VBFChain& get_chain() const { return chain; }
    VFile& get_file() { return file; }

    /// @throws VelaError id -4 "Invalid stack index %d!"
    const VBFChainEntry& get_stack(std::uint64_t index) const;

    bool is_dbl() const { return dbl; }

    /// The file has a dictionary; without one it was made by an old writer.
    bool has_dictionary() const { return chain.file.header.format_version > 1; }

    /// A file with a dictionary whose position was never filled in.
    bool is_not_closed() const { return has_dictionary() && chain.file.meta_data_pos == 0; }

    /// The dictionary of the file; empty where it has none.
    ///
    /// @throws VelaError as `read_dictionary` does: it is damaged, or the file was not closed.
    VBFDictionary read_file_dictionary();

private:
    const bool dbl;
    VBFChain chain;
    VFile file;
};
