/// Reads the planes of a TIFF file.
#pragma once

#include "tiff_handle.h"

#include <VelaBase/vela_dt.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

/// The pages of a TIFF file, which all have one size and one type of samples. Reduced copies of pages are left out. The file is
/// open only while its planes are read: a user may have more files than a program can have open.
///
/// Strips and tiles, all compressions that libtiff knows, one or more samples a pixel; whole numbers of 8, 16 and 32 bits,
/// floating point of 32 and 64 bits, and complex ones of these.
class TiffFile
{
public:
    /// A plane of more bytes is refused.
    static constexpr std::uint64_t max_plane_bytes = max_tiff_bytes;

    /// @throws std::runtime_error with libtiff's message, or that says what is not supported
    explicit TiffFile(const std::string& in_path);
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;
    ~TiffFile();

    const std::string& get_path() const { return path; }
    std::uint32_t get_width() const { return page.width; }
    std::uint32_t get_height() const { return page.height; }
    vela_dt get_type() const { return page.type; }
    std::uint32_t get_samples_per_pixel() const { return page.samples_per_pixel; }
    std::uint64_t get_count_pages() const { return offsets.size(); }
    std::uint64_t get_plane_bytes() const;

    /// The description of the first page; empty where it has none.
    const std::string& get_description() const { return description; }

    /// What the file says of its samples that does not become part of them.
    const std::set<std::string>& get_remarks() const { return remarks; }

    /// Pixels of the first page per unit, 0 where it does not say.
    double get_resolution_x() const { return resolution_x; }
    double get_resolution_y() const { return resolution_y; }

    /// One sample of each pixel of a page, row after row, in the byte order of the machine.
    ///
    /// @throws std::runtime_error with libtiff's message
    std::vector<unsigned char> read_plane(std::uint64_t page_index, std::uint32_t sample);

    /// The next `read_plane` opens the file again.
    void close();

private:
    struct Page
    {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        std::uint32_t samples_per_pixel = 1;
        vela_dt type = vela_dt_none;
        bool tiled = false;
        bool planar = false; ///< the samples of a pixel lie in planes of their own

        bool operator==(const Page& other) const
        {
            return width == other.width && height == other.height && samples_per_pixel == other.samples_per_pixel &&
                   type == other.type;
        }
    };
    class Blocks;

    [[noreturn]] void fail(const std::string& text) const;
    void open();
    void read_directory();
    bool next_directory();
    bool has_link() const;
    Page describe_page(); ///< lets libtiff give colours as RGB
    bool has_bytes_for(const Page& current) const;
    void read_texts();
    void read_meaning();
    std::uint32_t number(std::uint32_t tag, std::uint32_t missing) const;

    std::string path;
    TiffMessages messages;
    TiffHandle file;
    Page page;
    std::vector<std::uint64_t> offsets; ///< of the directories
    std::string description;
    std::set<std::string> remarks;
    double resolution_x = 0;
    double resolution_y = 0;
};
